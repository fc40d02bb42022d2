// The wire between a host's objects and a program that calls them from elsewhere: what a request
// and a reply are made of. Generic: names, ids, values and object handles, no word of any class.
//
// A message is its length (32 bits) and its body; numbers are little-endian. A request's body is an
// operation and its fields, a reply's a result code and, after a success, the fields of the answer:
//
//   operation     request                                          reply
//   kRoot                                                          object
//   kIdOfName     handle, text                                     id
//   kInvoke       handle, id, flags (16 bits), named put (8 bits), value
//                 count, values last argument first
//   kQueryTyped   handle, IID (16 bytes)                           object
//   kRelease      handle                                           none at all
//
// An object is its handle (64 bits, 0 for none), which represents one reference, and its identity.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "foundation/automation/Variant.h"

namespace quillmarch::host {

enum class WireOp : std::uint8_t { kRoot = 1, kIdOfName, kInvoke, kQueryTyped, kRelease };

using WireHandle = std::uint64_t;

struct WireObject {
  WireHandle handle = 0;
  std::uint64_t identity = 0;
};

// Longer messages are refused before anything is allocated for them.
inline constexpr std::uint32_t kLongestMessage = 64U << 20;

class WireWriter {
 public:
  void Byte(std::uint8_t value) { bytes_.push_back(static_cast<char>(value)); }
  void Short(std::uint16_t value) { Little(value, 2); }
  void Word(std::uint32_t value) { Little(value, 4); }
  void Long(std::uint64_t value) { Little(value, 8); }
  void Code(ResultCode value) { Word(static_cast<std::uint32_t>(value)); }
  void Text(WideView text);
  void Iid(const InterfaceId& iid);
  void Object(const WireObject& object);
  // `objectOf` says how the object of a value travels.
  void Value(const Variant& value, const std::function<WireObject(const ObjectRef&)>& objectOf);

  const std::string& bytes() const { return bytes_; }

 private:
  void Little(std::uint64_t value, int bytes);
  std::string bytes_;
};

// Reads what a writer wrote. What is not there reads as zero, and ok() is false from then on.
class WireReader {
 public:
  explicit WireReader(std::string_view bytes) : bytes_(bytes) {}

  std::uint8_t Byte() { return static_cast<std::uint8_t>(Little(1)); }
  std::uint16_t Short() { return static_cast<std::uint16_t>(Little(2)); }
  std::uint32_t Word() { return static_cast<std::uint32_t>(Little(4)); }
  std::uint64_t Long() { return Little(8); }
  ResultCode Code() { return static_cast<ResultCode>(Word()); }
  Wide Text();
  InterfaceId Iid();
  WireObject Object();
  Variant Value(const std::function<ObjectRef(const WireObject&)>& objectOf);

  bool ok() const { return ok_; }
  // Everything was read, and nothing was missing.
  bool AtEnd() const { return ok_ && bytes_.empty(); }

 private:
  std::uint64_t Little(std::size_t bytes);
  std::string_view bytes_;
  bool ok_ = true;
};

}  // namespace quillmarch::host
