#include "host/layout/ParagraphText.h"

#include <unicode/ubidi.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>

#include "host/layout/ScriptClass.h"

namespace quillmarch::host::layout {
namespace {

constexpr double kSmallCapsScale = 0.8;
constexpr double kRaisedScale = 2.0 / 3.0;
constexpr double kLineOfSize = 1.2;
constexpr char32_t kNoBreakSpace = 0xA0;
constexpr char16_t kTab = u'\t';
constexpr char16_t kLineBreak = u'\v';
constexpr const char* kDefaultFamily = "Calibri";

char32_t CharacterAt(std::u16string_view text, std::size_t at, std::size_t& next) {
  auto length = static_cast<std::int32_t>(text.size());
  auto place = static_cast<std::int32_t>(at);
  UChar32 character = 0;
  U16_NEXT(text.data(), place, length, character);
  next = static_cast<std::size_t>(place);
  return static_cast<char32_t>(character);
}

// One character to one character of as many units, so that positions stay.
char32_t UpperCase(char32_t character) {
  auto upper = static_cast<char32_t>(u_toupper(static_cast<UChar32>(character)));
  return (upper > 0xFFFF) == (character > 0xFFFF) ? upper : character;
}

void Append(std::u16string& text, char32_t character) {
  if (character > 0xFFFF) {
    text += static_cast<char16_t>(U16_LEAD(static_cast<UChar32>(character)));
    text += static_cast<char16_t>(U16_TRAIL(static_cast<UChar32>(character)));
  } else {
    text += static_cast<char16_t>(character);
  }
}

const std::string& NameFor(const RunFonts& fonts, FontSlot slot) {
  static const std::string standard = kDefaultFamily;
  const std::string* name = &fonts.latin;
  if (slot == FontSlot::kEastAsian && !fonts.eastAsian.empty()) name = &fonts.eastAsian;
  if (slot == FontSlot::kComplex && !fonts.complexScript.empty()) name = &fonts.complexScript;
  if (slot == FontSlot::kSymbol && !fonts.symbol.empty()) name = &fonts.symbol;
  return name->empty() ? standard : *name;
}

// What shapes and measures alike.
struct Format {
  const LayoutRun* run = nullptr;
  const FontFace* face = nullptr;
  // Lines are as high as the named font asks, whichever font shows its characters.
  const FontFace* heightFace = nullptr;
  std::uint32_t script = 0;
  double size = 0.0;
  bool upright = false;
  friend bool operator==(const Format&, const Format&) = default;
};

class Apart {
 public:
  Apart(const LayoutParagraph& paragraph, Direction direction, double scale, Fonts fonts)
      : paragraph_(paragraph),
        direction_(direction),
        turnsNothingUpright_(direction != Direction::kStacked &&
                             direction != Direction::kEastAsian &&
                             direction != Direction::kMongolian),
        scale_(scale),
        fonts_(fonts) {}

  ParagraphText Do() {
    for (const LayoutRun& run : paragraph_.runs) AppendCased(run);
    out_.advances.assign(out_.text.size(), 0.0f);
    out_.clusterStart.assign(out_.text.size(), true);
    SetLevels();
    std::size_t start = 0;
    for (const LayoutRun& run : paragraph_.runs) {
      Split(run, start, start + run.text.size());
      start += run.text.size();
    }
    SetMark();
    return std::move(out_);
  }

 private:
  void AppendCased(const LayoutRun& run) {
    if (run.caps == Caps::kNone) {
      out_.text += run.text;
      return;
    }
    for (std::size_t at = 0; at < run.text.size();) {
      Append(out_.text, UpperCase(CharacterAt(run.text, at, at)));
    }
  }

  void SetLevels() {
    out_.level = paragraph_.rightToLeft ? 1 : 0;
    bool mayTurn =
        paragraph_.rightToLeft || std::any_of(out_.text.begin(), out_.text.end(), MayTurn);
    if (!mayTurn || out_.text.empty()) return;
    UErrorCode error = U_ZERO_ERROR;
    UBiDi* bidi = ubidi_openSized(static_cast<std::int32_t>(out_.text.size()), 0, &error);
    ubidi_setPara(bidi, out_.text.data(), static_cast<std::int32_t>(out_.text.size()), out_.level,
                  nullptr, &error);
    const UBiDiLevel* levels = ubidi_getLevels(bidi, &error);
    if (U_SUCCESS(error)) levels_.assign(levels, levels + out_.text.size());
    ubidi_close(bidi);
    out_.turns = std::any_of(levels_.begin(), levels_.end(),
                             [this](std::uint8_t level) { return level != out_.level; });
  }

  std::uint8_t LevelAt(std::size_t at) const { return levels_.empty() ? out_.level : levels_[at]; }

  FontWish WishFor(const LayoutRun& run, FontSlot slot, std::uint32_t script) const {
    // The text's own language holds where it is one of several that write this script.
    std::string language = run.language;
    bool east = language.rfind("zh", 0) == 0 || language.rfind("ja", 0) == 0 ||
                language.rfind("ko", 0) == 0;
    bool holds = script == kHan_ ? east : slot != FontSlot::kEastAsian || TakesAnyScript(script);
    if (language.empty() || !holds) language = LanguageOf(script);
    return {NameFor(run.fonts, slot), language, run.bold, run.italic};
  }

  double SizeOf(const LayoutRun& run) const {
    return run.size * scale_ * (run.baseline != 0.0 ? kRaisedScale : 1.0);
  }

  // Splits a run's stretch of text into pieces of one format and measures them.
  void Split(const LayoutRun& run, std::size_t from, std::size_t to) {
    if (from < to) out_.largestSize = std::max(out_.largestSize, run.size * scale_);
    std::size_t pieceStart = from;
    Format format;
    for (std::size_t at = from; at < to;) {
      std::size_t next = at;
      char32_t character = CharacterAt(out_.text, at, next);
      if (Continues(run, character, format) && LevelAt(at) == LevelAt(pieceStart)) {
        // Most of a text.
      } else if (character == kTab || character == kLineBreak) {
        Close(format, pieceStart, at);
        Single(run, character, at);
        pieceStart = next;
        format = {};
      } else {
        Format here = FormatAt(run, from, at, character, format);
        if (at > pieceStart && (here != format || LevelAt(at) != LevelAt(pieceStart))) {
          Close(format, pieceStart, at);
          pieceStart = at;
        }
        format = here;
      }
      at = next;
    }
    Close(format, pieceStart, to);
  }

  // Whether a character is plainly of the format of the one before it, the quick way: FormatAt
  // would say the same.
  bool Continues(const LayoutRun& run, char32_t character, const Format& before) const {
    if (character < U' ' || character > U'~' || before.run != &run || run.caps != Caps::kNone) {
      return false;
    }
    const bool letter = (character | 0x20) >= U'a' && (character | 0x20) <= U'z';
    return turnsNothingUpright_ && slot_ == FontSlot::kLatin && wishSlot_ == slot_ &&
           wishScript_ == script_ && (!letter || script_ == kLatin_) &&
           before.face == wishedFace_ && before.script == script_ && wishedFace_->Shows(character);
  }

  Format FormatAt(const LayoutRun& run, std::size_t runStart, std::size_t at, char32_t character,
                  const Format& before) {
    if (before.face && StaysWithPrevious(character)) return before;
    FontSlot slot = SlotOf(character);
    std::uint32_t script = ScriptOf(character);
    if (slot != FontSlot::kNone) slot_ = slot;
    if (!TakesAnyScript(script)) script_ = script;
    Format format;
    format.run = &run;
    format.script = script_;
    format.size = SizeOf(run);
    if (run.caps == Caps::kSmall && run.text[at - runStart] != out_.text[at]) {
      format.size *= kSmallCapsScale;
    }
    format.upright =
        direction_ == Direction::kStacked ||
        ((direction_ == Direction::kEastAsian || direction_ == Direction::kMongolian) &&
         IsUpright(character));
    format.face = FaceFor(run, character);
    format.heightFace = wishedFace_;
    return format;
  }

  // Looked up again only where run, slot or script change: comparing names is slow.
  const FontFace& Wished(const LayoutRun& run) {
    if (wishedFace_ && wishRun_ == &run && wishSlot_ == slot_ && wishScript_ == script_) {
      return *wishedFace_;
    }
    wishRun_ = &run;
    wishSlot_ = slot_;
    wishScript_ = script_;
    FontWish wish = WishFor(run, slot_, script_);
    if (!wishedFace_ || !(wish == wish_)) {
      wish_ = std::move(wish);
      wishedFace_ = &fonts_.book.Find(wish_);
    }
    return *wishedFace_;
  }

  const FontFace* FaceFor(const LayoutRun& run, char32_t character) {
    Wished(run);
    // Fonts without a no-break space show their space.
    if (wishedFace_->Shows(character == kNoBreakSpace ? U' ' : character)) return wishedFace_;
    return &fonts_.book.FindFor(wish_, character);
  }

  void SetHeights(const LayoutRun& run, const FontFace& face, double size, TextPiece& piece) const {
    bool ofSize = fonts_.lineHeight == LineHeight::kOfSize;
    double ascent = ofSize ? 1.0 : face.ascent;
    double descent = ofSize ? kLineOfSize - 1.0 : face.descent;
    // Raised or lowered text keeps the height of its full size and may add to it.
    double full = run.size * scale_;
    double raised = run.baseline * full;
    piece.ascent = std::max(ascent * full, ascent * size + raised);
    piece.descent = std::max(descent * full, descent * size - raised);
  }

  void Single(const LayoutRun& run, char32_t character, std::size_t at) {
    TextPiece piece;
    piece.kind = character == kTab ? TextPiece::Kind::kTab : TextPiece::Kind::kLineBreak;
    piece.start = at;
    piece.end = at + 1;
    piece.level = out_.level;
    SetHeights(run, Wished(run), SizeOf(run), piece);
    out_.pieces.push_back(piece);
  }

  void Close(const Format& format, std::size_t from, std::size_t to) {
    if (from >= to) return;
    TextPiece piece;
    piece.start = from;
    piece.end = to;
    piece.level = LevelAt(from);
    SetHeights(*format.run, *format.heightFace, format.size, piece);
    out_.pieces.push_back(piece);
    Measure(format, piece);
  }

  void Measure(const Format& format, const TextPiece& piece) {
    WordShape shape;
    shape.script = format.script;
    shape.rightToLeft = piece.level % 2 == 1;
    shape.upright = format.upright;
    shape.kerning = format.run->kerning;
    // Letters that are spaced do not join.
    shape.ligatures = format.run->spacing == 0.0;
    std::u16string_view text = out_.text;
    for (std::size_t at = piece.start; at < piece.end;) {
      // A word ends before its spaces, and the spaces are one more: so words are found again.
      bool blank = text[at] == u' ';
      std::size_t end = at + 1;
      while (end < piece.end && (text[end] == u' ') == blank) ++end;
      const std::vector<float>& advances =
          fonts_.words.Of(*format.face, shape, text.substr(at, end - at));
      for (std::size_t i = 0; i < advances.size(); ++i) {
        out_.clusterStart[at + i] = advances[i] >= 0.0f;
        if (advances[i] < 0.0f) continue;
        double stacked = piece.ascent + piece.descent;
        double advance = direction_ == Direction::kStacked
                             ? stacked
                             : static_cast<double>(advances[i]) * format.size;
        out_.advances[at + i] =
            static_cast<float>(std::max(0.0, advance + format.run->spacing * scale_));
      }
      at = end;
    }
  }

  void SetMark() {
    const LayoutRun& mark = paragraph_.mark;
    TextPiece piece;
    SetHeights(mark, Wished(mark), SizeOf(mark), piece);
    out_.markAscent = piece.ascent;
    out_.markDescent = piece.descent;
    if (out_.text.empty()) out_.largestSize = mark.size * scale_;
  }

  static const std::uint32_t kHan_;
  static const std::uint32_t kLatin_;

  const LayoutParagraph& paragraph_;
  Direction direction_;
  bool turnsNothingUpright_;
  double scale_;
  Fonts fonts_;
  ParagraphText out_;
  std::vector<std::uint8_t> levels_;
  FontSlot slot_ = FontSlot::kLatin;
  std::uint32_t script_ = kLatin_;
  const LayoutRun* wishRun_ = nullptr;
  FontSlot wishSlot_ = FontSlot::kNone;
  std::uint32_t wishScript_ = 0;
  FontWish wish_;
  const FontFace* wishedFace_ = nullptr;
};

const std::uint32_t Apart::kHan_ = ScriptOf(0x4E00);
const std::uint32_t Apart::kLatin_ = ScriptOf(U'a');

}  // namespace

ParagraphText TakeApart(const LayoutParagraph& paragraph, Direction direction, double scale,
                        Fonts fonts) {
  return Apart(paragraph, direction, scale, fonts).Do();
}

double BulletWidth(const Bullet& bullet, const LayoutRun& first, double scale, Fonts fonts) {
  if (bullet.text.empty()) return 0.0;
  LayoutParagraph line;
  LayoutRun run = first;
  run.text = bullet.text;
  run.baseline = 0.0;
  run.spacing = 0.0;
  if (!bullet.font.empty()) run.fonts = {bullet.font, bullet.font, bullet.font, bullet.font};
  run.size = bullet.size.unit == Spacing::Unit::kPoints ? bullet.size.value
                                                        : first.size * bullet.size.value;
  line.runs.push_back(std::move(run));
  ParagraphText text = TakeApart(line, Direction::kHorizontal, scale, fonts);
  double width = 0.0;
  for (float advance : text.advances) width += advance;
  return width;
}

}  // namespace quillmarch::host::layout
