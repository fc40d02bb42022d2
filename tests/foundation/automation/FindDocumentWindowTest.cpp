#include "foundation/automation/FindDocumentWindow.h"

#include <gtest/gtest.h>

#include "foundation/automation/HostMembers.h"
#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

struct Windows {
  Windows() {
    host.AddPresentation();
    host.AddPresentation();
    app = host.Application();
  }

  // The number of the window found, from 1; 0 for none.
  int Found(const ObjectRef& window) const {
    for (std::size_t i = 0; window && i < host.windows.size(); ++i) {
      if (window->Identity() == host.ContextOf(*host.windows[i]).id) return static_cast<int>(i + 1);
    }
    return 0;
  }

  test::FakeHost host;
  ObjectRef app;
};

TEST(FindDocumentWindow, TheHandleComesFirst) {
  Windows w;
  const WindowContext mixed{w.host.windows[1]->hwnd, w.host.ContextOf(*w.host.windows[0]).id};
  EXPECT_EQ(w.Found(FindDocumentWindow(w.app.get(), mixed)), 2);
}

TEST(FindDocumentWindow, TheIdentityCountsWhereNoHandleMatches) {
  Windows w;
  const WindowContext stale{0x7777, w.host.ContextOf(*w.host.windows[1]).id};
  EXPECT_EQ(w.Found(FindDocumentWindow(w.app.get(), stale)), 2);
}

TEST(FindDocumentWindow, AWordThatIsZeroIsNotLookedFor) {
  Windows w;
  w.host.windows[0]->hwnd = 0;
  EXPECT_EQ(w.Found(FindDocumentWindow(w.app.get(), {})), 0);
  EXPECT_TRUE(w.host.calls.empty());
}

TEST(FindDocumentWindow, NoMatchGivesNull) {
  Windows w;
  EXPECT_EQ(w.Found(FindDocumentWindow(w.app.get(), {0x7777, 0x8888})), 0);
  EXPECT_EQ(w.Found(FindDocumentWindow(nullptr, {0x7777, 0x8888})), 0);
}

TEST(FindRunWindow, AnEmptyKeyMeansTheOnlyWindow) {
  test::FakeHost host;
  host.AddPresentation();
  const ObjectRef found = FindRunWindow(host.Application().get(), {}, nullptr);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->Identity(), host.ContextOf(*host.windows[0]).id);
}

TEST(FindRunWindow, AnEmptyKeyWithTwoWindowsFindsNone) {
  Windows w;
  EXPECT_FALSE(FindRunWindow(w.app.get(), {}, nullptr));
}

TEST(FindRunWindow, AKeyThatMatchesNothingDoesNotFallBackToTheOnlyWindow) {
  test::FakeHost host;
  host.AddPresentation();
  EXPECT_FALSE(FindRunWindow(host.Application().get(), {0x7777, 0}, nullptr));
  EXPECT_FALSE(FindRunWindow(host.Application().get(), {0, 0x7777}, nullptr));
}

TEST(FindRunWindow, AWindowThatShowsAnotherPresentationDoesNotCount) {
  Windows w;
  ObjectRef second;
  const WindowContext context = w.host.ContextOf(*w.host.windows[1]);
  ObjectRef presentation;
  ASSERT_TRUE(Get(FindDocumentWindow(w.app.get(), context).get(),
                  ppt::documentWindow::kPresentation, presentation));
  EXPECT_EQ(w.Found(FindRunWindow(w.app.get(), context, presentation.get())), 2);
  EXPECT_FALSE(
      FindRunWindow(w.app.get(), w.host.ContextOf(*w.host.windows[0]), presentation.get()));
}

}  // namespace

}  // namespace quillmarch::addin
