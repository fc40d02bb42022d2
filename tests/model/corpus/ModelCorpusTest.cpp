// Every real deck through the object model: reading all of it changes nothing, and marking every
// paragraph changes what an independent reader of the file expects, and nothing else.
#include <gtest/gtest.h>
#include <zip.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "deck/DeckBuilder.h"
#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"
#include "host/model/Host.h"
#include "support/TempFolder.h"

namespace quillmarch::host {

namespace {

std::vector<std::string> Decks() {
  std::vector<std::string> decks;
  for (const auto& entry : std::filesystem::directory_iterator(QUILLMARCH_DECKS)) {
    const std::string kind = entry.path().extension().string();
    if (entry.path().filename().string().starts_with(".")) continue;
    if (kind.starts_with(".pp") || kind.starts_with(".po")) decks.push_back(entry.path().string());
  }
  std::sort(decks.begin(), decks.end());
  return decks;
}

std::string FileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::map<std::string, std::string> AllParts(const std::string& path) {
  std::map<std::string, std::string> parts;
  zip_t* const archive = zip_open(path.c_str(), ZIP_RDONLY, nullptr);
  for (zip_int64_t i = 0; archive != nullptr && i < zip_get_num_entries(archive, 0); ++i) {
    const std::string name = zip_get_name(archive, static_cast<zip_uint64_t>(i), 0);
    zip_stat_t stat;
    zip_stat_index(archive, static_cast<zip_uint64_t>(i), 0, &stat);
    std::string bytes(stat.size, '\0');
    zip_file_t* const file = zip_fopen_index(archive, static_cast<zip_uint64_t>(i), 0);
    zip_fread(file, bytes.data(), stat.size);
    zip_fclose(file);
    parts[name] = std::move(bytes);
  }
  if (archive != nullptr) zip_discard(archive);
  return parts;
}

// ---- The independent reader: it knows nothing of the host's code -----------------------------

bool Named(pugi::xml_node node, const char* name) {
  return std::string_view(node.name()) == name;
}

// A paragraph's text with "|" for a line break; `locked` when it holds mathematics.
struct PlainParagraph {
  std::string text;
  bool locked = false;
};

bool HoldsMath(pugi::xml_node node) {
  return node.find_node(
      [](pugi::xml_node inner) { return Named(inner, "a14:m") || Named(inner, "m:oMath"); });
}

PlainParagraph ReadParagraph(pugi::xml_node paragraph) {
  PlainParagraph plain;
  for (const pugi::xml_node child : paragraph.children()) {
    if (Named(child, "a:br")) plain.text += "|";
    if (Named(child, "a:r") || Named(child, "a:fld")) plain.text += child.child("a:t").text().get();
    if (Named(child, "mc:AlternateContent") || Named(child, "a14:m")) plain.locked = true;
  }
  plain.locked = plain.locked || HoldsMath(paragraph);
  // A line end inside a run is white space.
  std::replace(plain.text.begin(), plain.text.end(), '\n', ' ');
  return plain;
}

// The text bodies that a reader of the slide sees, in document order.
void CollectBodies(pugi::xml_node node, std::vector<pugi::xml_node>& bodies) {
  for (const pugi::xml_node child : node.children()) {
    if (Named(child, "mc:Fallback") && child.previous_sibling("mc:Choice")) continue;
    if (Named(child, "a:tc") &&
        (child.attribute("hMerge").as_bool() || child.attribute("vMerge").as_bool())) {
      continue;
    }
    if (Named(child, "p:txBody") || Named(child, "a:txBody"))
      bodies.push_back(child);
    else
      CollectBodies(child, bodies);
  }
}

using Texts = std::vector<std::vector<PlainParagraph>>;

Texts ReadTexts(const std::string& xml) {
  pugi::xml_document document;
  document.load_buffer(xml.data(), xml.size(), pugi::parse_default | pugi::parse_ws_pcdata);
  std::vector<pugi::xml_node> bodies;
  CollectBodies(document.document_element().child("p:cSld").child("p:spTree"), bodies);
  Texts texts;
  for (const pugi::xml_node body : bodies) {
    std::vector<PlainParagraph>& paragraphs = texts.emplace_back();
    for (const pugi::xml_node paragraph : body.children("a:p")) {
      paragraphs.push_back(ReadParagraph(paragraph));
    }
  }
  return texts;
}

// ---- The walk ---------------------------------------------------------------------------------

struct Walk {
  bool mark = false;
  std::size_t paragraphs = 0;
  std::size_t refused = 0;

  static ObjectRef Child(const ObjectRef& object, const Member<ObjectRef>& typed, WideView name) {
    ObjectRef byType, byName;
    const bool first = Get(object.get(), typed, byType);
    const bool second = AutoGetObject(object.get(), name, byName);
    EXPECT_EQ(first, second) << ToUtf8(name);
    return byType;
  }

  static std::int32_t Whole(const ObjectRef& object, const Member<std::int32_t>& typed,
                            WideView name) {
    std::int32_t byType = -77;
    Variant byName;
    EXPECT_TRUE(Get(object.get(), typed, byType)) << ToUtf8(name);
    EXPECT_EQ(AutoGet(object.get(), name, byName), kOk);
    EXPECT_EQ(byName.type(), VariantType::kI4);
    if (byName.type() == VariantType::kI4) {
      EXPECT_EQ(byName.whole(), byType);
    }
    return byType;
  }

  void Text(const ObjectRef& shape) {
    if (Whole(shape, ppt::shape::kHasTextFrame, u"HasTextFrame") != -1) return;
    const ObjectRef frame = Child(shape, ppt::shape::kTextFrame, u"TextFrame");
    if (Whole(frame, ppt::textFrame::kHasText, u"HasText") != -1) return;
    const ObjectRef range = Child(frame, ppt::textFrame::kTextRange, u"TextRange");
    ObjectRef all;
    ASSERT_TRUE(GetAt(range.get(), ppt::textRange::kParagraphs, -1, -1, all));
    Wide whole;
    ASSERT_TRUE(Get(range.get(), ppt::textRange::kText, whole));
    Wide joined;
    for (std::int32_t i = Whole(all, ppt::textRange::kCount, u"Count"); i >= 1; --i) {
      ObjectRef paragraph;
      ASSERT_TRUE(GetAt(range.get(), ppt::textRange::kParagraphs, i, 1, paragraph));
      Wide text;
      ASSERT_TRUE(Get(paragraph.get(), ppt::textRange::kText, text));
      joined = text + joined;
      ++paragraphs;
      Fonts(paragraph);
      if (mark) Mark(paragraph, text);
    }
    EXPECT_EQ(joined, whole);
  }

  static void Fonts(const ObjectRef& paragraph) {
    const ObjectRef font = Child(paragraph, ppt::textRange::kFont, u"Font");
    const ObjectRef color = Child(font, ppt::font::kColor, u"Color");
    float size = 0;
    EXPECT_TRUE(Get(font.get(), ppt::font::kSize, size));
    EXPECT_TRUE(size > 0 || size == -2.0f) << size;
    Whole(font, ppt::font::kBold, u"Bold");
    Whole(font, ppt::font::kItalic, u"Italic");
    std::int32_t rgb = 0;
    const bool mixed = Whole(color, ppt::colorFormat::kType, u"Type") == -2;
    EXPECT_EQ(Get(color.get(), ppt::colorFormat::kRgb, rgb), !mixed);
  }

  void Mark(const ObjectRef& paragraph, Wide text) {
    if (!text.empty() && text.back() == u'\r') text.pop_back();
    if (text.empty()) return;
    ObjectRef content;
    ASSERT_TRUE(GetAt(paragraph.get(), ppt::textRange::kCharacters, 1,
                      static_cast<std::int32_t>(text.size()), content));
    std::replace(text.begin(), text.end(), u'\v', u'|');
    if (!Put(content.get(), ppt::textRange::kText, u"\u27E6" + text + u"\u27E7")) {
      ++refused;
    }
  }

  void Table(const ObjectRef& shape) {
    const ObjectRef table = Child(shape, ppt::shape::kTable, u"Table");
    const ObjectRef rows = Child(table, ppt::table::kRows, u"Rows");
    const ObjectRef columns = Child(table, ppt::table::kColumns, u"Columns");
    const std::int32_t rowCount = Whole(rows, ppt::rows::kCount, u"Count");
    const std::int32_t columnCount = Whole(columns, ppt::columns::kCount, u"Count");
    for (std::int32_t row = 1; row <= rowCount; ++row) {
      for (std::int32_t column = 1; column <= columnCount; ++column) {
        Variant cell;
        ASSERT_EQ(AutoGetAt2(table.get(), u"Cell", row, column, cell), kOk);
        ObjectRef inner;
        ASSERT_TRUE(AutoGetObject(cell.object().get(), u"Shape", inner));
        // A merged cell comes up at each of its positions; it is marked once.
        Variant merged;
        ASSERT_EQ(AutoGet(cell.object().get(), u"Merged", merged), kOk);
        Wide text;
        ObjectRef frame, range;
        ASSERT_TRUE(Get(inner.get(), ppt::shape::kTextFrame, frame));
        ASSERT_TRUE(Get(frame.get(), ppt::textFrame::kTextRange, range));
        ASSERT_TRUE(Get(range.get(), ppt::textRange::kText, text));
        const bool marked = merged.whole() == -1 && text.find(u'\u27E6') != Wide::npos;
        if (!marked) Text(inner);
      }
    }
  }

  void Shapes(const ObjectRef& shapes, bool group) {
    ASSERT_TRUE(shapes);
    const std::int32_t count =
        Whole(shapes, group ? ppt::groupShapes::kCount : ppt::shapes::kCount, u"Count");
    for (std::int32_t i = 1; i <= count; ++i) {
      ObjectRef shape;
      ASSERT_EQ(ShapeItem(shapes.get(), i, shape), kOk);
      Variant type;
      ASSERT_EQ(AutoGet(shape.get(), u"Type", type), kOk);
      Whole(shape, ppt::shape::kId, u"Id");
      float left = 0;
      EXPECT_TRUE(Get(shape.get(), ppt::shape::kLeft, left));
      ObjectRef items;
      if (type.whole() == 6 && AutoGetObject(shape.get(), u"GroupItems", items)) {
        Shapes(items, true);
      } else if (Whole(shape, ppt::shape::kHasTable, u"HasTable") == -1) {
        Table(shape);
      } else {
        Text(shape);
      }
    }
  }

  void Deck(const Host& host) {
    ObjectRef presentation;
    ASSERT_TRUE(AutoGetObject(host.application().get(), u"ActivePresentation", presentation));
    const ObjectRef slides = Child(presentation, ppt::presentation::kSlides, u"Slides");
    const std::int32_t count = Whole(slides, ppt::slides::kCount, u"Count");
    for (std::int32_t i = 1; i <= count; ++i) {
      ObjectRef slide;
      ASSERT_TRUE(GetAt(slides.get(), ppt::slides::kItem, i, slide));
      Shapes(Child(slide, ppt::slide::kShapes, u"Shapes"), false);
      const ObjectRef notes = Child(slide, ppt::slide::kNotesPage, u"NotesPage");
      Shapes(Child(notes, ppt::slideRange::kShapes, u"Shapes"), false);
    }
  }
};

class ModelCorpus : public ::testing::TestWithParam<std::string> {};

TEST_P(ModelCorpus, ReadingAllOfItByBothRoadsLeavesTheSameFile) {
  for (const char* personality : {"powerpoint", "nested"}) {
    TempFolder scratch;
    Host host(*FindPersonality(personality));
    std::vector<std::string> warnings;
    const Result<void> opened = host.Open(GetParam(), warnings);
    ASSERT_TRUE(opened.ok()) << opened.error().words;
    Walk walk;
    walk.Deck(host);
    EXPECT_FALSE(host.Edited());
    ASSERT_TRUE(host.Save(scratch.Path("copy.pptx")).ok());
    EXPECT_EQ(FileBytes(scratch.Path("copy.pptx")), FileBytes(GetParam()));
  }
}

TEST_P(ModelCorpus, MarkingEveryParagraphChangesTheTextsAndNothingElse) {
  TempFolder scratch;
  Host host(*FindPersonality("powerpoint"));
  std::vector<std::string> warnings;
  ASSERT_TRUE(host.Open(GetParam(), warnings).ok());
  Walk walk;
  walk.mark = true;
  walk.Deck(host);
  const std::string target = scratch.Path("marked.pptx");
  ASSERT_TRUE(host.Save(target).ok());

  const auto before = AllParts(GetParam());
  const auto after = AllParts(target);
  ASSERT_EQ(before.size(), after.size());
  std::size_t expected = 0, locked = 0;
  for (const auto& [name, bytes] : before) {
    const bool slide =
        name.starts_with("ppt/slides/slide") || name.starts_with("ppt/notesSlides/notesSlide");
    if (!slide || !name.ends_with(".xml")) {
      EXPECT_EQ(after.at(name), bytes) << name;
      continue;
    }
    const Texts old = ReadTexts(bytes);
    const Texts now = ReadTexts(after.at(name));
    ASSERT_EQ(old.size(), now.size()) << name;
    for (std::size_t body = 0; body < old.size(); ++body) {
      ASSERT_EQ(old[body].size(), now[body].size()) << name;
      for (std::size_t i = 0; i < old[body].size(); ++i) {
        const PlainParagraph& was = old[body][i];
        if (was.text.empty() || was.locked) {
          EXPECT_EQ(now[body][i].text, was.text) << name;
          if (was.locked && !was.text.empty()) ++locked;
        } else {
          ++expected;
          EXPECT_EQ(now[body][i].text, "\xE2\x9F\xA6" + was.text + "\xE2\x9F\xA7") << name;
        }
      }
    }
  }
  EXPECT_EQ(walk.refused, locked);
  RecordProperty("paragraphs", static_cast<int>(expected));
}

TEST(BadDecks, AllAreRefusedInOneSentenceButTheOneThatLacksALeaf) {
  std::size_t refused = 0;
  for (const auto& entry : std::filesystem::directory_iterator(QUILLMARCH_DECKS "/bad")) {
    const std::string path = entry.path().string();
    const std::string name = entry.path().filename().string();
    if (name.starts_with(".") || name.ends_with(".tsv")) continue;
    Host host(*FindPersonality("powerpoint"));
    std::vector<std::string> warnings;
    const Result<void> opened = host.Open(path, warnings);
    if (name == "made-missing-embedded-workbook.pptx") {
      EXPECT_TRUE(opened.ok()) << opened.error().words;
      ASSERT_EQ(warnings.size(), 1u);
      EXPECT_NE(warnings[0].find("ppt/embeddings/Microsoft_Excel_Worksheet.xlsx"),
                std::string::npos);
      continue;
    }
    ++refused;
    EXPECT_FALSE(opened.ok()) << name;
    EXPECT_TRUE(opened.error().words.ends_with('.')) << name << ": " << opened.error().words;
    EXPECT_EQ(opened.error().words.find('\n'), std::string::npos) << name;
  }
  EXPECT_GT(refused, 10u);
}

INSTANTIATE_TEST_SUITE_P(Decks, ModelCorpus, ::testing::ValuesIn(Decks()), [](const auto& entry) {
  std::string name = std::filesystem::path(entry.param).stem().string();
  for (char& c : name) {
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  }
  return name;
});

}  // namespace

}  // namespace quillmarch::host
