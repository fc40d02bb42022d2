// Where the fields of a zip archive's records are, and the numbers in them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillmarch::host::zip {

inline constexpr std::string_view kHeaderMark = "PK\3\4";
inline constexpr std::string_view kRecordMark = "PK\1\2";
inline constexpr std::string_view kEndMark = "PK\5\6";
inline constexpr std::string_view kEnd64Mark = "PK\6\6";
inline constexpr std::string_view kLocatorMark = "PK\6\7";

// The header before an entry's data.
inline constexpr std::size_t kHeaderBytes = 30;
inline constexpr std::size_t kHeaderCommonAt = 4;  // the fields that both kinds of record have
inline constexpr std::size_t kHeaderNameLengthAt = 26;
inline constexpr std::size_t kHeaderExtraLengthAt = 28;

// An entry's record in the directory.
inline constexpr std::size_t kRecordBytes = 46;
inline constexpr std::size_t kRecordCommonAt = 6;
inline constexpr std::size_t kRecordNameLengthAt = 28;
inline constexpr std::size_t kRecordExtraLengthAt = 30;
inline constexpr std::size_t kRecordCommentLengthAt = 32;
inline constexpr std::size_t kRecordDiskAt = 34;
inline constexpr std::size_t kRecordOffsetAt = 42;

// From the common fields on.
inline constexpr std::size_t kVersionAt = 0;
inline constexpr std::size_t kFlagsAt = 2;
inline constexpr std::size_t kMethodAt = 4;
inline constexpr std::size_t kDateAt = 8;
inline constexpr std::size_t kCrcAt = 10;
inline constexpr std::size_t kPackedAt = 14;
inline constexpr std::size_t kSizeAt = 18;

inline constexpr std::size_t kEndBytes = 22;
inline constexpr std::size_t kEndDiskAt = 4;
inline constexpr std::size_t kEndFirstDiskAt = 6;
inline constexpr std::size_t kEndCountAt = 10;
inline constexpr std::size_t kEndLengthAt = 12;  // of the directory
inline constexpr std::size_t kEndStartAt = 16;
inline constexpr std::size_t kEndCommentAt = 20;  // the comment's length

inline constexpr std::size_t kEnd64Bytes = 56;
inline constexpr std::size_t kEnd64OwnSizeAt = 4;  // of what follows that field
inline constexpr std::size_t kEnd64CountAt = 32;
inline constexpr std::size_t kEnd64LengthAt = 40;
inline constexpr std::size_t kEnd64StartAt = 48;
inline constexpr std::size_t kLocatorBytes = 20;
inline constexpr std::size_t kLocatorOffsetAt = 8;

inline constexpr std::uint64_t kFlagEncrypted = 0x0001;
inline constexpr std::uint64_t kFlagLevel = 0x0006;       // how hard it was deflated
inline constexpr std::uint64_t kFlagDescriptor = 0x0008;  // the sizes follow the data
inline constexpr std::uint64_t kFlagUtf8 = 0x0800;        // the name's encoding
inline constexpr std::uint64_t kEarliestDate = 0x0021;    // the first of January 1980

inline constexpr std::uint64_t kElsewhere32 = 0xFFFFFFFF;  // a 64-bit field has the number
inline constexpr std::uint64_t kElsewhere16 = 0xFFFF;
inline constexpr std::uint64_t kExtra64 = 0x0001;  // the extra field with those numbers
inline constexpr std::size_t kExtraHeadBytes = 4;

inline std::uint64_t Number(const char* at, std::size_t bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = bytes; i-- > 0;) value = value << 8 | static_cast<unsigned char>(at[i]);
  return value;
}

inline void PutNumber(char* at, std::uint64_t value, std::size_t bytes) {
  for (std::size_t i = 0; i < bytes; ++i) at[i] = static_cast<char>(value >> (8 * i) & 0xFF);
}

// Where the extra field's piece of that id begins, head included, and how long it is without its
// head; `npos` when there is none.
struct ExtraPiece {
  std::size_t at = std::string_view::npos;
  std::size_t bytes = 0;
};
inline ExtraPiece FindExtra(std::string_view extra, std::uint64_t id) {
  for (std::size_t at = 0; at + kExtraHeadBytes <= extra.size();) {
    const auto bytes = static_cast<std::size_t>(Number(&extra[at + 2], 2));
    if (at + kExtraHeadBytes + bytes > extra.size()) break;
    if (Number(&extra[at], 2) == id) return {at, bytes};
    at += kExtraHeadBytes + bytes;
  }
  return {};
}

}  // namespace quillmarch::host::zip
