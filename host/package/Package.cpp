#include "host/package/Package.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/package/ContentTypes.h"
#include "host/package/InputFile.h"
#include "host/package/OutputFile.h"
#include "host/package/PartName.h"
#include "host/package/Relationships.h"
#include "host/package/xml/Splice.h"
#include "host/package/xml/Utf16Xml.h"
#include "host/package/xml/XmlCheck.h"
#include "host/package/zip/CompoundFile.h"
#include "host/package/zip/PartCompressor.h"
#include "host/package/zip/ZipArchive.h"

namespace quillmarch::host {

namespace {

Error Missing(std::string_view name) {
  return {ErrorCode::kNotFound, "The part " + std::string(name) + " is missing."};
}

std::string PartSentence(std::string_view name, std::string_view why) {
  return "The part " + std::string(name) + " cannot be read: " + std::string(why) + ".";
}

bool IsXmlName(std::string_view key) {
  return key.ends_with(".xml") || key.ends_with(".rels") || key.ends_with(".vml");
}

class ZipPackage final : public Package {
 public:
  ZipPackage(const PackageLimits& limits) : limits_(limits), archive_(file_) {}

  std::string Load(const std::string& path);
  std::string LoadBytes(std::string_view bytes);

  bool HasPart(std::string_view name) const override { return Find(name).has_value(); }
  std::vector<std::string> PartNames() const override;
  Result<std::string> ReadPart(std::string_view name) override;
  Result<std::string> ReadXmlPart(std::string_view name) override;
  std::string ContentType(std::string_view name) const override { return types_.Of(name); }
  Result<std::vector<Relationship>> Relationships(std::string_view name) override;
  void PutPart(std::string_view name, std::string bytes) override;
  void PutPartLater(std::string_view name, std::size_t weight,
                    std::function<std::string()> make) override;
  Result<void> AddPart(std::string_view name, std::string_view contentType,
                       std::string bytes) override;
  Result<void> RemovePart(std::string_view name) override;
  bool Edited() override;
  Result<void> Save(const std::string& path) override;
  Result<std::string> SaveBytes() override;

 private:
  std::string LoadOpened();
  std::optional<std::size_t> Find(std::string_view name) const;
  bool IsAdded(std::size_t entry) const { return entry >= archive_.Entries().size(); }
  const std::string& NameOf(std::size_t entry) const;
  std::string CheckEntries();
  std::string CheckBomb(const ZipEntry& entry, std::string_view key) const;
  std::string Bytes(std::size_t entry, std::uint64_t limit, std::string& bytes);
  bool IsOriginal(std::size_t entry, const PartBytes& part);
  std::string CheckUnchanged(const OutputFile& output) const;
  std::string WriteTo(OutputFile& output);

  PackageLimits limits_;
  std::string path_;
  FileState expected_;  // what is at the path, as long as only this package writes there
  InputFile file_;
  ZipArchive archive_;
  std::unordered_map<std::string, std::size_t> parts_;  // entry by PartKey, added ones after all
  std::vector<std::string> added_;                      // names; a removed one is empty
  std::set<std::size_t> removed_;                       // of the archive's own entries
  ContentTypes types_;
  std::string putFault_;
  // Guards the parts and both below against reads by other threads; only the owner's own thread
  // changes them.
  mutable std::mutex mutex_;
  std::unordered_map<std::size_t, XmlForm> utf16_;  // of the entries that were given as UTF-8
  std::map<std::size_t, std::shared_ptr<PackingJob>> edits_;
  // The last member: its thread makes parts, and looks at the archive for it.
  PartCompressor compressor_;
};

std::string ZipPackage::Load(const std::string& path) {
  std::string sentence = file_.Open(path);
  path_ = path;
  expected_ = file_.Opened();
  return sentence.empty() ? LoadOpened() : sentence;
}

std::string ZipPackage::LoadBytes(std::string_view bytes) {
  std::string sentence = file_.OpenBytes(bytes);
  return sentence.empty() ? LoadOpened() : sentence;
}

std::string ZipPackage::LoadOpened() {
  std::string sentence = CompoundFileSentence(file_);
  if (sentence.empty()) sentence = archive_.Open(limits_.maxEntries);
  if (sentence.empty()) sentence = CheckEntries();
  if (!sentence.empty()) return sentence;

  if (!HasPart(kContentTypesPart)) {
    return "The part [Content_Types].xml is missing, so it is not a .pptx file.";
  }
  const Result<std::string> types = ReadXmlPart(kContentTypesPart);
  if (!types.ok()) return types.error().words;
  if (!types_.Parse(types.value())) {
    return PartSentence(kContentTypesPart, "it is not a content types part");
  }
  return {};
}

std::string ZipPackage::CheckBomb(const ZipEntry& entry, std::string_view key) const {
  const std::uint64_t floor =
      IsXmlName(key) ? limits_.ratioFloorBytes : limits_.mediaRatioFloorBytes;
  if (entry.size <= floor || entry.size / limits_.maxRatio < entry.packed) return {};
  return "The part " + entry.name + " would inflate to more than " +
         std::to_string(limits_.maxRatio) + " times its size, as a zip bomb does.";
}

std::string ZipPackage::CheckEntries() {
  std::uint64_t growth = 0;
  const std::vector<ZipEntry>& entries = archive_.Entries();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const ZipEntry& entry = entries[i];
    const std::string_view fault = EntryNameFault(entry.name);
    if (!fault.empty()) {
      return "The zip entry \"" + Printable(entry.name) + "\" " + std::string(fault) + ".";
    }
    if (entry.name.ends_with('/')) continue;
    if (entry.encrypted) return "The part " + entry.name + " is encrypted.";
    std::string key = PartKey(entry.name);
    std::string bomb = CheckBomb(entry, key);
    if (!bomb.empty()) return bomb;
    if (entry.size > entry.packed) growth += entry.size - entry.packed;
    if (growth > limits_.maxPackageBytes) {
      return "The file would inflate to more than " +
             std::to_string(limits_.maxPackageBytes >> 20) + " MB, as a zip bomb does.";
    }
    const auto [twin, fresh] = parts_.emplace(std::move(key), i);
    if (!fresh) {
      return "The parts " + entries[twin->second].name + " and " + entry.name +
             " have the same name.";
    }
  }
  return {};
}

std::optional<std::size_t> ZipPackage::Find(std::string_view name) const {
  const std::string key = PartKey(name);
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = parts_.find(key);
  if (found == parts_.end()) return std::nullopt;
  return found->second;
}

const std::string& ZipPackage::NameOf(std::size_t entry) const {
  const std::size_t original = archive_.Entries().size();
  return entry < original ? archive_.Entries()[entry].name : added_[entry - original];
}

std::vector<std::string> ZipPackage::PartNames() const {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < archive_.Entries().size() + added_.size(); ++i) {
    const std::string& name = NameOf(i);
    if (!name.empty() && !name.ends_with('/') && !removed_.contains(i)) names.push_back(name);
  }
  return names;
}

// Why not, as the end of a sentence; empty when all is well.
std::string ZipPackage::Bytes(std::size_t entry, std::uint64_t limit, std::string& bytes) {
  std::shared_ptr<PackingJob> job;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto edit = edits_.find(entry);
    if (edit != edits_.end()) job = edit->second;
  }
  if (job) {
    if (!compressor_.Wait(job)) return "there is not enough memory";
    if (!job->original) return Inflate(job->packed.deflated, job->packed.size, bytes);
  }
  if (archive_.Entries()[entry].size > limit) {
    return "it is larger than " + std::to_string(limit >> 20) + " MB";
  }
  return archive_.Read(entry, bytes);
}

Result<std::string> ZipPackage::ReadPart(std::string_view name) {
  const std::optional<std::size_t> entry = Find(name);
  if (!entry) return Missing(name);
  std::string bytes;
  const std::string why = Bytes(*entry, limits_.maxPartBytes, bytes);
  if (!why.empty()) return Error{ErrorCode::kDamaged, PartSentence(name, why)};
  return bytes;
}

Result<std::string> ZipPackage::ReadXmlPart(std::string_view name) {
  const std::optional<std::size_t> entry = Find(name);
  if (!entry) return Missing(name);
  std::string bytes;
  const std::string why = Bytes(*entry, limits_.maxXmlBytes, bytes);
  if (!why.empty()) return Error{ErrorCode::kDamaged, PartSentence(name, why)};
  const XmlForm form = DetectXmlForm(bytes);
  const bool wide = form.encoding != XmlEncoding::kUtf8;
  if (wide) {
    std::string utf8;
    if (!Utf16ToUtf8(bytes, form, utf8)) {
      return Error{ErrorCode::kDamaged, PartSentence(name, "there are bytes that are not UTF-16")};
    }
    bytes = std::move(utf8);
    const std::lock_guard<std::mutex> lock(mutex_);
    utf16_.insert_or_assign(*entry, form);
  }
  XmlLimits bounds;
  bounds.maxNodes = limits_.maxXmlNodes;
  bounds.maxDepth = limits_.maxXmlDepth;
  const XmlVerdict verdict = CheckXml(bytes, bounds, wide);
  if (verdict.fault != XmlFault::kNone) {
    return Error{ErrorCode::kDamaged,
                 PartSentence(name, "it is not good XML, " + DescribeXmlFault(verdict))};
  }
  return bytes;
}

Result<std::vector<Relationship>> ZipPackage::Relationships(std::string_view name) {
  const std::string part = RelationshipsPartName(name);
  std::vector<Relationship> relationships;
  if (!HasPart(part)) return relationships;
  const Result<std::string> xml = ReadXmlPart(part);
  if (!xml) return xml.error();
  const std::string why = ParseRelationships(name, xml.value(), relationships);
  if (!why.empty()) return Error{ErrorCode::kDamaged, PartSentence(part, why)};
  return relationships;
}

bool ZipPackage::IsOriginal(std::size_t entry, const PartBytes& part) {
  if (IsAdded(entry)) return false;
  const ZipEntry& original = archive_.Entries()[entry];
  if (original.crc != part.crc || original.size != part.bytes.size()) return false;
  std::string now;
  return archive_.Read(entry, now).empty() && now == part.bytes;
}

void ZipPackage::PutPart(std::string_view name, std::string bytes) {
  if (PartKey(name) == PartKey(kContentTypesPart)) types_.Parse(bytes);
  const std::size_t weight = bytes.size();
  PutPartLater(name, weight, [held = std::move(bytes)]() mutable { return std::move(held); });
}

void ZipPackage::PutPartLater(std::string_view name, std::size_t weight,
                              std::function<std::string()> make) {
  const std::optional<std::size_t> entry = Find(name);
  if (!entry) {
    if (putFault_.empty()) putFault_ = "The part " + std::string(name) + " is missing.";
    return;
  }
  std::optional<XmlForm> form;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto wide = utf16_.find(*entry);
    if (wide != utf16_.end()) form = wide->second;
  }
  std::shared_ptr<PackingJob> job =
      compressor_.Put(weight, [this, entry = *entry, form, make = std::move(make)] {
        PartBytes part;
        part.bytes = make();
        if (form) part.bytes = Utf8ToUtf16(part.bytes, *form);
        part.crc = Crc32(part.bytes);
        part.original = IsOriginal(entry, part);
        return part;
      });
  const std::lock_guard<std::mutex> lock(mutex_);
  edits_.insert_or_assign(*entry, std::move(job));
}

Result<void> ZipPackage::AddPart(std::string_view name, std::string_view contentType,
                                 std::string bytes) {
  if (!EntryNameFault(name).empty() || name.ends_with('/')) {
    return Error{ErrorCode::kBadArgument,
                 "The part name \"" + Printable(name) + "\" cannot be used."};
  }
  if (HasPart(name)) {
    return Error{ErrorCode::kExists, "There is a part " + std::string(name) + " already."};
  }
  if (PartNames().size() >= limits_.maxEntries) {
    return Error{ErrorCode::kTooLarge, "The file cannot hold more parts."};
  }
  Result<std::string> types = ReadXmlPart(kContentTypesPart);
  if (!types) return std::move(types).error();
  const std::vector<Edit> edits = types_.Adding(*types, name, contentType);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    parts_.emplace(PartKey(name), archive_.Entries().size() + added_.size());
    added_.emplace_back(name);
  }
  if (!edits.empty()) PutPart(kContentTypesPart, ApplyEdits(*types, edits));
  PutPart(name, std::move(bytes));
  return {};
}

Result<void> ZipPackage::RemovePart(std::string_view name) {
  const std::optional<std::size_t> entry = Find(name);
  if (!entry) return Missing(name);
  Result<std::string> types = ReadXmlPart(kContentTypesPart);
  if (!types) return std::move(types).error();
  const std::vector<Edit> edits = types_.Removing(*types, name);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    parts_.erase(PartKey(name));
    edits_.erase(*entry);
    if (IsAdded(*entry)) {
      added_[*entry - archive_.Entries().size()].clear();
    } else {
      removed_.insert(*entry);
    }
  }
  if (!edits.empty()) PutPart(kContentTypesPart, ApplyEdits(*types, edits));
  return {};
}

bool ZipPackage::Edited() {
  return !removed_.empty() || std::any_of(edits_.begin(), edits_.end(), [this](const auto& edit) {
    return !compressor_.Wait(edit.second) || !edit.second->original;
  });
}

std::string ZipPackage::CheckUnchanged(const OutputFile& output) const {
  constexpr char kChanged[] = "Another program changed the deck meanwhile.";
  const std::optional<FileState> now = path_.empty() ? std::nullopt : FileStateAt(path_);
  if (file_.WasChanged() || (now && now != expected_)) return kChanged;
  if (output.TargetChanged()) return "Another program changed the file meanwhile.";
  return {};
}

// Everything, edits included. Empty when done, else one sentence.
std::string ZipPackage::WriteTo(OutputFile& output) {
  if (!Edited()) {
    output.CopyFrom(file_, 0, file_.Size(), 0);
    return output.Failure();
  }
  ZipChanges changes;
  changes.removed = removed_;
  for (const auto& [entry, job] : edits_) {
    if (!compressor_.Wait(job)) {
      return "There is not enough memory to write the part " + NameOf(entry) + ".";
    }
    if (IsAdded(entry)) {
      changes.added.push_back({NameOf(entry), &job->packed});
    } else if (!job->original) {
      changes.replaced.push_back({entry, &job->packed});
    }
  }
  return archive_.Write(changes, output);
}

Result<void> ZipPackage::Save(const std::string& path) {
  if (!putFault_.empty()) return Error{ErrorCode::kNotFound, putFault_};
  OutputFile output;
  std::string sentence = output.Open(path, file_.Permissions());
  if (!sentence.empty()) return Error{ErrorCode::kInputOutput, std::move(sentence)};
  const bool overItself = FileStateAt(path) == expected_;
  if (overItself && !Edited()) return {};
  // Before and after: a program that writes meanwhile may have been at it when the copy was made.
  sentence = CheckUnchanged(output);
  if (!sentence.empty()) return Error{ErrorCode::kChanged, std::move(sentence)};
  sentence = WriteTo(output);
  if (!sentence.empty()) return Error{ErrorCode::kInputOutput, std::move(sentence)};
  sentence = CheckUnchanged(output);
  if (!sentence.empty()) return Error{ErrorCode::kChanged, std::move(sentence)};
  sentence = output.Commit();
  if (!sentence.empty()) return Error{ErrorCode::kInputOutput, std::move(sentence)};
  if (overItself) expected_ = FileStateAt(path).value_or(expected_);
  return {};
}

Result<std::string> ZipPackage::SaveBytes() {
  if (!putFault_.empty()) return Error{ErrorCode::kNotFound, putFault_};
  OutputFile output;
  std::string sentence = output.OpenInMemory();
  if (sentence.empty()) sentence = WriteTo(output);
  if (!sentence.empty()) return Error{ErrorCode::kInputOutput, std::move(sentence)};
  std::string bytes(static_cast<std::size_t>(output.Size()), '\0');
  if (!output.ReadAt(0, bytes.data(), bytes.size())) {
    return Error{ErrorCode::kNoMemory, "There is not enough memory."};
  }
  return bytes;
}

}  // namespace

Result<std::unique_ptr<Package>> Package::Open(const std::string& path,
                                               const PackageLimits& limits) {
  auto package = std::make_unique<ZipPackage>(limits);
  std::string sentence = package->Load(path);
  if (!sentence.empty()) return Error{ErrorCode::kDamaged, std::move(sentence)};
  return std::unique_ptr<Package>(std::move(package));
}

Result<std::unique_ptr<Package>> Package::OpenBytes(std::string_view bytes,
                                                    const PackageLimits& limits) {
  auto package = std::make_unique<ZipPackage>(limits);
  std::string sentence = package->LoadBytes(bytes);
  if (!sentence.empty()) return Error{ErrorCode::kDamaged, std::move(sentence)};
  return std::unique_ptr<Package>(std::move(package));
}

}  // namespace quillmarch::host
