// The advances of shaped words, kept for the next time the word is measured.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/layout/FontBook.h"

struct hb_buffer_t;

namespace quillmarch::host {

namespace layout {

struct WordShape {
  std::uint32_t script = 0;  // ISO 15924, as HarfBuzz packs it
  bool rightToLeft = false;
  bool upright = false;  // for characters that are upright in a vertical line
  bool kerning = true;
  bool ligatures = true;
};

// One thread at a time.
class WordAdvances {
 public:
  WordAdvances();
  ~WordAdvances();
  WordAdvances(const WordAdvances&) = delete;
  WordAdvances& operator=(const WordAdvances&) = delete;

  // For each unit of the word a share of the size: the first unit of a cluster has the whole
  // advance of it, the others -1. Valid until the next call.
  const std::vector<float>& Of(const FontFace& face, const WordShape& shape,
                               std::u16string_view word);

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::u16string_view key) const {
      return std::hash<std::u16string_view>()(key);
    }
  };
  void Shape(const FontFace& face, const WordShape& shape, std::u16string_view word,
             std::vector<float>& advances);

  hb_buffer_t* buffer_;
  std::u16string key_;
  std::size_t unitsHeld_ = 0;
  std::unordered_map<std::u16string, std::vector<float>, Hash, std::equal_to<>> words_;
};

}  // namespace layout

}  // namespace quillmarch::host
