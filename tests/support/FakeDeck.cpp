#include "support/FakeDeck.h"

#include <algorithm>

namespace quillmarch::addin::test {

namespace {
constexpr std::int32_t kFirstSlideId = 256;
}

void FakeText::Replace(std::size_t start, std::size_t length, const Wide& with) {
  start = std::min(start, text.size());
  length = std::min(length, text.size() - start);
  FakeFont font = fonts.empty() ? FakeFont{} : fonts[std::min(start, fonts.size() - 1)];
  if (onReplaced) onReplaced(font);
  text.replace(start, length, with);
  const auto at = fonts.begin() + static_cast<std::ptrdiff_t>(start);
  const auto behind = fonts.erase(at, at + static_cast<std::ptrdiff_t>(length));
  fonts.insert(behind, with.size(), font);
}

void FakeSelection::SelectSlides(std::vector<std::int32_t> indexes) {
  type = 1;
  slides = std::move(indexes);
}

void FakeSelection::SelectShapes(FakeShapes selected) {
  type = 2;
  shapes = std::move(selected);
}

void FakeSelection::SelectText(const FakeShapeRef& shape, std::int32_t from, std::int32_t units) {
  type = 3;
  text = shape->text;
  start = from;
  length = units;
}

std::vector<std::pair<std::size_t, std::size_t>> ParagraphsOf(const Wide& text) {
  std::vector<std::pair<std::size_t, std::size_t>> found;
  if (text.empty()) return found;
  std::size_t start = 0;
  for (std::size_t cr = text.find(u'\r'); cr != Wide::npos; cr = text.find(u'\r', start)) {
    found.emplace_back(start, cr + 1 - start);
    start = cr + 1;
  }
  found.emplace_back(start, text.size() - start);
  return found;
}

FakeSlide& FakePresentation::AddSlide(FakeShapes shapes, FakeShapes notes) {
  auto slide = std::make_shared<FakeSlide>();
  slide->id = kFirstSlideId + static_cast<std::int32_t>(slides.size());
  slide->tree->shapes = std::move(shapes);
  slide->notes->shapes = std::move(notes);
  slides.push_back(slide);
  return *slide;
}

std::shared_ptr<FakeText> MakeText(const Wide& text, const FakeFont& font) {
  auto made = std::make_shared<FakeText>();
  made->text = text;
  made->fonts.assign(text.size(), font);
  return made;
}

FakeShapeRef TextShape(const Wide& text, const FakeFont& font) {
  auto shape = std::make_shared<FakeShape>();
  shape->text = MakeText(text, font);
  shape->text->shape = shape;
  return shape;
}

FakeShapeRef PictureShape() {
  auto shape = std::make_shared<FakeShape>();
  shape->name = u"Picture";
  shape->type = 13;
  return shape;
}

FakeShapeRef GroupShape(FakeShapes children) {
  auto shape = std::make_shared<FakeShape>();
  shape->name = u"Group";
  shape->type = 6;
  shape->children = std::move(children);
  return shape;
}

FakeShapeRef TableShape(const std::vector<std::vector<Wide>>& cells) {
  auto shape = std::make_shared<FakeShape>();
  shape->name = u"Table";
  shape->type = 19;
  shape->table = std::make_shared<FakeTable>();
  for (const auto& row : cells) {
    auto& made = shape->table->cells.emplace_back();
    for (const Wide& text : row) made.push_back(TextShape(text));
  }
  return shape;
}

}  // namespace quillmarch::addin::test
