#include "run/collect/CollectSlides.h"

#include <gtest/gtest.h>

#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::TextShape;

struct Collection {
  explicit Collection(bool all = true) : allSlides(all) {
    document.windowContext = harness.params.windowContext;
  }

  ResultCode Run() {
    document.app = harness.host.Application();
    return Collect();
  }

  ResultCode Collect() {
    const Status collected = CollectSlides(document, allSlides, &harness.sink, run);
    message = collected.words;
    return collected.code;
  }

  test::RunHarness harness;
  bool allSlides;
  Wide message;
  RunDocument document;
  RunTexts run;
};

TEST(CollectSlides, EverySlideHasAnEntryAlsoOneWithoutText) {
  Collection c;
  c.harness.deck().AddSlide({TextShape(u"a")});
  c.harness.deck().AddSlide({test::PictureShape()});
  c.harness.deck().AddSlide({TextShape(u"b")});
  EXPECT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.slideRanges, (std::vector<UnitRange>{{0, 1}, {1, 1}, {1, 2}}));
  EXPECT_EQ(c.run.slideNumbers, (std::vector<std::int32_t>{1, 2, 3}));
  EXPECT_EQ(c.run.firstSlide, 1);
  EXPECT_EQ(c.harness.Events(),
            (std::vector<std::string>{"scan 1/3 slides", "scan 2/3 slides", "scan 3/3 slides"}));
}

TEST(CollectSlides, TheNotesFollowTheirSlide) {
  Collection c;
  c.harness.deck().AddSlide({TextShape(u"a")}, {TextShape(u"note a")});
  c.harness.deck().AddSlide({TextShape(u"b")});
  EXPECT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"a", u"note a", u"b"}));
  EXPECT_EQ(c.run.locators[1].kind, UnitKind::kNotes);
  EXPECT_EQ(c.run.locators[1].onNotes, 0);
}

TEST(CollectSlides, ASlideWithoutNotesPageStillHasItsUnitsAndItsEntry) {
  Collection c;
  c.harness.deck().AddSlide({TextShape(u"a")}, {TextShape(u"lost")}).failing = {"Slide.NotesPage"};
  EXPECT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"a"}));
  EXPECT_EQ(c.run.slideRanges, (std::vector<UnitRange>{{0, 1}}));
}

TEST(CollectSlides, ABilingualCopyHasNoEntry) {
  Collection c;
  c.harness.deck().AddSlide({TextShape(u"a")});
  c.harness.deck().AddSlide({TextShape(u"copy")}).tags[u"QUILLMARCH.BILINGUALCOPYOF"] = u"256";
  c.harness.deck().AddSlide({TextShape(u"b")});
  EXPECT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.slideNumbers, (std::vector<std::int32_t>{1, 3}));
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"a", u"b"}));
}

TEST(CollectSlides, UnreadableTagsMakeNoCopyOfASlide) {
  Collection c;
  c.harness.deck().AddSlide({TextShape(u"a")}).failing = {"Slide.Tags"};
  EXPECT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.units.size(), 1U);
}

TEST(CollectSlides, ASlideThatCannotBeHadHasNoEntry) {
  Collection c;
  c.harness.deck().AddSlide({TextShape(u"a")});
  c.harness.deck().AddSlide({TextShape(u"b")});
  c.harness.host.Fail("Slides.Item(1)");
  EXPECT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.slideNumbers, (std::vector<std::int32_t>{2}));
  EXPECT_EQ(c.run.slideRanges, (std::vector<UnitRange>{{0, 1}}));
}

TEST(CollectSlides, ASlideWithoutReadableShapesHasNoEntryAndItsNotesAreNotRead) {
  Collection c;
  c.harness.deck().AddSlide({TextShape(u"a")}, {TextShape(u"note")}).failing = {"Slide.Shapes"};
  c.harness.deck().AddSlide({TextShape(u"b")});
  EXPECT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.slideNumbers, (std::vector<std::int32_t>{2}));
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"b"}));
}

TEST(CollectSlides, TheCurrentSlideIsTheViewsAlone) {
  Collection c(false);
  c.harness.deck().AddSlide({TextShape(u"a")});
  c.harness.deck().AddSlide({TextShape(u"b")});
  c.harness.window().viewSlide = 2;
  EXPECT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"b"}));
  EXPECT_EQ(c.run.firstSlide, 2);
  EXPECT_EQ(c.harness.Events(), (std::vector<std::string>{"scan 1/1 slides"}));
}

TEST(CollectSlides, WithoutACurrentSlideTheCollectionFails) {
  for (const char* call : {"DocumentWindow.View", "View.Slide", "Slide.SlideIndex"}) {
    Collection c(false);
    c.harness.deck().AddSlide({TextShape(u"a")});
    c.harness.host.Fail(call);
    EXPECT_EQ(c.Run(), kFail) << call;
    EXPECT_EQ(c.message, u"无法定位当前页") << call;
  }
}

TEST(CollectSlides, WithoutSlidesTheHostsCodeComesBack) {
  Collection c;
  c.harness.host.Fail("Presentation.Slides");
  EXPECT_EQ(c.Run(), kHostException);
  EXPECT_EQ(c.message, u"无法访问 Slides");
}

TEST(CollectSlides, WithoutAPresentationTheMessageSendsToThePane) {
  Collection c;
  c.harness.host.Fail("DocumentWindow.Presentation");
  EXPECT_EQ(c.Run(), kFail);
  EXPECT_EQ(c.message, u"无法定位当前演示文稿（请重新打开侧栏）");
}

TEST(CollectSlides, AnApplicationThatIsNoneFails) {
  Collection c;
  c.document.app = c.harness.host.SlidesObject(c.harness.host.presentations.front());
  EXPECT_EQ(c.Collect(), kFail);
  EXPECT_EQ(c.message, u"无法获取 Application 接口");
}

TEST(CollectSlides, ACollectionAsksTheHostForThisAndNoMore) {
  Collection c;
  c.harness.deck().AddSlide({TextShape(u"Plan")});
  ASSERT_NE(c.Run(), kFail);
  EXPECT_EQ(c.harness.host.calls, (std::vector<std::string>{"Application.Windows",
                                                            "DocumentWindows.Count",
                                                            "DocumentWindows.Item(1)",
                                                            "DocumentWindow.HWND",
                                                            "DocumentWindow.Presentation",
                                                            "Presentation.Slides",
                                                            "Slides.Count",
                                                            "Slides.Item(1)",
                                                            "Slide.Tags",
                                                            "Tags.Item(Quillmarch.BilingualCopyOf)",
                                                            "Slide.Shapes",
                                                            "Shapes.Count",
                                                            "Shapes:Item(1)",
                                                            "Shape:Type",
                                                            "Shape.HasTable",
                                                            "Shape.HasTextFrame",
                                                            "Shape.TextFrame",
                                                            "TextFrame.HasText",
                                                            "TextFrame.TextRange",
                                                            "TextRange.Paragraphs(-1,-1)",
                                                            "TextRange.Count",
                                                            "Shape:Type",
                                                            "Shape:Name",
                                                            "TextRange.Paragraphs(1,1)",
                                                            "TextRange.Text",
                                                            "Slide.NotesPage",
                                                            "SlideRange.Shapes",
                                                            "Shapes.Count"}));
}

}  // namespace

}  // namespace quillmarch::addin
