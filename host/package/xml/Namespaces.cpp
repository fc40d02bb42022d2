#include "host/package/xml/Namespaces.h"

#include <string>
#include <unordered_map>

namespace quillmarch::host {

namespace {

struct NamespaceRow {
  XmlNamespace kind;
  std::string_view uri;
};

constexpr NamespaceRow kNamespaces[] = {
    {XmlNamespace::kDrawing, "http://schemas.openxmlformats.org/drawingml/2006/main"},
    {XmlNamespace::kDrawing, "http://purl.oclc.org/ooxml/drawingml/main"},
    {XmlNamespace::kPresentation, "http://schemas.openxmlformats.org/presentationml/2006/main"},
    {XmlNamespace::kPresentation, "http://purl.oclc.org/ooxml/presentationml/main"},
    {XmlNamespace::kRelationships,
     "http://schemas.openxmlformats.org/officeDocument/2006/relationships"},
    {XmlNamespace::kRelationships, "http://purl.oclc.org/ooxml/officeDocument/relationships"},
    {XmlNamespace::kChart, "http://schemas.openxmlformats.org/drawingml/2006/chart"},
    {XmlNamespace::kChart, "http://purl.oclc.org/ooxml/drawingml/chart"},
    {XmlNamespace::kChartDrawing, "http://schemas.openxmlformats.org/drawingml/2006/chartDrawing"},
    {XmlNamespace::kChartDrawing, "http://purl.oclc.org/ooxml/drawingml/chartDrawing"},
    {XmlNamespace::kDiagram, "http://schemas.openxmlformats.org/drawingml/2006/diagram"},
    {XmlNamespace::kDiagram, "http://purl.oclc.org/ooxml/drawingml/diagram"},
    {XmlNamespace::kSpreadsheet, "http://schemas.openxmlformats.org/spreadsheetml/2006/main"},
    {XmlNamespace::kSpreadsheet, "http://purl.oclc.org/ooxml/spreadsheetml/main"},
    {XmlNamespace::kSpreadsheetDrawing,
     "http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing"},
    {XmlNamespace::kSpreadsheetDrawing, "http://purl.oclc.org/ooxml/drawingml/spreadsheetDrawing"},
    {XmlNamespace::kPicture, "http://schemas.openxmlformats.org/drawingml/2006/picture"},
    {XmlNamespace::kPicture, "http://purl.oclc.org/ooxml/drawingml/picture"},
    {XmlNamespace::kMath, "http://schemas.openxmlformats.org/officeDocument/2006/math"},
    {XmlNamespace::kMath, "http://purl.oclc.org/ooxml/officeDocument/math"},
    {XmlNamespace::kExtendedProperties,
     "http://schemas.openxmlformats.org/officeDocument/2006/extended-properties"},
    {XmlNamespace::kExtendedProperties,
     "http://purl.oclc.org/ooxml/officeDocument/extendedProperties"},
    {XmlNamespace::kMarkupCompatibility,
     "http://schemas.openxmlformats.org/markup-compatibility/2006"},
    {XmlNamespace::kPackageRelationships,
     "http://schemas.openxmlformats.org/package/2006/relationships"},
    {XmlNamespace::kContentTypes, "http://schemas.openxmlformats.org/package/2006/content-types"},
    {XmlNamespace::kDiagramDrawing, "http://schemas.microsoft.com/office/drawing/2008/diagram"},
    {XmlNamespace::kDrawing2010, "http://schemas.microsoft.com/office/drawing/2010/main"},
    {XmlNamespace::kPowerPoint2010, "http://schemas.microsoft.com/office/powerpoint/2010/main"},
};

// Types below officeDocument whose last word both forms share.
struct TypeRow {
  RelationshipKind kind;
  std::string_view word;
};

constexpr TypeRow kOfficeTypes[] = {
    {RelationshipKind::kOfficeDocument, "officeDocument"},
    {RelationshipKind::kThumbnail, "metadata/thumbnail"},
    {RelationshipKind::kExtendedProperties, "extended-properties"},
    {RelationshipKind::kExtendedProperties, "extendedProperties"},
    {RelationshipKind::kSlide, "slide"},
    {RelationshipKind::kSlideLayout, "slideLayout"},
    {RelationshipKind::kSlideMaster, "slideMaster"},
    {RelationshipKind::kNotesSlide, "notesSlide"},
    {RelationshipKind::kNotesMaster, "notesMaster"},
    {RelationshipKind::kHandoutMaster, "handoutMaster"},
    {RelationshipKind::kTheme, "theme"},
    {RelationshipKind::kThemeOverride, "themeOverride"},
    {RelationshipKind::kTableStyles, "tableStyles"},
    {RelationshipKind::kPresentationProperties, "presProps"},
    {RelationshipKind::kViewProperties, "viewProps"},
    {RelationshipKind::kImage, "image"},
    {RelationshipKind::kHyperlink, "hyperlink"},
    {RelationshipKind::kAudio, "audio"},
    {RelationshipKind::kVideo, "video"},
    {RelationshipKind::kFont, "font"},
    {RelationshipKind::kChart, "chart"},
    {RelationshipKind::kChartUserShapes, "chartUserShapes"},
    {RelationshipKind::kEmbeddedPackage, "package"},
    {RelationshipKind::kOleObject, "oleObject"},
    {RelationshipKind::kControl, "control"},
    {RelationshipKind::kVmlDrawing, "vmlDrawing"},
    {RelationshipKind::kDiagramData, "diagramData"},
    {RelationshipKind::kDiagramLayout, "diagramLayout"},
    {RelationshipKind::kDiagramQuickStyle, "diagramQuickStyle"},
    {RelationshipKind::kDiagramColors, "diagramColors"},
    {RelationshipKind::kTags, "tags"},
    {RelationshipKind::kComments, "comments"},
    {RelationshipKind::kCommentAuthors, "commentAuthors"},
    {RelationshipKind::kCustomXml, "customXml"},
    {RelationshipKind::kWorksheet, "worksheet"},
    {RelationshipKind::kSharedStrings, "sharedStrings"},
    {RelationshipKind::kStyles, "styles"},
    {RelationshipKind::kTable, "table"},
};

constexpr TypeRow kOtherTypes[] = {
    {RelationshipKind::kCoreProperties,
     "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties"},
    {RelationshipKind::kCoreProperties,
     "http://schemas.openxmlformats.org/officedocument/2006/relationships/metadata/"
     "core-properties"},
    {RelationshipKind::kThumbnail,
     "http://schemas.openxmlformats.org/package/2006/relationships/metadata/thumbnail"},
    {RelationshipKind::kMedia, "http://schemas.microsoft.com/office/2007/relationships/media"},
    {RelationshipKind::kDiagramDrawing,
     "http://schemas.microsoft.com/office/2007/relationships/diagramDrawing"},
    {RelationshipKind::kChartStyle,
     "http://schemas.microsoft.com/office/2011/relationships/chartStyle"},
    {RelationshipKind::kChartColorStyle,
     "http://schemas.microsoft.com/office/2011/relationships/chartColorStyle"},
    {RelationshipKind::kChartEx, "http://schemas.microsoft.com/office/2014/relationships/chartEx"},
    {RelationshipKind::kComments,
     "http://schemas.microsoft.com/office/2018/10/relationships/comments"},
    {RelationshipKind::kCommentAuthors,
     "http://schemas.microsoft.com/office/2018/10/relationships/authors"},
};

constexpr std::string_view kTypeRoots[] = {
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/",
    "http://purl.oclc.org/ooxml/officeDocument/relationships/",
};

}  // namespace

XmlNamespace NamespaceOf(std::string_view uri) {
  static const auto table = [] {
    std::unordered_map<std::string_view, XmlNamespace> map;
    for (const NamespaceRow& row : kNamespaces) map.emplace(row.uri, row.kind);
    return map;
  }();
  const auto found = table.find(uri);
  return found == table.end() ? XmlNamespace::kOther : found->second;
}

std::string_view LocalName(std::string_view name) {
  return name.substr(name.find(':') + 1);
}

std::string_view PrefixOf(std::string_view name) {
  const std::size_t colon = name.find(':');
  return colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
}

std::string_view NamespaceUri(const pugi::xml_node& element, std::string_view prefix) {
  if (prefix == "xml") return "http://www.w3.org/XML/1998/namespace";
  for (pugi::xml_node node = element; node; node = node.parent()) {
    for (const pugi::xml_attribute attribute : node.attributes()) {
      const std::string_view name = attribute.name();
      if (!name.starts_with("xmlns")) continue;
      const bool declares = prefix.empty() ? name.size() == 5
                                           : name.size() == prefix.size() + 6 && name[5] == ':' &&
                                                 name.substr(6) == prefix;
      if (declares) return attribute.value();
    }
  }
  return {};
}

XmlNamespace NamespaceOf(const pugi::xml_node& element) {
  return NamespaceOf(NamespaceUri(element, PrefixOf(element.name())));
}

RelationshipKind RelationshipKindOf(std::string_view type) {
  static const auto table = [] {
    std::unordered_map<std::string, RelationshipKind> map;
    for (const std::string_view root : kTypeRoots) {
      for (const TypeRow& row : kOfficeTypes) {
        map.emplace(std::string(root).append(row.word), row.kind);
      }
    }
    for (const TypeRow& row : kOtherTypes) map.emplace(row.word, row.kind);
    return map;
  }();
  const auto found = table.find(std::string(type));
  return found == table.end() ? RelationshipKind::kOther : found->second;
}

}  // namespace quillmarch::host
