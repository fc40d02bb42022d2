// A run's state over a FakeHost with a selection, as far as the collection reads it.
#pragma once

#include <gtest/gtest.h>

#include "run/collect/CollectSelection.h"
#include "support/RunHarness.h"

namespace quillmarch::addin::test {

// Shapes are told apart by their Id, which the search for a selected one goes by.
inline FakeShapeRef Numbered(FakeShapeRef shape, std::int32_t id) {
  shape->id = id;
  return shape;
}

// A table and its cells, numbered on from `id`.
inline FakeShapeRef Numbers(FakeShapeRef table, std::int32_t id) {
  table->id = id;
  for (auto& row : table->table->cells) {
    for (auto& cell : row) cell->id = ++id;
  }
  return table;
}

struct SelectionHarness {
  SelectionHarness() { document.windowContext = harness.params.windowContext; }

  FakePresentation& deck() { return harness.deck(); }
  FakeSelection& selection() { return *harness.window().selection; }

  ResultCode Run() {
    document.app = harness.host.Application();
    return Collect();
  }

  ResultCode Collect() {
    const Status collected = CollectSelection(document, &harness.sink, run);
    message = collected.words;
    return collected.code;
  }

  // For a second collection.
  void Clear() {
    run.units.clear();
    run.sourceTexts.clear();
    run.locators.clear();
  }

  RunHarness harness;
  Wide message;
  RunDocument document;
  RunTexts run;
};

}  // namespace quillmarch::addin::test
