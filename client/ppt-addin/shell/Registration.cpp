#include "shell/Registration.h"

#include <exception>
#include <functional>
#include <string>

#include "shell/RegistrationScript.h"

namespace quillmarch::addin {

namespace {

constexpr char16_t kAddinKey[] =
    u"SOFTWARE\\Microsoft\\Office\\PowerPoint\\Addins\\PptAddin.Connect";
constexpr char16_t kWhiteListKey[] = u"SOFTWARE\\Kingsoft\\Office\\WPP\\AddinsWL";
constexpr char16_t kConnectProgId[] = u"PptAddin.Connect";
constexpr char16_t kDescription[] = u"整份、当前页或选区翻译，保留版式写回幻灯片。";
constexpr std::uint32_t kLoadAtStart = 3;  // connected, and loaded when the host starts

// The classes of the module in the order of registration.
constexpr std::uint16_t kScripts[] = {ModuleResources::kConnectScript,
                                      ModuleResources::kPaneScript};

class NeutralLocale {
 public:
  explicit NeutralLocale(RegistrationSystem& system)
      : system_(system), before_(system.ThreadLocale()) {
    system_.SetThreadLocale(RegistrationSystem::kNeutralLocale);
  }
  ~NeutralLocale() { system_.SetThreadLocale(before_); }
  NeutralLocale(const NeutralLocale&) = delete;
  NeutralLocale& operator=(const NeutralLocale&) = delete;

 private:
  RegistrationSystem& system_;
  std::uint32_t before_;
};

using ScriptRun = ResultCode (*)(WideView, const ScriptVariables&, UserRegistry&);

ResultCode RunScript(const RegistrationSurroundings& surroundings, std::uint16_t id,
                     ScriptRun run) {
  std::string bytes;
  if (!surroundings.resources.Load(ModuleResources::kRegistryType, id, bytes)) return kFail;
  return run(ToWide(bytes), {{u"MODULE", surroundings.modulePath}}, surroundings.registry);
}

ResultCode Register(const RegistrationSurroundings& surroundings) {
  const NeutralLocale locale(surroundings.system);
  for (const std::uint16_t id : kScripts) {
    const ResultCode code = RunScript(surroundings, id, RunRegisterScript);
    if (Failed(code)) return code;
  }
  const ResultCode library = surroundings.system.RegisterTypeLibrary();
  return Failed(library) ? library : WriteAddinKeys(surroundings.registry);
}

ResultCode Unregister(const RegistrationSurroundings& surroundings) {
  const NeutralLocale locale(surroundings.system);
  ResultCode result = kOk;
  for (auto id = std::rbegin(kScripts); id != std::rend(kScripts); ++id) {
    const ResultCode code = RunScript(surroundings, *id, RunUnregisterScript);
    if (Succeeded(result)) result = code;
  }
  // What these find is gone already or not ours to worry about.
  surroundings.system.UnregisterTypeLibrary();
  surroundings.registry.DeleteKey(kAddinKey);
  surroundings.registry.DeleteValue(kWhiteListKey, kConnectProgId);
  return result;
}

ResultCode Guarded(ResultCode (*body)(const RegistrationSurroundings&),
                   const RegistrationSurroundings& surroundings) {
  try {
    return body(surroundings);
  } catch (const std::exception&) {
    return kOutOfMemory;
  }
}

}  // namespace

ResultCode RegisterAddin(const RegistrationSurroundings& surroundings) {
  return Guarded(Register, surroundings);
}

ResultCode UnregisterAddin(const RegistrationSurroundings& surroundings) {
  return Guarded(Unregister, surroundings);
}

ResultCode WriteAddinKeys(UserRegistry& registry) {
  const std::function<UserRegistry::Code()> steps[] = {
      [&] { return registry.CreateKey(kAddinKey); },
      [&] { return registry.PutText(kAddinKey, u"FriendlyName", u"Quillmarch PowerPoint"); },
      // Over the script's own text, on purpose.
      [&] { return registry.PutText(kAddinKey, u"Description", kDescription); },
      [&] { return registry.PutNumber(kAddinKey, u"LoadBehavior", kLoadAtStart); },
      [&] { return registry.PutNumber(kAddinKey, u"CommandLineSafe", 1); },
  };
  for (const auto& step : steps) {
    const UserRegistry::Code code = step();
    if (code != UserRegistry::kDone) return ResultOfWin32(code);
  }
  // Whoever has no WPS needs none of this.
  if (registry.CreateKey(kWhiteListKey) == UserRegistry::kDone) {
    registry.PutText(kWhiteListKey, kConnectProgId, {});
  }
  return kOk;
}

}  // namespace quillmarch::addin
