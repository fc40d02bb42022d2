#include "host/geometry/ShapeGuides.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>

namespace quillmarch::host::model {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr double kUnitsPerRadian = 180.0 * 60000.0 / std::numbers::pi;
constexpr double kQuarter = 90.0 * 60000.0;
constexpr int kMostOperands = 3;

std::optional<double> Number(std::string_view word) {
  double value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  const bool whole = error == std::errc() && end == word.data() + word.size();
  if (!whole || !std::isfinite(value)) return std::nullopt;
  return value;
}

// `whole` divided by the number after `prefix`: "wd2" is half the width.
std::optional<double> Fraction(std::string_view word, std::string_view prefix, double whole) {
  if (!word.starts_with(prefix)) return std::nullopt;
  const std::optional<double> by = Number(word.substr(prefix.size()));
  if (!by || !(*by > 0)) return std::nullopt;
  return whole / *by;
}

std::string_view NextWord(std::string_view& text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t\r\n"), text.size());
  const std::size_t end = std::min(text.find_first_of(" \t\r\n", begin), text.size());
  const std::string_view word = text.substr(begin, end - begin);
  text.remove_prefix(end);
  return word;
}

double Divided(double by, double what) {
  return by == 0 ? 0.0 : what / by;
}

std::optional<double> Apply(std::string_view operation, double x, double y, double z) {
  if (operation == "val") return x;
  if (operation == "*/") return Divided(z, x * y);
  if (operation == "+-") return x + y - z;
  if (operation == "+/") return Divided(z, x + y);
  if (operation == "?:") return x > 0 ? y : z;
  if (operation == "abs") return std::fabs(x);
  if (operation == "min") return std::min(x, y);
  if (operation == "max") return std::max(x, y);
  if (operation == "pin") return y < x ? x : std::min(y, z);
  if (operation == "sqrt") return std::sqrt(std::max(x, 0.0));
  if (operation == "mod") return std::sqrt(x * x + y * y + z * z);
  if (operation == "sin") return x * std::sin(y / kUnitsPerRadian);
  if (operation == "cos") return x * std::cos(y / kUnitsPerRadian);
  if (operation == "tan") return x * std::tan(y / kUnitsPerRadian);
  if (operation == "at2") return std::atan2(y, x) * kUnitsPerRadian;
  if (operation == "cat2") return x * std::cos(std::atan2(z, y));
  if (operation == "sat2") return x * std::sin(std::atan2(z, y));
  return std::nullopt;
}

}  // namespace

void ShapeGuides::Read(const deck::XmlNames& names, pugi::xml_node list) {
  for (const pugi::xml_node guide : list.children()) {
    if (!names.Is(guide, kA, "gd")) continue;
    const std::string_view name = guide.attribute("name").value();
    const std::optional<double> value = Formula(guide.attribute("fmla").value());
    if (value && std::isfinite(*value)) {
      guides_[name] = *value;
    } else {
      guides_.erase(name);
    }
  }
}

std::optional<double> ShapeGuides::Formula(std::string_view text) const {
  const std::string_view operation = NextWord(text);
  double operands[kMostOperands] = {0, 0, 0};
  for (double& operand : operands) {
    const std::string_view word = NextWord(text);
    if (word.empty()) break;
    const std::optional<double> value = Value(word);
    if (!value) return std::nullopt;
    operand = *value;
  }
  return Apply(operation, operands[0], operands[1], operands[2]);
}

std::optional<double> ShapeGuides::Value(std::string_view word) const {
  if (const std::optional<double> number = Number(word)) return number;
  const auto found = guides_.find(word);
  if (found != guides_.end()) return found->second;
  return Known(word);
}

std::optional<double> ShapeGuides::Known(std::string_view word) const {
  if (word == "l" || word == "t") return 0.0;
  if (word == "r" || word == "w") return width_;
  if (word == "b" || word == "h") return height_;
  if (word == "hc") return width_ / 2.0;
  if (word == "vc") return height_ / 2.0;
  if (word == "ss") return std::min(width_, height_);
  if (word == "ls") return std::max(width_, height_);
  if (word == "3cd4") return 3.0 * kQuarter;
  if (word == "3cd8") return 1.5 * kQuarter;
  if (word == "5cd8") return 2.5 * kQuarter;
  if (word == "7cd8") return 3.5 * kQuarter;
  if (const auto turn = Fraction(word, "cd", 4.0 * kQuarter)) return turn;
  if (const auto across = Fraction(word, "wd", width_)) return across;
  if (const auto down = Fraction(word, "hd", height_)) return down;
  return Fraction(word, "ssd", std::min(width_, height_));
}

}  // namespace quillmarch::host::model
