// Opening a deck: follows the relationships from the package's root, refuses what the structure
// lacks and names the leaves that are missing.
#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "host/deck/Deck.h"
#include "host/package/xml/XmlText.h"
#include "host/package/zip/ReadAhead.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kP = XmlNamespace::kPresentation;
constexpr std::int64_t kMaxSlideId = 2147483647;
constexpr double kEmuPerPoint = 12700.0;
constexpr std::size_t kMaxSlides = 20000;
// Missing parts are named one by one up to this many; more of them are only counted.
constexpr std::size_t kMostNamed = 5;
// Slides are read and checked on a second thread, this far ahead.
constexpr std::size_t kLeastAhead = 8;
constexpr std::size_t kMostAhead = 24;

using Links = std::vector<Relationship>;

// A part that the structure needs, as it was read.
struct ReadPart {
  std::string name;  // empty: not read
  Result<void> sound;
  Result<Links> links = Links();
};

// A slide with its notes page.
struct SlideParts {
  ReadPart slide;
  ReadPart notes;
};

Error Damaged(std::string words) {
  return {ErrorCode::kDamaged, std::move(words)};
}
Error Missing(std::string words) {
  return {ErrorCode::kNotFound, std::move(words)};
}

// Whether the part is good XML with that root element.
Result<void> CheckRoot(Package& package, const std::string& part, const char* rootName) {
  const Result<std::string> read = package.ReadXmlPart(part);
  if (!read) return read.error();
  // The root's name is enough; the whole is parsed when it is needed.
  const std::string_view bytes = *read;
  std::size_t at = 0;
  while ((at = bytes.find('<', at)) != std::string_view::npos) {
    const char next = at + 1 < bytes.size() ? bytes[at + 1] : '\0';
    if (next != '?' && next != '!') break;
    const bool comment = bytes.substr(at).starts_with("<!--");
    at = bytes.find(comment ? "-->" : "?>", at + 2);
  }
  if (at == std::string_view::npos) return Damaged("The part " + part + " is empty.");
  std::string_view name = bytes.substr(at + 1);
  name = name.substr(0, name.find_first_of(" \t\r\n/>"));
  if (const std::size_t colon = name.find(':'); colon != std::string_view::npos) {
    name.remove_prefix(colon + 1);
  }
  if (name == rootName) return {};
  return Damaged("The part " + part +
                 " does not hold what it should: its root is not p:" + rootName + ".");
}

ReadPart ReadOne(Package& package, const std::string& part, const char* rootName) {
  return {part, CheckRoot(package, part, rootName), package.Relationships(part)};
}

// Any thread.
SlideParts ReadSlideParts(Package& package, const std::string& part) {
  SlideParts parts{ReadOne(package, part, "sld"), {}};
  if (!parts.slide.links) return parts;
  for (const Relationship& link : *parts.slide.links) {
    if (link.external || RelationshipKindOf(link.type) != RelationshipKind::kNotesSlide) continue;
    if (package.HasPart(link.target)) parts.notes = ReadOne(package, link.target, "notes");
    break;
  }
  return parts;
}

bool IsPresentationType(std::string_view type) {
  constexpr std::string_view kTypes[] = {
      "application/vnd.openxmlformats-officedocument.presentationml.presentation.main+xml",
      "application/vnd.openxmlformats-officedocument.presentationml.template.main+xml",
      "application/vnd.openxmlformats-officedocument.presentationml.slideshow.main+xml",
      "application/vnd.ms-powerpoint.presentation.macroEnabled.main+xml",
      "application/vnd.ms-powerpoint.template.macroEnabled.main+xml",
      "application/vnd.ms-powerpoint.slideshow.macroEnabled.main+xml"};
  return std::find(std::begin(kTypes), std::end(kTypes), type) != std::end(kTypes);
}

// The deck cannot be understood without the targets of these.
const char* StructureWord(RelationshipKind kind) {
  switch (kind) {
    case RelationshipKind::kSlideLayout:
      return "slide layout";
    case RelationshipKind::kSlideMaster:
      return "slide master";
    case RelationshipKind::kNotesSlide:
      return "notes page";
    case RelationshipKind::kNotesMaster:
      return "notes master";
    default:
      return nullptr;
  }
}

std::string LowerKey(std::string name) {
  for (char& c : name) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return name;
}

}  // namespace

class DeckReader {
 public:
  DeckReader(Deck& deck, std::vector<std::string>& warnings)
      : deck_(deck), package_(*deck.package_), warnings_(warnings) {}

  Result<void> Read();

 private:
  // The relationships of a part, read once; what they lack of the structure is the error.
  // `early` is the part as it was read ahead, null or of another part when it was not.
  Result<void> LinksOf(const std::string& part, const Links*& links, ReadPart* early = nullptr);
  // Reads a part that the structure needs and checks its root element.
  Result<void> Load(const std::string& part, const char* rootName, pugi::xml_document& document,
                    std::string& bytes);
  Result<void> CheckPart(const std::string& part, const char* rootName, ReadPart* early = nullptr);
  void StartAhead(std::size_t slide);
  Result<void> ReadPresentation();
  Result<void> ReadSlide(const std::string& part, std::int64_t id);
  Result<void> AddLayout(const std::string& part, std::uint32_t& index);
  Result<void> AddMaster(const std::string& part);
  Result<void> WalkLeaves();

  Deck& deck_;
  Package& package_;
  std::vector<std::string>& warnings_;
  std::unordered_map<std::string, std::uint32_t> layoutByPart_;
  std::unordered_set<std::string> checked_;
  std::unordered_map<std::string, Links> links_;
  std::vector<const std::string*> slideParts_;  // that exist, in order
  std::size_t started_ = 0;                     // of them, for reading ahead
  // What is kept of a slide is small, so its number is bound enough.
  ReadAhead<SlideParts> ahead_{kMostAhead, [](const SlideParts&) { return std::size_t{1}; }};
};

Result<void> DeckReader::LinksOf(const std::string& part, const Links*& links, ReadPart* early) {
  const auto [entry, fresh] = links_.try_emplace(LowerKey(part));
  links = &entry->second;
  if (!fresh) return {};
  const bool known = early != nullptr && early->name == part;
  Result<Links> read = known ? std::move(early->links) : package_.Relationships(part);
  if (!read) return std::move(read).error();
  entry->second = *std::move(read);
  for (const Relationship& link : *links) {
    if (link.external || package_.HasPart(link.target)) continue;
    if (const char* const word = StructureWord(RelationshipKindOf(link.type))) {
      return Missing("The part " + link.target + " (a " + word + "), which " + part +
                     " needs, is missing.");
    }
  }
  return {};
}

Result<void> DeckReader::Load(const std::string& part, const char* rootName,
                              pugi::xml_document& document, std::string& bytes) {
  Result<std::string> read = package_.ReadXmlPart(part);
  if (!read) return std::move(read).error();
  bytes = *std::move(read);
  if (!ParseXml(document, bytes)) {
    return Error{ErrorCode::kNoMemory, "There is not enough memory to read the part " + part + "."};
  }
  const XmlNames names(bytes);
  if (!names.Is(document.document_element(), kP, rootName)) {
    return Damaged("The part " + part +
                   " does not hold what it should: its root is not p:" + rootName + ".");
  }
  return {};
}

void DeckReader::StartAhead(std::size_t slide) {
  if (started_ >= slide + kLeastAhead) return;
  std::vector<std::pair<std::uint64_t, std::function<SlideParts()>>> pieces;
  started_ = std::max(started_, slide + 1);
  for (; started_ < std::min(slide + kMostAhead, slideParts_.size()); ++started_) {
    const std::string& part = *slideParts_[started_];
    pieces.emplace_back(started_, [this, &part] { return ReadSlideParts(package_, part); });
  }
  ahead_.Start(std::move(pieces));
}

Result<void> DeckReader::CheckPart(const std::string& part, const char* rootName, ReadPart* early) {
  if (!checked_.insert(LowerKey(part)).second) return {};
  const bool known = early != nullptr && early->name == part;
  return known ? early->sound : CheckRoot(package_, part, rootName);
}

Result<void> DeckReader::AddMaster(const std::string& part) {
  if (checked_.contains(LowerKey(part))) return {};
  Result<void> sound = CheckPart(part, "sldMaster");
  const Links* links = nullptr;
  return sound ? LinksOf(part, links) : sound;
}

Result<void> DeckReader::AddLayout(const std::string& part, std::uint32_t& index) {
  const auto [entry, fresh] =
      layoutByPart_.emplace(LowerKey(part), static_cast<std::uint32_t>(deck_.layouts_.size()));
  index = entry->second;
  if (!fresh) return {};
  deck_.layouts_.emplace_back().part = part;
  Result<void> sound = CheckPart(part, "sldLayout");
  const Links* links = nullptr;
  if (sound) sound = LinksOf(part, links);
  if (!sound) return sound;
  for (const Relationship& link : *links) {
    if (!sound) break;
    if (link.external || RelationshipKindOf(link.type) != RelationshipKind::kSlideMaster) continue;
    deck_.layouts_[index].master = link.target;
    sound = AddMaster(link.target);
  }
  return sound;
}

Result<void> DeckReader::ReadSlide(const std::string& part, std::int64_t id) {
  SlideRecord slide;
  slide.part = part;
  slide.id = id >= 1 && id <= kMaxSlideId ? static_cast<std::int32_t>(id) : 0;
  slide.layout = kNoLayout;
  const std::size_t place = deck_.slides_.size();
  StartAhead(place);
  std::optional<SlideParts> early = ahead_.Take(place);
  if (!early) early = ReadSlideParts(package_, part);
  Result<void> sound = CheckPart(part, "sld", &early->slide);
  const Links* links = nullptr;
  if (sound) sound = LinksOf(part, links, &early->slide);
  if (!sound) return sound;
  for (const Relationship& link : *links) {
    if (!sound) break;
    if (link.external) continue;
    const RelationshipKind kind = RelationshipKindOf(link.type);
    if (kind == RelationshipKind::kSlideLayout && slide.layout == kNoLayout) {
      sound = AddLayout(link.target, slide.layout);
    } else if (kind == RelationshipKind::kNotesSlide && slide.notesPart.empty()) {
      slide.notesPart = link.target;
      sound = CheckPart(link.target, "notes", &early->notes);
      const Links* notes = nullptr;
      if (sound) sound = LinksOf(link.target, notes, &early->notes);
    }
  }
  deck_.slides_.push_back(std::move(slide));
  return sound;
}

Result<void> DeckReader::ReadPresentation() {
  const Result<Links> roots = package_.Relationships("");
  if (!roots) return roots.error();
  for (const Relationship& link : *roots) {
    if (!link.external && RelationshipKindOf(link.type) == RelationshipKind::kOfficeDocument) {
      deck_.presentationPart_ = link.target;
      break;
    }
  }
  const std::string& part = deck_.presentationPart_;
  if (part.empty()) {
    return Error{ErrorCode::kUnsupported,
                 "There is no main document in the file, so it is not a presentation."};
  }
  if (!package_.HasPart(part)) {
    return Missing("The part " + part + " (the presentation) is missing.");
  }
  const std::string type = package_.ContentType(part);
  if (!IsPresentationType(type)) {
    return Error{ErrorCode::kUnsupported,
                 "The part " + part + " is not a presentation: its content type is " +
                     (type.empty() ? "not given" : "\"" + type + "\"") + "."};
  }
  pugi::xml_document document;
  std::string bytes;
  Result<void> sound = Load(part, "presentation", document, bytes);
  if (!sound) return sound;
  const Links* links = nullptr;
  sound = LinksOf(part, links);
  if (!sound) return sound;

  std::unordered_map<std::string, const Relationship*> byId;
  for (const Relationship& link : *links) {
    byId.emplace(link.id, &link);
    if (link.external) continue;
    const RelationshipKind kind = RelationshipKindOf(link.type);
    if (kind == RelationshipKind::kNotesMaster) deck_.notesMasterPart_ = link.target;
    if (kind == RelationshipKind::kTableStyles) deck_.tableStylesPart_ = link.target;
    if (kind == RelationshipKind::kSlideMaster) sound = AddMaster(link.target);
    if (!sound) return sound;
  }
  if (!deck_.notesMasterPart_.empty()) {
    sound = CheckPart(deck_.notesMasterPart_, "notesMaster");
    if (!sound) return sound;
  }

  const XmlNames names(bytes);
  const pugi::xml_node root = document.document_element();
  if (const pugi::xml_node size = names.Child(root, kP, "sldSz")) {
    deck_.slideWidth_ = static_cast<double>(WholeAttribute(size, "cx", 9144000)) / kEmuPerPoint;
    deck_.slideHeight_ = static_cast<double>(WholeAttribute(size, "cy", 6858000)) / kEmuPerPoint;
  }
  deck_.firstSlideNumber_ = static_cast<std::int32_t>(
      std::clamp<std::int64_t>(WholeAttribute(root, "firstSlideNum", 1), 0, 9999));
  const pugi::xml_node text = names.Child(root, kP, "defaultTextStyle");
  deck_.defaultText_ = ParseLevels(names, text);
  deck_.defaultParagraphs_ = ParseParagraphLevels(names, text);

  // A list with an entry that leads nowhere ends there, and so does reading ahead.
  for (const pugi::xml_node entry : names.Child(root, kP, "sldIdLst").children()) {
    if (entry.type() != pugi::node_element || !names.Is(entry, kP, "sldId")) continue;
    const auto link = byId.find(std::string(names.RelationshipAttribute(entry, "id")));
    if (link == byId.end() || link->second->external || slideParts_.size() >= kMaxSlides) break;
    slideParts_.push_back(&link->second->target);
  }
  for (const pugi::xml_node entry : names.Child(root, kP, "sldIdLst").children()) {
    if (entry.type() != pugi::node_element || !names.Is(entry, kP, "sldId")) continue;
    if (deck_.slides_.size() >= kMaxSlides) {
      return Error{ErrorCode::kTooLarge, "The part " + part + " lists more than " +
                                             std::to_string(kMaxSlides) + " slides."};
    }
    const std::string id(names.RelationshipAttribute(entry, "id"));
    const std::string number = std::to_string(deck_.slides_.size() + 1);
    const auto link = byId.find(id);
    if (link == byId.end() || link->second->external ||
        RelationshipKindOf(link->second->type) != RelationshipKind::kSlide) {
      return Damaged("The part " + part + " lists slide " + number + " by the relationship \"" +
                     id + "\", which does not lead to a slide.");
    }
    const std::string& target = link->second->target;
    if (!package_.HasPart(target)) {
      return Missing("The part " + target + " (slide " + number + ") is missing.");
    }
    sound = ReadSlide(target, WholeAttribute(entry, "id", 0));
    if (!sound) return sound;
  }
  return {};
}

// Whatever else can be reached: pictures, charts with their workbooks, diagrams.
Result<void> DeckReader::WalkLeaves() {
  std::vector<std::string> waiting = {deck_.presentationPart_};
  std::unordered_set<std::string> seen = {LowerKey(deck_.presentationPart_)};
  std::set<std::string> missing;
  std::vector<std::string> named;
  while (!waiting.empty()) {
    const std::string part = std::move(waiting.back());
    waiting.pop_back();
    const Links* links = nullptr;
    const Result<void> sound = LinksOf(part, links);
    if (!sound) return sound;
    for (const Relationship& link : *links) {
      if (link.external || link.target.empty()) continue;
      if (!package_.HasPart(link.target)) {
        // A jump inside the file names no part.
        if (RelationshipKindOf(link.type) == RelationshipKind::kHyperlink) continue;
        if (missing.insert(LowerKey(link.target)).second && missing.size() <= kMostNamed) {
          named.push_back("The part " + link.target + ", which " + part +
                          " refers to, is missing; the reference is kept as it is.");
        }
        continue;
      }
      if (seen.insert(LowerKey(link.target)).second) waiting.push_back(link.target);
    }
  }
  if (missing.size() > kMostNamed) {
    named = {std::to_string(missing.size()) + " parts that the deck refers to are missing, " +
             *missing.begin() + " among them; the references are kept as they are."};
  }
  warnings_.insert(warnings_.end(), std::make_move_iterator(named.begin()),
                   std::make_move_iterator(named.end()));
  return {};
}

Result<void> DeckReader::Read() {
  const Result<void> sound = ReadPresentation();
  return sound ? WalkLeaves() : sound;
}

Result<std::unique_ptr<Deck>> Deck::Open(const std::string& path,
                                         std::vector<std::string>& warnings) {
  Result<std::unique_ptr<Package>> package = Package::Open(path);
  if (!package) return std::move(package).error();
  return Open(*std::move(package), warnings);
}

Result<std::unique_ptr<Deck>> Deck::Open(std::unique_ptr<Package> package,
                                         std::vector<std::string>& warnings) {
  std::unique_ptr<Deck> made(new Deck(std::move(package)));
  Result<void> sound = DeckReader(*made, warnings).Read();
  if (!sound) return std::move(sound).error();
  return made;
}

}  // namespace quillmarch::host::deck
