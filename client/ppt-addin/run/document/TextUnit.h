// One text to translate and the place that it came from. Plain records; any thread.
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/text/Wide.h"
#include "run/document/ShapePath.h"
#include "run/document/UnitKind.h"

namespace quillmarch::addin {

struct TextUnit {
  std::int32_t slideIndex = 0;  // 1-based, at collection
  Wide unitId;                  // a label for people; cells and slides may share one
  bool endsWithCr = false;
  bool frameCollapsed = false;  // the frame passed the collapse tests up to the length limit
  // All paragraphs of the frame with nothing between them; one text for all units of the frame.
  // Never null in a collected unit.
  std::shared_ptr<const Wide> frameText;
  std::shared_ptr<const Wide> shapeName;  // one text for all units of the frame; null when unread
  std::int32_t paragraphCount = 0;
};

struct UnitLocator {
  UnitKind kind = UnitKind::kShape;
  std::int32_t slideIndex = 0;
  StoredPath shapePath;
  std::int32_t paragraphIndex = 0;  // 1-based; 0 when the unit is no paragraph
  bool endsWithCr = false;
  bool wholeFrame = false;  // stands for all paragraphs of its frame
  std::int32_t row = 0;     // 1-based table cell; 0 outside tables
  std::int32_t column = 0;
  std::int32_t nodeIndex = 0;  // 1-based SmartArt node
  std::int32_t onNotes = 0;    // not zero when a selection lay on the notes page
  std::int32_t charStart = 0;  // character range of a selection, 1-based
  std::int32_t charLength = 0;
  std::int32_t axisType = 0;
  std::int32_t axisGroup = 1;
  std::int32_t seriesIndex = 0;
  std::int32_t itemIndex = 0;
  std::uint8_t categorySource = 0;
  Wide sheetName;
};

bool IsInCell(const UnitLocator& locator);
bool LiesOnNotes(const UnitLocator& locator);
bool MayBeFitted(const UnitLocator& locator);

// Units of one group are written into one shape (and one cell) in one go.
bool SameApplyTarget(const UnitLocator& a, const UnitLocator& b);

}  // namespace quillmarch::addin
