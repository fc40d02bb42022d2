// The fonts of this machine: which face serves a family name, and which one shows a character
// that the named one lacks. Fontconfig decides, metric-compatible replacements included.
#pragma once

#include <fontconfig/fontconfig.h>

#include <array>
#include <cstdint>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

struct hb_font_t;

namespace quillmarch::host {

namespace layout {

// Heights are shares of the size.
struct FontFace {
  std::uint32_t id = 0;       // of its book
  hb_font_t* font = nullptr;  // scaled to `unitsPerEm`
  double unitsPerEm = 1.0;
  double ascent = 0.0;
  double descent = 0.0;  // positive below the base line
  double lineGap = 0.0;
  std::string family;

  bool Shows(char32_t character) const;

 private:
  // What was asked last, by the character's low bits: a character and whether it shows.
  mutable std::array<std::uint32_t, 256> asked_{};
};

struct FontWish {
  std::string family;
  std::string language;  // BCP 47, never empty
  bool bold = false;
  bool italic = false;
  friend bool operator<(const FontWish& left, const FontWish& right) {
    return std::tie(left.family, left.language, left.bold, left.italic) <
           std::tie(right.family, right.language, right.bold, right.italic);
  }
  friend bool operator==(const FontWish&, const FontWish&) = default;
};

// One thread at a time. Faces live as long as the book.
class FontBook {
 public:
  FontBook();
  ~FontBook();
  FontBook(const FontBook&) = delete;
  FontBook& operator=(const FontBook&) = delete;

  // Begins listing the fonts on a thread of its own, for the first question to find it
  // done. Without it, that question reads them.
  void ReadAhead();

  // The face for the wish; where the machine has no font at all, one without glyphs that measures
  // by the em.
  const FontFace& Find(const FontWish& wish);
  // The first face that shows the character, in the order of likeness to the wish; the wished one
  // itself when none does.
  const FontFace& FindFor(const FontWish& wish, char32_t character);
  // Whether the family, or a substitute with the same metrics, is installed.
  bool Has(const std::string& family);

 private:
  struct Candidates;
  const FontFace& Open(const std::string& file, int index, const std::string& family);
  const FontFace& Match(const FontWish& wish);
  Candidates& Sorted(const FontWish& wish);
  const FontFace& Choose(const Candidates& candidates, char32_t character, const FontFace& wished);

  FcConfig* Config();

  std::future<FcConfig*> early_;
  FcConfig* config_ = nullptr;
  std::map<std::pair<std::string, int>, std::unique_ptr<FontFace>> faces_;
  std::map<FontWish, const FontFace*> found_;
  std::map<FontWish, std::unique_ptr<Candidates>> sorted_;
};

}  // namespace layout

}  // namespace quillmarch::host
