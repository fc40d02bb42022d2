#include "foundation/text/CharClass.h"

#include "foundation/text/CharClassTable.h"

namespace quillmarch {

namespace {

bool Has(const CharClassTable& table, char16_t unit) {
  const std::uint32_t* block = table.blocks[table.page[unit >> 8]];
  return ((block[(unit >> 5) & 7] >> (unit & 31)) & 1) != 0;
}

}  // namespace

bool IsAlpha(char16_t unit) {
  return Has(kAlphaTable, unit);
}
bool IsSpace(char16_t unit) {
  return Has(kSpaceTable, unit);
}
bool IsDigit(char16_t unit) {
  return Has(kDigitTable, unit);
}
bool IsAlnum(char16_t unit) {
  return IsAlpha(unit) || IsDigit(unit);
}

}  // namespace quillmarch
