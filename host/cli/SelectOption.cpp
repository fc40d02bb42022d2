#include "host/cli/SelectOption.h"

#include <charconv>
#include <optional>
#include <string_view>

#include "host/cli/TerminalText.h"

namespace quillmarch::host {

namespace {

constexpr std::int32_t kMostSlides = 1000000;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Only digits, from 1.
std::optional<std::int32_t> Number(std::string_view text) {
  std::int32_t number = 0;
  const char* const end = text.data() + text.size();
  if (text.empty() || !IsDigit(text.front())) return {};
  const auto [rest, code] = std::from_chars(text.data(), end, number);
  if (code != std::errc() || rest != end || number < 1) return {};
  return number;
}

// Whether it begins with digits and a colon.
bool BeginsItem(std::string_view text) {
  std::size_t digits = 0;
  while (digits < text.size() && IsDigit(text[digits])) ++digits;
  return digits > 0 && digits < text.size() && text[digits] == ':';
}

std::vector<std::string_view> Items(std::string_view value) {
  std::vector<std::string_view> items;
  std::size_t begin = 0;
  bool named = BeginsItem(value);
  for (std::size_t at = 0; at < value.size(); ++at) {
    if (value[at] != ',') continue;
    const bool next = BeginsItem(value.substr(at + 1));
    if (named && !next) continue;
    items.push_back(value.substr(begin, at - begin));
    begin = at + 1;
    named = next;
  }
  items.push_back(value.substr(begin));
  return items;
}

std::string NotUnderstood(std::string_view item) {
  return "--select takes slides (2,5-7), shapes (3:Title 1 or 3:#2) or part of a text "
         "(3:#2:5+12), not \"" +
         PlainLine(std::string(item)) + "\"";
}

bool ReadSlides(std::string_view item, SelectOption& select, std::string& error) {
  const std::size_t dash = item.find('-');
  const auto first = Number(item.substr(0, dash));
  const auto last = dash == std::string_view::npos ? first : Number(item.substr(dash + 1));
  if (!first || !last || *first > *last || *last > kMostSlides) {
    error = NotUnderstood(item);
    return false;
  }
  for (std::int32_t slide = *first; slide <= *last; ++slide) select.slides.push_back(slide);
  return true;
}

// "#2" or "#2/1"; anything else is a name.
bool ReadShape(std::string_view text, ShapeKey& shape) {
  if (text.empty()) return false;
  if (text.front() != '#') {
    shape.name = text;
    return true;
  }
  text.remove_prefix(1);
  while (true) {
    const std::size_t slash = text.find('/');
    const auto index = Number(text.substr(0, slash));
    if (!index) return false;
    shape.path.push_back(*index);
    if (slash == std::string_view::npos) return true;
    text.remove_prefix(slash + 1);
  }
}

// Takes ":5+12" off the end.
bool TakePiece(std::string_view& text, SelectOption& select) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string_view::npos) return false;
  const std::string_view piece = text.substr(colon + 1);
  const std::size_t plus = piece.find('+');
  if (plus == std::string_view::npos) return false;
  const auto start = Number(piece.substr(0, plus));
  const auto length = Number(piece.substr(plus + 1));
  if (!start || !length) return false;
  select.start = *start;
  select.length = *length;
  text = text.substr(0, colon);
  return true;
}

bool ReadOnSlide(std::string_view item, SelectOption& select, std::string& error) {
  const std::size_t colon = item.find(':');
  const auto slide = Number(item.substr(0, colon));
  std::string_view rest = item.substr(colon + 1);
  const bool text = TakePiece(rest, select);
  ShapeKey shape;
  if (!slide || !ReadShape(rest, shape)) {
    error = NotUnderstood(item);
    return false;
  }
  if (select.slide != 0 && select.slide != *slide) {
    error = "shapes on several slides cannot be selected together";
    return false;
  }
  const bool another = !select.shapes.empty();
  if (another && (text || select.kind == SelectOption::Kind::kText)) {
    error = "part of a text can be selected only by itself";
    return false;
  }
  select.slide = *slide;
  select.kind = text ? SelectOption::Kind::kText : SelectOption::Kind::kShapes;
  select.shapes.push_back(std::move(shape));
  return true;
}

}  // namespace

bool ReadSelect(const std::vector<std::string>& values, SelectOption& select, std::string& error) {
  select = {};
  for (const std::string& value : values) {
    for (const std::string_view item : Items(value)) {
      const bool onSlide = BeginsItem(item);
      if (onSlide ? !ReadOnSlide(item, select, error) : !ReadSlides(item, select, error)) {
        return false;
      }
      if (!select.slides.empty() && !select.shapes.empty()) {
        error = "slides and shapes cannot be selected together";
        return false;
      }
    }
  }
  if (!select.slides.empty()) select.kind = SelectOption::Kind::kSlides;
  return true;
}

Result<void> SelectIn(Host& host, const SelectOption& select) {
  switch (select.kind) {
    case SelectOption::Kind::kSlides:
      return host.SelectSlides(select.slides);
    case SelectOption::Kind::kShapes:
      return host.SelectShapes(select.slide, select.shapes);
    case SelectOption::Kind::kText:
      return host.SelectText(select.slide, select.shapes.front(), select.start, select.length);
    case SelectOption::Kind::kNothing:
      break;
  }
  return {};
}

}  // namespace quillmarch::host
