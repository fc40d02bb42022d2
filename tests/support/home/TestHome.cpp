// The tests write their log and registry below a folder of their own, never in the user's.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "foundation/text/Wide.h"
#include "support/TempFolder.h"

namespace quillmarch::addin {

namespace {

class TestHome : public ::testing::Environment {
 public:
  void SetUp() override {
    home_ = std::make_unique<TempFolder>();
    ASSERT_EQ(0, ::setenv("XDG_DATA_HOME", ToUtf8(home_->wide()).c_str(), 1));
  }
  void TearDown() override { home_.reset(); }

 private:
  std::unique_ptr<TempFolder> home_;
};

// The framework owns what is handed over.
const auto* const kHome =
    ::testing::AddGlobalTestEnvironment(std::make_unique<TestHome>().release());

}  // namespace

}  // namespace quillmarch::addin
