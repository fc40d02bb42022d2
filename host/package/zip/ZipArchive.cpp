#include "host/package/zip/ZipArchive.h"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <utility>

#include "host/package/PartName.h"
#include "host/package/zip/ZipCopy.h"

namespace quillmarch::host {

namespace {

// A deflated part is hardly larger than its content; what is far larger is padded with nothing.
constexpr std::uint64_t kPackedSlackBytes = 64 << 10;
// Beyond that an entry's CRC is worked out piece by piece.
constexpr std::uint64_t kWholeBytes = 16 << 20;
constexpr std::size_t kPieceBytes = 256 << 10;

struct FreeDecompressor {
  void operator()(libdeflate_decompressor* decompressor) const {
    libdeflate_free_decompressor(decompressor);
  }
};

}  // namespace

std::string ZipArchive::Open(std::size_t maxEntries) {
  std::string sentence = ReadZipDirectory(file_, maxEntries, directory_);
  if (!sentence.empty()) return sentence;
  sound_ = std::make_unique<std::atomic<bool>[]>(directory_.entries.size());
  return {};
}

std::string ZipArchive::ReadUnchecked(const ZipEntry& entry, std::string& bytes) const {
  if (entry.encrypted) return "it is encrypted";
  if (entry.packed > file_.Size()) return "its data is cut off";
  if (entry.method == kZipStored) {
    if (entry.packed != entry.size) return "its declared sizes do not agree";
    bytes.resize(static_cast<std::size_t>(entry.size));
    const bool whole = file_.ReadAt(entry.dataAt, bytes.data(), bytes.size()) == bytes.size();
    return whole ? std::string() : "its data is cut off";
  }
  if (entry.method != kZipDeflated) {
    return "it is compressed by a method (" + std::to_string(entry.method) +
           ") that is not supported";
  }
  if (entry.packed > entry.size * 2 + kPackedSlackBytes) {
    return "it has far more data than the " + std::to_string(entry.size) + " bytes it declares";
  }
  thread_local std::string packed;
  packed.resize(static_cast<std::size_t>(entry.packed));
  const bool whole = file_.ReadAt(entry.dataAt, packed.data(), packed.size()) == packed.size();
  std::string fault = whole ? Inflate(packed, entry.size, bytes) : "its data is cut off";
  if (packed.size() > kPackedSlackBytes) std::string().swap(packed);
  return fault;
}

std::string ZipArchive::Read(std::size_t index, std::string& bytes) const {
  const ZipEntry& entry = directory_.entries[index];
  std::string fault = ReadUnchecked(entry, bytes);
  if (fault.empty() && Crc32(bytes) != entry.crc) fault = "its checksum is wrong";
  if (fault.empty()) {
    sound_[index].store(true, std::memory_order_relaxed);
  } else {
    std::string().swap(bytes);
  }
  return fault;
}

bool ZipArchive::CrcOfStored(const ZipEntry& entry, std::uint32_t& crc) const {
  std::string piece(kPieceBytes, '\0');
  for (std::uint64_t done = 0; done < entry.packed;) {
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(kPieceBytes, entry.packed - done));
    if (file_.ReadAt(entry.dataAt + done, piece.data(), wanted) != wanted) return false;
    crc = libdeflate_crc32(crc, piece.data(), wanted);
    done += wanted;
  }
  return entry.packed == entry.size;
}

bool ZipArchive::CrcOfDeflated(const ZipEntry& entry, std::uint32_t& crc) const {
  std::string packed(kPieceBytes, '\0');
  std::string inflated(kPieceBytes, '\0');
  z_stream stream = {};
  if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) return false;
  std::uint64_t taken = 0;
  std::uint64_t size = 0;
  int state = Z_OK;
  while (state == Z_OK && size <= entry.size) {
    if (stream.avail_in == 0) {
      const auto wanted =
          static_cast<std::size_t>(std::min<std::uint64_t>(kPieceBytes, entry.packed - taken));
      if (wanted == 0 || file_.ReadAt(entry.dataAt + taken, packed.data(), wanted) != wanted) break;
      taken += wanted;
      stream.next_in = reinterpret_cast<Bytef*>(packed.data());
      stream.avail_in = static_cast<uInt>(wanted);
    }
    stream.next_out = reinterpret_cast<Bytef*>(inflated.data());
    stream.avail_out = static_cast<uInt>(inflated.size());
    state = inflate(&stream, Z_NO_FLUSH);
    const std::size_t got = inflated.size() - stream.avail_out;
    crc = libdeflate_crc32(crc, inflated.data(), got);
    size += got;
  }
  inflateEnd(&stream);
  return state == Z_STREAM_END && size == entry.size;
}

std::string ZipArchive::CheckCopied(std::size_t index) const {
  const ZipEntry& entry = directory_.entries[index];
  if (sound_[index].load(std::memory_order_relaxed)) return {};
  bool sound = false;
  std::uint32_t crc = 0;
  if (entry.method == kZipStored) {
    sound = CrcOfStored(entry, crc) && crc == entry.crc;
  } else if (entry.method != kZipDeflated) {
    return {};  // Nobody here can tell; it is copied as it is.
  } else if (entry.size <= kWholeBytes) {
    std::string bytes;
    sound = Read(index, bytes).empty();
  } else {
    sound = CrcOfDeflated(entry, crc) && crc == entry.crc;
  }
  if (sound) return {};
  return "The part " + Printable(entry.name) +
         " does not match its checksum: the deck is damaged, or another program changed it "
         "meanwhile.";
}

std::string ZipArchive::Write(const ZipChanges& changes, OutputFile& output) const {
  std::vector<EntryChange> entries(directory_.entries.size());
  for (const ZipReplacement& replacement : changes.replaced) {
    entries[replacement.entry].part = replacement.part;
  }
  for (const std::size_t entry : changes.removed) entries[entry].removed = true;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const bool copied = entries[i].part == nullptr && !entries[i].removed;
    std::string fault = copied ? CheckCopied(i) : std::string();
    if (!fault.empty()) return fault;
  }
  return CopyZip(file_, directory_, entries, changes.added, output);
}

std::string Inflate(const std::string& deflated, std::uint64_t size, std::string& bytes) {
  thread_local const std::unique_ptr<libdeflate_decompressor, FreeDecompressor> decompressor(
      libdeflate_alloc_decompressor());
  if (!decompressor) return "there is not enough memory to inflate it";
  bytes.resize(static_cast<std::size_t>(size));
  switch (libdeflate_deflate_decompress(decompressor.get(), deflated.data(), deflated.size(),
                                        bytes.data(), bytes.size(), nullptr)) {
    case LIBDEFLATE_SUCCESS:
      return {};
    case LIBDEFLATE_INSUFFICIENT_SPACE:
      return "it inflates to more than the " + std::to_string(size) + " bytes it declares";
    case LIBDEFLATE_SHORT_OUTPUT:
      return "it inflates to less than the " + std::to_string(size) + " bytes it declares";
    default:
      return "its compressed data is damaged";
  }
}

std::uint32_t Crc32(std::string_view bytes, std::uint32_t before) {
  return libdeflate_crc32(before, bytes.data(), bytes.size());
}

}  // namespace quillmarch::host
