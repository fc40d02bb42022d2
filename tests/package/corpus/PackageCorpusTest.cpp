#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "host/package/Package.h"
#include "host/package/xml/Namespaces.h"
#include "host/package/xml/Splice.h"
#include "host/package/xml/Utf16Xml.h"
#include "host/package/xml/XmlCheck.h"
#include "host/package/xml/XmlText.h"
#include "package/xml/XmlJudge.h"
#include "support/TempFolder.h"

namespace quillmarch::host {

namespace {

std::vector<std::string> Files(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string extension = entry.path().extension().string();
    if (entry.is_regular_file() &&
        (extension.starts_with(".pp") || extension.starts_with(".pot"))) {
      files.push_back(entry.path().string());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<std::string> Decks() {
  return Files(QUILLMARCH_DECKS);
}

std::unique_ptr<Package> Opened(const std::string& path) {
  auto opened = Package::Open(path);
  EXPECT_TRUE(opened.ok()) << path << ": " << opened.error().words;
  return std::move(opened.value());
}

bool IsXml(const std::string& name) {
  return name.ends_with(".xml") || name.ends_with(".rels");
}

// The texts of all elements of that name, in document order, with where their content begins.
void CollectTexts(const pugi::xml_node& node, const std::string& xml, std::vector<Edit>& edits) {
  for (const pugi::xml_node child : node.children()) {
    if (std::string_view(child.name()) == "a:t") {
      const ElementSpan span = FindElement(xml, child);
      ASSERT_TRUE(span.found);
      EXPECT_EQ(Unescape(xml.substr(span.contentBegin, span.contentEnd - span.contentBegin)),
                child.text().get());
      if (!span.selfClosed) edits.push_back({span.contentBegin, 0, "X"});
    }
    CollectTexts(child, xml, edits);
  }
}

// What is wrong inside of a package that opens; empty when nothing is.
std::string FirstFault(Package& package) {
  for (const std::string& name : package.PartNames()) {
    if (IsXml(name)) {
      const auto xml = package.ReadXmlPart(name);
      if (!xml.ok()) return xml.error().words;
    }
    const auto relationships = package.Relationships(name);
    if (!relationships.ok()) return relationships.error().words;
    for (const Relationship& relationship : relationships.value()) {
      if (!relationship.external && !package.HasPart(relationship.target)) {
        return "The part " + relationship.target + " is missing.";
      }
    }
  }
  pugi::xml_document document;
  ParseXml(document, package.ReadXmlPart("ppt/presentation.xml").value());
  if (NamespaceOf(document.document_element()) == XmlNamespace::kPresentation) return {};
  return "The part ppt/presentation.xml is no presentation.";
}

}  // namespace

TEST(Corpus, EveryDeckWithoutEditsIsSavedAsTheSameBytes) {
  const TempFolder folder;
  ASSERT_FALSE(Decks().empty());
  for (const std::string& path : Decks()) {
    const auto package = Opened(path);
    ASSERT_TRUE(package);
    ASSERT_TRUE(package->Save(folder.Path("out")).ok());
    EXPECT_EQ(TempFolder::Bytes(folder.Path("out")), TempFolder::Bytes(path)) << path;
  }
}

TEST(Corpus, OneEditedPartLeavesAllOthersAsTheyWere) {
  const TempFolder folder;
  for (const std::string& path : Decks()) {
    const auto package = Opened(path);
    ASSERT_TRUE(package);
    std::string edited = "ppt/slides/slide1.xml";
    if (!package->HasPart(edited)) edited = "ppt/presentation.xml";
    package->PutPart(edited, package->ReadPart(edited).value() + "<!-- -->");
    const auto saved = package->Save(folder.Path("out"));
    ASSERT_TRUE(saved.ok()) << saved.error().words;
    const auto original = Opened(path);
    const auto again = Opened(folder.Path("out"));
    ASSERT_TRUE(again && original);
    EXPECT_EQ(again->PartNames(), original->PartNames());
    for (const std::string& name : original->PartNames()) {
      const auto before = original->ReadPart(name);
      const auto after = again->ReadPart(name);
      ASSERT_TRUE(before.ok() && after.ok()) << path << " " << name << after.error().words;
      EXPECT_EQ(after.value(), name == edited ? before.value() + "<!-- -->" : before.value())
          << path << " " << name;
    }
  }
}

TEST(Corpus, AllXmlIsAcceptedByTheCheckAndByExpat) {
  int parts = 0;
  for (const std::string& path : Decks()) {
    const auto package = Opened(path);
    ASSERT_TRUE(package);
    for (const std::string& name : package->PartNames()) {
      if (!IsXml(name)) continue;
      const auto xml = package->ReadXmlPart(name);
      EXPECT_TRUE(xml.ok()) << path << ": " << xml.error().words;
      EXPECT_TRUE(ExpatAccepts(xml.value())) << path << " " << name;
      ++parts;
    }
  }
  EXPECT_GT(parts, 0);
}

TEST(Corpus, DamagedXmlIsJudgedAsExpatJudgesIt) {
  std::uint32_t state = 7;
  const auto random = [&state](std::size_t below) {
    state = state * 1664525 + 1013904223;
    return (state >> 8) % below;
  };
  const std::string bytes = "<>/&;\"'= :xa0]-!?\n\x01\x80\xE5[";
  for (const std::string& path : Decks()) {
    const auto package = Opened(path);
    ASSERT_TRUE(package);
    for (const std::string& name : package->PartNames()) {
      if (!IsXml(name) || random(8) != 0) continue;
      std::string xml = package->ReadXmlPart(name).value();
      if (xml.empty() || xml.size() > 100000) continue;
      for (int i = 0; i < 20; ++i) {
        std::string damaged = xml;
        const std::size_t at = random(damaged.size());
        if (i % 2 == 0) {
          damaged[at] = bytes[random(bytes.size())];
        } else {
          damaged.erase(at, 1 + random(4));
        }
        // Without its mark the document could be taken for another encoding.
        if (at < 3 || DetectXmlForm(damaged).encoding != XmlEncoding::kUtf8) continue;
        const XmlFault fault = CheckXml(damaged).fault;
        if (IsOurOwnRule(fault)) continue;
        EXPECT_EQ(fault == XmlFault::kNone, ExpatAccepts(damaged))
            << path << " " << name << " at " << at << " " << DescribeXmlFault(CheckXml(damaged))
            << " " << damaged.substr(at < 40 ? 0 : at - 40, 80);
      }
    }
  }
}

TEST(Corpus, ALetterPutBeforeEachTextAndTakenAwayGivesTheOriginal) {
  std::size_t texts = 0;
  for (const std::string& path : Decks()) {
    const auto package = Opened(path);
    ASSERT_TRUE(package);
    for (const std::string& name : package->PartNames()) {
      if (!name.starts_with("ppt/slides/slide")) continue;
      const std::string xml = package->ReadXmlPart(name).value();
      pugi::xml_document document;
      ASSERT_TRUE(ParseXml(document, xml));
      std::vector<Edit> edits;
      CollectTexts(document, xml, edits);
      texts += edits.size();
      std::string marked = ApplyEdits(xml, edits);
      EXPECT_EQ(CheckXml(marked).fault, XmlFault::kNone) << path << " " << name;
      std::vector<Edit> back;
      for (std::size_t i = 0; i < edits.size(); ++i) back.push_back({edits[i].offset + i, 1, ""});
      EXPECT_EQ(ApplyEdits(marked, back), xml) << path << " " << name;
    }
  }
  EXPECT_GT(texts, 0u);
}

TEST(Corpus, EveryRelationshipIsRead) {
  for (const std::string& path : Decks()) {
    const auto package = Opened(path);
    ASSERT_TRUE(package);
    std::vector<std::string> sources = package->PartNames();
    sources.push_back("");
    for (const std::string& name : sources) {
      const auto relationships = package->Relationships(name);
      ASSERT_TRUE(relationships.ok()) << path << ": " << relationships.error().words;
      for (const Relationship& relationship : relationships.value()) {
        if (!relationship.external) {
          EXPECT_TRUE(package->HasPart(relationship.target) || relationship.target.empty() ||
                      relationship.target.ends_with("NULL"))
              << path << " " << name << " " << relationship.target;
        }
      }
    }
  }
}

TEST(Corpus, EveryBadFileIsRefusedInOneSentenceOrMissesAPartOrIsNoPresentation) {
  const std::vector<std::string> bad = Files(QUILLMARCH_DECKS "/bad");
  ASSERT_FALSE(bad.empty());
  for (const std::string& path : bad) {
    const auto opened = Package::Open(path);
    const std::string sentence = opened.ok() ? FirstFault(*opened.value()) : opened.error().words;
    EXPECT_TRUE(sentence.ends_with('.')) << path << ": " << sentence;
    EXPECT_EQ(sentence.find('\n'), std::string::npos) << path << ": " << sentence;
  }
}

}  // namespace quillmarch::host
