#include "host/deck/text/PrefixSums.h"

#include <algorithm>
#include <bit>

namespace quillmarch::host::deck {
namespace {

std::size_t LowestBit(std::size_t number) {
  return number & (~number + 1);
}

}  // namespace

void PrefixSums::Assign(const std::vector<std::size_t>& lengths) {
  lengths_ = lengths;
  sums_ = lengths;
  for (std::size_t i = 1; i <= sums_.size(); ++i) {
    const std::size_t next = i + LowestBit(i);
    if (next <= sums_.size()) sums_[next - 1] += sums_[i - 1];
  }
}

void PrefixSums::Set(std::size_t index, std::size_t length) {
  // Unsigned numbers wrap around, so a shorter length needs no case of its own.
  const std::size_t change = length - lengths_[index];
  lengths_[index] = length;
  for (std::size_t i = index + 1; i <= sums_.size(); i += LowestBit(i)) sums_[i - 1] += change;
}

std::size_t PrefixSums::Before(std::size_t index) const {
  std::size_t sum = 0;
  for (std::size_t i = std::min(index, sums_.size()); i > 0; i -= LowestBit(i)) sum += sums_[i - 1];
  return sum;
}

std::size_t PrefixSums::At(std::size_t position) const {
  std::size_t passed = 0;  // how many stretches end at or before the position
  for (std::size_t step = std::bit_floor(sums_.size()); step > 0; step /= 2) {
    if (passed + step > sums_.size() || sums_[passed + step - 1] > position) continue;
    passed += step;
    position -= sums_[passed - 1];
  }
  return std::min(passed, sums_.size() - 1);
}

}  // namespace quillmarch::host::deck
