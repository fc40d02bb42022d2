// Result codes as the hosts give them: HRESULTs, negative is failure.
#pragma once

#include <cstdint>

namespace quillmarch {

using ResultCode = std::int32_t;

constexpr ResultCode MakeResult(std::uint32_t bits) {
  return static_cast<ResultCode>(bits);
}

inline constexpr ResultCode kOk = 0;
inline constexpr ResultCode kFail = MakeResult(0x80004005);
inline constexpr ResultCode kPointer = MakeResult(0x80004003);
inline constexpr ResultCode kNoInterface = MakeResult(0x80004002);
inline constexpr ResultCode kOutOfMemory = MakeResult(0x8007000E);
inline constexpr ResultCode kInvalidArgument = MakeResult(0x80070057);
inline constexpr ResultCode kCancelled = MakeResult(0x800704C7);
inline constexpr ResultCode kMemberNotFound = MakeResult(0x80020003);
inline constexpr ResultCode kTypeMismatch = MakeResult(0x80020005);
inline constexpr ResultCode kUnknownName = MakeResult(0x80020006);
inline constexpr ResultCode kHostException = MakeResult(0x80020009);
inline constexpr ResultCode kBadIndex = MakeResult(0x8002000B);
inline constexpr ResultCode kBadParamCount = MakeResult(0x8002000E);

constexpr bool Succeeded(ResultCode code) {
  return code >= 0;
}
constexpr bool Failed(ResultCode code) {
  return code < 0;
}

}  // namespace quillmarch
