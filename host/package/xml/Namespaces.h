// Namespaces and relationship types in their two forms, Transitional and Strict, by one table:
// the two are no plain prefix swap of each other.
#pragma once

#include <pugixml.hpp>
#include <string_view>

namespace quillmarch::host {

enum class XmlNamespace {
  kOther,
  kDrawing,              // a
  kPresentation,         // p
  kRelationships,        // r, the ids in parts
  kChart,                // c
  kChartDrawing,         // cdr
  kDiagram,              // dgm
  kSpreadsheet,          // x
  kSpreadsheetDrawing,   // xdr
  kPicture,              // pic
  kMath,                 // m
  kExtendedProperties,   // docProps/app.xml
  kMarkupCompatibility,  // mc
  kPackageRelationships,
  kContentTypes,
  kDiagramDrawing,  // dsp, Microsoft's drawing of a diagram
  kDrawing2010,     // a14
  kPowerPoint2010,  // p14
};

XmlNamespace NamespaceOf(std::string_view uri);
// The namespace that an element's own prefix stands for, by the declarations on it and above it.
XmlNamespace NamespaceOf(const pugi::xml_node& element);
// As above for the prefix alone (empty: the default namespace), in force at `element`.
std::string_view NamespaceUri(const pugi::xml_node& element, std::string_view prefix);

// A name without its prefix, and the prefix alone (empty when there is none).
std::string_view LocalName(std::string_view name);
std::string_view PrefixOf(std::string_view name);

enum class RelationshipKind {
  kOther,
  kOfficeDocument,
  kCoreProperties,
  kExtendedProperties,
  kThumbnail,
  kSlide,
  kSlideLayout,
  kSlideMaster,
  kNotesSlide,
  kNotesMaster,
  kHandoutMaster,
  kTheme,
  kThemeOverride,
  kTableStyles,
  kPresentationProperties,
  kViewProperties,
  kImage,
  kHyperlink,
  kAudio,
  kVideo,
  kMedia,
  kFont,
  kChart,
  kChartEx,
  kChartUserShapes,
  kChartStyle,
  kChartColorStyle,
  kEmbeddedPackage,
  kOleObject,
  kControl,
  kVmlDrawing,
  kDiagramData,
  kDiagramLayout,
  kDiagramQuickStyle,
  kDiagramColors,
  kDiagramDrawing,
  kTags,
  kComments,
  kCommentAuthors,
  kCustomXml,
  kWorksheet,
  kSharedStrings,
  kStyles,
  kTable,
};

RelationshipKind RelationshipKindOf(std::string_view type);

}  // namespace quillmarch::host
