// A presentation file: its slides in order, what they inherit, and their parts parsed on demand.
// Few parsed parts are held at a time; an edited one goes back into the package when it makes room
// for another. Host thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/deck/Inheritance.h"
#include "host/deck/SlidePart.h"
#include "host/deck/TableStyles.h"
#include "host/package/Package.h"
#include "host/package/zip/ReadAhead.h"

namespace quillmarch::host::deck {

// A slide (0-based) or its notes page.
struct PageAddress {
  std::uint32_t slide = 0;
  bool notes = false;
  friend bool operator==(const PageAddress&, const PageAddress&) = default;
};

// A shape of a page, or with row and column (0-based) a cell of a table.
struct ShapeAddress {
  PageAddress page;
  std::uint32_t shape = 0;
  std::int32_t row = -1;
  std::int32_t column = -1;
  bool IsCell() const { return row >= 0; }
  friend bool operator==(const ShapeAddress&, const ShapeAddress&) = default;
};

struct SlideRecord {
  std::int32_t id = 0;
  std::string part;
  std::string notesPart;     // empty when the slide has none
  std::uint32_t layout = 0;  // into the deck's layouts; kNoLayout when the slide names none
};
inline constexpr std::uint32_t kNoLayout = 0xFFFFFFFF;

class Deck {
 public:
  // Refuses with one sentence what cannot be served: no presentation, a part that the structure
  // needs and is missing or broken. A missing leaf is one more sentence in `warnings`.
  static Result<std::unique_ptr<Deck>> Open(const std::string& path,
                                            std::vector<std::string>& warnings);
  // The same over a package that is open already.
  static Result<std::unique_ptr<Deck>> Open(std::unique_ptr<Package> package,
                                            std::vector<std::string>& warnings);

  std::uint32_t SlideCount() const { return static_cast<std::uint32_t>(slides_.size()); }
  const SlideRecord& Slide(std::uint32_t slide) const { return slides_[slide]; }
  bool HasNotes(std::uint32_t slide) const { return !slides_[slide].notesPart.empty(); }
  double SlideWidth() const { return slideWidth_; }    // points
  double SlideHeight() const { return slideHeight_; }  // points
  std::int32_t FirstSlideNumber() const { return firstSlideNumber_; }

  // The parsed page, valid until the next call of Page or Save; null when it cannot be read. A
  // slide without a notes page answers with an empty one that takes no edits.
  SlidePart* Page(PageAddress page);
  // The part's name; empty for a notes page that the file does not have.
  const std::string& PartOf(PageAddress page) const;

  // The text of a shape or cell; null when it has none. Valid as Page is.
  TextBody* Text(const ShapeAddress& address);
  // What that text inherits; worked out when first asked for.
  const BodyStyle* Style(const ShapeAddress& address, TextBody& text);
  // The frame in slide coordinates.
  ShapeBox Box(const ShapeAddress& address);
  // Moves and sizes a shape, in slide coordinates; a group's shapes follow it. False when the shape
  // has no place of its own (a cell, a group without one).
  bool PutBox(const ShapeAddress& address, const ShapeBox& box);
  // The share by which a font size shows smaller than it is stored.
  double FontScale(const ShapeAddress& address);

  // The properties of a text frame as they are now, with inheritance; all set.
  FrameProps Frame(const ShapeAddress& address);
  // Changes what `changes` says of wrap, autofit and insets. False for what has no frame of its
  // own (a cell, a shape without a text body).
  bool PutFrame(const ShapeAddress& address, const FrameProps& changes);
  // What the paragraphs of a text inherit, by level, for a layout.
  ParagraphLevels Paragraphs(const ShapeAddress& address, const TextBody& text);
  // Equal as long as neither the text nor any frame of its page has changed.
  struct FrameVersion {
    std::uint64_t page = 0, text = 0, frames = 0;
    friend bool operator==(const FrameVersion&, const FrameVersion&) = default;
  };
  FrameVersion Version(const ShapeAddress& address);

  // Whether the shape fits itself to its text or its text to itself, and one of them has changed
  // since it last did.
  bool NeedsFit(const ShapeAddress& address);
  void SetFitted(const ShapeAddress& address);
  // What fits a shape. It is called for each one that needs it before its page is written back,
  // and may ask only for that page.
  void SetFit(std::function<void(const ShapeAddress&)> fit) { fit_ = std::move(fit); }

  Package& package() { return *package_; }
  const std::string& PresentationPart() const { return presentationPart_; }

  // True when an edit was made since the deck was opened.
  bool Edited();
  // Saves atomically; without edits the file is a byte for byte copy.
  Result<void> Save(const std::string& path);
  // The bytes that Save would write.
  Result<std::string> SaveBytes();

 private:
  friend class DeckReader;
  static constexpr std::size_t kMostAheadBytes = 1 << 20;  // of the parts, as their bytes count
  explicit Deck(std::unique_ptr<Package> package) : package_(std::move(package)) {}

  struct Held {
    PageAddress page;
    std::unique_ptr<SlidePart> part;
    std::uint64_t used = 0;
    std::uint64_t serial = 0;  // no two of a deck are equal
  };
  struct Layout {
    std::string part;
    std::string master;
    std::shared_ptr<const LayoutStyles> styles;  // read when first asked for
    // Styles of bodies that add nothing of their own, by placeholder.
    std::map<std::string, std::shared_ptr<const BodyStyle>> plainBodies;
    // The same of cells, by what the table's style gives them.
    std::vector<std::pair<CharProps, std::shared_ptr<const BodyStyle>>> plainCells;
  };
  void WriteBack(Held& held);
  void WriteAllBack();
  // `formats` as SlidePart::ReadTexts takes it. Any thread.
  std::unique_ptr<SlidePart> ReadPart(const std::string& part, bool formats);
  std::unique_ptr<SlidePart> ReadPage(PageAddress page);
  void StartAhead(PageAddress page);
  static std::size_t WeightOf(const std::unique_ptr<SlidePart>& part);
  Held* HeldPage(PageAddress page);
  FrameState* FrameOf(SlidePart& part, const ShapeAddress& address);
  struct GroupScale {
    ShapeBox outer, inner;
    double Across() const { return outer.width / inner.width; }
    double Down() const { return outer.height / inner.height; }
  };
  static std::optional<GroupScale> ScaleOf(const SlidePart& part, std::uint32_t group);
  std::string ReadXml(const std::string& part);
  ThemeStyles ReadThemeOf(const std::string& part);
  std::shared_ptr<const MasterStyles> MasterOf(const std::string& part);
  const LayoutStyles& LayoutOf(PageAddress page);
  Layout& LayoutEntry(PageAddress page);
  const TableStyles& TableStyleSheet();
  std::shared_ptr<const BodyStyle> StyleOf(SlidePart& part, const ShapeAddress& address,
                                           pugi::xml_node text);
  ShapeBox OwnBox(SlidePart& part, PageAddress page, std::uint32_t shape);
  ShapeBox FileBox(SlidePart& part, PageAddress page, std::uint32_t shape);

  std::unique_ptr<Package> package_;
  std::string presentationPart_;
  std::vector<SlideRecord> slides_;
  std::vector<Layout> layouts_;
  Layout notesLayout_;  // of every notes page
  Layout bareLayout_;   // of a slide that names none
  std::string notesMasterPart_;
  std::string tableStylesPart_;
  LevelProps defaultText_;
  std::shared_ptr<const ParagraphLevels> defaultParagraphs_;
  double slideWidth_ = 720, slideHeight_ = 540;
  std::int32_t firstSlideNumber_ = 1;

  std::vector<Held> held_;
  std::uint64_t clock_ = 0;
  // A cell's text asked for last, null once its page may have gone.
  ShapeAddress lastTextAddress_;
  TextBody* lastText_ = nullptr;
  std::function<void(const ShapeAddress&)> fit_;
  std::unique_ptr<SlidePart> blankNotes_;
  std::map<std::string, std::shared_ptr<const MasterStyles>> masters_;
  std::optional<TableStyles> tableStyles_;

  std::uint32_t lastRead_ = kNoLayout;  // slide of the page read last, none at first
  std::uint32_t nextAhead_ = 0;         // slide up to which pages were started ahead
  bool notesAreRead_ = false;
  bool isWritten_ = false;  // so the look of runs is asked for
  // Pages that made room, for the second thread to take apart.
  std::vector<std::unique_ptr<SlidePart>> gone_;
  // The last member: its thread reads the package.
  ReadAhead<std::unique_ptr<SlidePart>> ahead_{kMostAheadBytes, &Deck::WeightOf};
};

}  // namespace quillmarch::host::deck
