// Thread locale and type library as registration needs them. Windows only.
#pragma once

#include "shell/Registration.h"

namespace quillmarch::addin {

class SystemRegistration final : public RegistrationSystem {
 public:
  std::uint32_t ThreadLocale() override;
  void SetThreadLocale(std::uint32_t locale) override;
  ResultCode RegisterTypeLibrary() override;
  ResultCode UnregisterTypeLibrary() override;
};

}  // namespace quillmarch::addin
