#include "host/remote/Wire.h"

#include <bit>
#include <utility>

namespace quillmarch::host {

void WireWriter::Little(std::uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) Byte(static_cast<std::uint8_t>(value >> (8 * i)));
}

void WireWriter::Text(WideView text) {
  Word(static_cast<std::uint32_t>(text.size()));
  for (const char16_t unit : text) Short(unit);
}

void WireWriter::Iid(const InterfaceId& iid) {
  Word(iid.data1);
  Short(iid.data2);
  Short(iid.data3);
  for (const std::uint8_t byte : iid.data4) Byte(byte);
}

void WireWriter::Object(const WireObject& object) {
  Long(object.handle);
  Long(object.identity);
}

void WireWriter::Value(const Variant& value,
                       const std::function<WireObject(const ObjectRef&)>& objectOf) {
  Short(static_cast<std::uint16_t>(value.type()));
  switch (value.type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
      return;
    case VariantType::kI2:
    case VariantType::kI4:
    case VariantType::kBool:
    case VariantType::kError:
      Word(static_cast<std::uint32_t>(value.whole()));
      return;
    case VariantType::kR4:
      Word(std::bit_cast<std::uint32_t>(value.single()));
      return;
    case VariantType::kR8:
      Long(std::bit_cast<std::uint64_t>(value.real()));
      return;
    case VariantType::kText:
      Text(value.text());
      return;
    case VariantType::kObject:
      Object(value.hasObject() ? objectOf(value.object()) : WireObject{});
      return;
  }
}

std::uint64_t WireReader::Little(std::size_t bytes) {
  if (bytes_.size() < bytes) {
    ok_ = false;
    bytes_ = {};
    return 0;
  }
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < bytes; ++i) {
    value |= std::uint64_t{static_cast<std::uint8_t>(bytes_[i])} << (8 * i);
  }
  bytes_.remove_prefix(bytes);
  return value;
}

Wide WireReader::Text() {
  const std::uint32_t units = Word();
  if (bytes_.size() / 2 < units) {
    ok_ = false;
    bytes_ = {};
    return {};
  }
  Wide text(units, u'\0');
  for (char16_t& unit : text) unit = Short();
  return text;
}

InterfaceId WireReader::Iid() {
  InterfaceId iid = {Word(), Short(), Short(), {}};
  for (std::uint8_t& byte : iid.data4) byte = Byte();
  return iid;
}

WireObject WireReader::Object() {
  const std::uint64_t handle = Long();
  return {handle, Long()};
}

Variant WireReader::Value(const std::function<ObjectRef(const WireObject&)>& objectOf) {
  const auto whole = [this] { return static_cast<std::int32_t>(Word()); };
  switch (static_cast<VariantType>(Short())) {
    case VariantType::kEmpty:
      return {};
    case VariantType::kNull:
      return Variant::Null();
    case VariantType::kI2:
      return Variant::I2(static_cast<std::int16_t>(whole()));
    case VariantType::kI4:
      return Variant::I4(whole());
    case VariantType::kBool:
      return Variant::Bool(whole() != 0);
    case VariantType::kError:
      return Variant::Error(whole());
    case VariantType::kR4:
      return Variant::R4(std::bit_cast<float>(Word()));
    case VariantType::kR8:
      return Variant::R8(std::bit_cast<double>(Long()));
    case VariantType::kText:
      return Variant::Text(Text());
    case VariantType::kObject: {
      const WireObject object = Object();
      return Variant::Object(object.handle == 0 ? ObjectRef() : objectOf(object));
    }
  }
  ok_ = false;
  return {};
}

}  // namespace quillmarch::host
