#include "host/package/zip/ZipCopy.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "host/package/zip/ZipFields.h"

namespace quillmarch::host {

using namespace zip;

namespace {

constexpr std::uint64_t kDeflateVersion = 20;  // of the format, which deflated entries need
constexpr std::size_t kPendingBytes = 256 << 10;

// Copied ranges and new bytes, one after the other; small new pieces are gathered.
class Appender {
 public:
  Appender(const InputFile& file, OutputFile& output) : file_(file), output_(output) {}

  std::uint64_t at() const { return at_ + pending_.size(); }
  void Put(std::string_view bytes) {
    pending_ += bytes;
    if (pending_.size() > kPendingBytes) Flush();
  }
  void Copy(std::uint64_t from, std::uint64_t length) {
    if (length == 0) return;
    if (length <= kPendingBytes) {
      const std::size_t before = pending_.size();
      const auto size = static_cast<std::size_t>(length);
      pending_.resize(before + size);
      if (file_.ReadAt(from, &pending_[before], size) == size) {
        if (pending_.size() > kPendingBytes) Flush();
        return;
      }
      pending_.resize(before);  // Told by the longer way.
    }
    Flush();
    if (sound_) sound_ = output_.CopyFrom(file_, from, length, at_);
    at_ += length;
  }
  bool Flush() {
    if (sound_) sound_ = output_.Write(at_, pending_.data(), pending_.size());
    at_ += pending_.size();
    pending_.clear();
    return sound_;
  }

 private:
  const InputFile& file_;
  OutputFile& output_;
  std::uint64_t at_ = 0;
  std::string pending_;
  bool sound_ = true;
};

// Both kinds of record have these in a row.
void PutCommon(char* common, const PackedPart& part) {
  PutNumber(common + kVersionAt, std::max(Number(common + kVersionAt, 2), kDeflateVersion), 2);
  PutNumber(common + kFlagsAt, Number(common + kFlagsAt, 2) & ~(kFlagDescriptor | kFlagLevel), 2);
  PutNumber(common + kMethodAt, kZipDeflated, 2);
  PutNumber(common + kCrcAt, part.crc, 4);
  PutNumber(common + kPackedAt, part.deflated.size(), 4);
  PutNumber(common + kSizeAt, part.size, 4);
}

// Takes the 64-bit numbers out of the extra field that begins at `extraAt`.
void Drop64(std::string& record, std::size_t extraAt, std::size_t lengthAt) {
  const auto bytes = static_cast<std::size_t>(Number(&record[lengthAt], 2));
  const ExtraPiece piece = FindExtra(std::string_view(record).substr(extraAt, bytes), kExtra64);
  if (piece.at == std::string_view::npos) return;
  record.erase(extraAt + piece.at, kExtraHeadBytes + piece.bytes);
  PutNumber(&record[lengthAt], bytes - kExtraHeadBytes - piece.bytes, 2);
}

bool NewHeader(const InputFile& file, const ZipEntry& entry, const PackedPart& part,
               std::string& header) {
  header.resize(static_cast<std::size_t>(entry.dataAt - entry.headerAt));
  if (file.ReadAt(entry.headerAt, header.data(), header.size()) != header.size()) return false;
  PutCommon(&header[kHeaderCommonAt], part);
  Drop64(header, kHeaderBytes + entry.name.size(), kHeaderExtraLengthAt);
  return true;
}

// The entry's record in the new directory; false when its place needs more digits than it has.
bool NewRecord(const ZipDirectory& directory, const ZipEntry& entry, const PackedPart* part,
               std::uint64_t headerAt, std::string& record) {
  record = directory.records.substr(entry.recordAt, entry.recordBytes);
  if (part == nullptr) {
    if (!entry.offsetIs64 && headerAt >= kElsewhere32) return false;
    PutNumber(&record[entry.offsetFieldAt - entry.recordAt], headerAt, entry.offsetIs64 ? 8 : 4);
    return true;
  }
  if (headerAt >= kElsewhere32) return false;
  PutCommon(&record[kRecordCommonAt], *part);
  Drop64(record, kRecordBytes + entry.name.size(), kRecordExtraLengthAt);
  PutNumber(&record[kRecordOffsetAt], headerAt, 4);
  return true;
}

// The fields that a header and a record have in common, up to the name's length.
void PutAddition(char* common, const ZipAddition& addition) {
  PutCommon(common, *addition.part);
  const bool ascii = std::all_of(addition.name.begin(), addition.name.end(),
                                 [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  PutNumber(common + kFlagsAt, ascii ? 0 : kFlagUtf8, 2);
  PutNumber(common + kDateAt, kEarliestDate, 2);
}

std::string AddedHeader(const ZipAddition& addition) {
  std::string header(kHeaderBytes, '\0');
  header.replace(0, kHeaderMark.size(), kHeaderMark);
  PutAddition(&header[kHeaderCommonAt], addition);
  PutNumber(&header[kHeaderNameLengthAt], addition.name.size(), 2);
  return header + addition.name;
}

std::string AddedRecord(const ZipAddition& addition, std::uint64_t headerAt) {
  std::string record(kRecordBytes, '\0');
  record.replace(0, kRecordMark.size(), kRecordMark);
  PutNumber(&record[kRecordMark.size()], kDeflateVersion, 2);
  PutAddition(&record[kRecordCommonAt], addition);
  PutNumber(&record[kRecordNameLengthAt], addition.name.size(), 2);
  PutNumber(&record[kRecordOffsetAt], headerAt, 4);
  return record + addition.name;
}

// The end records, with the directory's new place, length and number of entries; false when these
// need more digits.
bool NewTail(const ZipDirectory& directory, std::uint64_t recordsAt, std::uint64_t length,
             std::uint64_t count, std::string& tail) {
  tail = directory.tail;
  if (directory.is64) {
    PutNumber(&tail[kEnd64CountAt - 8], count, 8);
    PutNumber(&tail[kEnd64CountAt], count, 8);
    PutNumber(&tail[kEnd64LengthAt], length, 8);
    PutNumber(&tail[kEnd64StartAt], recordsAt, 8);
    PutNumber(&tail[directory.locatorAt + kLocatorOffsetAt], recordsAt + length, 8);
  }
  bool fits = true;
  const auto put = [&](std::size_t field, std::uint64_t number) {
    char* const at = &tail[directory.endAt + field];
    if (directory.is64 && Number(at, 4) == kElsewhere32) return;
    fits = fits && number < kElsewhere32;
    PutNumber(at, number, 4);
  };
  put(kEndLengthAt, length);
  put(kEndStartAt, recordsAt);
  char* const countAt = &tail[directory.endAt + kEndCountAt];
  if (!directory.is64 || Number(countAt, 2) != kElsewhere16) {
    fits = fits && count < kElsewhere16;
    PutNumber(countAt - 2, count, 2);  // on this disk, and in all
    PutNumber(countAt, count, 2);
  }
  return fits;
}

}  // namespace

std::string CopyZip(const InputFile& file, const ZipDirectory& directory,
                    const std::vector<EntryChange>& changes, const std::vector<ZipAddition>& added,
                    OutputFile& output) {
  constexpr char kTooLarge[] = "It would be larger than 4 GB.";
  constexpr char kGone[] = "The deck's own file can no longer be read whole.";
  const std::vector<ZipEntry>& entries = directory.entries;
  Appender out(file, output);
  std::vector<std::uint64_t> headerAt(entries.size());
  std::uint64_t copied = 0;  // of the original, up to here
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const std::size_t index = directory.physicalOrder[i];
    const ZipEntry& entry = entries[index];
    headerAt[index] = out.at() + (entry.headerAt - copied);
    const EntryChange& change = changes[index];
    if (change.part == nullptr && !change.removed) continue;
    out.Copy(copied, entry.headerAt - copied);
    if (!change.removed) {
      std::string header;
      if (!NewHeader(file, entry, *change.part, header)) return kGone;
      out.Put(header);
      out.Put(change.part->deflated);
    }
    // What lies between its data and the next header described the old data.
    copied = i + 1 < entries.size() ? entries[directory.physicalOrder[i + 1]].headerAt
                                    : directory.recordsAt;
  }
  out.Copy(copied, directory.recordsAt - copied);
  std::vector<std::uint64_t> addedAt;
  for (const ZipAddition& addition : added) {
    addedAt.push_back(out.at());
    if (out.at() >= kElsewhere32) return kTooLarge;
    out.Put(AddedHeader(addition));
    out.Put(addition.part->deflated);
  }

  const std::uint64_t recordsAt = out.at();
  std::uint64_t count = added.size();
  std::string piece;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (changes[i].removed) continue;
    ++count;
    if (!NewRecord(directory, entries[i], changes[i].part, headerAt[i], piece)) return kTooLarge;
    out.Put(piece);
  }
  for (std::size_t i = 0; i < added.size(); ++i) out.Put(AddedRecord(added[i], addedAt[i]));
  if (!NewTail(directory, recordsAt, out.at() - recordsAt, count, piece)) return kTooLarge;
  out.Put(piece);
  return out.Flush() ? std::string() : output.Failure();
}

}  // namespace quillmarch::host
