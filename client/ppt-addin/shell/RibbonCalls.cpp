#include "shell/RibbonCalls.h"

#include <algorithm>

#include "foundation/log/Log.h"
#include "foundation/settings/DisplayLanguage.h"

namespace quillmarch::addin {

namespace {

constexpr DispId kNoId = -1;
constexpr std::size_t kArgumentsSearched = 4;

struct RibbonName {
  const char16_t* name;
  DispId id;
};

constexpr RibbonName kNames[] = {
    {u"TranslateFullDocClicked", ribbon::kTranslateFullDocClicked},
    {u"TranslateCurrentSlideClicked", ribbon::kTranslateCurrentSlideClicked},
    {u"ShowPaneClicked", ribbon::kShowPaneClicked},
    {u"GlossaryClicked", ribbon::kGlossaryClicked},
    {u"InstructionClicked", ribbon::kInstructionClicked},
    {u"AccountClicked", ribbon::kAccountClicked},
    {u"SupportClicked", ribbon::kSupportClicked},
    {u"GetImage", ribbon::kGetImage},
    {u"onGetImage", ribbon::kGetImage},
    {u"TranslateSelectionClicked", ribbon::kTranslateSelectionClicked},
    {u"PdfTranslateClicked", ribbon::kPdfTranslateClicked},
    {u"OnRibbonLoad", ribbon::kOnRibbonLoad},
    {u"GetLabel", ribbon::kGetLabel},
    {u"GetScreentip", ribbon::kGetScreentip},
    {u"SettingsClicked", ribbon::kSettingsClicked},
};

DispId IdInTable(const Wide& name) {
  const Wide lower = LowerAscii(name);
  const auto* const found =
      std::find_if(std::begin(kNames), std::end(kNames),
                   [&](const RibbonName& entry) { return LowerAscii(entry.name) == lower; });
  return found == std::end(kNames) ? kNoId : found->id;
}

}  // namespace

ResultCode RibbonIdsOfNames(std::span<const Wide> names, std::span<DispId> ids,
                            const std::function<void(const Wide&, DispId&)>& typeLibrary) {
  if (names.empty() || ids.size() < names.size()) return kInvalidArgument;
  bool allKnown = true;
  for (std::size_t i = 0; i < names.size(); ++i) {
    ids[i] = IdInTable(names[i]);
    if (ids[i] != kNoId) {
      LogLine(u"PPT GetIDsOfNames " + names[i] + u" -> " + Decimal(ids[i]));
    } else if (typeLibrary) {
      typeLibrary(names[i], ids[i]);
    }
    allKnown = allKnown && ids[i] != kNoId;
  }
  return allKnown ? kOk : kUnknownName;
}

ObjectRef ControlOf(std::span<const RibbonArgument> args) {
  for (const RibbonArgument& arg : args.first(std::min(args.size(), kArgumentsSearched))) {
    if (arg.vt == static_cast<std::uint16_t>(VariantType::kObject)) return arg.value.object();
  }
  return {};
}

Wide RibbonText(const Wide& id, bool tip) {
  const Wide suffix = tip ? u".tip" : u"";
  Wide text = Text(u"ribbon.ppt." + id + suffix);
  if (text.empty()) text = Text(u"ribbon." + id + suffix);
  if (text.empty() && !tip) text = id;
  return text;
}

Wide ReplaceImageMso(Wide xml) {
  constexpr WideView kAttribute = u"imageMso=\"";
  constexpr WideView kReplacement = u"getImage=\"GetImage\"";
  std::size_t at = 0;
  while ((at = xml.find(kAttribute, at)) != Wide::npos) {
    const std::size_t end = xml.find(u'"', at + kAttribute.size());
    if (end == Wide::npos) break;
    xml.replace(at, end + 1 - at, kReplacement);
    at += kReplacement.size();
  }
  return xml;
}

}  // namespace quillmarch::addin
