#include "host/layout/FontBook.h"

#include <hb-ot.h>
#include <hb.h>

#include <string>
#include <system_error>
#include <unordered_map>

namespace quillmarch::host::layout {
namespace {

// Characters that a wished font lacks, for which another one was found.
constexpr std::size_t kMostChosen = 4096;

struct PatternDeleter {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, PatternDeleter>;
struct FontSetDeleter {
  void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
};
using FontSet = std::unique_ptr<FcFontSet, FontSetDeleter>;

const FcChar8* Bytes(const std::string& text) {
  return reinterpret_cast<const FcChar8*>(text.c_str());
}

Pattern PatternOf(FcConfig* config, const FontWish& wish) {
  Pattern pattern(FcPatternCreate());
  if (!wish.family.empty()) FcPatternAddString(pattern.get(), FC_FAMILY, Bytes(wish.family));
  // Said always: unsaid, it would come from the environment.
  FcPatternAddString(pattern.get(), FC_LANG, Bytes(wish.language));
  FcPatternAddInteger(pattern.get(), FC_WEIGHT, wish.bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
  FcPatternAddInteger(pattern.get(), FC_SLANT, wish.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
  FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
  FcConfigSubstitute(config, pattern.get(), FcMatchPattern);
  FcDefaultSubstitute(pattern.get());
  return pattern;
}

std::string StringOf(const FcPattern* pattern, const char* object) {
  FcChar8* value = nullptr;
  if (FcPatternGetString(pattern, object, 0, &value) != FcResultMatch) return {};
  return reinterpret_cast<const char*>(value);
}

int IndexOf(const FcPattern* pattern) {
  int index = 0;
  FcPatternGetInteger(pattern, FC_INDEX, 0, &index);
  // The upper half names an instance of a variable font.
  return index & 0xFFFF;
}

double Metric(hb_font_t* font, hb_ot_metrics_tag_t tag) {
  hb_position_t value = 0;
  hb_ot_metrics_get_position(font, tag, &value);
  return value;
}

}  // namespace

struct FontBook::Candidates {
  FontSet fonts;
  std::unordered_map<char32_t, const FontFace*> chosen;  // as far as they were looked for
};

bool FontFace::Shows(char32_t character) const {
  // The character with a mark, so that an empty slot is not an answer, above the answer.
  constexpr std::uint32_t kAsked = 1u << 31;
  std::uint32_t& slot = asked_[character % asked_.size()];
  const std::uint32_t key = kAsked | static_cast<std::uint32_t>(character) << 1;
  if ((slot & ~1u) != key) {
    hb_codepoint_t glyph = 0;
    slot = key | (hb_font_get_nominal_glyph(font, character, &glyph) != 0 ? 1u : 0u);
  }
  return (slot & 1u) != 0;
}

FontBook::FontBook() = default;

void FontBook::ReadAhead() {
  if (config_ != nullptr || early_.valid()) return;
  try {
    early_ = std::async(std::launch::async, &FcInitLoadConfigAndFonts);
  } catch (const std::system_error&) {
    // No thread to be had: the first question reads them.
  }
}

FcConfig* FontBook::Config() {
  if (config_ == nullptr) config_ = early_.valid() ? early_.get() : FcInitLoadConfigAndFonts();
  return config_;
}

FontBook::~FontBook() {
  for (auto& [place, face] : faces_) hb_font_destroy(face->font);
  sorted_.clear();
  if (early_.valid()) config_ = early_.get();
  if (config_) FcConfigDestroy(config_);
}

const FontFace& FontBook::Open(const std::string& file, int index, const std::string& family) {
  std::unique_ptr<FontFace>& slot = faces_[{file, index}];
  if (slot) return *slot;
  slot = std::make_unique<FontFace>();
  slot->id = static_cast<std::uint32_t>(faces_.size());
  slot->family = family;
  // An unreadable file gives HarfBuzz' empty blob and so a face without glyphs.
  hb_blob_t* blob = hb_blob_create_from_file(file.c_str());
  hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(index));
  hb_blob_destroy(blob);
  unsigned unitsPerEm = hb_face_get_upem(face);
  hb_font_t* font = hb_font_create(face);
  hb_face_destroy(face);
  hb_font_set_scale(font, static_cast<int>(unitsPerEm), static_cast<int>(unitsPerEm));
  slot->font = font;
  slot->unitsPerEm = unitsPerEm;
  slot->ascent = Metric(font, HB_OT_METRICS_TAG_HORIZONTAL_ASCENDER) / unitsPerEm;
  slot->descent = -Metric(font, HB_OT_METRICS_TAG_HORIZONTAL_DESCENDER) / unitsPerEm;
  slot->lineGap = Metric(font, HB_OT_METRICS_TAG_HORIZONTAL_LINE_GAP) / unitsPerEm;
  if (slot->ascent <= 0 && slot->descent <= 0) {
    slot->ascent = 0.8;
    slot->descent = 0.2;
  }
  return *slot;
}

const FontFace& FontBook::Match(const FontWish& wish) {
  Pattern pattern = PatternOf(Config(), wish);
  FcResult result = FcResultNoMatch;
  Pattern match(FcFontMatch(Config(), pattern.get(), &result));
  if (!match) return Open({}, 0, {});
  return Open(StringOf(match.get(), FC_FILE), IndexOf(match.get()),
              StringOf(match.get(), FC_FAMILY));
}

const FontFace& FontBook::Find(const FontWish& wish) {
  auto [place, isNew] = found_.try_emplace(wish, nullptr);
  if (isNew) place->second = &Match(wish);
  return *place->second;
}

FontBook::Candidates& FontBook::Sorted(const FontWish& wish) {
  std::unique_ptr<Candidates>& slot = sorted_[wish];
  if (!slot) {
    slot = std::make_unique<Candidates>();
    Pattern pattern = PatternOf(Config(), wish);
    FcResult result = FcResultNoMatch;
    slot->fonts.reset(FcFontSort(Config(), pattern.get(), FcTrue, nullptr, &result));
  }
  return *slot;
}

const FontFace& FontBook::FindFor(const FontWish& wish, char32_t character) {
  const FontFace& wished = Find(wish);
  if (wished.Shows(character)) return wished;
  Candidates& candidates = Sorted(wish);
  if (!candidates.fonts) return wished;
  if (candidates.chosen.size() >= kMostChosen) candidates.chosen.clear();
  const FontFace*& chosen = candidates.chosen[character];
  if (chosen == nullptr) chosen = &Choose(candidates, character, wished);
  return *chosen;
}

const FontFace& FontBook::Choose(const Candidates& candidates, char32_t character,
                                 const FontFace& wished) {
  for (int i = 0; i < candidates.fonts->nfont; ++i) {
    const FcPattern* font = candidates.fonts->fonts[i];
    FcCharSet* characters = nullptr;
    if (FcPatternGetCharSet(font, FC_CHARSET, 0, &characters) != FcResultMatch) continue;
    if (FcCharSetHasChar(characters, character)) {
      const FontFace& face =
          Open(StringOf(font, FC_FILE), IndexOf(font), StringOf(font, FC_FAMILY));
      if (face.Shows(character)) return face;
    }
  }
  return wished;
}

bool FontBook::Has(const std::string& family) {
  // A family without a substitute ends at the same face as a name that no font has.
  FontWish wish{family, "en", false, false};
  const FontFace& face = Find(wish);
  auto same = [](const std::string& left, const std::string& right) {
    return FcStrCmpIgnoreCase(Bytes(left), Bytes(right)) == 0;
  };
  if (same(face.family, family)) return true;
  Pattern pattern(FcPatternCreate());
  FcPatternAddString(pattern.get(), FC_FAMILY, Bytes(family));
  FcConfigSubstitute(Config(), pattern.get(), FcMatchPattern);
  // Replacements of equal metrics are bound as strongly as the name itself and come right after
  // it, generic families are bound weakly.
  FcValue value;
  FcValueBinding binding;
  for (int i = 0;
       FcPatternGetWithBinding(pattern.get(), FC_FAMILY, i, &value, &binding) == FcResultMatch;
       ++i) {
    if (binding == FcValueBindingWeak || value.type != FcTypeString) continue;
    if (same(face.family, reinterpret_cast<const char*>(value.u.s))) return true;
  }
  return false;
}

}  // namespace quillmarch::host::layout
