// A deck as a file: opening, refusing, writing back, saving.
#include "host/deck/Deck.h"

#include <gtest/gtest.h>

#include "deck/DeckBuilder.h"
#include "host/deck/TagList.h"
#include "support/TempFolder.h"

namespace quillmarch::host::deck {

using testdeck::Box;
using testdeck::DeckSource;
using testdeck::Relation;
using testdeck::SlideXml;
using testdeck::TextPara;

namespace {

const std::string kTags =
    "<p:tagLst xmlns:p=\"http://schemas.openxmlformats.org/presentationml/"
    "2006/main\"><p:tag name=\"ONE\" val=\"1\"/><p:tag  name='two' "
    "val='a &amp; b' /></p:tagLst>";

DeckSource OneSlide(const std::string& shapes, const std::string& relations = "") {
  DeckSource source;
  source.slides.push_back({SlideXml(shapes), {}, relations, {}});
  return source;
}

class DeckFile : public ::testing::Test {
 protected:
  void Open(const DeckSource& source) {
    testdeck::Write(source, path());
    Result<std::unique_ptr<Deck>> opened = Deck::Open(path(), warnings);
    ASSERT_TRUE(opened.ok()) << opened.error().words;
    deck = std::move(opened.value());
  }
  std::string Refusal(const DeckSource& source) {
    testdeck::Write(source, path());
    const Result<std::unique_ptr<Deck>> opened = Deck::Open(path(), warnings);
    EXPECT_FALSE(opened.ok());
    return opened.error().words;
  }
  std::string Saved(const std::string& part) {
    const Result<void> saved = deck->Save(target());
    EXPECT_TRUE(saved.ok()) << saved.error().words;
    return testdeck::ReadPart(target(), part);
  }
  bool Put(std::uint32_t slide, WideView text) {
    TextBody* const body = deck->Text({{slide, false}, 0});
    TextSpan span{0, body->Length()};
    return body->PutText(span, text);
  }
  Wide Text(std::uint32_t slide) {
    TextBody* const body = deck->Text({{slide, false}, 0});
    return body->Text({0, body->Length()});
  }
  std::string path() const { return scratch.Path("deck.pptx"); }
  std::string target() const { return scratch.Path("saved.pptx"); }

  TempFolder scratch;
  std::vector<std::string> warnings;
  std::unique_ptr<Deck> deck;
};

}  // namespace

TEST_F(DeckFile, SlidesKeepTheOrderAndTheIdsOfTheList) {
  DeckSource source;
  for (const char* id : {"300", "256", "299"}) {
    source.slides.push_back({SlideXml(Box(TextPara(id))), {}, {}, id});
  }
  Open(source);
  ASSERT_EQ(deck->SlideCount(), 3U);
  EXPECT_EQ(deck->Slide(0).id, 300);
  EXPECT_EQ(deck->Slide(2).id, 299);
  EXPECT_EQ(Text(1), u"256");
  EXPECT_EQ(deck->SlideWidth(), 960.0);
  EXPECT_EQ(deck->SlideHeight(), 540.0);
}

TEST_F(DeckFile, ASlideThatTheListNamesAndNobodyHasIsNamed) {
  DeckSource source = OneSlide(Box(TextPara("a")));
  source.parts.emplace_back("ppt/slides/slide1.xml", "");
  EXPECT_EQ(Refusal(source), "The part ppt/slides/slide1.xml (slide 1) is missing.");
}

TEST_F(DeckFile, ASlideWithAnotherRootIsNamed) {
  DeckSource source;
  source.slides.push_back({"<p:notes" + testdeck::kNamespaces + "/>", {}, {}, {}});
  EXPECT_NE(Refusal(source).find("ppt/slides/slide1.xml"), std::string::npos);
}

TEST_F(DeckFile, ADocumentThatIsNoPresentationIsRefusedByItsContentType) {
  DeckSource source = OneSlide(Box(TextPara("a")));
  source.mainType =
      "application/vnd.openxmlformats-officedocument.wordprocessingml."
      "document.main+xml";
  EXPECT_NE(Refusal(source).find("wordprocessingml"), std::string::npos);
}

TEST_F(DeckFile, AMissingPictureIsAWarningAndTheDeckOpens) {
  Open(OneSlide(Box(TextPara("a")), Relation("p1", "image", "../media/gone.png")));
  ASSERT_EQ(warnings.size(), 1U);
  EXPECT_NE(warnings[0].find("ppt/media/gone.png"), std::string::npos);
}

TEST_F(DeckFile, ManyMissingPicturesAreOneWarningWithTheirNumber) {
  std::string relations;
  for (int i = 0; i < 1000; ++i) {
    const std::string number = std::to_string(i);
    relations += Relation("p" + number, "image", "../media/gone" + number + ".png");
  }
  Open(OneSlide(Box(TextPara("a")), relations));
  ASSERT_EQ(warnings.size(), 1U);
  EXPECT_NE(warnings[0].find("1000 parts"), std::string::npos) << warnings[0];
}

TEST_F(DeckFile, WithoutAnEditTheSavedFileIsTheOriginalToTheByte) {
  Open(OneSlide(Box(TextPara("a"))));
  EXPECT_EQ(Text(0), u"a");
  EXPECT_FALSE(deck->Edited());
  ASSERT_TRUE(deck->Save(target()).ok());
  EXPECT_EQ(TempFolder::Bytes(target()), TempFolder::Bytes(path()));
}

TEST_F(DeckFile, AnEditTakenBackIsNoEdit) {
  Open(OneSlide(Box(TextPara("a"))));
  ASSERT_TRUE(Put(0, u"b"));
  EXPECT_TRUE(deck->Edited());
  ASSERT_TRUE(Put(0, u"a"));
  EXPECT_EQ(Saved("ppt/slides/slide1.xml").find("<a:t>b"), std::string::npos);
}

TEST_F(DeckFile, EditsOfPagesThatMadeRoomForOthersAreSaved) {
  DeckSource source;
  constexpr std::uint32_t kSlides = 12;
  for (std::uint32_t i = 0; i < kSlides; ++i) {
    source.slides.push_back({SlideXml(Box(TextPara("old " + std::to_string(i)))), {}, {}, {}});
  }
  Open(source);
  for (std::uint32_t i = 0; i < kSlides; ++i) {
    ASSERT_TRUE(Put(i, u"new " + Decimal(static_cast<std::int64_t>(i))));
  }
  EXPECT_EQ(Text(0), u"new 0") << "as it was left";
  ASSERT_TRUE(Put(0, u"again"));
  EXPECT_NE(Saved("ppt/slides/slide1.xml").find("<a:t>again</a:t>"), std::string::npos);
  EXPECT_NE(testdeck::ReadPart(target(), "ppt/slides/slide12.xml").find("<a:t>new 11</a:t>"),
            std::string::npos);
}

TEST_F(DeckFile, APartThatNobodyEditedIsSavedAsItWas) {
  DeckSource source = OneSlide(Box(TextPara("a")));
  source.slides.push_back({SlideXml(Box(TextPara("other"))), {}, {}, {}});
  Open(source);
  ASSERT_TRUE(Put(0, u"b"));
  EXPECT_EQ(Saved("ppt/slides/slide2.xml"), source.slides[1].xml);
  EXPECT_EQ(testdeck::ReadPart(target(), "ppt/presentation.xml"),
            testdeck::ReadPart(path(), "ppt/presentation.xml"));
}

TEST_F(DeckFile, ASlideWithoutNotesShowsAnEmptyPageThatTheFileDoesNotHave) {
  Open(OneSlide(Box(TextPara("a"))));
  EXPECT_FALSE(deck->HasNotes(0));
  SlidePart* const notes = deck->Page({0, true});
  ASSERT_NE(notes, nullptr);
  EXPECT_EQ(notes->shapes().Count(), 2U);
  EXPECT_TRUE(deck->PartOf({0, true}).empty());
}

TEST_F(DeckFile, APageBeyondTheLastIsNone) {
  Open(OneSlide(Box(TextPara("a"))));
  EXPECT_EQ(deck->Page({1, false}), nullptr);
  EXPECT_EQ(deck->Text({{0, false}, 99}), nullptr);
}

TEST_F(DeckFile, AShapeOfAGroupIsPlacedThroughTheGroupsScale) {
  Open(OneSlide(testdeck::Group(Box(TextPara("a")))));
  // The group shows its inside twice as large, 100 points from the corner.
  const ShapeBox box = deck->Box({{0, false}, 1});
  EXPECT_EQ(box.left, 120.0);
  EXPECT_EQ(box.top, 140.0);
  EXPECT_EQ(box.width, 200.0);
  ASSERT_TRUE(deck->PutBox({{0, false}, 1}, {100, 100, 50, 50}));
  EXPECT_NE(Saved("ppt/slides/slide1.xml")
                .find("<a:off x=\"0\" y=\"0\"/><a:ext cx=\"317500\" cy=\"317500\"/>"),
            std::string::npos);
}

class TagsOfADeck : public DeckFile {
 protected:
  void OpenTagged(const std::string& tags = kTags) {
    DeckSource source = OneSlide(Box(TextPara("a")), Relation("t1", "tags", "../tags/tag1.xml"));
    std::string& xml = source.slides[0].xml;
    const std::string end = "</p:spTree>";
    xml.insert(xml.find(end) + end.size(), "<p:custDataLst><p:tags r:id=\"t1\"/></p:custDataLst>");
    source.parts.emplace_back("ppt/tags/tag1.xml", tags);
    Open(source);
  }
  TagOwner owner{TagOwner::Kind::kSlide, {0, false}, 0};
};

TEST_F(TagsOfADeck, AreReadInOrderWithTheirValues) {
  OpenTagged();
  const std::vector<Tag> tags = ReadTags(*deck, owner);
  ASSERT_EQ(tags.size(), 2U);
  EXPECT_EQ(tags[0].name, u"ONE");
  EXPECT_EQ(tags[1].name, u"two");
  EXPECT_EQ(tags[1].value, u"a & b");
}

TEST_F(TagsOfADeck, AValueIsReplacedInPlaceWhateverTheCaseOfItsName) {
  OpenTagged();
  ASSERT_TRUE(PutTag(*deck, owner, u"TWO", u"\"c\" < d"));
  std::string expected = kTags;
  const std::string old = "val='a &amp; b'";
  expected.replace(expected.find(old), old.size(), "val=\"&quot;c&quot; &lt; d\"");
  EXPECT_EQ(Saved("ppt/tags/tag1.xml"), expected);
}

TEST_F(TagsOfADeck, ANewOneIsAddedInUpperCaseAtTheEnd) {
  OpenTagged();
  ASSERT_TRUE(PutTag(*deck, owner, u"New.Tag", u"v"));
  std::string expected = kTags;
  expected.insert(expected.find("</p:tagLst>"), "<p:tag name=\"NEW.TAG\" val=\"v\"/>");
  EXPECT_EQ(Saved("ppt/tags/tag1.xml"), expected);
}

TEST_F(TagsOfADeck, AnEmptyListIsOpened) {
  const std::string ns = " xmlns:p=\"http://schemas.openxmlformats.org/presentationml/2006/main\"";
  OpenTagged("<p:tagLst" + ns + "/>");
  EXPECT_TRUE(ReadTags(*deck, owner).empty());
  ASSERT_TRUE(PutTag(*deck, owner, u"A", u"1"));
  EXPECT_EQ(Saved("ppt/tags/tag1.xml"),
            "<p:tagLst" + ns + "><p:tag name=\"A\" val=\"1\"/></p:tagLst>");
}

TEST_F(TagsOfADeck, APartThatIsNotThereReadsAsNoTags) {
  OpenTagged("");
  EXPECT_TRUE(ReadTags(*deck, owner).empty());
}

TEST_F(TagsOfADeck, OthersHaveNone) {
  OpenTagged();
  EXPECT_TRUE(ReadTags(*deck, {}).empty());
  EXPECT_TRUE(ReadTags(*deck, {TagOwner::Kind::kShape, {0, false}, 0}).empty());
  EXPECT_TRUE(ReadTags(*deck, {TagOwner::Kind::kShape, {0, false}, 99}).empty());
}

}  // namespace quillmarch::host::deck
