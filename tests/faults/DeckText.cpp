#include "faults/DeckText.h"

#include <algorithm>
#include <vector>

#include "foundation/automation/Automation.h"

namespace quillmarch::host {

namespace {

constexpr std::int32_t kGroup = 6;

ObjectRef Get(const ObjectRef& object, WideView member, std::vector<Variant> args = {}) {
  Variant value;
  if (Failed(AutoGet(object.get(), member, args, value)) || !value.hasObject()) return {};
  return value.object();
}

std::int32_t Whole(const ObjectRef& object, WideView member) {
  Variant value;
  std::int32_t whole = 0;
  if (Succeeded(AutoGet(object.get(), member, value))) VariantToWhole(value, whole);
  return whole;
}

void AddFrame(const ObjectRef& shape, Wide& all) {
  Variant text;
  if (Failed(AutoGet(Get(Get(shape, u"TextFrame"), u"TextRange").get(), u"Text", text))) return;
  Wide frame = VariantToText(text);
  frame.erase(std::remove(frame.begin(), frame.end(), u'\r'), frame.end());
  all += frame + u"\n";
}

void AddTable(const ObjectRef& table, Wide& all) {
  const std::int32_t rows = Whole(Get(table, u"Rows"), u"Count");
  const std::int32_t columns = Whole(Get(table, u"Columns"), u"Count");
  for (std::int32_t row = 1; row <= rows; ++row) {
    for (std::int32_t column = 1; column <= columns; ++column) {
      AddFrame(Get(Get(table, u"Cell", {Variant::I4(row), Variant::I4(column)}), u"Shape"), all);
    }
  }
}

void AddShapes(const ObjectRef& shapes, Wide& all) {
  const std::int32_t count = Whole(shapes, u"Count");
  for (std::int32_t i = 1; i <= count; ++i) {
    const ObjectRef shape = Get(shapes, u"Item", {Variant::I4(i)});
    if (Whole(shape, u"Type") == kGroup) {
      AddShapes(Get(shape, u"GroupItems"), all);
    } else if (Whole(shape, u"HasTable") != 0) {
      AddTable(Get(shape, u"Table"), all);
    } else {
      AddFrame(shape, all);
    }
  }
}

}  // namespace

Wide DeckText(const ObjectRef& application) {
  Wide all;
  const ObjectRef slides = Get(Get(application, u"ActivePresentation"), u"Slides");
  const std::int32_t count = Whole(slides, u"Count");
  for (std::int32_t i = 1; i <= count; ++i) {
    const ObjectRef slide = Get(slides, u"Item", {Variant::I4(i)});
    AddShapes(Get(slide, u"Shapes"), all);
    AddShapes(Get(Get(slide, u"NotesPage"), u"Shapes"), all);
  }
  return all;
}

}  // namespace quillmarch::host
