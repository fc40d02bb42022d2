#include "host/model/CallCount.h"
#include "model/ModelFixture.h"

namespace quillmarch::host {

using testdeck::Box;
using testdeck::Relation;
using testdeck::SlideXml;
using testdeck::TextPara;

class Slides : public ModelTest {
 protected:
  static testdeck::DeckSource Three() {
    testdeck::DeckSource deck;
    for (const char* text : {"one", "two", "three"}) {
      deck.slides.push_back({SlideXml(Box(TextPara(text))), {}, {}, {}});
    }
    deck.slides[1].notes = testdeck::NotesXml(TextPara("say this"));
    deck.slides[2].id = "900";
    return deck;
  }
};

TEST_F(Slides, AreInTheOrderOfTheListAndFoundByTheirIds) {
  OpenDeck(Three());
  const ObjectRef slides = Get(Presentation(), u"Slides");
  EXPECT_EQ(Whole(slides, u"Count"), 3);
  EXPECT_EQ(Whole(Slide(3), u"SlideID"), 900);
  EXPECT_EQ(Whole(Slide(3), u"SlideIndex"), 3);
  EXPECT_EQ(Whole(Get(slides, u"FindBySlideID", {Variant::I4(900)}), u"SlideIndex"), 3);
  EXPECT_TRUE(Failed(Code(slides, u"FindBySlideID", {Variant::I4(5)})));
  EXPECT_TRUE(Failed(Code(slides, u"Item", {Variant::I4(4)})));
  EXPECT_TRUE(Failed(Code(slides, u"Item", {Variant::I4(0)})));
  EXPECT_EQ(TextOf(Slide(1), u"Name"), u"Slide1");
}

TEST_F(Slides, TwoSlidesWithOneIdAreBothThere) {
  testdeck::DeckSource deck = Three();
  deck.slides[1].id = "900";
  OpenDeck(deck);
  EXPECT_EQ(Whole(Get(Presentation(), u"Slides"), u"Count"), 3);
  EXPECT_EQ(Whole(Get(Get(Presentation(), u"Slides"), u"FindBySlideID", {Variant::I4(900)}),
                  u"SlideIndex"),
            2);
}

TEST_F(Slides, ANotesPageIsReadAndWrittenAndAMissingOneIsEmpty) {
  OpenDeck(Three());
  EXPECT_EQ(Whole(Slide(2), u"HasNotesPage"), -1);
  EXPECT_EQ(Whole(Slide(1), u"HasNotesPage"), 0);
  const auto notes = [&](int slide) { return Get(Get(Slide(slide), u"NotesPage"), u"Shapes"); };
  const ObjectRef text = RangeOf(Get(notes(2), u"Item", {Variant::I4(1)}));
  EXPECT_EQ(TextOf(text, u"Text"), u"say this");
  EXPECT_EQ(Single(Get(text, u"Font"), u"Size"), 18.0f);

  EXPECT_EQ(Whole(notes(1), u"Count"), 2);
  const ObjectRef image = Get(notes(1), u"Item", {Variant::I4(1)});
  EXPECT_EQ(Whole(image, u"HasTextFrame"), 0);
  const ObjectRef body = Get(notes(1), u"Item", {Variant::I4(2)});
  EXPECT_EQ(Whole(Get(body, u"TextFrame"), u"HasText"), 0);
  EXPECT_TRUE(Failed(Put(RangeOf(body), u"new notes")));
  EXPECT_FALSE(host->Edited());

  ASSERT_EQ(Put(text, u"say that"), kOk);
  EXPECT_NE(Saved("ppt/notesSlides/notesSlide2.xml").find(TextPara("say that")), std::string::npos);
}

TEST_F(Slides, TheViewGoesWhereItIsSent) {
  OpenDeck(Three());
  const ObjectRef view = Get(Get(host->application(), u"ActiveWindow"), u"View");
  EXPECT_EQ(Whole(Get(view, u"Slide"), u"SlideIndex"), 1);
  EXPECT_EQ(Code(view, u"GotoSlide", {Variant::I4(3)}), kOk);
  EXPECT_EQ(Whole(Get(view, u"Slide"), u"SlideIndex"), 3);
  EXPECT_TRUE(Failed(Code(view, u"GotoSlide", {Variant::I4(4)})));
  EXPECT_TRUE(host->ShowSlide(2));
  EXPECT_FALSE(host->ShowSlide(4));
  EXPECT_EQ(Whole(Get(view, u"Slide"), u"SlideIndex"), 2);
}

TEST_F(Slides, WindowsAndPresentationsKeepTheirIdentity) {
  OpenDeck(Three());
  const ObjectRef application = host->application();
  const ObjectRef window = Get(application, u"ActiveWindow");
  const ObjectRef same = Get(Get(application, u"Windows"), u"Item", {Variant::I4(1)});
  EXPECT_EQ(window->Identity(), same->Identity());
  EXPECT_EQ(Get(window, u"Presentation")->Identity(), Presentation()->Identity());
  EXPECT_NE(window->Identity(), Presentation()->Identity());
  EXPECT_NE(Whole(window, u"HWND"), 0);

  ASSERT_TRUE(host->Open(path(), warnings));
  EXPECT_EQ(Whole(Get(application, u"Windows"), u"Count"), 2);
  const ObjectRef second = Get(application, u"ActiveWindow");
  EXPECT_NE(second->Identity(), window->Identity());
  EXPECT_NE(Whole(second, u"HWND"), Whole(window, u"HWND"));
  EXPECT_EQ(Whole(second, u"Active"), -1);
  EXPECT_EQ(Whole(window, u"Active"), 0);
}

TEST_F(Slides, ObjectsOutliveTheHost) {
  OpenDeck(Three());
  const ObjectRef range = Range(1);
  host.reset();
  EXPECT_EQ(TextOf(range, u"Text"), u"one");
}

TEST_F(Slides, ThePageSetupIsInPoints) {
  OpenDeck(Three());
  const ObjectRef setup = Get(Presentation(), u"PageSetup");
  EXPECT_EQ(Single(setup, u"SlideWidth"), 960.0f);
  EXPECT_EQ(Single(setup, u"SlideHeight"), 540.0f);
}

TEST_F(Slides, TagsAreFoundInAnyCaseAndAnUnknownOneIsEmpty) {
  testdeck::DeckSource deck = Three();
  deck.slides[0].xml = SlideXml("");
  deck.slides[0].xml.insert(deck.slides[0].xml.find("</p:cSld>"),
                            "<p:custDataLst><p:tags r:id=\"t1\"/></p:custDataLst>");
  deck.slides[0].relations = Relation("t1", "tags", "../tags/tag1.xml");
  deck.parts.emplace_back(
      "ppt/tags/tag1.xml",
      "<p:tagLst" + testdeck::kNamespaces + "><p:tag name=\"COLOUR\" val=\"Red\"/></p:tagLst>");
  OpenDeck(deck);
  const ObjectRef tags = Get(Slide(1), u"Tags");
  EXPECT_EQ(Whole(tags, u"Count"), 1);
  EXPECT_EQ(TextOf(tags, u"Item", {Variant::Text(u"colour")}), u"Red");
  EXPECT_EQ(TextOf(tags, u"Item", {Variant::Text(u"other")}), u"");
  EXPECT_EQ(TextOf(tags, u"Name", {Variant::I4(1)}), u"COLOUR");
  EXPECT_TRUE(Failed(Code(tags, u"Name", {Variant::I4(2)})));
  EXPECT_EQ(TextOf(Get(Slide(2), u"Tags"), u"Item", {Variant::Text(u"colour")}), u"");
  EXPECT_EQ(Code(tags, u"Add", {Variant::Text(u"Size"), Variant::Text(u"a\"b")}), kOk);
  EXPECT_EQ(Code(tags, u"Add", {Variant::Text(u"Colour"), Variant::Text(u"Blue")}), kOk);
  EXPECT_EQ(TextOf(tags, u"Item", {Variant::Text(u"SIZE")}), u"a\"b");
  EXPECT_NE(Saved("ppt/tags/tag1.xml")
                .find("<p:tag name=\"COLOUR\" val=\"Blue\"/><p:tag name=\"SIZE\" "
                      "val=\"a&quot;b\"/></p:tagLst>"),
            std::string::npos);
  EXPECT_TRUE(
      Failed(Code(Get(Slide(2), u"Tags"), u"Add", {Variant::Text(u"Size"), Variant::Text(u"1")})));
}

TEST_F(Slides, BothRoadsReachTheSameMembers) {
  OpenDeck(Three());
  ObjectRef slides, slide, shapes, shape, frame, range;
  const ObjectRef presentation = Presentation();
  ASSERT_TRUE(quillmarch::Get(presentation.get(), ppt::presentation::kSlides, slides));
  ASSERT_TRUE(GetAt(slides.get(), ppt::slides::kItem, 2, slide));
  ASSERT_TRUE(quillmarch::Get(slide.get(), ppt::slide::kShapes, shapes));
  ASSERT_TRUE(GetAt(shapes.get(), ppt::shapes::kItem, 1, shape));
  ASSERT_TRUE(quillmarch::Get(shape.get(), ppt::shape::kTextFrame, frame));
  ASSERT_TRUE(quillmarch::Get(frame.get(), ppt::textFrame::kTextRange, range));
  Wide text;
  ASSERT_TRUE(quillmarch::Get(range.get(), ppt::textRange::kText, text));
  EXPECT_EQ(text, u"two");
  ASSERT_TRUE(quillmarch::Put(range.get(), ppt::textRange::kText, u"zwei"));
  EXPECT_EQ(TextOf(Range(1, 2), u"TEXT"), u"zwei");
  EXPECT_FALSE(AnswersTo(range.get(), ppt::kShape));
  EXPECT_TRUE(AnswersTo(Get(Slide(1), u"NotesPage").get(), ppt::kSlideRange));
  EXPECT_FALSE(AnswersTo(Get(Slide(1), u"NotesPage").get(), ppt::kSlide));
}

TEST_F(Slides, CallsAreCountedAndTheQuestionForAnInterfaceIsNot) {
  OpenDeck(Three());
  const ObjectRef presentation = Presentation();
  const CallCount before = HostCallCount();
  Variant value;
  ASSERT_EQ(AutoGet(presentation.get(), u"Slides", value), kOk);
  EXPECT_EQ(HostCallCount().invokes - before.invokes, 1u);
  EXPECT_EQ(HostCallCount().nameLookups - before.nameLookups, 1u);
  ASSERT_EQ(CallMember(presentation.get(), ppt::presentation::kSlides, value), kOk);
  EXPECT_EQ(HostCallCount().invokes - before.invokes, 2u);
  EXPECT_EQ(HostCallCount().nameLookups - before.nameLookups, 1u);
}

TEST_F(Slides, AMemberThatIsNotThereOrCannotBePutFails) {
  OpenDeck(Three());
  DispId id = 0;
  EXPECT_EQ(Slide(1)->IdOfName(u"NoSuchMember", id), kUnknownName);
  EXPECT_EQ(Slide(1)->IdOfName(Wide(5000, u'x'), id), kUnknownName);
  EXPECT_EQ(Slide(1)->Invoke(424242, kInvokeGet, {}, nullptr), kMemberNotFound);
  EXPECT_EQ(AutoPut(Slide(1).get(), u"SlideID", Variant::I4(1)), kMemberNotFound);
  EXPECT_TRUE(Failed(AutoPut(Range(1).get(), u"Text", Variant::I4(1))));
}

}  // namespace quillmarch::host
