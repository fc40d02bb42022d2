#include "host/deck/FrameEdit.h"

#include <cmath>
#include <string>

#include "host/deck/text/RunPropertiesEdit.h"
#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr XmlNamespace kP = XmlNamespace::kPresentation;
constexpr double kEmuPerPoint = 12700.0;

std::string Emu(double points) {
  return std::to_string(std::llround(points * kEmuPerPoint));
}

std::string Pair(const std::string& name, const char* first, double one, const char* second,
                 double two) {
  return "<" + name + " " + first + "=\"" + Emu(one) + "\" " + second + "=\"" + Emu(two) + "\"/>";
}

// Puts `text` where the element's content begins; an empty element is opened for it.
void AppendAtBegin(std::string_view bytes, const ElementSpan& element, const std::string& text,
                   std::vector<Edit>& edits) {
  if (!element.selfClosed) {
    edits.push_back({element.contentBegin, 0, text});
    return;
  }
  const std::size_t nameEnd = bytes.find_first_of(" \t\r\n/>", element.begin + 1);
  const std::string name(bytes.substr(element.begin + 1, nameEnd - element.begin - 1));
  edits.push_back({element.end - 2, 2, ">" + text + "</" + name + ">"});
}

pugi::xml_node HolderOf(const XmlNames& names, const ShapeEntry& shape) {
  return names.Child(shape.node, kP, "spPr");
}

// The prefix that stands for the drawing namespace near the shape, with its colon.
std::string DrawingPrefix(const XmlNames& names, pugi::xml_node shape) {
  std::string prefix = "a:";
  const pugi::xml_node text = TextBodyOf(names, shape);
  for (const pugi::xml_node holder : {text, names.Child(shape, kP, "spPr")}) {
    for (const pugi::xml_node child : holder.children()) {
      if (child.type() == pugi::node_element && names.SpaceOf(child) == kA) {
        return std::string(PrefixWithColon(child.name()));
      }
    }
  }
  return prefix;
}

std::string AutofitXml(const std::string& prefix, const Autofit& fit) {
  switch (fit.kind) {
    case AutofitKind::kNone:
      return "<" + prefix + "noAutofit/>";
    case AutofitKind::kShapeToText:
      return "<" + prefix + "spAutoFit/>";
    case AutofitKind::kTextToShape:
      break;
  }
  std::string xml = "<" + prefix + "normAutofit";
  if (fit.fontScale != kWholeShare) xml += " fontScale=\"" + std::to_string(fit.fontScale) + "\"";
  if (fit.lineSpacingReduction != 0) {
    xml += " lnSpcReduction=\"" + std::to_string(fit.lineSpacingReduction) + "\"";
  }
  return xml + "/>";
}

// `raw` is a whole a:bodyPr, `node` the same element parsed. The autofit follows the text's
// warp and precedes everything else.
std::string WithAutofit(const XmlNames& names, std::string_view bytes, pugi::xml_node node,
                        const std::string& fit) {
  const ElementSpan element = FindElement(bytes, node);
  std::vector<Edit> edits;
  std::size_t place = 0;
  bool replaced = false;
  for (const pugi::xml_node child : node.children()) {
    if (child.type() != pugi::node_element || names.SpaceOf(child) != kA) continue;
    const std::string_view local = LocalName(child.name());
    const ElementSpan span = FindElement(bytes, child);
    if (!span.found) continue;
    if (local == "prstTxWarp") place = span.end;
    if (local != "noAutofit" && local != "normAutofit" && local != "spAutoFit") continue;
    edits.push_back({span.begin, span.end - span.begin, replaced ? std::string() : fit});
    replaced = true;
  }
  if (!replaced && place != 0) edits.push_back({place, 0, fit});
  if (!replaced && place == 0) AppendAtBegin(bytes, element, fit, edits);
  for (Edit& edit : edits) edit.offset -= element.begin;
  return ApplyEdits(bytes.substr(element.begin, element.end - element.begin), std::move(edits));
}

}  // namespace

bool TakesBox(const XmlNames& names, const ShapeEntry& shape) {
  switch (shape.kind) {
    case ShapeKind::kShape:
    case ShapeKind::kPicture:
    case ShapeKind::kConnector:
      return static_cast<bool>(HolderOf(names, shape));
    default: {
      // A group without a place of its own has no scale for its shapes either.
      const pugi::xml_node transform = ShapeTransform(names, shape.node, shape.kind);
      return names.Child(transform, kA, "off") && names.Child(transform, kA, "ext");
    }
  }
}

void AppendBoxEdits(const XmlNames& names, std::string_view bytes, const ShapeEntry& shape,
                    const ShapeBox& box, std::vector<Edit>& edits) {
  const pugi::xml_node transform = ShapeTransform(names, shape.node, shape.kind);
  const pugi::xml_node offset = names.Child(transform, kA, "off");
  const pugi::xml_node extent = names.Child(transform, kA, "ext");
  const auto off = [&](const std::string& name) { return Pair(name, "x", box.left, "y", box.top); };
  const auto ext = [&](const std::string& name) {
    return Pair(name, "cx", box.width, "cy", box.height);
  };
  const auto replace = [&](pugi::xml_node node, const std::string& xml) {
    const ElementSpan span = FindElement(bytes, node);
    if (span.found) edits.push_back({span.begin, span.end - span.begin, xml});
  };
  if (offset && extent) {
    replace(offset, off(offset.name()));
    replace(extent, ext(extent.name()));
    return;
  }
  const std::string prefix = DrawingPrefix(names, shape.node);
  if (!transform) {
    const ElementSpan holder = FindElement(bytes, HolderOf(names, shape));
    if (!holder.found) return;
    AppendAtBegin(bytes, holder,
                  "<" + prefix + "xfrm>" + off(prefix + "off") + ext(prefix + "ext") + "</" +
                      prefix + "xfrm>",
                  edits);
    return;
  }
  // One without the other means nothing, so both are written.
  if (offset) replace(offset, {});
  if (extent) replace(extent, {});
  const ElementSpan span = FindElement(bytes, transform);
  if (span.found) AppendAtBegin(bytes, span, off(prefix + "off") + ext(prefix + "ext"), edits);
}

void AppendFrameEdits(const XmlNames& names, std::string_view bytes, pugi::xml_node body,
                      const FrameProps& file, const FrameProps& now, std::vector<Edit>& edits) {
  if (file == now) return;
  const pugi::xml_node node = names.Child(body, kA, "bodyPr");
  const ElementSpan element = FindElement(bytes, node);
  std::string prefix = DrawingPrefix(names, body.parent());
  if (node) prefix = PrefixWithColon(node.name());
  std::string raw;
  const bool refit = file.autofit != now.autofit && now.autofit;
  if (element.found) {
    raw = refit ? WithAutofit(names, bytes, node, AutofitXml(prefix, *now.autofit))
                : std::string(bytes.substr(element.begin, element.end - element.begin));
  } else {
    raw = "<" + prefix + "bodyPr";
    raw += refit ? ">" + AutofitXml(prefix, *now.autofit) + "</" + prefix + "bodyPr>" : "/>";
  }
  const auto set = [&](const char* name, const std::string& value) {
    raw = WithRunAttribute(raw, prefix, name, value);
  };
  if (file.wrap != now.wrap && now.wrap) set("wrap", *now.wrap ? "square" : "none");
  const auto inset = [&](const char* name, std::optional<std::int64_t> FrameProps::*member) {
    if (file.*member != now.*member && now.*member) set(name, std::to_string(*(now.*member)));
  };
  inset("lIns", &FrameProps::insetLeft);
  inset("tIns", &FrameProps::insetTop);
  inset("rIns", &FrameProps::insetRight);
  inset("bIns", &FrameProps::insetBottom);
  if (element.found) {
    edits.push_back({element.begin, element.end - element.begin, std::move(raw)});
  } else if (const ElementSpan holder = FindElement(bytes, body); holder.found) {
    AppendAtBegin(bytes, holder, raw, edits);
  }
}

}  // namespace quillmarch::host::deck
