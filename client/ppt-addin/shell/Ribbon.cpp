// The ribbon: its text, the host's calls of it, and what each button does.
#include <algorithm>
#include <utility>

#include "foundation/automation/Automation.h"
#include "foundation/identity/Analytics.h"
#include "foundation/log/Log.h"
#include "foundation/settings/DisplayLanguage.h"
#include "foundation/system/KnownFolders.h"
#include "foundation/transport/Endpoint.h"
#include "shell/CConnect.h"

namespace quillmarch::addin {

namespace {

constexpr WideView kPdfPath = u"/panel/web/webtranslate.html?tool=pdftr";
constexpr std::intptr_t kHighestShellError = 32;
constexpr std::size_t kLoggedTypes = 4;

bool InPresentationProcessOfWps() {
  return LowerAscii(ProcessImageName()) == u"wpp.exe";
}

Wide IdOfControl(AutomationObject* control) {
  Variant id;
  if (Failed(AutoGet(control, u"Id", id)) || id.type() != VariantType::kText) return {};
  return id.takeText();
}

}  // namespace

ResultCode CConnect::GetCustomUI(const std::function<bool(const Wide& xml)>& allocate) {
  try {
    std::string bytes;
    if (!surroundings_.resources.Load(ModuleResources::kXmlType, ModuleResources::kRibbonXml,
                                      bytes)) {
      return kFail;
    }
    const Wide xml = ReplaceImageMso(ToWide(bytes));
    if (!allocate(xml)) {
      LogLine(u"PPT GetCustomUI failed (SysAllocString) chars=" + DecimalUnsigned(xml.size()));
      return kOutOfMemory;
    }
    LogLine(u"PPT GetCustomUI OK chars=" + DecimalUnsigned(xml.size()) + u" ptr=" +
            DecimalUnsigned(sizeof(void*)) + u" wpp=" +
            Decimal(InPresentationProcessOfWps() ? 1 : 0));
    return kOk;
  } catch (const std::exception&) {
    return kOutOfMemory;
  }
}

bool CConnect::Invoke(DispId id, std::span<const RibbonArgument> args, Variant* result,
                      ResultCode& code) {
  const bool isButton =
      id >= ribbon::kTranslateFullDocClicked && id <= ribbon::kPdfTranslateClicked;
  const bool isCommon = id >= ribbon::kOnRibbonLoad && id <= ribbon::kSettingsClicked;
  if (!isButton && !isCommon) return false;
  code = Enter([&] { return isButton ? InvokeButton(id, args) : InvokeCommon(id, args, result); });
  return true;
}

ResultCode CConnect::InvokeButton(DispId id, std::span<const RibbonArgument> args) {
  LogLine(u"PPT Invoke ribbon dispid=" + Decimal(id));
  const ObjectRef control = ControlOf(args);
  switch (id) {
    case ribbon::kTranslateFullDocClicked:
      return TranslateFullDocClicked(control.get());
    case ribbon::kTranslateCurrentSlideClicked:
      return TranslateCurrentSlideClicked(control.get());
    case ribbon::kShowPaneClicked:
      return ShowPaneClicked(control.get());
    case ribbon::kGlossaryClicked:
      return GlossaryClicked(control.get());
    case ribbon::kInstructionClicked:
      return InstructionClicked(control.get());
    case ribbon::kAccountClicked:
      return AccountClicked(control.get());
    case ribbon::kSupportClicked:
      return SupportClicked(control.get());
    case ribbon::kGetImage:
      return GetImageCall(args);
    case ribbon::kTranslateSelectionClicked:
      return TranslateSelectionClicked(control.get());
    case ribbon::kPdfTranslateClicked:
      return PdfTranslateClicked(control.get());
    default:
      return kMemberNotFound;  // 107 is nobody's
  }
}

ResultCode CConnect::InvokeCommon(DispId id, std::span<const RibbonArgument> args,
                                  Variant* result) {
  switch (id) {
    case ribbon::kOnRibbonLoad: {
      // The host may disconnect us inside a call.
      const ObjectRef application = hostApp;
      ribbonUi = ControlOf(args);
      // Asked here once, so that its cost falls at the load.
      ResolveLang(application.get());
      return kOk;
    }
    case ribbon::kGetLabel:
      return TextOfControl(args, false, result);
    case ribbon::kGetScreentip:
      return TextOfControl(args, true, result);
    default:
      LogLine(u"PPT SettingsClicked");
      return kOk;
  }
}

ResultCode CConnect::TextOfControl(std::span<const RibbonArgument> args, bool tip,
                                   Variant* result) {
  const ObjectRef application = hostApp;
  const ObjectRef control = ControlOf(args);
  const Wide id = IdOfControl(control.get());
  ResolveLang(application.get());
  if (result != nullptr) *result = Variant::Text(RibbonText(id, tip));
  return kOk;
}

// No images yet: the host draws the buttons without.
ResultCode CConnect::GetImageCall(std::span<const RibbonArgument> args) {
  Wide line = u"PPT Invoke GetImage cArgs=" + DecimalUnsigned(args.size());
  for (std::size_t i = 0; i < std::min(args.size(), kLoggedTypes); ++i) {
    line += u" vt" + DecimalUnsigned(i) + u"=" + DecimalUnsigned(args[i].vt);
  }
  LogLine(line);
  return kOk;
}

ResultCode CConnect::TranslateFullDocClicked(AutomationObject* control) {
  LogLine(u"PPT TranslateFullDocClicked");
  return ShowPanePage(u"translate", control, u"full");
}

ResultCode CConnect::TranslateCurrentSlideClicked(AutomationObject* control) {
  LogLine(u"PPT TranslateCurrentSlideClicked");
  return ShowPanePage(u"translate", control, u"slide");
}

ResultCode CConnect::TranslateSelectionClicked(AutomationObject* control) {
  LogLine(u"PPT TranslateSelectionClicked");
  return ShowPanePage(u"translate", control, u"selection");
}

ResultCode CConnect::ShowPaneClicked(AutomationObject* control) {
  return ShowPanePage(u"translate", control, {});
}

ResultCode CConnect::GlossaryClicked(AutomationObject* control) {
  return ShowPanePage(u"glossary", control, {});
}

ResultCode CConnect::InstructionClicked(AutomationObject* control) {
  return ShowPanePage(u"instruction", control, {});
}

ResultCode CConnect::AccountClicked(AutomationObject* control) {
  return ShowPanePage(u"account", control, {});
}

ResultCode CConnect::SupportClicked(AutomationObject* control) {
  Enter([] {
    SendAnalyticsEvent(u"support:entry_click", u"ribbon");
    return kOk;
  });
  return ShowPanePage(u"support", control, {});
}

ResultCode CConnect::PdfTranslateClicked(AutomationObject*) {
  return Enter([&] {
    LogLine(u"PPT PdfTranslateClicked");
    const std::intptr_t opened =
        surroundings_.desktop.OpenInBrowser(BuildUrl(DefaultEndpoint(), kPdfPath));
    if (opened > kHighestShellError) return kOk;
    LogLine(u"PPT PdfTranslate ShellExecute failed code=" + Decimal(opened));
    ShowBox(Text(u"msg.browserFailed"), Desktop::kIconWarning);
    return kFail;
  });
}

}  // namespace quillmarch::addin
