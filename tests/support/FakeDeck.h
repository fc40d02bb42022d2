// The presentations that FakeHost serves: plain data that a test builds, and reads again
// afterwards.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "foundation/text/Wide.h"

namespace quillmarch::addin::test {

// What every node can be told to refuse.
struct FakeNode {
  // Calls on this node alone that fail, as they are recorded but without arguments: "Shape:Type".
  std::set<std::string> failing;
  bool refusesTyped = false;  // answers to no published interface
};

struct FakeFont {
  float size = 18.0F;  // points
  std::int32_t bold = 0;
  std::int32_t italic = 0;
  std::int32_t colorType = 1;  // 1 RGB, 2 scheme
  std::int32_t rgb = 0;
  std::int32_t scheme = 0;
  float tint = 0.0F;
  Wide name = u"Calibri";
  Wide nameFarEast = u"Calibri";
  Wide nameAscii = u"Calibri";
  bool operator==(const FakeFont&) const = default;
};

struct FakeShape;
using FakeShapeRef = std::shared_ptr<FakeShape>;
using FakeShapes = std::vector<FakeShapeRef>;

// CR between paragraphs, VT for a line break; one font for each unit of the text.
struct FakeText : FakeNode {
  Wide text;
  std::vector<FakeFont> fonts;
  std::weak_ptr<FakeShape> shape;             // whose text it is
  bool refusesPut = false;                    // as over an equation
  std::function<void(FakeFont&)> onReplaced;  // what the host makes of the new text's look

  // New text takes the font that stood first in its place.
  void Replace(std::size_t start, std::size_t length, const Wide& with);
};

struct FakeTable : FakeNode {
  std::vector<std::vector<FakeShapeRef>> cells;  // a merged cell stands at each of its positions
};

struct FakeShape : FakeNode {
  Wide name = u"Shape";
  std::int32_t id = 0;
  std::int32_t type = 17;
  std::shared_ptr<FakeText> text;    // null: no text frame
  std::shared_ptr<FakeTable> table;  // null: no table
  FakeShapes children;               // of a group
  float left = 10.0F;
  float top = 20.0F;
  float width = 300.0F;
  float height = 100.0F;

  const Wide& Text() const { return text->text; }
};

struct FakeShapeTree : FakeNode {
  FakeShapes shapes;
};

struct FakeSlide : FakeNode {
  std::int32_t id = 0;
  std::shared_ptr<FakeShapeTree> tree = std::make_shared<FakeShapeTree>();
  std::shared_ptr<FakeShapeTree> notes = std::make_shared<FakeShapeTree>();
  std::map<Wide, Wide> tags;  // names in capitals

  FakeShapes& shapes() { return tree->shapes; }
};

struct FakePresentation : FakeNode {
  Wide name = u"Deck";
  std::vector<std::shared_ptr<FakeSlide>> slides;

  FakeSlide& AddSlide(FakeShapes shapes = {}, FakeShapes notes = {});
};

// What is selected in a window; the fields of the type alone count.
struct FakeSelection : FakeNode {
  std::int32_t type = 0;             // 0 none, 1 slides, 2 shapes, 3 text
  std::vector<std::int32_t> slides;  // 1-based, in the order of selection
  FakeShapes shapes;
  FakeShapes childShapes;  // of a group; when there are any, HasChildShapeRange is true
  std::shared_ptr<FakeText> text;
  std::int32_t start = 1;  // 1-based
  std::int32_t length = 0;

  void SelectSlides(std::vector<std::int32_t> indexes);
  void SelectShapes(FakeShapes selected);
  void SelectText(const FakeShapeRef& shape, std::int32_t from, std::int32_t units);
};

struct FakeWindow : FakeNode {
  std::int32_t hwnd = 0;
  std::shared_ptr<FakePresentation> presentation;
  std::int32_t viewSlide = 1;
  std::shared_ptr<FakeSelection> selection = std::make_shared<FakeSelection>();
  std::vector<std::int32_t> visited;  // what GotoSlide was asked for, in order
};

// Start and length of each paragraph of a text, its CR counted in. None for an empty text.
std::vector<std::pair<std::size_t, std::size_t>> ParagraphsOf(const Wide& text);

std::shared_ptr<FakeText> MakeText(const Wide& text, const FakeFont& font = {});
FakeShapeRef TextShape(const Wide& text, const FakeFont& font = {});
FakeShapeRef PictureShape();
FakeShapeRef GroupShape(FakeShapes children);
FakeShapeRef TableShape(const std::vector<std::vector<Wide>>& cells);

}  // namespace quillmarch::addin::test
