#include "foundation/automation/HostShapes.h"

#include <gtest/gtest.h>

#include "support/ScriptedObject.h"

namespace quillmarch::addin {

namespace {

using test::ScriptedObject;

struct Scripted {
  Scripted() { ref = ScriptedObject::Make(object); }
  ScriptedObject* operator->() const { return object; }
  ScriptedObject* object = nullptr;
  ObjectRef ref;
};

TEST(HasTable, OnlyTheHostsOwnTrueCounts) {
  for (const std::int32_t flag : {-1, 0, 1, -2}) {
    Scripted shape;
    shape->Interface(ppt::kShape);
    shape->Value(u"HasTable", ppt::shape::kHasTable.id, Variant::I4(flag));
    EXPECT_EQ(HasTable(shape.object), flag == -1) << flag;
  }
}

TEST(CellShape, ACellWithoutAShapeOfItsOwnIsNone) {
  Scripted shape;
  shape->Interface(ppt::kShape);
  Scripted other;
  Scripted cell;
  Scripted table;
  table->Value(u"Cell", 1, Variant::Object(cell.ref));
  ObjectRef out;
  EXPECT_FALSE(CellShape(table.object, 1, 1, out));
  cell->Value(u"Shape", 2, Variant::Object(ObjectRef()));
  EXPECT_FALSE(CellShape(table.object, 1, 1, out));
  cell->Value(u"Shape", 2, Variant::Object(other.ref));
  EXPECT_FALSE(CellShape(table.object, 1, 1, out));
  EXPECT_FALSE(out);
  cell->Value(u"Shape", 2, Variant::Object(shape.ref));
  EXPECT_TRUE(CellShape(table.object, 1, 1, out));
  EXPECT_EQ(out.get(), shape.object);
}

}  // namespace

}  // namespace quillmarch::addin
