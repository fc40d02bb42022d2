// One value of a host call, with the host's own type tags (the numbers are those of VARIANT).
#pragma once

#include <cstdint>
#include <utility>
#include <variant>

#include "foundation/automation/AutomationObject.h"
#include "foundation/text/Wide.h"

namespace quillmarch {

enum class VariantType : std::uint16_t {
  kEmpty = 0,
  kNull = 1,
  kI2 = 2,
  kI4 = 3,
  kR4 = 4,
  kR8 = 5,
  kText = 8,    // VT_BSTR
  kObject = 9,  // VT_DISPATCH, may be null
  kError = 10,
  kBool = 11,
};

class Variant {
 public:
  Variant() = default;
  static Variant Null() { return Variant(VariantType::kNull, std::monostate{}); }
  static Variant I2(std::int16_t v) { return Variant(VariantType::kI2, std::int32_t{v}); }
  static Variant I4(std::int32_t v) { return Variant(VariantType::kI4, v); }
  static Variant R4(float v) { return Variant(VariantType::kR4, v); }
  static Variant R8(double v) { return Variant(VariantType::kR8, v); }
  static Variant Text(Wide v) { return Variant(VariantType::kText, std::move(v)); }
  static Variant Object(ObjectRef v) { return Variant(VariantType::kObject, std::move(v)); }
  static Variant Error(ResultCode v) { return Variant(VariantType::kError, v); }
  // A 16-bit truth value: -1 or 0.
  static Variant Bool(bool v) { return Variant(VariantType::kBool, std::int32_t{v ? -1 : 0}); }

  VariantType type() const { return type_; }
  bool hasObject() const { return type_ == VariantType::kObject && object().get() != nullptr; }

  // Each accessor may be called for its own type only (whole: kI2, kI4, kBool, kError).
  std::int32_t whole() const { return std::get<std::int32_t>(value_); }
  float single() const { return std::get<float>(value_); }
  double real() const { return std::get<double>(value_); }
  const Wide& text() const { return std::get<Wide>(value_); }
  const ObjectRef& object() const { return std::get<ObjectRef>(value_); }
  Wide takeText() { return std::move(std::get<Wide>(value_)); }
  ObjectRef takeObject() { return std::move(std::get<ObjectRef>(value_)); }

  void Clear() { *this = Variant(); }

 private:
  using Value = std::variant<std::monostate, std::int32_t, float, double, Wide, ObjectRef>;
  Variant(VariantType type, Value value) : type_(type), value_(std::move(value)) {}
  VariantType type_ = VariantType::kEmpty;
  Value value_;
};

}  // namespace quillmarch
