#include "host/layout/WordAdvances.h"

#include <hb.h>

namespace quillmarch::host::layout {
namespace {

// About 8 MB with the keys; a deck's whole vocabulary is far below.
constexpr std::size_t kUnitsHeldAtMost = 1u << 19;

}  // namespace

WordAdvances::WordAdvances() : buffer_(hb_buffer_create()) {}
WordAdvances::~WordAdvances() {
  hb_buffer_destroy(buffer_);
}

const std::vector<float>& WordAdvances::Of(const FontFace& face, const WordShape& shape,
                                           std::u16string_view word) {
  key_.clear();
  key_ += static_cast<char16_t>(face.id & 0xFFFF);
  key_ += static_cast<char16_t>(shape.script >> 16);
  key_ += static_cast<char16_t>(shape.script & 0xFFFF);
  key_ += static_cast<char16_t>((shape.rightToLeft ? 1 : 0) | (shape.upright ? 2 : 0) |
                                (shape.kerning ? 4 : 0) | (shape.ligatures ? 8 : 0));
  key_ += word;
  auto found = words_.find(std::u16string_view(key_));
  if (found != words_.end()) return found->second;
  if (unitsHeld_ + key_.size() > kUnitsHeldAtMost) {
    words_.clear();
    unitsHeld_ = 0;
  }
  unitsHeld_ += key_.size();
  std::vector<float>& advances = words_[key_];
  Shape(face, shape, word, advances);
  return advances;
}

void WordAdvances::Shape(const FontFace& face, const WordShape& shape, std::u16string_view word,
                         std::vector<float>& advances) {
  advances.assign(word.size(), -1.0f);
  hb_buffer_clear_contents(buffer_);
  hb_buffer_add_utf16(buffer_, reinterpret_cast<const std::uint16_t*>(word.data()),
                      static_cast<int>(word.size()), 0, static_cast<int>(word.size()));
  hb_buffer_set_script(buffer_, static_cast<hb_script_t>(shape.script));
  hb_buffer_set_direction(buffer_, shape.upright       ? HB_DIRECTION_TTB
                                   : shape.rightToLeft ? HB_DIRECTION_RTL
                                                       : HB_DIRECTION_LTR);
  // Left unsaid, it would come from the environment.
  hb_buffer_set_language(buffer_, hb_language_from_string("en", -1));
  hb_buffer_set_cluster_level(buffer_, HB_BUFFER_CLUSTER_LEVEL_MONOTONE_GRAPHEMES);
  const hb_feature_t features[] = {
      {HB_TAG('k', 'e', 'r', 'n'), shape.kerning ? 1u : 0u, HB_FEATURE_GLOBAL_START,
       HB_FEATURE_GLOBAL_END},
      {HB_TAG('l', 'i', 'g', 'a'), shape.ligatures ? 1u : 0u, HB_FEATURE_GLOBAL_START,
       HB_FEATURE_GLOBAL_END},
  };
  hb_shape(face.font, buffer_, features, 2);
  unsigned count = 0;
  const hb_glyph_info_t* glyphs = hb_buffer_get_glyph_infos(buffer_, &count);
  const hb_glyph_position_t* places = hb_buffer_get_glyph_positions(buffer_, nullptr);
  for (unsigned i = 0; i < count; ++i) {
    double units = shape.upright ? -places[i].y_advance : places[i].x_advance;
    float& advance = advances[glyphs[i].cluster];
    if (advance < 0.0f) advance = 0.0f;
    advance += static_cast<float>(units / face.unitsPerEm);
  }
}

}  // namespace quillmarch::host::layout
