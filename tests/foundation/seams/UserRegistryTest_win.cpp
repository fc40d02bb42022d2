#include "foundation/seams/UserRegistry.h"

#include "foundation/system/Registry.h"
#include "gtest/gtest.h"

namespace quillmarch::addin {

namespace {

constexpr WideView kRoot = u"Software\\Quillmarch\\RegistryTest";

class WindowsRegistry : public testing::Test {
 protected:
  WindowsRegistry() { registry_.DeleteTree(kRoot); }
  ~WindowsRegistry() override { registry_.DeleteTree(kRoot); }
  static Wide Below(WideView name) { return Wide(kRoot) + u"\\" + Wide(name); }
  static Wide Text(WideView key, WideView name) {
    Wide text;
    ReadUserText(key, name, 1024, text);
    return text;
  }

  UserRegistry& registry_ = SystemUserRegistry();
};

TEST_F(WindowsRegistry, MakesAKeyWithThoseAboveIt) {
  EXPECT_EQ(registry_.CreateKey(Below(u"a\\b")), 0U);
  EXPECT_TRUE(registry_.Exists(Below(u"a")));
  EXPECT_EQ(registry_.CreateKey(Below(u"a\\b")), 0U);
}

TEST_F(WindowsRegistry, PutsTextsAndTheDefault) {
  registry_.CreateKey(kRoot);
  EXPECT_EQ(registry_.PutText(kRoot, u"", u"整份"), 0U);
  EXPECT_EQ(registry_.PutText(kRoot, u"n", u""), 0U);
  EXPECT_EQ(registry_.PutNumber(kRoot, u"d", 3), 0U);
  EXPECT_EQ(Text(kRoot, u""), u"整份");
  EXPECT_FALSE(registry_.IsEmpty(kRoot));
  EXPECT_EQ(registry_.PutText(Below(u"missing"), u"n", u"x"), UserRegistry::kNotFound);
}

TEST_F(WindowsRegistry, DeletesValues) {
  registry_.CreateKey(kRoot);
  registry_.PutText(kRoot, u"", u"x");
  EXPECT_EQ(registry_.DeleteValue(kRoot, u""), 0U);
  EXPECT_EQ(registry_.DeleteValue(kRoot, u""), UserRegistry::kNotFound);
  EXPECT_EQ(registry_.DeleteValue(Below(u"missing"), u"n"), UserRegistry::kNotFound);
  EXPECT_TRUE(registry_.IsEmpty(kRoot));
}

TEST_F(WindowsRegistry, DeletesKeysThatHaveNoneBelowThemAndTreesWithAll) {
  registry_.CreateKey(Below(u"a\\b"));
  EXPECT_FALSE(registry_.IsEmpty(Below(u"a")));
  EXPECT_NE(registry_.DeleteKey(Below(u"a")), 0U);
  EXPECT_EQ(registry_.DeleteKey(Below(u"a\\b")), 0U);
  EXPECT_EQ(registry_.DeleteKey(Below(u"a\\b")), UserRegistry::kNotFound);
  registry_.CreateKey(Below(u"a\\b"));
  EXPECT_EQ(registry_.DeleteTree(Below(u"a")), 0U);
  EXPECT_FALSE(registry_.Exists(Below(u"a")));
  EXPECT_EQ(registry_.DeleteTree(Below(u"a")), UserRegistry::kNotFound);
  EXPECT_FALSE(registry_.IsEmpty(Below(u"a")));
}

}  // namespace

}  // namespace quillmarch::addin
