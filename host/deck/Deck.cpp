#include "host/deck/Deck.h"

#include <algorithm>
#include <utility>

#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {
namespace {

// A run works on one slide and its notes page at a time; two more keep a view or a test that looks
// back and forth from parsing again and again.
constexpr std::size_t kHeldPages = 4;
// Of those that made room, at most as many wait to be taken apart.
constexpr std::size_t kMostGone = 16;

// How many slides are read ahead: the first when fewer than that are left, up to the second.
constexpr std::uint32_t kLeastAhead = 3;
constexpr std::uint32_t kMostAhead = 8;

// What a parsed part holds in memory for each byte of it.
constexpr std::size_t kTreeWeight = 6;

std::uint64_t AheadKey(PageAddress page) {
  return std::uint64_t{page.slide} * 2 + (page.notes ? 1 : 0);
}

// What a slide without a notes page shows for one.
constexpr std::string_view kBlankNotes =
    "<p:notes xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\" "
    "xmlns:p=\"http://schemas.openxmlformats.org/presentationml/2006/main\"><p:cSld><p:spTree>"
    "<p:nvGrpSpPr/><p:grpSpPr/>"
    "<p:pic><p:nvPicPr><p:cNvPr id=\"2\" name=\"Slide Image Placeholder 1\"/><p:cNvPicPr/>"
    "<p:nvPr><p:ph type=\"sldImg\"/></p:nvPr></p:nvPicPr><p:spPr/></p:pic>"
    "<p:sp><p:nvSpPr><p:cNvPr id=\"3\" name=\"Notes Placeholder 2\"/><p:cNvSpPr/>"
    "<p:nvPr><p:ph type=\"body\" idx=\"1\"/></p:nvPr></p:nvSpPr><p:spPr/>"
    "<p:txBody><a:bodyPr/><a:lstStyle/><a:p/></p:txBody></p:sp>"
    "</p:spTree></p:cSld></p:notes>";

bool IsWide(std::string_view bytes) {
  if (bytes.size() < 2) return false;
  const auto first = static_cast<unsigned char>(bytes[0]);
  const auto second = static_cast<unsigned char>(bytes[1]);
  return first >= 0xFE || first == 0 || second == 0;
}

}  // namespace

const std::string& Deck::PartOf(PageAddress page) const {
  const SlideRecord& slide = slides_[page.slide];
  return page.notes ? slide.notesPart : slide.part;
}

// The part was checked when the deck was opened, and edits keep it good; only UTF-16 has to be
// turned into UTF-8 again.
std::string Deck::ReadXml(const std::string& part) {
  Result<std::string> read = package_->ReadPart(part);
  if (read && IsWide(*read)) read = package_->ReadXmlPart(part);
  return read ? *std::move(read) : std::string();
}

std::size_t Deck::WeightOf(const std::unique_ptr<SlidePart>& part) {
  return part ? part->Size() : 0;
}

std::unique_ptr<SlidePart> Deck::ReadPage(PageAddress page) {
  std::optional<std::unique_ptr<SlidePart>> early = ahead_.Take(AheadKey(page));
  StartAhead(page);
  return early && *early ? *std::move(early) : SlidePart::Parse(ReadXml(PartOf(page)));
}

std::unique_ptr<SlidePart> Deck::ReadPart(const std::string& part, bool formats) {
  std::unique_ptr<SlidePart> read = SlidePart::Parse(ReadXml(part));
  if (read) read->ReadTexts(formats);
  return read;
}

// A run goes from slide to slide, so a second thread parses the next ones in advance. A page
// that is held is never read ahead: its edits are not in the package yet.
void Deck::StartAhead(PageAddress page) {
  const bool goesOn = page.slide == lastRead_ || page.slide == lastRead_ + 1;
  lastRead_ = page.slide;
  if (page.notes) notesAreRead_ = true;
  if (!goesOn) {
    ahead_.DropBelow(AheadKey({SlideCount(), false}));
    nextAhead_ = page.slide + 1;
    notesAreRead_ = page.notes;
    return;
  }
  if (nextAhead_ > page.slide + kLeastAhead) return;
  ahead_.DropBelow(AheadKey({page.slide, false}));
  nextAhead_ = std::max(nextAhead_, page.slide + 1);
  std::vector<std::pair<std::uint64_t, std::function<std::unique_ptr<SlidePart>()>>> pieces;
  for (; nextAhead_ < std::min(page.slide + kMostAhead, SlideCount()); ++nextAhead_) {
    for (const bool notes : {false, true}) {
      const PageAddress next{nextAhead_, notes};
      const std::string& name = PartOf(next);
      if (name.empty() || (notes && !notesAreRead_)) continue;
      const auto holds = [&](const Held& held) { return held.page == next; };
      if (std::any_of(held_.begin(), held_.end(), holds)) continue;
      pieces.emplace_back(AheadKey(next),
                          [this, &name, formats = isWritten_] { return ReadPart(name, formats); });
    }
  }
  if (!pieces.empty()) {
    auto gone = std::make_shared<std::vector<std::unique_ptr<SlidePart>>>(std::move(gone_));
    pieces.front().second = [gone, read = std::move(pieces.front().second)] {
      gone->clear();
      return read();
    };
  }
  gone_.clear();
  ahead_.Start(std::move(pieces));
}

SlidePart* Deck::Page(PageAddress page) {
  if (page.slide >= slides_.size()) return nullptr;
  for (Held& held : held_) {
    if (held.page == page) {
      held.used = ++clock_;
      return held.part.get();
    }
  }
  const std::string& name = PartOf(page);
  if (name.empty()) {
    if (!blankNotes_) blankNotes_ = SlidePart::Parse(std::string(kBlankNotes));
    return blankNotes_.get();
  }
  lastText_ = nullptr;
  std::unique_ptr<SlidePart> part = ReadPage(page);
  if (!part) return nullptr;
  if (held_.size() >= kHeldPages) {
    const auto oldest = std::min_element(
        held_.begin(), held_.end(), [](const Held& a, const Held& b) { return a.used < b.used; });
    WriteBack(*oldest);
    if (oldest->part && gone_.size() < kMostGone) gone_.push_back(std::move(oldest->part));
    held_.erase(oldest);
  }
  ++clock_;
  held_.push_back({page, std::move(part), clock_, clock_});
  return held_.back().part.get();
}

Deck::Held* Deck::HeldPage(PageAddress page) {
  if (Page(page) == nullptr) return nullptr;
  for (Held& held : held_) {
    if (held.page == page) return &held;
  }
  return nullptr;
}

void Deck::WriteBack(Held& held) {
  if (!held.part->Edited()) return;
  isWritten_ = true;
  for (std::uint32_t shape = 0; fit_ && shape < held.part->shapes().Count(); ++shape) {
    if (NeedsFit({held.page, shape})) fit_({held.page, shape});
  }
  // A page that was edited is of no further use here, so another thread may take it apart.
  const std::size_t weight = held.part->Size() * kTreeWeight;
  package_->PutPartLater(
      PartOf(held.page), weight,
      [part = std::shared_ptr<SlidePart>(std::move(held.part))] { return part->TakeBytes(); });
}

bool Deck::Edited() {
  const auto edited = [](const Held& held) { return held.part->Edited(); };
  // Those held first: asking the package may take a while.
  return std::any_of(held_.begin(), held_.end(), edited) || package_->Edited();
}

void Deck::WriteAllBack() {
  for (Held& held : held_) WriteBack(held);
  lastText_ = nullptr;
  held_.clear();
}

Result<void> Deck::Save(const std::string& path) {
  WriteAllBack();
  return package_->Save(path);
}

Result<std::string> Deck::SaveBytes() {
  WriteAllBack();
  return package_->SaveBytes();
}

TextBody* Deck::Text(const ShapeAddress& address) {
  SlidePart* const part = Page(address.page);
  if (part == nullptr || address.shape >= part->shapes().Count()) return nullptr;
  if (!address.IsCell()) return part->ShapeText(address.shape);
  // Finding a cell's text takes more than asking it something.
  if (lastText_ == nullptr || lastTextAddress_ != address) {
    lastText_ = part->CellText(address.shape, static_cast<std::uint32_t>(address.row),
                               static_cast<std::uint32_t>(address.column));
    lastTextAddress_ = address;
  }
  return lastText_;
}

const BodyStyle* Deck::Style(const ShapeAddress& address, TextBody& text) {
  if (text.style() == nullptr) {
    if (SlidePart* const part = Page(address.page)) {
      text.SetStyle(StyleOf(*part, address, text.node()));
    }
  }
  return text.style();
}

ThemeStyles Deck::ReadThemeOf(const std::string& part) {
  const Result<std::vector<Relationship>> links = package_->Relationships(part);
  if (!links) return {};
  for (const Relationship& link : *links) {
    if (link.external || RelationshipKindOf(link.type) != RelationshipKind::kTheme) continue;
    // A theme that cannot be read costs its colours and fonts, not the deck.
    const Result<std::string> bytes = package_->ReadXmlPart(link.target);
    pugi::xml_document document;
    if (!bytes.ok() || !ParseXml(document, bytes.value())) break;
    return ParseTheme(XmlNames(bytes.value()), document.document_element());
  }
  return {};
}

std::shared_ptr<const MasterStyles> Deck::MasterOf(const std::string& part) {
  std::shared_ptr<const MasterStyles>& entry = masters_[part];
  if (entry) return entry;
  auto master = std::make_shared<MasterStyles>();
  const std::string bytes = part.empty() ? std::string() : ReadXml(part);
  pugi::xml_document document;
  if (!bytes.empty() && ParseXml(document, bytes)) {
    *master = ParseMaster(XmlNames(bytes), document.document_element());
    master->theme = ReadThemeOf(part);
  }
  entry = master;
  return entry;
}

Deck::Layout& Deck::LayoutEntry(PageAddress page) {
  const std::uint32_t layout = slides_[page.slide].layout;
  Layout& entry = page.notes ? notesLayout_ : layout == kNoLayout ? bareLayout_ : layouts_[layout];
  if (entry.styles) return entry;
  auto styles = std::make_shared<LayoutStyles>();
  const std::string bytes = entry.part.empty() ? std::string() : ReadXml(entry.part);
  pugi::xml_document document;
  if (!bytes.empty() && ParseXml(document, bytes)) {
    *styles = ParseLayout(XmlNames(bytes), document.document_element());
  }
  styles->master = MasterOf(page.notes ? notesMasterPart_ : entry.master);
  entry.styles = styles;
  return entry;
}

const LayoutStyles& Deck::LayoutOf(PageAddress page) {
  return *LayoutEntry(page).styles;
}

const TableStyles& Deck::TableStyleSheet() {
  if (tableStyles_) return *tableStyles_;
  tableStyles_.emplace();
  if (tableStylesPart_.empty() || !package_->HasPart(tableStylesPart_)) {
    tableStyles_ = TableStyles(XmlNames({}), {});
    return *tableStyles_;
  }
  const Result<std::string> bytes = package_->ReadXmlPart(tableStylesPart_);
  pugi::xml_document document;
  const bool read = bytes && ParseXml(document, *bytes);
  const XmlNames names(bytes ? std::string_view(*bytes) : std::string_view());
  tableStyles_ = TableStyles(names, read ? document.document_element() : pugi::xml_node());
  return *tableStyles_;
}

}  // namespace quillmarch::host::deck
