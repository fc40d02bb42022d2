#include "host/package/zip/ZipArchive.h"

#include <libdeflate.h>
#include <zip.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <mutex>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "host/package/zip/ZipDirectory.h"
#include "host/package/zip/ZipSource.h"

namespace quillmarch::host {

namespace {

// A deflated part is hardly larger than its content; what is far larger is padded with nothing.
constexpr std::uint64_t kPackedSlackBytes = 64 << 10;

// How often a thread looks whether another one is done with libzip before it sleeps: that takes a
// few microseconds, being put to sleep and woken many times more.
constexpr int kLooks = 2000;

// Held while libzip is used.
class Turn {
 public:
  explicit Turn(std::mutex& mutex) : lock_(mutex, std::try_to_lock) {
    for (int i = 0; i < kLooks && !lock_.owns_lock(); ++i) static_cast<void>(lock_.try_lock());
    if (!lock_.owns_lock()) lock_.lock();
  }

 private:
  std::unique_lock<std::mutex> lock_;
};

struct FreeDecompressor {
  void operator()(libdeflate_decompressor* decompressor) const {
    libdeflate_free_decompressor(decompressor);
  }
};

struct CloseEntry {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};

ZipEntry EntryOf(const zip_stat_t& stat, const char* name) {
  ZipEntry entry;
  entry.name = name;
  entry.size = stat.size;
  entry.packed = stat.comp_size;
  entry.crc = stat.crc;
  entry.time = stat.mtime;
  entry.method = stat.comp_method;
  entry.encrypted = stat.encryption_method != ZIP_EM_NONE;
  return entry;
}

}  // namespace

struct ZipArchive::State {
  explicit State(const InputFile& input) : file(input), source(input) {}
  ~State() { Drop(); }

  void Drop() {
    if (archive != nullptr) zip_discard(archive);
    archive = nullptr;
  }
  // 0 when open, else libzip's code.
  int EnsureOpen(int flags) {
    if (archive != nullptr) return 0;
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const made = source.Make(&error);
    if (made != nullptr) {
      archive = zip_open_from_source(made, flags, &error);
      if (archive == nullptr) zip_source_free(made);
    }
    const int code = archive == nullptr ? zip_error_code_zip(&error) : 0;
    zip_error_fini(&error);
    return code;
  }
  std::string Explain(int code);
  std::string ReadPacked(std::size_t entry, char* to, std::size_t length);

  std::mutex mutex;  // what libzip holds is for one thread at a time

  const InputFile& file;
  ZipSource source;
  zip_t* archive = nullptr;
  std::vector<ZipEntry> entries;
};

ZipArchive::ZipArchive(const InputFile& file) : state_(std::make_unique<State>(file)) {}
ZipArchive::~ZipArchive() = default;

const std::vector<ZipEntry>& ZipArchive::Entries() const {
  return state_->entries;
}

// Why the archive did not open.
std::string ZipArchive::State::Explain(int code) {
  if (code == ZIP_ER_MEMORY) return "There is not enough memory to open the file.";
  if (code == ZIP_ER_NOZIP) {
    char head[4] = {};
    file.ReadAt(0, head, sizeof head);
    if (std::memcmp(head, "PK\3\4", sizeof head) != 0) {
      return "The file is not a zip archive, so it is no .pptx file.";
    }
    return "The file is cut off or damaged: the zip directory at its end is missing.";
  }
  // Without the comparison it may open, and then the cause can be named.
  if (EnsureOpen(0) == 0) {
    std::unordered_set<std::string_view> names;
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
      const char* const name = zip_get_name(archive, static_cast<zip_uint64_t>(i), ZIP_FL_ENC_RAW);
      if (name != nullptr && !names.insert(name).second) {
        return std::string("The part ") + name + " stands twice in the zip archive.";
      }
    }
  }
  return "The zip archive is cut off or damaged: its directory and its entries do not agree.";
}

std::string ZipArchive::Open(std::size_t maxEntries) {
  // Asked before libzip makes room for all that are declared.
  if (DeclaredEntries(state_->file) > maxEntries) {
    return "The zip archive has more than " + std::to_string(maxEntries) + " entries.";
  }
  const int code = state_->EnsureOpen(ZIP_CHECKCONS);
  if (code != 0) {
    std::string sentence = state_->Explain(code);
    state_->Drop();
    return sentence;
  }
  const zip_int64_t count = zip_get_num_entries(state_->archive, 0);
  if (count < 0 || static_cast<std::size_t>(count) > maxEntries) {
    return "The zip archive has more than " + std::to_string(maxEntries) + " entries.";
  }
  state_->entries.reserve(static_cast<std::size_t>(count));
  for (zip_uint64_t i = 0; i < static_cast<zip_uint64_t>(count); ++i) {
    zip_stat_t stat;
    const char* const name = zip_get_name(state_->archive, i, ZIP_FL_ENC_RAW);
    if (name == nullptr || zip_stat_index(state_->archive, i, 0, &stat) != 0) {
      return "The zip archive is damaged: an entry cannot be read.";
    }
    state_->entries.push_back(EntryOf(stat, name));
  }
  return {};
}

std::string ZipArchive::State::ReadPacked(std::size_t entry, char* to, std::size_t length) {
  const Turn turn(mutex);
  if (EnsureOpen(ZIP_CHECKCONS) != 0) return "the file has changed since it was opened";
  const std::unique_ptr<zip_file_t, CloseEntry> opened(
      zip_fopen_index(archive, entry, ZIP_FL_COMPRESSED));
  if (!opened) return "its data cannot be found in the zip archive";
  std::size_t done = 0;
  while (done < length) {
    const zip_int64_t got = zip_fread(opened.get(), to + done, length - done);
    if (got <= 0) return "its data is cut off";
    done += static_cast<std::size_t>(got);
  }
  return {};
}

std::string ZipArchive::Read(std::size_t index, std::string& bytes) {
  const ZipEntry& entry = state_->entries[index];
  if (entry.encrypted) return "it is encrypted";
  std::string fault;
  if (entry.method == ZIP_CM_STORE) {
    if (entry.packed != entry.size) return "its declared sizes do not agree";
    if (entry.size > state_->file.Size()) return "its data is cut off";
    bytes.resize(static_cast<std::size_t>(entry.size));
    fault = state_->ReadPacked(index, bytes.data(), bytes.size());
  } else if (entry.method == ZIP_CM_DEFLATE) {
    if (entry.packed > entry.size * 2 + kPackedSlackBytes) {
      return "it has far more data than the " + std::to_string(entry.size) + " bytes it declares";
    }
    if (entry.packed > state_->file.Size()) return "its data is cut off";
    thread_local std::string packed;
    packed.resize(static_cast<std::size_t>(entry.packed));
    fault = state_->ReadPacked(index, packed.data(), packed.size());
    if (fault.empty()) fault = Inflate(packed, entry.size, bytes);
    if (packed.size() > kPackedSlackBytes) std::string().swap(packed);
  } else {
    return "it is compressed by a method (" + std::to_string(entry.method) +
           ") that is not supported";
  }
  if (fault.empty() && Crc32(bytes) != entry.crc) fault = "its checksum is wrong";
  if (!fault.empty()) std::string().swap(bytes);
  return fault;
}

bool ZipArchive::Write(const std::vector<ZipReplacement>& replacements, OutputFile& output,
                       std::string& reason) {
  reason = "It cannot be written: the original has changed since it was opened.";
  const std::lock_guard<std::mutex> lock(state_->mutex);
  if (state_->EnsureOpen(ZIP_CHECKCONS) != 0) return false;
  state_->source.WriteTo(&output);
  std::deque<PackedSource> sources;  // a deque: libzip keeps their addresses
  bool written = true;
  for (const ZipReplacement& replacement : replacements) {
    zip_t* const archive = state_->archive;
    zip_source_t* const made = sources.emplace_back(*replacement.part).Make(archive);
    written = made != nullptr;
    if (written && zip_file_replace(archive, replacement.entry, made, 0) != 0) {
      zip_source_free(made);
      written = false;
    }
    // Else the time would be that of the run, and no two runs gave the same bytes.
    written = written && zip_file_set_mtime(archive, replacement.entry,
                                            state_->entries[replacement.entry].time, 0) == 0;
    if (!written) break;
  }
  if (written && zip_close(state_->archive) == 0) {
    state_->archive = nullptr;
    written = AgreeEntryFlags(output);
    if (!written) reason = "It cannot be written: its directory cannot be read back.";
  } else {
    written = false;
    reason = std::string("It cannot be written: ") + zip_strerror(state_->archive) + ".";
    state_->Drop();
  }
  state_->source.WriteTo(nullptr);
  return written;
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

std::uint32_t Crc32(const std::string& bytes) {
  return libdeflate_crc32(0, bytes.data(), bytes.size());
}

}  // namespace quillmarch::host
