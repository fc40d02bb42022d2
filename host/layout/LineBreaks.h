// Where the Unicode rules let a line end.
#pragma once

#include <string_view>
#include <vector>

struct UBreakIterator;

namespace quillmarch::host {

namespace layout {

// One thread at a time.
class LineBreaks {
 public:
  LineBreaks();
  ~LineBreaks();
  LineBreaks(const LineBreaks&) = delete;
  LineBreaks& operator=(const LineBreaks&) = delete;

  // One entry for each unit: whether a line may begin with it. Valid until the next call.
  const std::vector<bool>& Before(std::u16string_view text);

 private:
  UBreakIterator* rules_ = nullptr;
  std::vector<bool> before_;
};

}  // namespace layout

}  // namespace quillmarch::host
