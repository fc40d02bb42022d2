// One text body (p:txBody, a:txBody) as a line of UTF-16 units, and edits on it that keep every
// byte around them. Positions are 0-based units: CR separates paragraphs, VT is a line
// break, a field by its shown text.
//
// The parsed tree is only read. An edit lives here until AppendEdits() states it as edits on the
// part's bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/text/Wide.h"
#include "host/deck/XmlNames.h"
#include "host/deck/text/CharProps.h"
#include "host/deck/text/ParagraphProps.h"
#include "host/deck/text/PrefixSums.h"
#include "host/deck/text/RunFormats.h"
#include "host/package/xml/Splice.h"

namespace quillmarch::host::deck {

// What the text inherits from around it; made by whoever knows the deck.
struct BodyStyle {
  LevelProps levels;
  double fontScale = 1.0;  // of a stored autofit: shown size = nominal size x scale
  ColorMap colorMap;
  ThemeColors colors;
  std::string majorLatin, majorEastAsian, majorComplex;
  std::string minorLatin, minorEastAsian, minorComplex;
};

// A typeface as shown: a name that points into the theme is looked up there.
const std::string& ShownFace(const std::string& face, const BodyStyle& style);

struct TextSpan {
  std::size_t start = 0;
  std::size_t length = 0;
};

// A paragraph as the layout takes it: its content, with inheritance from the body's style
// but for the properties that only a layout asks for.
struct ShownPiece {
  WideView text;                       // good until the next edit, as are the two below
  const CharProps* props = nullptr;    // never null
  const TextExtras* extras = nullptr;  // as the run says, nothing inherited; never null
};
struct ShownParagraph {
  pugi::xml_node properties;  // its a:pPr, may be null
  std::size_t level = 0;      // 0-based
  std::vector<ShownPiece> pieces;
  ShownPiece mark;
};

// The content of a paragraph, in order.
struct TextPiece {
  enum class Kind : std::uint8_t {
    kRun,
    kBreak,
    kField,
    kOpaque  // an equation, a run with unknown content: what is never rewritten
  };
  Kind kind = Kind::kRun;
  bool textChanged = false;
  bool formatChanged = false;
  std::int32_t paragraph = -1;  // where it comes from in the file, -1 for a new one
  std::int32_t place = -1;
  pugi::xml_node node;
  Wide text;
  RunFormatRef own;           // as an edit left it; null: as in `node`
  mutable RunFormatRef read;  // of `node`, once it was asked for

  bool Untouched() const { return !textChanged && !formatChanged && node; }
};

class TextBody {
 public:
  // `names`, `bytes` and `formats` belong to the part and outlive the body.
  TextBody(const XmlNames& names, std::string_view bytes, RunFormats& formats, pugi::xml_node node);

  std::size_t Length() const { return length_; }
  Wide Text(TextSpan span);

  // Paragraphs as they are now, 0-based. The span includes the mark after every paragraph but the
  // last.
  std::size_t ParagraphCount() const { return paragraphs_.size(); }
  TextSpan Paragraph(std::size_t index) const;
  std::size_t ParagraphAt(std::size_t position) const;
  // Stretches of equal character properties in the range; none reaches over a paragraph's end.
  std::vector<TextSpan> Runs(TextSpan span);

  // Replaces the range, which becomes the new text's. CR, LF and CR LF split paragraphs, VT breaks
  // lines. All of it has the properties of the first run of the range. False, and nothing is
  // changed, when the range holds an opaque piece. The same text again is no edit. A range that
  // begins or ends inside a surrogate pair takes the whole pair, here and in EditProps.
  bool PutText(TextSpan& span, WideView text);

  // Calls `visit` for the properties, inheritance included, of each stretch of text in the range;
  // of an empty range for the place where text would be typed. Stops when it returns false.
  void VisitProps(TextSpan span, const std::function<bool(const CharProps&)>& visit);
  // Gives each run of the range the properties that `edit` makes of its a:rPr (raw, maybe empty);
  // runs are split at the range's borders. The mark of an empty paragraph counts as a run.
  using PropertiesEdit = std::function<std::string(std::string_view raw, std::string_view prefix)>;
  void EditProps(TextSpan span, const PropertiesEdit& edit);

  // Reads the look of all its runs beforehand.
  void ReadFormats() const;

  // Every paragraph in order.
  void VisitParagraphs(const std::function<void(const ShownParagraph&)>& visit) const;

  // Set once by the part's owner before properties are asked for.
  void SetStyle(std::shared_ptr<const BodyStyle> style) {
    style_ = std::move(style);
    shown_.clear();
  }
  const BodyStyle* style() const { return style_.get(); }
  pugi::xml_node node() const { return node_; }

  bool Edited() const { return edited_; }
  // Grows with every edit; 0 as the file has it.
  std::uint64_t Revision() const { return revision_; }
  void AppendEdits(std::vector<Edit>& edits) const;

 private:
  struct Para {
    std::int32_t source = -1;  // index in the file, -1 for a new paragraph
    pugi::xml_node node;       // its own, or for a new one the paragraph whose format it takes
    std::size_t length = 0;    // without the mark
    std::size_t level = 0;     // 0-based
    std::vector<TextPiece> pieces;
    RunFormatRef ownEnd;           // a:endParaRPr as edited or added, as raw a:rPr
    mutable RunFormatRef readEnd;  // of the node's a:endParaRPr, once it was asked for
    bool edited = false;
  };

  void ReadParagraph(pugi::xml_node node, Para& para) const;
  bool ReadOpaque(pugi::xml_node node, TextPiece& piece) const;
  void MeasureParagraphs();
  TextSpan WholePairs(TextSpan span);
  void Touch(std::size_t paragraph);
  const RunFormatRef& FormatOf(const TextPiece& piece) const;
  const RunFormatRef& EndFormat(const Para& para) const;
  // With inheritance; good until the next edit.
  const CharProps& ShownProps(const Para& para, const RunFormatRef& format) const;
  std::string RawElement(pugi::xml_node node) const;
  RunFormatRef FormatForText(const Para& para, std::size_t from, std::size_t to) const;
  static bool HoldsOpaque(const Para& para, std::size_t from, std::size_t to);
  void SplitAt(Para& para, std::size_t position);
  pugi::xml_node FormatNode(const TextPiece& piece) const;
  pugi::xml_node EndNode(const Para& para) const;

  std::string PieceXml(const TextPiece& piece) const;
  std::string ParagraphXml(const Para& para) const;
  void AppendParagraphEdits(const Para& para, std::vector<Edit>& edits) const;

  // What a format comes to at one level.
  struct ShownFormat {
    RunFormatRef format;
    std::size_t level = 0;
    CharProps props;
  };

  const XmlNames& names_;
  std::string_view bytes_;
  RunFormats& formats_;
  pugi::xml_node node_;
  std::string prefix_;  // of the drawing namespace, with its colon
  std::vector<Para> paragraphs_;
  PrefixSums starts_;  // of the paragraphs with their marks; the last one's counts too
  std::size_t length_ = 0;
  std::size_t sourceCount_ = 0;
  bool edited_ = false;
  std::uint64_t revision_ = 0;
  std::shared_ptr<const BodyStyle> style_;
  mutable std::deque<ShownFormat> shown_;  // its entries keep their places
};

}  // namespace quillmarch::host::deck
