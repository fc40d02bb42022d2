#include "host/package/zip/ZipDirectory.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string_view>
#include <unordered_set>

#include "host/package/PartName.h"
#include "host/package/zip/ZipFields.h"

namespace quillmarch::host {

using namespace zip;

namespace {

constexpr std::size_t kMostCommentBytes = 0xFFFF;
// What is read of a header's name and extra field together with it.
constexpr std::size_t kHeaderReadBytes = 256;
constexpr std::uint64_t kNewestVersion = 63;  // 6.3
constexpr std::uint64_t kVersionMask = 0xFF;  // the rest tells which system it is for
constexpr char kCutOff[] =
    "The file is cut off or damaged: the zip directory at its end is missing.";
constexpr char kDisagree[] =
    "The zip archive is cut off or damaged: its directory and its end "
    "record do not agree.";

std::string EntrySentence(const ZipEntry& entry, std::string_view what) {
  return "The zip entry \"" + Printable(entry.name) + "\" " + std::string(what) + ".";
}

class Reader {
 public:
  Reader(const InputFile& file, ZipDirectory& directory) : file_(file), directory_(directory) {}

  std::string Read(std::size_t maxEntries);

 private:
  std::string FindEnd(std::size_t maxEntries);
  std::string Find64(std::uint64_t endAt);
  std::string ReadRecords();
  std::string ReadRecord(std::size_t& at);
  std::string Take64(std::string_view extra, std::size_t extraAt, ZipEntry& entry);
  std::string CheckHeader(ZipEntry& entry) const;
  std::string CheckPlaces();

  const InputFile& file_;
  ZipDirectory& directory_;
  std::uint64_t count_ = 0;
  std::uint64_t length_ = 0;
  std::uint64_t afterRecords_ = 0;  // where the directory has to end
};

std::string Reader::FindEnd(std::size_t maxEntries) {
  char head[4] = {};
  if (file_.ReadAt(0, head, sizeof head) != sizeof head ||
      (std::string_view(head, sizeof head) != kHeaderMark &&
       std::string_view(head, sizeof head) != kEndMark)) {
    return "The file is not a zip archive, so it is not a .pptx file.";
  }
  const std::uint64_t searched = std::min<std::uint64_t>(
      file_.Size(), kEndBytes + kMostCommentBytes + kLocatorBytes + kEnd64Bytes);
  const std::uint64_t from = file_.Size() - searched;
  std::string bytes(static_cast<std::size_t>(searched), '\0');
  if (file_.ReadAt(from, bytes.data(), bytes.size()) != bytes.size()) return kCutOff;
  const std::size_t end = bytes.rfind(kEndMark);
  if (end == std::string::npos || end + kEndBytes > bytes.size()) return kCutOff;
  const char* const record = &bytes[end];
  if (end + kEndBytes + Number(record + kEndCommentAt, 2) > bytes.size()) return kCutOff;
  if (Number(record + kEndDiskAt, 2) != Number(record + kEndFirstDiskAt, 2)) {
    return "The zip archive is only one piece of several.";
  }
  count_ = Number(record + kEndCountAt, 2);
  length_ = Number(record + kEndLengthAt, 4);
  directory_.recordsAt = Number(record + kEndStartAt, 4);
  afterRecords_ = from + end;
  if (end >= kLocatorBytes &&
      std::string_view(bytes).substr(end - kLocatorBytes, 4) == kLocatorMark) {
    std::string fault = Find64(from + end);
    if (!fault.empty()) return fault;
  }
  // Before room is made for all that are declared.
  if (count_ > maxEntries) {
    return "The zip archive has more than " + std::to_string(maxEntries) + " entries.";
  }
  if (directory_.recordsAt > afterRecords_ || length_ != afterRecords_ - directory_.recordsAt) {
    return kDisagree;
  }
  directory_.endAt = static_cast<std::size_t>(from + end - afterRecords_);
  directory_.tail.resize(static_cast<std::size_t>(file_.Size() - afterRecords_));
  if (file_.ReadAt(afterRecords_, directory_.tail.data(), directory_.tail.size()) !=
      directory_.tail.size()) {
    return kCutOff;
  }
  return {};
}

std::string Reader::Find64(std::uint64_t endAt) {
  char locator[kLocatorBytes] = {};
  char record[kEnd64Bytes] = {};
  const std::uint64_t locatorAt = endAt - kLocatorBytes;
  if (file_.ReadAt(locatorAt, locator, sizeof locator) != sizeof locator) return kCutOff;
  const std::uint64_t at = Number(locator + kLocatorOffsetAt, 8);
  if (at >= locatorAt || file_.ReadAt(at, record, sizeof record) != sizeof record ||
      std::string_view(record, kEnd64Mark.size()) != kEnd64Mark || locatorAt - at != kEnd64Bytes ||
      Number(record + kEnd64OwnSizeAt, 8) != kEnd64Bytes - 12) {
    return kDisagree;
  }
  // The short record may leave a number to the long one, but not give another.
  const auto agreed = [](std::uint64_t& number, std::uint64_t elsewhere, std::uint64_t full) {
    const bool same = number == elsewhere || number == full;
    number = full;
    return same;
  };
  if (!agreed(count_, kElsewhere16, Number(record + kEnd64CountAt, 8)) ||
      !agreed(length_, kElsewhere32, Number(record + kEnd64LengthAt, 8)) ||
      !agreed(directory_.recordsAt, kElsewhere32, Number(record + kEnd64StartAt, 8))) {
    return kDisagree;
  }
  directory_.is64 = true;
  directory_.locatorAt = static_cast<std::size_t>(locatorAt - at);
  afterRecords_ = at;
  return {};
}

// The numbers that a 64-bit extra field holds, each only where the short field leaves it open.
std::string Reader::Take64(std::string_view extra, std::size_t extraAt, ZipEntry& entry) {
  const ExtraPiece piece = FindExtra(extra, kExtra64);
  std::size_t at = piece.at == std::string_view::npos ? 0 : piece.at + kExtraHeadBytes;
  const std::size_t end = piece.at == std::string_view::npos ? 0 : at + piece.bytes;
  const auto take = [&](std::uint64_t& number) {
    if (number != kElsewhere32) return true;
    if (at + 8 > end) return false;
    number = Number(&extra[at], 8);
    at += 8;
    return true;
  };
  if (!take(entry.size) || !take(entry.packed)) return EntrySentence(entry, "has no size");
  if (entry.headerAt == kElsewhere32) {
    entry.offsetFieldAt = extraAt + at;
    entry.offsetIs64 = true;
    if (!take(entry.headerAt)) return EntrySentence(entry, "has no place in the archive");
  }
  return {};
}

std::string Reader::ReadRecord(std::size_t& at) {
  const std::string& records = directory_.records;
  if (at + kRecordBytes > records.size() || records.compare(at, 4, kRecordMark) != 0) {
    return kDisagree;
  }
  const char* const record = &records[at];
  const char* const common = record + kRecordCommonAt;
  const auto nameBytes = static_cast<std::size_t>(Number(record + kRecordNameLengthAt, 2));
  const auto extraBytes = static_cast<std::size_t>(Number(record + kRecordExtraLengthAt, 2));
  const std::size_t bytes = kRecordBytes + nameBytes + extraBytes +
                            static_cast<std::size_t>(Number(record + kRecordCommentLengthAt, 2));
  if (at + bytes > records.size()) return kDisagree;
  ZipEntry entry;
  entry.name.assign(record + kRecordBytes, nameBytes);
  entry.size = Number(common + kSizeAt, 4);
  entry.packed = Number(common + kPackedAt, 4);
  entry.crc = static_cast<std::uint32_t>(Number(common + kCrcAt, 4));
  entry.method = static_cast<std::uint16_t>(Number(common + kMethodAt, 2));
  entry.encrypted = (Number(common + kFlagsAt, 2) & kFlagEncrypted) != 0;
  entry.headerAt = Number(record + kRecordOffsetAt, 4);
  entry.recordAt = at;
  entry.recordBytes = bytes;
  entry.offsetFieldAt = at + kRecordOffsetAt;
  const std::size_t extraAt = at + kRecordBytes + nameBytes;
  if ((Number(common + kVersionAt, 2) & kVersionMask) > kNewestVersion) {
    return EntrySentence(entry, "needs a newer version of the zip format than there is");
  }
  std::string fault = Take64(std::string_view(records).substr(extraAt, extraBytes), extraAt, entry);
  if (!fault.empty()) return fault;
  at += bytes;
  directory_.entries.push_back(std::move(entry));
  return {};
}

std::string Reader::ReadRecords() {
  directory_.records.resize(static_cast<std::size_t>(length_));
  if (file_.ReadAt(directory_.recordsAt, directory_.records.data(), directory_.records.size()) !=
      directory_.records.size()) {
    return kCutOff;
  }
  for (std::size_t at = 0; at < directory_.records.size();) {
    if (directory_.entries.size() == count_) return kDisagree;
    std::string fault = ReadRecord(at);
    if (!fault.empty()) return fault;
  }
  return directory_.entries.size() == count_ ? std::string() : kDisagree;
}

std::string Reader::CheckHeader(ZipEntry& entry) const {
  char bytes[kHeaderReadBytes] = {};
  const std::size_t got = file_.ReadAt(entry.headerAt, bytes, sizeof bytes);
  if (entry.headerAt >= directory_.recordsAt || got < kHeaderBytes ||
      std::string_view(bytes, kHeaderMark.size()) != kHeaderMark) {
    return EntrySentence(entry, "is not where the zip directory says");
  }
  const auto nameBytes = static_cast<std::size_t>(Number(bytes + kHeaderNameLengthAt, 2));
  const auto extraBytes = static_cast<std::size_t>(Number(bytes + kHeaderExtraLengthAt, 2));
  std::string rest(nameBytes + extraBytes, '\0');
  const std::size_t held = std::min(got - kHeaderBytes, rest.size());
  std::memcpy(rest.data(), bytes + kHeaderBytes, held);
  if (held < rest.size() && file_.ReadAt(entry.headerAt + kHeaderBytes + held, rest.data() + held,
                                         rest.size() - held) != rest.size() - held) {
    return EntrySentence(entry, "is cut off");
  }
  entry.dataAt = entry.headerAt + kHeaderBytes + rest.size();
  if (rest.compare(0, nameBytes, entry.name) != 0) {
    return EntrySentence(entry, "has another name before its data");
  }
  const char* const common = bytes + kHeaderCommonAt;
  const std::uint64_t flags = Number(common + kFlagsAt, 2);
  if (((flags & kFlagEncrypted) != 0) != entry.encrypted ||
      Number(common + kMethodAt, 2) != entry.method) {
    return EntrySentence(entry, "is packed in two different ways, by its header and the directory");
  }
  std::uint64_t size = Number(common + kSizeAt, 4);
  std::uint64_t packed = Number(common + kPackedAt, 4);
  const ExtraPiece piece = FindExtra(std::string_view(rest).substr(nameBytes), kExtra64);
  if (piece.at != std::string_view::npos && piece.bytes >= 16) {
    const char* const long64 = &rest[nameBytes + piece.at + kExtraHeadBytes];
    if (size == kElsewhere32) size = Number(long64, 8);
    if (packed == kElsewhere32) packed = Number(long64 + 8, 8);
  }
  const bool follow = (flags & kFlagDescriptor) != 0;
  const auto agrees = [follow](std::uint64_t here, std::uint64_t listed) {
    return here == listed || (follow && (here == 0 || here == kElsewhere32));
  };
  if (!agrees(size, entry.size) || !agrees(packed, entry.packed)) {
    return EntrySentence(entry, "has two different sizes, in its header and in the directory");
  }
  return {};
}

std::string Reader::CheckPlaces() {
  std::vector<ZipEntry>& entries = directory_.entries;
  std::unordered_set<std::string_view> names;
  for (ZipEntry& entry : entries) {
    if (!names.insert(entry.name).second) {
      return "The archive contains the part " + Printable(entry.name) + " twice.";
    }
    std::string fault = CheckHeader(entry);
    if (!fault.empty()) return fault;
  }
  std::vector<std::size_t>& order = directory_.physicalOrder;
  order.resize(entries.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&entries](std::size_t first, std::size_t second) {
    return entries[first].headerAt < entries[second].headerAt;
  });
  for (std::size_t i = 0; i < order.size(); ++i) {
    const ZipEntry& entry = entries[order[i]];
    const bool last = i + 1 == order.size();
    const std::uint64_t bound = last ? directory_.recordsAt : entries[order[i + 1]].headerAt;
    if (entry.dataAt <= bound && entry.packed <= bound - entry.dataAt) continue;
    return EntrySentence(entry,
                         last ? "runs into the zip directory" : "overlaps with the one after it");
  }
  return {};
}

std::string Reader::Read(std::size_t maxEntries) {
  directory_ = {};
  std::string fault = FindEnd(maxEntries);
  if (fault.empty()) fault = ReadRecords();
  if (fault.empty()) fault = CheckPlaces();
  return fault;
}

}  // namespace

std::string ReadZipDirectory(const InputFile& file, std::size_t maxEntries,
                             ZipDirectory& directory) {
  return Reader(file, directory).Read(maxEntries);
}

}  // namespace quillmarch::host
