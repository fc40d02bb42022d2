// The module's resources as they stand in the source tree.
#pragma once

#include "foundation/system/Files.h"
#include "shell/ModuleResources.h"

namespace quillmarch::addin::test {

class SourceResources final : public ModuleResources {
 public:
  bool Load(const char16_t* type, std::uint16_t id, std::string& bytes) override {
    if (missing == id) return false;
    const WideView word = type;
    const char16_t* file = nullptr;
    if (word == kXmlType && id == kRibbonXml) file = u"/ribbon.xml";
    if (word == kRegistryType && id == kConnectScript) file = u"/CConnect.rgs";
    if (word == kRegistryType && id == kPaneScript) file = u"/CPptPane.rgs";
    return file != nullptr && ReadWholeFile(ToWide(QUILLMARCH_SHELL_SOURCES) + file, bytes);
  }

  std::uint16_t missing = 0;
};

}  // namespace quillmarch::addin::test
