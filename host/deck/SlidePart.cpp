#include "host/deck/SlidePart.h"

#include <utility>

#include "host/deck/FrameEdit.h"
#include "host/package/xml/Splice.h"
#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr XmlNamespace kP = XmlNamespace::kPresentation;

}  // namespace

SlidePart::SlidePart(std::string bytes)
    : bytes_(std::move(bytes)), names_(bytes_), formats_(names_, bytes_) {}

std::unique_ptr<SlidePart> SlidePart::Parse(std::string bytes) {
  std::unique_ptr<SlidePart> part(new SlidePart(std::move(bytes)));
  if (!ParseXml(part->document_, part->bytes_)) return nullptr;
  const XmlNames& names = part->names_;
  const pugi::xml_node slide = names.Child(part->root(), kP, "cSld");
  part->shapes_ = ShapeTree(names, names.Child(slide, kP, "spTree"));
  part->shapeTexts_.resize(part->shapes_.Count());
  part->fileBoxes_.resize(part->shapes_.Count());
  return part;
}

TextBody* SlidePart::Body(pugi::xml_node node) {
  if (!node) return nullptr;
  std::unique_ptr<TextBody>& body = bodies_[node.internal_object()];
  if (!body) body = std::make_unique<TextBody>(names_, bytes_, formats_, node);
  return body.get();
}

TextBody* SlidePart::ShapeText(std::uint32_t shape) {
  if (shapes_.At(shape).kind != ShapeKind::kShape) return nullptr;
  TextBody*& text = shapeTexts_[shape];
  if (text == nullptr) text = Body(TextBodyOf(names_, shapes_.At(shape).node));
  return text;
}

TableGrid* SlidePart::Table(std::uint32_t shape) {
  if (shapes_.At(shape).kind != ShapeKind::kTable) return nullptr;
  std::unique_ptr<TableGrid>& grid = tables_[shape];
  if (!grid) {
    const pugi::xml_node table = TableOfFrame(names_, shapes_.At(shape).node);
    grid = std::make_unique<TableGrid>(names_, table);
  }
  return grid->node() ? grid.get() : nullptr;
}

TextBody* SlidePart::CellText(std::uint32_t shape, std::uint32_t row, std::uint32_t column) {
  const TableGrid* const grid = Table(shape);
  if (grid == nullptr || !grid->Has(row, column)) return nullptr;
  grid->Origin(row, column);
  return Body(names_.Child(grid->Cell(row, column), kA, "txBody"));
}

void SlidePart::ReadTexts(bool formats) {
  for (std::uint32_t shape = 0; shape < shapes_.Count(); ++shape) {
    ShapeText(shape);
    const TableGrid* const grid = Table(shape);
    for (std::uint32_t row = 0; grid != nullptr && row < grid->Rows(); ++row) {
      for (std::uint32_t column = 0; grid->Has(row, column); ++column) {
        CellText(shape, row, column);
      }
    }
  }
  if (!formats) return;
  for (const auto& [node, body] : bodies_) body->ReadFormats();
}

FrameState* SlidePart::Frame(std::uint32_t shape) {
  const auto found = frames_.find(shape);
  return found == frames_.end() ? nullptr : &found->second;
}

FrameState& SlidePart::AddFrame(std::uint32_t shape, const FrameProps& file) {
  FrameState& frame = frames_[shape];
  frame.file = frame.now = file;
  return frame;
}

const std::optional<ShapeBox>& SlidePart::MovedBox(std::uint32_t shape) const {
  static const std::optional<ShapeBox> kNowhere;
  const auto found = frames_.find(shape);
  return found == frames_.end() ? kNowhere : found->second.moved;
}

bool SlidePart::Edited() const {
  for (const auto& [node, body] : bodies_) {
    if (body->Edited()) return true;
  }
  for (const auto& [shape, frame] : frames_) {
    if (frame.moved || frame.file != frame.now) return true;
  }
  return false;
}

std::string SlidePart::TakeBytes() {
  std::vector<Edit> edits;
  for (const auto& [node, body] : bodies_) body->AppendEdits(edits);
  for (const auto& [shape, frame] : frames_) {
    const ShapeEntry& entry = shapes_.At(shape);
    if (frame.moved) AppendBoxEdits(names_, bytes_, entry, *frame.moved, edits);
    AppendFrameEdits(names_, bytes_, TextBodyOf(names_, entry.node), frame.file, frame.now, edits);
  }
  return edits.empty() ? std::move(bytes_) : ApplyEdits(bytes_, std::move(edits));
}

}  // namespace quillmarch::host::deck
