// The published interfaces of the presentation hosts and the fixed DISPIDs of the members used.
// PowerPoint's type library 91493440-5A91-11CF-8700-00AA0060263B; property get and put share a
// DISPID. Only members that the add-in calls stand here.
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
inline constexpr TypedMember kWindows{kApplication, 2002};
inline constexpr TypedMember kActiveWindow{kApplication, 2004};
inline constexpr TypedMember kName{kApplication, 0};
inline constexpr TypedMember kVersion{kApplication, 2014};
}  // namespace application

namespace documentWindows {
inline constexpr TypedMember kCount{kDocumentWindows, 11};
inline constexpr TypedMember kItem{kDocumentWindows, 0};
}  // namespace documentWindows

namespace documentWindow {
inline constexpr TypedMember kSelection{ppt::kDocumentWindow, 2003};
inline constexpr TypedMember kView{ppt::kDocumentWindow, 2004};
inline constexpr TypedMember kPresentation{ppt::kDocumentWindow, 2005};
inline constexpr TypedMember kActive{ppt::kDocumentWindow, 2008};
inline constexpr TypedMember kHwnd{ppt::kDocumentWindow, 2020};
}  // namespace documentWindow

namespace selection {
inline constexpr TypedMember kType{ppt::kSelection, 2007};
inline constexpr TypedMember kSlideRange{ppt::kSelection, 2008};
inline constexpr TypedMember kShapeRange{ppt::kSelection, 2009};
inline constexpr TypedMember kTextRange{ppt::kSelection, 2010};
inline constexpr TypedMember kChildShapeRange{ppt::kSelection, 2011};
inline constexpr TypedMember kHasChildShapeRange{ppt::kSelection, 2012};
}  // namespace selection

namespace view {
inline constexpr TypedMember kSlide{ppt::kView, 2006};
inline constexpr TypedMember kGotoSlide{ppt::kView, 2007};
}  // namespace view

namespace presentation {
inline constexpr TypedMember kSlides{ppt::kPresentation, 2011};
inline constexpr TypedMember kPageSetup{ppt::kPresentation, 2012};
}  // namespace presentation

namespace pageSetup {
inline constexpr TypedMember kSlideHeight{ppt::kPageSetup, 2004};
inline constexpr TypedMember kSlideWidth{ppt::kPageSetup, 2005};
}  // namespace pageSetup

namespace slides {
inline constexpr TypedMember kCount{ppt::kSlides, 11};
inline constexpr TypedMember kItem{ppt::kSlides, 0};
inline constexpr TypedMember kFindBySlideId{ppt::kSlides, 2003};
}  // namespace slides

namespace slide {
inline constexpr TypedMember kShapes{ppt::kSlide, 2003};
inline constexpr TypedMember kSlideId{ppt::kSlide, 2009};
inline constexpr TypedMember kTags{ppt::kSlide, 2017};
inline constexpr TypedMember kSlideIndex{ppt::kSlide, 2018};
inline constexpr TypedMember kNotesPage{ppt::kSlide, 2022};
}  // namespace slide

namespace slideRange {
inline constexpr TypedMember kCount{ppt::kSlideRange, 11};
inline constexpr TypedMember kItem{ppt::kSlideRange, 0};
inline constexpr TypedMember kShapes{ppt::kSlideRange, 2003};
}  // namespace slideRange

namespace shapeRange {
inline constexpr TypedMember kCount{ppt::kShapeRange, 9};
inline constexpr TypedMember kItem{ppt::kShapeRange, 0};
}  // namespace shapeRange

namespace shapes {
inline constexpr TypedMember kCount{ppt::kShapes, 2};
inline constexpr TypedMember kItem{ppt::kShapes, 0};
}  // namespace shapes

namespace groupShapes {
inline constexpr TypedMember kCount{ppt::kGroupShapes, 2};
inline constexpr TypedMember kItem{ppt::kGroupShapes, 0};
}  // namespace groupShapes

namespace shape {
inline constexpr TypedMember kHeight{ppt::kShape, 109};
inline constexpr TypedMember kLeft{ppt::kShape, 111};
inline constexpr TypedMember kName{ppt::kShape, 115};
inline constexpr TypedMember kTextFrame{ppt::kShape, 121};
inline constexpr TypedMember kTop{ppt::kShape, 123};
inline constexpr TypedMember kWidth{ppt::kShape, 128};
inline constexpr TypedMember kId{ppt::kShape, 139};
inline constexpr TypedMember kHasTextFrame{ppt::kShape, 2014};
inline constexpr TypedMember kHasTable{ppt::kShape, 2016};
inline constexpr TypedMember kTable{ppt::kShape, 2017};
}  // namespace shape

namespace textFrame {
inline constexpr TypedMember kParent{ppt::kTextFrame, 1};
inline constexpr TypedMember kMarginLeft{ppt::kTextFrame, 101};
inline constexpr TypedMember kMarginRight{ppt::kTextFrame, 102};
inline constexpr TypedMember kHasText{ppt::kTextFrame, 2003};
inline constexpr TypedMember kTextRange{ppt::kTextFrame, 2004};
inline constexpr TypedMember kAutoSize{ppt::kTextFrame, 2008};
inline constexpr TypedMember kWordWrap{ppt::kTextFrame, 2009};
}  // namespace textFrame

namespace textRange {
inline constexpr TypedMember kCount{ppt::kTextRange, 11};
inline constexpr TypedMember kParent{ppt::kTextRange, 2002};
inline constexpr TypedMember kStart{ppt::kTextRange, 2004};
inline constexpr TypedMember kLength{ppt::kTextRange, 2005};
inline constexpr TypedMember kBoundLeft{ppt::kTextRange, 2006};
inline constexpr TypedMember kBoundWidth{ppt::kTextRange, 2008};
inline constexpr TypedMember kBoundHeight{ppt::kTextRange, 2009};
inline constexpr TypedMember kParagraphs{ppt::kTextRange, 2010};
inline constexpr TypedMember kCharacters{ppt::kTextRange, 2013};
inline constexpr TypedMember kRuns{ppt::kTextRange, 2015};
inline constexpr TypedMember kText{ppt::kTextRange, 0};
inline constexpr TypedMember kFont{ppt::kTextRange, 2022};
}  // namespace textRange

namespace font {
inline constexpr TypedMember kColor{ppt::kFont, 2003};
inline constexpr TypedMember kBold{ppt::kFont, 2004};
inline constexpr TypedMember kItalic{ppt::kFont, 2005};
inline constexpr TypedMember kSize{ppt::kFont, 2014};
inline constexpr TypedMember kName{ppt::kFont, 2015};
inline constexpr TypedMember kNameFarEast{ppt::kFont, 2016};
inline constexpr TypedMember kNameAscii{ppt::kFont, 2017};
}  // namespace font

namespace colorFormat {
inline constexpr TypedMember kRgb{ppt::kColorFormat, 0};
inline constexpr TypedMember kType{ppt::kColorFormat, 101};
inline constexpr TypedMember kTintAndShade{ppt::kColorFormat, 103};
inline constexpr TypedMember kSchemeColor{ppt::kColorFormat, 2003};
}  // namespace colorFormat

namespace table {
inline constexpr TypedMember kColumns{ppt::kTable, 2003};
inline constexpr TypedMember kRows{ppt::kTable, 2004};
}  // namespace table

namespace rows {
inline constexpr TypedMember kCount{ppt::kRows, 11};
}
namespace columns {
inline constexpr TypedMember kCount{ppt::kColumns, 11};
}

namespace tags {
inline constexpr TypedMember kItem{ppt::kTags, 0};
}

}  // namespace ppt

}  // namespace quillmarch
