// Small decks made to measure for the tests: the XML of a few slides in a valid package around
// them.
#pragma once

#include <zip.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace quillmarch::host::testdeck {

inline const std::string kNamespaces =
    " xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\""
    " xmlns:p=\"http://schemas.openxmlformats.org/presentationml/2006/main\""
    " xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\""
    " xmlns:mc=\"http://schemas.openxmlformats.org/markup-compatibility/2006\""
    " xmlns:a14=\"http://schemas.microsoft.com/office/drawing/2010/main\""
    " xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\"";

inline const std::string kTreeHead =
    "<p:nvGrpSpPr><p:cNvPr id=\"1\" name=\"\"/><p:cNvGrpSpPr/><p:nvPr/></p:nvGrpSpPr><p:grpSpPr/>";

// A text box of these paragraphs (whole a:p elements).
inline std::string Box(const std::string& paragraphs, const std::string& bodyProperties = "") {
  static int id = 100;
  ++id;
  return "<p:sp><p:nvSpPr><p:cNvPr id=\"" + std::to_string(id) + "\" name=\"Box " +
         std::to_string(id) +
         "\"/><p:cNvSpPr txBox=\"1\"/><p:nvPr/></p:nvSpPr><p:spPr><a:xfrm>"
         "<a:off x=\"127000\" y=\"254000\"/><a:ext cx=\"1270000\" cy=\"635000\"/></a:xfrm>"
         "</p:spPr><p:txBody>" +
         (bodyProperties.empty() ? "<a:bodyPr/>" : bodyProperties) + "<a:lstStyle/>" + paragraphs +
         "</p:txBody></p:sp>";
}

inline std::string Placeholder(const std::string& ph, const std::string& paragraphs) {
  return "<p:sp><p:nvSpPr><p:cNvPr id=\"7\" name=\"Placeholder\"/><p:cNvSpPr/><p:nvPr>" + ph +
         "</p:nvPr></p:nvSpPr><p:spPr/><p:txBody><a:bodyPr/><a:lstStyle/>" + paragraphs +
         "</p:txBody></p:sp>";
}

inline std::string Group(const std::string& children) {
  return "<p:grpSp><p:nvGrpSpPr><p:cNvPr id=\"50\" name=\"Group\"/><p:cNvGrpSpPr/><p:nvPr/>"
         "</p:nvGrpSpPr><p:grpSpPr><a:xfrm><a:off x=\"1270000\" y=\"1270000\"/>"
         "<a:ext cx=\"2540000\" cy=\"2540000\"/><a:chOff x=\"0\" y=\"0\"/>"
         "<a:chExt cx=\"1270000\" cy=\"1270000\"/></a:xfrm></p:grpSpPr>" +
         children + "</p:grpSp>";
}

// `content` is the a:tbl.
inline std::string TableFrame(const std::string& content) {
  return "<p:graphicFrame><p:nvGraphicFramePr><p:cNvPr id=\"60\" name=\"Table\"/>"
         "<p:cNvGraphicFramePr/><p:nvPr/></p:nvGraphicFramePr><p:xfrm><a:off x=\"0\" y=\"0\"/>"
         "<a:ext cx=\"2540000\" cy=\"1270000\"/></p:xfrm><a:graphic><a:graphicData "
         "uri=\"http://schemas.openxmlformats.org/drawingml/2006/table\">" +
         content + "</a:graphicData></a:graphic></p:graphicFrame>";
}

inline std::string Cell(const std::string& text, const std::string& attributes = "") {
  return "<a:tc" + attributes + "><a:txBody><a:bodyPr/><a:lstStyle/><a:p>" +
         (text.empty() ? "" : "<a:r><a:rPr lang=\"en-US\"/><a:t>" + text + "</a:t></a:r>") +
         "</a:p></a:txBody><a:tcPr/></a:tc>";
}

inline std::string RunXml(const std::string& text, const std::string& properties = "") {
  return "<a:r>" + properties + "<a:t>" + text + "</a:t></a:r>";
}
inline std::string Para(const std::string& content) {
  return "<a:p>" + content + "</a:p>";
}
inline std::string TextPara(const std::string& text) {
  return Para(RunXml(text));
}

inline std::string SlideXml(const std::string& shapes, const std::string& tail = "") {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n<p:sld" + kNamespaces +
         "><p:cSld><p:spTree>" + kTreeHead + shapes + "</p:spTree></p:cSld>" + tail + "</p:sld>";
}

inline std::string NotesXml(const std::string& paragraphs) {
  return "<p:notes" + kNamespaces + "><p:cSld><p:spTree>" + kTreeHead +
         Placeholder("<p:ph type=\"body\" idx=\"1\"/>", paragraphs) +
         "</p:spTree></p:cSld></p:notes>";
}

struct SlideSource {
  std::string xml;
  std::string notes;      // empty: no notes page
  std::string relations;  // further Relationship elements
  std::string id;         // of the slide list; empty: 256 and on
};

// Everything that can be set; parts by name win over what the builder would write, and an empty
// one leaves the part out.
struct DeckSource {
  std::vector<SlideSource> slides;
  std::string layoutShapes;
  std::string masterShapes;
  std::string textStyles =
      "<p:txStyles><p:titleStyle><a:lvl1pPr><a:defRPr sz=\"4400\" b=\"1\"/></a:lvl1pPr>"
      "</p:titleStyle><p:bodyStyle><a:lvl1pPr><a:defRPr sz=\"2800\"/></a:lvl1pPr><a:lvl2pPr>"
      "<a:defRPr sz=\"2400\" i=\"1\"/></a:lvl2pPr></p:bodyStyle><p:otherStyle/></p:txStyles>";
  std::string presentationTail;  // after p:notesSz
  std::string presentationRelations;
  std::vector<std::pair<std::string, std::string>> parts;
  std::string mainType =
      "application/vnd.openxmlformats-officedocument.presentationml.presentation.main+xml";
};

inline std::string Relation(const std::string& id, const std::string& kind,
                            const std::string& target) {
  return "<Relationship Id=\"" + id +
         "\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/" + kind +
         "\" Target=\"" + target + "\"/>";
}

inline std::string Relations(const std::string& list) {
  return "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">" +
         list + "</Relationships>";
}

inline std::vector<std::pair<std::string, std::string>> Parts(const DeckSource& deck) {
  const std::string office = "application/vnd.openxmlformats-officedocument.presentationml.";
  std::string types;
  const auto type = [&](const std::string& part, const std::string& name) {
    types += "<Override PartName=\"/" + part + "\" ContentType=\"" + name + "\"/>";
  };
  std::vector<std::pair<std::string, std::string>> parts;
  const auto add = [&](const std::string& name, const std::string& bytes) {
    for (const auto& [own, text] : deck.parts) {
      if (own == name) return;
    }
    parts.emplace_back(name, bytes);
  };
  std::string list;
  std::string links = Relation("m1", "slideMaster", "slideMasters/slideMaster1.xml");
  for (std::size_t i = 0; i < deck.slides.size(); ++i) {
    const SlideSource& slide = deck.slides[i];
    const std::string number = std::to_string(i + 1);
    const std::string id = slide.id.empty() ? std::to_string(256 + i) : slide.id;
    list += "<p:sldId id=\"" + id + "\" r:id=\"s" + number + "\"/>";
    links += Relation("s" + number, "slide", "slides/slide" + number + ".xml");
    std::string own = Relation("l1", "slideLayout", "../slideLayouts/slideLayout1.xml");
    if (!slide.notes.empty()) {
      own += Relation("n1", "notesSlide", "../notesSlides/notesSlide" + number + ".xml");
      add("ppt/notesSlides/notesSlide" + number + ".xml", slide.notes);
      add("ppt/notesSlides/_rels/notesSlide" + number + ".xml.rels",
          Relations(Relation("b1", "slide", "../slides/slide" + number + ".xml")));
      type("ppt/notesSlides/notesSlide" + number + ".xml", office + "notesSlide+xml");
    }
    add("ppt/slides/slide" + number + ".xml", slide.xml);
    add("ppt/slides/_rels/slide" + number + ".xml.rels", Relations(own + slide.relations));
    type("ppt/slides/slide" + number + ".xml", office + "slide+xml");
  }
  type("ppt/presentation.xml", deck.mainType);
  type("ppt/slideMasters/slideMaster1.xml", office + "slideMaster+xml");
  type("ppt/slideLayouts/slideLayout1.xml", office + "slideLayout+xml");
  add("ppt/presentation.xml", "<p:presentation" + kNamespaces +
                                  "><p:sldMasterIdLst><p:sldMasterId r:id=\"m1\"/>"
                                  "</p:sldMasterIdLst><p:sldIdLst>" +
                                  list +
                                  "</p:sldIdLst><p:sldSz cx=\"12192000\" "
                                  "cy=\"6858000\"/><p:notesSz cx=\"6858000\" cy=\"9144000\"/>" +
                                  deck.presentationTail + "</p:presentation>");
  add("ppt/_rels/presentation.xml.rels", Relations(links + deck.presentationRelations));
  add("ppt/slideMasters/slideMaster1.xml",
      "<p:sldMaster" + kNamespaces + "><p:cSld><p:spTree>" + kTreeHead + deck.masterShapes +
          "</p:spTree></p:cSld><p:clrMap bg1=\"lt1\" tx1=\"dk1\" bg2=\"lt2\" tx2=\"dk2\" "
          "accent1=\"accent1\" accent2=\"accent2\" accent3=\"accent3\" accent4=\"accent4\" "
          "accent5=\"accent5\" accent6=\"accent6\" hlink=\"hlink\" folHlink=\"folHlink\"/>" +
          deck.textStyles + "</p:sldMaster>");
  add("ppt/slideMasters/_rels/slideMaster1.xml.rels",
      Relations(Relation("l1", "slideLayout", "../slideLayouts/slideLayout1.xml") +
                Relation("t1", "theme", "../theme/theme1.xml")));
  add("ppt/slideLayouts/slideLayout1.xml", "<p:sldLayout" + kNamespaces + "><p:cSld><p:spTree>" +
                                               kTreeHead + deck.layoutShapes +
                                               "</p:spTree></p:cSld></p:sldLayout>");
  add("ppt/slideLayouts/_rels/slideLayout1.xml.rels",
      Relations(Relation("m1", "slideMaster", "../slideMasters/slideMaster1.xml")));
  add("ppt/theme/theme1.xml",
      "<a:theme" + kNamespaces +
          " name=\"T\"><a:themeElements><a:clrScheme name=\"C\">"
          "<a:dk1><a:srgbClr val=\"101010\"/></a:dk1><a:lt1><a:srgbClr val=\"FAFAFA\"/></a:lt1>"
          "<a:dk2><a:srgbClr val=\"202020\"/></a:dk2><a:lt2><a:srgbClr val=\"EAEAEA\"/></a:lt2>"
          "<a:accent1><a:srgbClr val=\"112233\"/></a:accent1>"
          "<a:accent2><a:srgbClr val=\"445566\"/></a:accent2></a:clrScheme><a:fontScheme "
          "name=\"F\">"
          "<a:majorFont><a:latin typeface=\"Head Face\"/><a:ea typeface=\"Head Asia\"/>"
          "<a:cs typeface=\"\"/></a:majorFont><a:minorFont><a:latin typeface=\"Body Face\"/>"
          "<a:ea typeface=\"Body Asia\"/><a:cs typeface=\"\"/></a:minorFont></a:fontScheme>"
          "</a:themeElements></a:theme>");
  for (const auto& [name, text] : deck.parts) {
    if (!text.empty()) parts.emplace_back(name, text);
  }
  parts.emplace(parts.begin(), "_rels/.rels",
                Relations(Relation("d1", "officeDocument", "ppt/presentation.xml")));
  parts.emplace(parts.begin(), "[Content_Types].xml",
                "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
                "<Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-"
                "package.relationships+xml\"/><Default Extension=\"xml\" "
                "ContentType=\"application/xml\"/>" +
                    types + "</Types>");
  return parts;
}

inline void Write(const DeckSource& deck, const std::string& path) {
  zip_t* const archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
  for (const auto& [name, bytes] : Parts(deck)) {
    // The archive frees what it is given.
    void* const copy = std::malloc(bytes.size() + 1);
    bytes.copy(static_cast<char*>(copy), bytes.size());
    zip_file_add(archive, name.c_str(), zip_source_buffer(archive, copy, bytes.size(), 1),
                 ZIP_FL_OVERWRITE);
  }
  zip_close(archive);
}

// The bytes of one part of a saved deck; empty when it has none.
inline std::string ReadPart(const std::string& path, const std::string& name) {
  std::string bytes;
  zip_t* const archive = zip_open(path.c_str(), ZIP_RDONLY, nullptr);
  if (archive == nullptr) return bytes;
  zip_stat_t stat;
  if (zip_stat(archive, name.c_str(), 0, &stat) == 0) {
    bytes.resize(stat.size);
    zip_file_t* const file = zip_fopen(archive, name.c_str(), 0);
    bytes.resize(static_cast<std::size_t>(
        std::max<zip_int64_t>(zip_fread(file, bytes.data(), stat.size), 0)));
    zip_fclose(file);
  }
  zip_discard(archive);
  return bytes;
}

}  // namespace quillmarch::host::testdeck
