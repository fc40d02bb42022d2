#include "host/layout/DesktopFonts.h"

#include <fontconfig/fontconfig.h>

#include <memory>

namespace quillmarch::host {

namespace {

struct FreeConfig {
  void operator()(FcConfig* config) const { FcConfigDestroy(config); }
};
struct FreePattern {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
struct FreeObjects {
  void operator()(FcObjectSet* objects) const { FcObjectSetDestroy(objects); }
};
struct FreeFonts {
  void operator()(FcFontSet* fonts) const { FcFontSetDestroy(fonts); }
};

}  // namespace

std::vector<Wide> DesktopFonts::FamilyNames() {
  const std::unique_ptr<FcConfig, FreeConfig> config(FcInitLoadConfigAndFonts());
  const std::unique_ptr<FcPattern, FreePattern> every(FcPatternCreate());
  const std::unique_ptr<FcObjectSet, FreeObjects> wanted(FcObjectSetBuild(FC_FAMILY, nullptr));
  if (config == nullptr || every == nullptr || wanted == nullptr) return {};
  const std::unique_ptr<FcFontSet, FreeFonts> found(
      FcFontList(config.get(), every.get(), wanted.get()));
  std::vector<Wide> names;
  if (found == nullptr) return names;
  for (int i = 0; i < found->nfont; ++i) {
    FcChar8* name = nullptr;
    // The first of a font's names is the one in its own script.
    if (FcPatternGetString(found->fonts[i], FC_FAMILY, 0, &name) == FcResultMatch) {
      names.push_back(ToWide(reinterpret_cast<const char*>(name)));
    }
  }
  return names;
}

}  // namespace quillmarch::host
