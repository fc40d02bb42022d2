// Every word that the add-in itself shows, in fourteen languages. Constant data, made at build time
// from the files in strings/.
#pragma once

#include <span>

namespace quillmarch {

struct StringRow {
  const char16_t* key;
  const char16_t* text;
};

struct StringTable {
  const char16_t* tag;              // such as "zh-CN"
  std::span<const StringRow> rows;  // sorted by key in code-unit order
};

// In the order of the language dialog.
std::span<const StringTable> StringTables();

}  // namespace quillmarch
