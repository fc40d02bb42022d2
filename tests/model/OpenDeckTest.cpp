#include <fstream>
#include <iterator>

#include "model/ModelFixture.h"

namespace quillmarch::host {

using testdeck::Box;
using testdeck::Relation;
using testdeck::SlideXml;
using testdeck::TextPara;

namespace {

std::string FileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

class OpenDeckOf : public ModelTest {
 protected:
  OpenDeckOf() {
    deck.slides.push_back(
        {SlideXml(Box(TextPara("x"))), testdeck::NotesXml(TextPara("n")), {}, {}});
  }
  // The sentence of a refusal, empty when the deck opens.
  std::string Refusal() {
    testdeck::Write(deck, path());
    host = std::make_unique<Host>(*FindPersonality("powerpoint"));
    const Result<void> opened = host->Open(path(), warnings);
    return opened ? std::string() : opened.error().words;
  }
  void ExpectRefusal(const std::string& part, const std::string& cause) {
    const std::string sentence = Refusal();
    EXPECT_NE(sentence.find(part), std::string::npos) << sentence;
    EXPECT_NE(sentence.find(cause), std::string::npos) << sentence;
    EXPECT_EQ(sentence.find('\n'), std::string::npos);
    EXPECT_EQ(host->SlideCount(), 0);
  }
  testdeck::DeckSource deck;
};

TEST_F(OpenDeckOf, AllSixKindsOfPresentationOpen) {
  const std::string office = "application/vnd.openxmlformats-officedocument.presentationml.";
  const std::string macro = "application/vnd.ms-powerpoint.";
  for (const std::string& type :
       {office + "presentation.main+xml", office + "template.main+xml",
        office + "slideshow.main+xml", macro + "presentation.macroEnabled.main+xml",
        macro + "template.macroEnabled.main+xml", macro + "slideshow.macroEnabled.main+xml"}) {
    deck.mainType = type;
    EXPECT_EQ(Refusal(), "") << type;
    EXPECT_EQ(host->SlideCount(), 1);
  }
}

TEST_F(OpenDeckOf, AnotherKindOfDocumentIsRefused) {
  deck.mainType =
      "application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml";
  ExpectRefusal("ppt/presentation.xml", "is not a presentation");
}

TEST_F(OpenDeckOf, APartThatTheStructureNeedsIsRefusedWhenMissing) {
  for (const char* part :
       {"ppt/presentation.xml", "ppt/slides/slide1.xml", "ppt/notesSlides/notesSlide1.xml",
        "ppt/slideLayouts/slideLayout1.xml", "ppt/slideMasters/slideMaster1.xml"}) {
    deck.parts = {{part, ""}};
    ExpectRefusal(part, "missing");
  }
}

TEST_F(OpenDeckOf, AMissingLeafIsOneWarning) {
  deck.slides[0].relations = Relation("i1", "image", "../media/image1.png") +
                             Relation("i2", "image", "../media/image1.png");
  EXPECT_EQ(Refusal(), "");
  ASSERT_EQ(warnings.size(), 1u);
  EXPECT_NE(warnings[0].find("ppt/media/image1.png"), std::string::npos);
}

TEST_F(OpenDeckOf, AMissingLeafOfAnotherPartIsFoundToo) {
  deck.slides[0].relations = Relation("c1", "chart", "../charts/chart1.xml");
  deck.parts = {{"ppt/charts/chart1.xml", "<c/>"},
                {"ppt/charts/_rels/chart1.xml.rels",
                 testdeck::Relations(Relation("w", "package", "../embeddings/book.xlsx"))}};
  EXPECT_EQ(Refusal(), "");
  ASSERT_EQ(warnings.size(), 1u);
  EXPECT_NE(warnings[0].find("ppt/embeddings/book.xlsx"), std::string::npos);
}

TEST_F(OpenDeckOf, ABrokenSlideIsRefusedBeforeAnythingIsWritten) {
  deck.slides.push_back({"<p:sld" + testdeck::kNamespaces + "><p:cSld>", {}, {}, {}});
  ExpectRefusal("ppt/slides/slide2.xml", "");
  deck.slides[1].xml = "<p:sld/>";
  ExpectRefusal("ppt/slides/slide2.xml", "");
  deck.slides[1].xml = "<other/>";
  ExpectRefusal("ppt/slides/slide2.xml", "its root is not p:sld");
}

TEST_F(OpenDeckOf, BrokenNotesLayoutsAndMastersAreRefused) {
  for (const char* part : {"ppt/notesSlides/notesSlide1.xml", "ppt/slideLayouts/slideLayout1.xml",
                           "ppt/slideMasters/slideMaster1.xml", "ppt/presentation.xml"}) {
    deck.parts = {{part, "<broken"}};
    ExpectRefusal(part, "");
  }
}

TEST_F(OpenDeckOf, ASlideListEntryThatLeadsNowhereIsRefused) {
  deck.parts = {
      {"ppt/_rels/presentation.xml.rels",
       testdeck::Relations(Relation("m1", "slideMaster", "slideMasters/slideMaster1.xml"))}};
  ExpectRefusal("ppt/presentation.xml", "does not lead to a slide");
}

TEST_F(OpenDeckOf, ADeckWithoutSlidesOpens) {
  deck.slides.clear();
  EXPECT_EQ(Refusal(), "");
  EXPECT_EQ(host->SlideCount(), 0);
  EXPECT_TRUE(Failed(Code(Get(Get(host->application(), u"ActiveWindow"), u"View"), u"Slide")));
}

TEST_F(OpenDeckOf, AStrictDeckIsReadAndItsNamespacesKept) {
  std::vector<std::pair<std::string, std::string>> strict;
  for (const auto& [name, original] : testdeck::Parts(deck)) {
    std::string bytes = original;
    const auto swap = [&bytes](const std::string& from, const std::string& to) {
      for (std::size_t at = 0; (at = bytes.find(from, at)) != std::string::npos;) {
        bytes.replace(at, from.size(), to);
      }
    };
    swap("http://schemas.openxmlformats.org/officeDocument/2006/relationships",
         "http://purl.oclc.org/ooxml/officeDocument/relationships");
    swap("http://schemas.openxmlformats.org/drawingml/2006/main",
         "http://purl.oclc.org/ooxml/drawingml/main");
    swap("http://schemas.openxmlformats.org/presentationml/2006/main",
         "http://purl.oclc.org/ooxml/presentationml/main");
    if (name != "[Content_Types].xml" && name != "_rels/.rels") strict.emplace_back(name, bytes);
  }
  deck.parts = strict;
  EXPECT_EQ(Refusal(), "");
  ASSERT_EQ(Put(Range(1), u"y"), kOk);
  EXPECT_NE(Saved().find("http://purl.oclc.org/ooxml/drawingml/main"), std::string::npos);
}

TEST_F(OpenDeckOf, ReadingEverythingAndSavingGivesTheSameFile) {
  EXPECT_EQ(Refusal(), "");
  EXPECT_EQ(Single(Get(Range(1), u"Font"), u"Size"), 18.0f);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"x");
  Get(Slide(1), u"NotesPage");
  const std::string target = scratch.Path("copy.pptx");
  ASSERT_TRUE(host->Save(target));
  EXPECT_EQ(FileBytes(target), FileBytes(path()));
}

TEST_F(OpenDeckOf, APartThatNoEditTouchedStaysAsItWas) {
  EXPECT_EQ(Refusal(), "");
  ASSERT_EQ(Put(Range(1), u"y"), kOk);
  EXPECT_TRUE(host->Edited());
  const std::string slide = Saved();
  EXPECT_NE(slide, deck.slides[0].xml);
  for (const auto& [name, bytes] : testdeck::Parts(deck)) {
    if (name == "ppt/slides/slide1.xml") continue;
    EXPECT_EQ(Saved(name), bytes) << name;
  }
}

}  // namespace quillmarch::host
