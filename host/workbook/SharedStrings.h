// The table of texts that cells of all sheets share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillmarch::host::workbook {

class SharedStrings {
 public:
  SharedStrings() = default;
  // `xml` is well-formed.
  explicit SharedStrings(std::string_view xml);

  std::size_t Count() const { return ends_.size(); }
  // UTF-8: the runs of a rich text joined, phonetic readings left out. Empty where there is none.
  std::string_view Text(std::size_t index) const;

 private:
  std::string texts_;
  std::vector<std::uint32_t> ends_;  // of each text in texts_
};

}  // namespace quillmarch::host::workbook
