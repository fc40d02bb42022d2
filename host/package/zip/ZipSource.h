// What libzip reads an archive from and writes its copy to: our own files, so that reading goes on
// after a rename over the path and writing fails with the system's own reason.
#pragma once

#include <zip.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/package/InputFile.h"
#include "host/package/OutputFile.h"
#include "host/package/zip/PartCompressor.h"

namespace quillmarch::host {

// The archive itself. Outlives the zip_source_t made of it.
class ZipSource {
 public:
  explicit ZipSource(const InputFile& file);

  zip_source_t* Make(zip_error_t* error);
  // Where the next zip_close writes to.
  void WriteTo(OutputFile* output) { output_ = output; }

 private:
  static zip_int64_t Call(void* self, void* data, zip_uint64_t length, zip_source_cmd_t command);
  zip_int64_t Do(void* data, zip_uint64_t length, zip_source_cmd_t command);
  zip_int64_t Read(void* to, std::uint64_t length);
  zip_int64_t Write(const void* from, std::uint64_t length);
  bool Flush();
  zip_int64_t Fail(int code);

  const InputFile& file_;
  OutputFile* output_ = nullptr;
  zip_error_t error_{};
  std::uint64_t readAt_ = 0;
  std::vector<char> window_;  // what was read around the last place
  std::uint64_t windowAt_ = 0;
  std::uint64_t writeAt_ = 0;
  std::uint64_t writtenEnd_ = 0;  // the farthest place ever written
  std::vector<char> pending_;     // not yet written, from pendingAt_ on
  std::uint64_t pendingAt_ = 0;
};

// An entry that is deflated already. `part` outlives the source.
class PackedSource {
 public:
  explicit PackedSource(const PackedPart& part) : part_(part) { zip_error_init(&error_); }

  zip_source_t* Make(zip_t* archive);

 private:
  static zip_int64_t Call(void* self, void* data, zip_uint64_t length, zip_source_cmd_t command);

  const PackedPart& part_;
  std::size_t at_ = 0;
  zip_error_t error_{};
};

}  // namespace quillmarch::host
