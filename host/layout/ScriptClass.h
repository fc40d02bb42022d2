// What the layout has to know of a character: which of a run's fonts it takes and how it behaves
// at a line's end.
#pragma once

#include <cstdint>

namespace quillmarch::host::layout {

enum class FontSlot : std::uint8_t {
  kNone,  // takes that of the text before it
  kLatin,
  kEastAsian,
  kComplex,
  kSymbol
};

FontSlot SlotOf(char32_t character);
// ISO 15924, as HarfBuzz packs it; 'Zyyy' and 'Zinh' for characters that take part in any script.
std::uint32_t ScriptOf(char32_t character);
bool TakesAnyScript(std::uint32_t script);
// Marks, joiners and selectors: they stay in the font of the character before them.
bool StaysWithPrevious(char32_t character);
// May run from right to left, or turn the direction.
bool MayTurn(char16_t unit);
// Blanks that hang over the edge at a line's end.
bool IsHangingBlank(char16_t unit);
// East Asian stops that may hang over the edge.
bool IsHangingStop(char16_t unit);
// Stands upright in a vertical line of East Asian text.
bool IsUpright(char32_t character);
// The language that chooses among fonts where the text says none.
const char* LanguageOf(std::uint32_t script);

}  // namespace quillmarch::host::layout
