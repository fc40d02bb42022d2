// What registering and unregistering the module writes, and in which order. Any apartment.
#pragma once

#include "foundation/seams/UserRegistry.h"
#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"
#include "shell/ModuleResources.h"

namespace quillmarch::addin {

// The platform's side of registration.
class RegistrationSystem {
 public:
  static constexpr std::uint32_t kNeutralLocale = 2048;  // SORT_DEFAULT, neutral

  virtual ~RegistrationSystem() = default;

  virtual std::uint32_t ThreadLocale() = 0;
  virtual void SetThreadLocale(std::uint32_t locale) = 0;
  // Finds the module, loads its type library and registers that for the user.
  virtual ResultCode RegisterTypeLibrary() = 0;
  // LIBID_PptAddinLib, version 1.0, neutral locale, 64-bit.
  virtual ResultCode UnregisterTypeLibrary() = 0;
};

struct RegistrationSurroundings {
  RegistrationSystem& system;
  UserRegistry& registry;
  ModuleResources& resources;
  Wide modulePath;
};

// DllRegisterServer and DllUnregisterServer.
ResultCode RegisterAddin(const RegistrationSurroundings& surroundings);
ResultCode UnregisterAddin(const RegistrationSurroundings& surroundings);

// The values that make the hosts load the add-in, written again over the script's.
ResultCode WriteAddinKeys(UserRegistry& registry);

}  // namespace quillmarch::addin
