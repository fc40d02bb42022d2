// An Open Packaging (OPC) file: its parts, content types and relationships, written without
// touching what was not edited. One thread at a time, except for HasPart, ReadPart, ReadXmlPart and
// Relationships, which any thread may call at any time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/text/Result.h"

namespace quillmarch::host {

// Bounds that keep hostile files harmless. A part that is never read costs nothing, so a large
// video is no matter; what is read is bounded by its declared size before memory is taken.
struct PackageLimits {
  std::uint64_t maxPartBytes = 64ull << 20;    // of one part that is read
  std::uint64_t maxXmlBytes = 32ull << 20;     // of one XML part that is read
  std::uint64_t maxPackageBytes = 2ull << 30;  // that inflating all would add to the file's size
  std::uint64_t ratioFloorBytes = 1ull << 20;  // XML parts below it may have any ratio
  // Other parts below it may have any ratio: an empty picture packs like a bomb.
  std::uint64_t mediaRatioFloorBytes = 64ull << 20;
  std::uint64_t maxRatio = 200;  // inflated to deflated
  std::size_t maxEntries = 65535;
  std::size_t maxXmlNodes = 1000000;  // elements, attributes and texts of one XML part
  std::size_t maxXmlDepth = 1000;
};

struct Relationship {
  std::string id;
  std::string type;    // full URI as it stands in the file, transitional or strict
  std::string target;  // part name without the leading slash, or the URI when external
  bool external = false;
};

class Package {
 public:
  // Opens and checks the archive and [Content_Types].xml. Nothing is inflated that is not asked
  // for.
  static Result<std::unique_ptr<Package>> Open(const std::string& path,
                                               const PackageLimits& limits = {});
  // As Open, for a package that lies in memory, such as a part of another package.
  static Result<std::unique_ptr<Package>> OpenBytes(std::string_view bytes,
                                                    const PackageLimits& limits = {});
  virtual ~Package() = default;

  // Part names stand without the leading slash, such as "ppt/slides/slide1.xml"; they compare
  // without regard to ASCII case, and "%20" is a blank.
  virtual bool HasPart(std::string_view name) const = 0;
  // All parts as the archive names them, in its order; folders are none.
  virtual std::vector<std::string> PartNames() const = 0;
  // The bytes of a part as they are now, edits included.
  virtual Result<std::string> ReadPart(std::string_view name) = 0;
  // As ReadPart, and the bytes are well-formed UTF-8 XML of bounded size and depth without a
  // document type: what pugixml alone would let pass is refused. A part in UTF-16 is given as
  // UTF-8; a UTF-8 byte order mark stays in front.
  virtual Result<std::string> ReadXmlPart(std::string_view name) = 0;
  // Content type by override or extension; empty when none is declared.
  virtual std::string ContentType(std::string_view name) const = 0;
  // The relationships of a part, or of the package itself for an empty name; an absent
  // relationships part gives none. Targets are resolved against the part's folder; a target that
  // climbs out of the package is an error.
  virtual Result<std::vector<Relationship>> Relationships(std::string_view name) = 0;

  // Replaces the bytes of a part that exists; kept compressed until saved. The original's own
  // bytes take the edit back. Bytes of a part that ReadXmlPart gave from UTF-16 are put as UTF-8
  // too and stand in the file as before. A part that does not exist makes Save fail.
  virtual void PutPart(std::string_view name, std::string bytes) = 0;
  // As PutPart, with bytes that `make` gives when it is called, once and on any thread. `weight` is
  // about how many bytes of memory it holds until then.
  virtual void PutPartLater(std::string_view name, std::size_t weight,
                            std::function<std::string()> make) = 0;
  // Adds a part at the archive's end, and its content type to the list of content types unless the
  // type that its extension has there is the same. An error, and nothing changed, when there is a
  // part of that name or the name cannot be one.
  virtual Result<void> AddPart(std::string_view name, std::string_view contentType,
                               std::string bytes) = 0;
  // Removes a part with its entry in the list of content types. Its relationships are a part of
  // their own, and relationships that lead to it are the caller's. An error when it is not there.
  virtual Result<void> RemovePart(std::string_view name) = 0;
  // Waits for what was put, as bytes that turn out to be the original's are no edit.
  virtual bool Edited() = 0;

  // Writes the package to `path` atomically: a temporary file in the same folder, flushed, then
  // renamed. Parts without an edit keep their compressed bytes, order and times; without any edit
  // the file is a byte for byte copy. An earlier file at `path` stays as it was on any failure; its
  // mode bits are kept, a new file is at most as open to others as the original, and a symbolic
  // link is followed. Refused when another program has changed the original since it was opened, or
  // `path` meanwhile. Reading goes on as before afterwards.
  virtual Result<void> Save(const std::string& path) = 0;
  // The bytes that Save would write.
  virtual Result<std::string> SaveBytes() = 0;
};

}  // namespace quillmarch::host
