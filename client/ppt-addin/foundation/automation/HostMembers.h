// The published interfaces of the presentation hosts and the fixed DISPIDs of the members used.
// PowerPoint's type library 91493440-5A91-11CF-8700-00AA0060263B; property get and put share a
// DISPID. Only members that the add-in calls are listed.
#pragma once

#include "foundation/automation/Automation.h"

namespace quillmarch {

namespace ppt {

// Every interface of the library is 914934xx-5A91-11CF-8700-00AA0060263B.
constexpr InterfaceId LibraryInterface(std::uint8_t last) {
  return {0x91493400u + last, 0x5A91, 0x11CF, {0x87, 0x00, 0x00, 0xAA, 0x00, 0x60, 0x26, 0x3B}};
}

inline constexpr InterfaceId kApplication = LibraryInterface(0x42);
inline constexpr InterfaceId kColorFormat = LibraryInterface(0x52);
inline constexpr InterfaceId kSelection = LibraryInterface(0x54);
inline constexpr InterfaceId kDocumentWindows = LibraryInterface(0x55);
inline constexpr InterfaceId kDocumentWindow = LibraryInterface(0x57);
inline constexpr InterfaceId kView = LibraryInterface(0x58);
inline constexpr InterfaceId kPageSetup = LibraryInterface(0x66);
inline constexpr InterfaceId kSlides = LibraryInterface(0x69);
inline constexpr InterfaceId kSlide = LibraryInterface(0x6A);
inline constexpr InterfaceId kSlideRange = LibraryInterface(0x6B);
inline constexpr InterfaceId kShapes = LibraryInterface(0x75);
inline constexpr InterfaceId kShape = LibraryInterface(0x79);
inline constexpr InterfaceId kShapeRange = LibraryInterface(0x7A);
inline constexpr InterfaceId kGroupShapes = LibraryInterface(0x7B);
inline constexpr InterfaceId kTextFrame = LibraryInterface(0x84);
inline constexpr InterfaceId kTextRange = LibraryInterface(0x8F);
inline constexpr InterfaceId kFont = LibraryInterface(0x95);
inline constexpr InterfaceId kPresentation = LibraryInterface(0x9D);
inline constexpr InterfaceId kTags = LibraryInterface(0xB9);
inline constexpr InterfaceId kTable = LibraryInterface(0xC3);
inline constexpr InterfaceId kColumns = LibraryInterface(0xC4);
inline constexpr InterfaceId kRows = LibraryInterface(0xC6);
inline constexpr InterfaceId kCell = LibraryInterface(0xC9);

namespace application {
inline constexpr Member<ObjectRef> kWindows{{kApplication, 2002}};
inline constexpr Member<ObjectRef> kActiveWindow{{kApplication, 2004}};
inline constexpr Member<Wide> kName{{kApplication, 0}};
inline constexpr Member<Wide> kVersion{{kApplication, 2014}};
}  // namespace application

namespace documentWindows {
inline constexpr Member<std::int32_t> kCount{{kDocumentWindows, 11}};
inline constexpr Member<ObjectRef> kItem{{kDocumentWindows, 0}};
}  // namespace documentWindows

namespace documentWindow {
inline constexpr Member<ObjectRef> kSelection{{ppt::kDocumentWindow, 2003}};
inline constexpr Member<ObjectRef> kView{{ppt::kDocumentWindow, 2004}};
inline constexpr Member<ObjectRef> kPresentation{{ppt::kDocumentWindow, 2005}};
inline constexpr Member<bool> kActive{{ppt::kDocumentWindow, 2008}};
inline constexpr Member<std::int32_t> kHwnd{{ppt::kDocumentWindow, 2020}};
}  // namespace documentWindow

namespace selection {
inline constexpr Member<std::int32_t> kType{{ppt::kSelection, 2007}};
inline constexpr Member<ObjectRef> kSlideRange{{ppt::kSelection, 2008}};
inline constexpr Member<ObjectRef> kShapeRange{{ppt::kSelection, 2009}};
inline constexpr Member<ObjectRef> kTextRange{{ppt::kSelection, 2010}};
inline constexpr Member<ObjectRef> kChildShapeRange{{ppt::kSelection, 2011}};
inline constexpr Member<std::int32_t> kHasChildShapeRange{{ppt::kSelection, 2012}};
}  // namespace selection

namespace view {
inline constexpr Member<ObjectRef> kSlide{{ppt::kView, 2006}};
inline constexpr Member<void> kGotoSlide{{ppt::kView, 2007}};
}  // namespace view

namespace presentation {
inline constexpr Member<ObjectRef> kSlides{{ppt::kPresentation, 2011}};
inline constexpr Member<ObjectRef> kPageSetup{{ppt::kPresentation, 2012}};
}  // namespace presentation

namespace pageSetup {
inline constexpr Member<float> kSlideHeight{{ppt::kPageSetup, 2004}};
inline constexpr Member<float> kSlideWidth{{ppt::kPageSetup, 2005}};
}  // namespace pageSetup

namespace slides {
inline constexpr Member<std::int32_t> kCount{{ppt::kSlides, 11}};
inline constexpr Member<ObjectRef> kItem{{ppt::kSlides, 0}};
inline constexpr Member<ObjectRef> kFindBySlideId{{ppt::kSlides, 2003}};
}  // namespace slides

namespace slide {
inline constexpr Member<ObjectRef> kShapes{{ppt::kSlide, 2003}};
inline constexpr Member<std::int32_t> kSlideId{{ppt::kSlide, 2009}};
inline constexpr Member<ObjectRef> kTags{{ppt::kSlide, 2017}};
inline constexpr Member<std::int32_t> kSlideIndex{{ppt::kSlide, 2018}};
inline constexpr Member<ObjectRef> kNotesPage{{ppt::kSlide, 2022}};
}  // namespace slide

namespace slideRange {
inline constexpr Member<std::int32_t> kCount{{ppt::kSlideRange, 11}};
inline constexpr Member<ObjectRef> kItem{{ppt::kSlideRange, 0}};
inline constexpr Member<ObjectRef> kShapes{{ppt::kSlideRange, 2003}};
}  // namespace slideRange

namespace shapeRange {
inline constexpr Member<std::int32_t> kCount{{ppt::kShapeRange, 9}};
inline constexpr Member<ObjectRef> kItem{{ppt::kShapeRange, 0}};
}  // namespace shapeRange

namespace shapes {
inline constexpr Member<std::int32_t> kCount{{ppt::kShapes, 2}};
inline constexpr Member<ObjectRef> kItem{{ppt::kShapes, 0}};
}  // namespace shapes

namespace groupShapes {
inline constexpr Member<std::int32_t> kCount{{ppt::kGroupShapes, 2}};
inline constexpr Member<ObjectRef> kItem{{ppt::kGroupShapes, 0}};
}  // namespace groupShapes

namespace shape {
inline constexpr Member<float> kHeight{{ppt::kShape, 109}};
inline constexpr Member<float> kLeft{{ppt::kShape, 111}};
inline constexpr Member<Wide> kName{{ppt::kShape, 115}};
inline constexpr Member<ObjectRef> kTextFrame{{ppt::kShape, 121}};
inline constexpr Member<float> kTop{{ppt::kShape, 123}};
inline constexpr Member<float> kWidth{{ppt::kShape, 128}};
inline constexpr Member<std::int32_t> kId{{ppt::kShape, 139}};
inline constexpr Member<std::int32_t> kHasTextFrame{{ppt::kShape, 2014}};
inline constexpr Member<std::int32_t> kHasTable{{ppt::kShape, 2016}};
inline constexpr Member<ObjectRef> kTable{{ppt::kShape, 2017}};
}  // namespace shape

namespace textFrame {
inline constexpr Member<ObjectRef> kParent{{ppt::kTextFrame, 1}};
inline constexpr Member<float> kMarginLeft{{ppt::kTextFrame, 101}};
inline constexpr Member<float> kMarginRight{{ppt::kTextFrame, 102}};
inline constexpr Member<std::int32_t> kHasText{{ppt::kTextFrame, 2003}};
inline constexpr Member<ObjectRef> kTextRange{{ppt::kTextFrame, 2004}};
inline constexpr Member<std::int32_t> kAutoSize{{ppt::kTextFrame, 2008}};
inline constexpr Member<std::int32_t> kWordWrap{{ppt::kTextFrame, 2009}};
}  // namespace textFrame

namespace textRange {
inline constexpr Member<std::int32_t> kCount{{ppt::kTextRange, 11}};
inline constexpr Member<ObjectRef> kParent{{ppt::kTextRange, 2002}};
inline constexpr Member<std::int32_t> kStart{{ppt::kTextRange, 2004}};
inline constexpr Member<std::int32_t> kLength{{ppt::kTextRange, 2005}};
inline constexpr Member<float> kBoundLeft{{ppt::kTextRange, 2006}};
inline constexpr Member<float> kBoundWidth{{ppt::kTextRange, 2008}};
inline constexpr Member<float> kBoundHeight{{ppt::kTextRange, 2009}};
inline constexpr Member<ObjectRef> kParagraphs{{ppt::kTextRange, 2010}};
inline constexpr Member<ObjectRef> kCharacters{{ppt::kTextRange, 2013}};
inline constexpr Member<ObjectRef> kRuns{{ppt::kTextRange, 2015}};
inline constexpr Member<Wide> kText{{ppt::kTextRange, 0}};
inline constexpr Member<ObjectRef> kFont{{ppt::kTextRange, 2022}};
}  // namespace textRange

namespace font {
inline constexpr Member<ObjectRef> kColor{{ppt::kFont, 2003}};
inline constexpr Member<std::int32_t> kBold{{ppt::kFont, 2004}};
inline constexpr Member<std::int32_t> kItalic{{ppt::kFont, 2005}};
inline constexpr Member<float> kSize{{ppt::kFont, 2014}};
inline constexpr Member<Wide> kName{{ppt::kFont, 2015}};
inline constexpr Member<Wide> kNameFarEast{{ppt::kFont, 2016}};
inline constexpr Member<Wide> kNameAscii{{ppt::kFont, 2017}};
}  // namespace font

namespace colorFormat {
inline constexpr Member<std::int32_t> kRgb{{ppt::kColorFormat, 0}};
inline constexpr Member<std::int32_t> kType{{ppt::kColorFormat, 101}};
inline constexpr Member<float> kTintAndShade{{ppt::kColorFormat, 103}};
inline constexpr Member<std::int32_t> kSchemeColor{{ppt::kColorFormat, 2003}};
}  // namespace colorFormat

namespace table {
inline constexpr Member<ObjectRef> kColumns{{ppt::kTable, 2003}};
inline constexpr Member<ObjectRef> kRows{{ppt::kTable, 2004}};
}  // namespace table

namespace rows {
inline constexpr Member<std::int32_t> kCount{{ppt::kRows, 11}};
}
namespace columns {
inline constexpr Member<std::int32_t> kCount{{ppt::kColumns, 11}};
}

namespace tags {
inline constexpr Member<Wide> kItem{{ppt::kTags, 0}};
}

}  // namespace ppt

}  // namespace quillmarch
