// The lengths of many stretches that follow one another, and where each of them begins. Changing a
// length and finding a place each take logarithmic time, so that a text of many paragraphs can be
// written paragraph by paragraph, in any order.
#pragma once

#include <cstddef>
#include <vector>

namespace quillmarch::host::deck {

class PrefixSums {
 public:
  // Linear in the number of lengths.
  void Assign(const std::vector<std::size_t>& lengths);
  void Set(std::size_t index, std::size_t length);
  std::size_t Count() const { return lengths_.size(); }
  // The sum of the first `index` lengths: where the stretch of that index begins.
  std::size_t Before(std::size_t index) const;
  // The stretch that holds the position, or the last one for positions past the end. No length may
  // be 0, and there must be one at least.
  std::size_t At(std::size_t position) const;

 private:
  std::vector<std::size_t> lengths_;
  // A binary indexed tree: the entry i, counted from 1, is the sum of the lengths that end with the
  // i-th, as many as the lowest set bit of i says.
  std::vector<std::size_t> sums_;
};

}  // namespace quillmarch::host::deck
