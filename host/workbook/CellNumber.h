// Numbers as a workbook's parts write them.
#pragma once

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace quillmarch::host::workbook {

inline std::string_view TrimBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t from = text.find_first_not_of(kBlanks);
  if (from == std::string_view::npos) return {};
  return text.substr(from, text.find_last_not_of(kBlanks) - from + 1);
}

// `otherwise` for anything that is no plain decimal of 32 bits.
inline std::uint32_t WholeNumber(std::string_view text, std::uint32_t otherwise) {
  text = TrimBlanks(text);
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() ? value : otherwise;
}

// False for what is no finite number.
inline bool RealNumber(std::string_view text, double& value) {
  text = TrimBlanks(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
}

inline bool TrueAttribute(std::string_view text) {
  return text == "1" || text == "true" || text == "on";
}

}  // namespace quillmarch::host::workbook
