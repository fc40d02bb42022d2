#include "host/package/zip/ZipSource.h"

#include <algorithm>
#include <cstring>

namespace quillmarch::host {

namespace {

constexpr std::size_t kWindowBytes = 32 << 10;
constexpr std::size_t kPendingBytes = 256 << 10;

}  // namespace

ZipSource::ZipSource(const InputFile& file) : file_(file) {
  zip_error_init(&error_);
}

zip_source_t* ZipSource::Make(zip_error_t* error) {
  return zip_source_function_create(&ZipSource::Call, this, error);
}

zip_int64_t ZipSource::Fail(int code) {
  zip_error_set(&error_, code, 0);
  return -1;
}

zip_int64_t ZipSource::Call(void* self, void* data, zip_uint64_t length, zip_source_cmd_t command) {
  return static_cast<ZipSource*>(self)->Do(data, length, command);
}

zip_int64_t ZipSource::Read(void* to, std::uint64_t length) {
  length = std::min(length, file_.Size() - std::min(readAt_, file_.Size()));
  if (length == 0) return 0;
  const bool inside = readAt_ >= windowAt_ && readAt_ + length <= windowAt_ + window_.size();
  if (!inside) {
    if (length >= kWindowBytes) {
      const std::size_t got = file_.ReadAt(readAt_, to, static_cast<std::size_t>(length));
      readAt_ += got;
      return got == 0 ? Fail(ZIP_ER_READ) : static_cast<zip_int64_t>(got);
    }
    window_.resize(kWindowBytes);
    window_.resize(file_.ReadAt(readAt_, window_.data(), kWindowBytes));
    windowAt_ = readAt_;
    length = std::min<std::uint64_t>(length, window_.size());
    if (length == 0) return Fail(ZIP_ER_READ);
  }
  std::memcpy(to, window_.data() + (readAt_ - windowAt_), static_cast<std::size_t>(length));
  readAt_ += length;
  return static_cast<zip_int64_t>(length);
}

bool ZipSource::Flush() {
  if (pending_.empty()) return true;
  const bool written = output_->Write(pendingAt_, pending_.data(), pending_.size());
  pending_.clear();
  return written;
}

// libzip writes in small pieces and goes back to an entry's header once its data stands, so what
// was written last stays open for changes.
zip_int64_t ZipSource::Write(const void* from, std::uint64_t length) {
  const std::uint64_t end = pendingAt_ + pending_.size();
  const bool joins = !pending_.empty() && writeAt_ >= pendingAt_ && writeAt_ <= end &&
                     writeAt_ + length <= pendingAt_ + kPendingBytes;
  if (!joins) {
    if (!Flush()) return Fail(ZIP_ER_WRITE);
    pendingAt_ = writeAt_;
  }
  const auto at = static_cast<std::size_t>(writeAt_ - pendingAt_);
  const auto size = static_cast<std::size_t>(length);
  if (pending_.size() < at + size) pending_.resize(at + size);
  std::memcpy(pending_.data() + at, from, size);
  writeAt_ += length;
  writtenEnd_ = std::max(writtenEnd_, writeAt_);
  return static_cast<zip_int64_t>(length);
}

zip_int64_t ZipSource::Do(void* data, zip_uint64_t length, zip_source_cmd_t command) {
  switch (command) {
    case ZIP_SOURCE_SUPPORTS:
      return ZIP_SOURCE_SUPPORTS_WRITABLE |
             ZIP_SOURCE_MAKE_COMMAND_BITMASK(ZIP_SOURCE_BEGIN_WRITE_CLONING);
    case ZIP_SOURCE_OPEN:
      readAt_ = 0;
      return 0;
    case ZIP_SOURCE_READ:
      return Read(data, length);
    case ZIP_SOURCE_CLOSE:
    case ZIP_SOURCE_FREE:
    case ZIP_SOURCE_ROLLBACK_WRITE:
      return 0;
    case ZIP_SOURCE_STAT: {
      auto* const stat = static_cast<zip_stat_t*>(data);
      zip_stat_init(stat);
      stat->size = file_.Size();
      stat->valid = ZIP_STAT_SIZE;
      return sizeof *stat;
    }
    case ZIP_SOURCE_ERROR:
      return zip_error_to_data(&error_, data, length);
    case ZIP_SOURCE_SEEK: {
      const zip_int64_t at =
          zip_source_seek_compute_offset(readAt_, file_.Size(), data, length, &error_);
      if (at < 0) return -1;
      readAt_ = static_cast<std::uint64_t>(at);
      return 0;
    }
    case ZIP_SOURCE_TELL:
      return static_cast<zip_int64_t>(readAt_);
    case ZIP_SOURCE_BEGIN_WRITE:
    case ZIP_SOURCE_BEGIN_WRITE_CLONING:
      if (output_ == nullptr) return Fail(ZIP_ER_OPNOTSUPP);
      pending_.clear();
      pending_.reserve(kPendingBytes);
      writeAt_ = 0;
      if (command == ZIP_SOURCE_BEGIN_WRITE_CLONING) {
        if (length > file_.Size()) return Fail(ZIP_ER_INVAL);
        if (!output_->CopyFrom(file_, length)) return Fail(ZIP_ER_WRITE);
        writeAt_ = length;
      }
      writtenEnd_ = writeAt_;
      return 0;
    case ZIP_SOURCE_WRITE:
      return Write(data, length);
    case ZIP_SOURCE_SEEK_WRITE: {
      const zip_int64_t at =
          zip_source_seek_compute_offset(writeAt_, writtenEnd_, data, length, &error_);
      if (at < 0) return -1;
      writeAt_ = static_cast<std::uint64_t>(at);
      return 0;
    }
    case ZIP_SOURCE_TELL_WRITE:
      return static_cast<zip_int64_t>(writeAt_);
    case ZIP_SOURCE_COMMIT_WRITE:
      return Flush() ? 0 : Fail(ZIP_ER_WRITE);
    default:
      // Removing is among these: an archive that loses all its entries is none of ours.
      return Fail(ZIP_ER_OPNOTSUPP);
  }
}

zip_source_t* PackedSource::Make(zip_t* archive) {
  return zip_source_function(archive, &PackedSource::Call, this);
}

zip_int64_t PackedSource::Call(void* self, void* data, zip_uint64_t length,
                               zip_source_cmd_t command) {
  auto& source = *static_cast<PackedSource*>(self);
  const PackedPart& part = source.part_;
  switch (command) {
    case ZIP_SOURCE_SUPPORTS:
      return ZIP_SOURCE_SUPPORTS_READABLE;
    case ZIP_SOURCE_OPEN:
      source.at_ = 0;
      return 0;
    case ZIP_SOURCE_READ: {
      const auto size = static_cast<std::size_t>(
          std::min<zip_uint64_t>(length, part.deflated.size() - source.at_));
      std::memcpy(data, part.deflated.data() + source.at_, size);
      source.at_ += size;
      return static_cast<zip_int64_t>(size);
    }
    case ZIP_SOURCE_CLOSE:
    case ZIP_SOURCE_FREE:
      return 0;
    case ZIP_SOURCE_STAT: {
      auto* const stat = static_cast<zip_stat_t*>(data);
      zip_stat_init(stat);
      stat->size = part.size;
      stat->comp_size = part.deflated.size();
      stat->crc = part.crc;
      stat->comp_method = ZIP_CM_DEFLATE;
      stat->encryption_method = ZIP_EM_NONE;
      stat->valid = ZIP_STAT_SIZE | ZIP_STAT_COMP_SIZE | ZIP_STAT_CRC | ZIP_STAT_COMP_METHOD |
                    ZIP_STAT_ENCRYPTION_METHOD;
      return sizeof *stat;
    }
    case ZIP_SOURCE_ERROR:
      return zip_error_to_data(&source.error_, data, length);
    default:
      zip_error_set(&source.error_, ZIP_ER_OPNOTSUPP, 0);
      return -1;
  }
}

}  // namespace quillmarch::host
