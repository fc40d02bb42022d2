// The texts of a run and the places that they came from. Filled by the collectors, then only read:
// by the host thread and, from sourceTexts and slideRanges, by the worker.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "run/document/TextUnit.h"

namespace quillmarch::addin {

// First unit and end unit, end exclusive.
using UnitRange = std::pair<std::size_t, std::size_t>;

struct RunTexts {
  // Equal length, equal order; the index is a unit's identity for the whole run.
  std::vector<TextUnit> units;
  std::vector<Wide> sourceTexts;  // without trailing CR and LF
  std::vector<UnitLocator> locators;

  // One entry for each slide in the order of writing, also for one without text.
  std::vector<UnitRange> slideRanges;
  std::vector<std::int32_t> slideNumbers;
  std::int32_t firstSlide = 1;

  std::vector<Wide> skipNotes;  // for the summary: what could not be collected
  std::int32_t smartArtSkipped = 0;
  std::int32_t skipped = 0;  // texts without a letter

  // Adds a unit of the locator's slide. Nothing is added when memory runs out.
  void Add(TextUnit unit, Wide sourceText, UnitLocator locator);
  void AddSlide(std::int32_t slide, UnitRange units);
  // Makes the entries from the units: one for each run of units of one slide, so a slide that comes
  // up again has a second entry.
  void RegroupBySlide();
  void ClearSlides();
  // The units and the entries.
  void Clear();

  // The slide that entry `index` is written to.
  std::int32_t SlideNumberAt(std::int32_t index) const;
};

}  // namespace quillmarch::addin
