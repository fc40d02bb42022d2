#include "host/deck/text/RunPropertiesEdit.h"

#include <cstddef>
#include <vector>

#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {
namespace {

constexpr int kFillRank = 1;
constexpr int kLastRank = 12;

int RankOf(std::string_view local) {
  struct Row {
    std::string_view local;
    int rank;
  };
  constexpr Row kRows[] = {
      {"ln", 0},       {"noFill", 1},  {"solidFill", 1}, {"gradFill", 1},    {"blipFill", 1},
      {"pattFill", 1}, {"grpFill", 1}, {"effectLst", 2}, {"effectDag", 2},   {"highlight", 3},
      {"uLnTx", 4},    {"uLn", 4},     {"uFillTx", 5},   {"uFill", 5},       {"latin", 6},
      {"ea", 7},       {"cs", 8},      {"sym", 9},       {"hlinkClick", 10}, {"hlinkMouseOver", 11},
      {"rtl", 12},     {"extLst", 13}};
  for (const Row& row : kRows) {
    if (row.local == local) return row.rank;
  }
  return kLastRank;
}

struct RawChild {
  int rank = 0;
  std::string_view local;
  std::size_t begin = 0;
  std::size_t end = 0;
};

std::vector<RawChild> ChildrenOf(std::string_view raw, const ElementSpan& element) {
  std::vector<RawChild> children;
  std::size_t at = element.contentBegin;
  while ((at = raw.find('<', at)) < element.contentEnd) {
    const ElementSpan child = FindElement(raw, at + 1);
    if (!child.found) {
      ++at;
      continue;
    }
    const std::size_t nameEnd = raw.find_first_of(" \t\r\n/>", at + 1);
    std::string_view name = raw.substr(at + 1, nameEnd - at - 1);
    if (const std::size_t colon = name.find(':'); colon != std::string_view::npos) {
      name.remove_prefix(colon + 1);
    }
    children.push_back({RankOf(name), name, child.begin, child.end});
    at = child.end;
  }
  return children;
}

std::string Empty(std::string_view prefix) {
  std::string raw = "<";
  return raw.append(prefix).append("rPr/>");
}

// `raw` with the children of `rank` gone and `child` in the place that its rank asks for.
std::string WithChild(std::string_view raw, int rank, std::string_view child) {
  const ElementSpan element = FindElement(raw, 1);
  if (!element.found) return std::string(raw);
  if (element.selfClosed) {
    std::size_t tagEnd = raw.size() - 2;
    while (tagEnd > 1 && (raw[tagEnd - 1] == ' ' || raw[tagEnd - 1] == '\n')) --tagEnd;
    const std::size_t nameEnd = raw.find_first_of(" \t\r\n/>", 1);
    std::string result(raw.substr(0, tagEnd));
    result.append(">").append(child).append("</").append(raw.substr(1, nameEnd - 1)).append(">");
    return result;
  }
  std::size_t place = element.contentEnd;
  std::vector<RawChild> gone;
  bool placed = false;
  for (const RawChild& old : ChildrenOf(raw, element)) {
    if (old.rank == rank) gone.push_back(old);
    if (!placed && old.rank >= rank) {
      place = old.begin;
      placed = true;
    }
  }
  // Nothing of the same rank comes before `place`.
  std::string result(raw.substr(0, place));
  result.append(child);
  std::size_t at = place;
  for (const RawChild& old : gone) {
    result.append(raw.substr(at, old.begin - at));
    at = old.end;
  }
  return result.append(raw.substr(at));
}

}  // namespace

std::string WithRunAttribute(std::string_view raw, std::string_view prefix, std::string_view name,
                             std::string_view value) {
  const std::string base = raw.empty() ? Empty(prefix) : std::string(raw);
  const std::string escaped = EscapeAttribute(value);
  const AttributeSpan old = FindAttribute(base, 1, name);
  if (old.found) {
    return base.substr(0, old.nameBegin) + std::string(name) + "=\"" + escaped + "\"" +
           base.substr(old.valueEnd + 1);
  }
  const std::size_t nameEnd = base.find_first_of(" \t\r\n/>", 1);
  std::string result = base.substr(0, nameEnd);
  result.append(" ").append(name).append("=\"").append(escaped).append("\"");
  return result.append(base.substr(nameEnd));
}

std::string WithoutRunAttribute(std::string_view raw, std::string_view name) {
  const AttributeSpan old = raw.empty() ? AttributeSpan{} : FindAttribute(raw, 1, name);
  if (!old.found) return std::string(raw);
  std::size_t begin = old.nameBegin;
  while (begin > 1 && (raw[begin - 1] == ' ' || raw[begin - 1] == '\t' || raw[begin - 1] == '\n' ||
                       raw[begin - 1] == '\r')) {
    --begin;
  }
  return std::string(raw.substr(0, begin)).append(raw.substr(old.valueEnd + 1));
}

std::string WithTypeface(std::string_view raw, std::string_view prefix, std::string_view local,
                         std::string_view face) {
  std::string child = "<";
  child.append(prefix).append(local).append(" typeface=\"").append(EscapeAttribute(face));
  child.append("\"/>");
  return WithChild(raw.empty() ? Empty(prefix) : std::string(raw), RankOf(local), child);
}

std::string WithSolidFill(std::string_view raw, std::string_view prefix, std::string_view color) {
  std::string child = "<";
  child.append(prefix).append("solidFill>").append(color).append("</").append(prefix);
  child.append("solidFill>");
  return WithChild(raw.empty() ? Empty(prefix) : std::string(raw), kFillRank, child);
}

std::string RenamedElement(std::string_view raw, std::string_view name) {
  if (raw.empty()) return {};
  const ElementSpan element = FindElement(raw, 1);
  const std::size_t nameEnd = raw.find_first_of(" \t\r\n/>", 1);
  if (!element.found || nameEnd == std::string_view::npos) return std::string(raw);
  std::string result = "<";
  result.append(name);
  if (element.selfClosed) return result.append(raw.substr(nameEnd));
  result.append(raw.substr(nameEnd, element.contentEnd - nameEnd));
  return result.append("</").append(name).append(">");
}

std::string ForNewText(std::string_view raw) {
  return WithoutRunAttribute(WithoutRunAttribute(raw, "err"), "dirty");
}

}  // namespace quillmarch::host::deck
