// The resources in the add-in's module.
#pragma once

#include <cstdint>
#include <string>

namespace quillmarch::addin {

class ModuleResources {
 public:
  static constexpr char16_t kXmlType[] = u"XML";
  static constexpr char16_t kRegistryType[] = u"REGISTRY";
  static constexpr std::uint16_t kRibbonXml = 201;      // ribbon.xml
  static constexpr std::uint16_t kConnectScript = 101;  // CConnect.rgs
  static constexpr std::uint16_t kPaneScript = 102;     // CPptPane.rgs

  virtual ~ModuleResources() = default;

  // The bytes of a resource, unchanged from its file. False when there is none.
  virtual bool Load(const char16_t* type, std::uint16_t id, std::string& bytes) = 0;
};

}  // namespace quillmarch::addin
