#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "foundation/automation/Automation.h"

namespace quillmarch {

namespace {

// Significant digits of a number put into words.
constexpr int kSingleDigits = 7;
constexpr int kRealDigits = 15;

Wide NumberText(double value, int digits) {
  if (std::isnan(value)) return std::signbit(value) ? u"-1.#IND" : u"1.#QNAN";
  if (std::isinf(value)) return value < 0 ? u"-1.#INF" : u"1.#INF";
  // Never "-0".
  if (value == 0.0) return u"0";
  char text[40];
  const auto [end, error] =
      std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits);
  static_cast<void>(error);  // 15 digits, sign and exponent fit
  Wide wide(text, end);
  for (char16_t& unit : wide) {
    if (unit == u'e') unit = u'E';
  }
  return wide;
}

// Blanks around the number and a plus sign are allowed, anything else beside it is not.
bool TextToReal(const Wide& text, double& out) {
  std::string digits = ToUtf8(text);
  const std::size_t first = digits.find_first_not_of(" \t");
  if (first == std::string::npos) return false;
  digits = digits.substr(first, digits.find_last_not_of(" \t") + 1 - first);
  if (digits.front() == '+') digits.erase(0, 1);
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), out);
  return result.ec == std::errc() && result.ptr == digits.data() + digits.size() &&
         std::isfinite(out);
}

// False for what has no number: null, objects, errors, other text.
bool ToReal(const Variant& value, double& out) {
  switch (value.type()) {
    case VariantType::kEmpty:
      out = 0.0;
      return true;
    case VariantType::kI2:
    case VariantType::kI4:
    case VariantType::kBool:
      out = value.whole();
      return true;
    case VariantType::kR4:
      out = static_cast<double>(value.single());
      return true;
    case VariantType::kR8:
      out = value.real();
      return true;
    case VariantType::kText:
      return TextToReal(value.text(), out);
    default:
      return false;
  }
}

}  // namespace

Wide VariantToText(const Variant& value) {
  switch (value.type()) {
    case VariantType::kText:
      return value.text();
    case VariantType::kI2:
    case VariantType::kI4:
    case VariantType::kBool:
      return Decimal(value.whole());
    case VariantType::kR4:
      return NumberText(static_cast<double>(value.single()), kSingleDigits);
    case VariantType::kR8:
      return NumberText(value.real(), kRealDigits);
    default:
      return {};
  }
}

bool VariantToWhole(const Variant& value, std::int32_t& out) {
  if (value.type() == VariantType::kI2 || value.type() == VariantType::kI4) {
    out = value.whole();
    return true;
  }
  double number = 0.0;
  if (!ToReal(value, number)) return false;
  // The default rounding mode: half to even.
  number = std::nearbyint(number);
  if (!(number >= std::numeric_limits<std::int32_t>::min() &&
        number <= std::numeric_limits<std::int32_t>::max())) {
    return false;
  }
  out = static_cast<std::int32_t>(number);
  return true;
}

bool VariantToSingle(const Variant& value, float& out) {
  if (value.type() == VariantType::kR4) {
    out = value.single();
    return true;
  }
  double number = 0.0;
  if (!ToReal(value, number)) return false;
  const auto single = static_cast<float>(number);
  if (std::isinf(single) && !std::isinf(number)) return false;
  out = single;
  return true;
}

bool VariantToFlag(const Variant& value) {
  switch (value.type()) {
    case VariantType::kBool:
    case VariantType::kI2:
    case VariantType::kI4:
      return value.whole() != 0;
    default:
      return false;
  }
}

}  // namespace quillmarch
