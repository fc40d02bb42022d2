#include "support/FakeClasses.h"

#include "foundation/automation/HostMembers.h"

namespace quillmarch::addin::test {

namespace {

constexpr std::int32_t kTrue = -1;
constexpr std::int32_t kTypeGroup = 6;
constexpr float kSlideWidth = 960.0F;   // points
constexpr float kSlideHeight = 540.0F;  // points

// Members that the add-in calls by name alone.
constexpr DispId kIdType = 124;
constexpr DispId kIdGroupItems = 108;
constexpr DispId kIdCell = 2005;
constexpr DispId kIdCellShape = 2003;

// A slide and where it stands.
struct SlideNode : FakeNode {
  std::shared_ptr<FakeSlide> slide;
  std::int32_t index = 0;
};

struct CellNode : FakeNode {
  FakeShapeRef shape;
};

struct GroupNode : FakeNode {
  FakeShapes items;
};

ResultCode Give(Variant& out, ObjectRef object) {
  out = Variant::Object(std::move(object));
  return kOk;
}

ResultCode Give(Variant& out, std::int32_t value) {
  out = Variant::I4(value);
  return kOk;
}

ResultCode Give(Variant& out, float value) {
  out = Variant::R4(value);
  return kOk;
}

ResultCode Give(Variant& out, const Wide& value) {
  out = Variant::Text(value);
  return kOk;
}

template <typename List>
std::int32_t SizeOf(const List& list) {
  return static_cast<std::int32_t>(list.size());
}

template <typename List>
bool Reaches(const List& list, std::int32_t index) {
  return index >= 1 && index <= SizeOf(list);
}

template <typename List>
const auto& ItemOf(const List& list, std::int32_t index) {
  return list[static_cast<std::size_t>(index - 1)];
}

void AddLeaves(const FakeShapes& shapes, FakeShapes& leaves) {
  for (const FakeShapeRef& shape : shapes) {
    if (shape->type == kTypeGroup) {
      AddLeaves(shape->children, leaves);
    } else {
      leaves.push_back(shape);
    }
  }
}

const FakeClass& CountClass(const char* label, const InterfaceId& iid);

struct CountNode : FakeNode {
  std::int32_t count = 0;
};

ObjectRef CountObject(FakeHost& host, const char* label, const InterfaceId& iid,
                      std::size_t count) {
  auto node = std::make_shared<CountNode>();
  node->count = static_cast<std::int32_t>(count);
  return FakeObject::Make(host, CountClass(label, iid), node);
}

const FakeClass& CountClass(const char* label, const InterfaceId& iid) {
  static std::map<std::string, FakeClass> classes;
  FakeClass& made = classes[label];
  if (made.label.empty()) {
    made = {label,
            iid,
            false,
            {Getter<CountNode>(u"Count", 11,
                               [](FakeHost&, const auto& node, const auto&, Variant& out) {
                                 return Give(out, node->count);
                               })}};
  }
  return made;
}

const FakeClass& CellClass() {
  static const FakeClass made = {
      "Cell",
      ppt::kCell,
      false,
      {Getter<CellNode>(u"Shape", kIdCellShape,
                        [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                          return Give(out, host.ShapeObject(node->shape));
                        })}};
  return made;
}

ResultCode GetCell(FakeHost& host, const std::shared_ptr<FakeTable>& table, const FakeArgs& args,
                   Variant& out) {
  const std::int32_t row = WholeArg(args, 0);
  const std::int32_t column = WholeArg(args, 1);
  if (!Reaches(table->cells, row) || !Reaches(ItemOf(table->cells, row), column)) {
    return kInvalidArgument;
  }
  auto node = std::make_shared<CellNode>();
  node->shape = ItemOf(ItemOf(table->cells, row), column);
  return Give(out, FakeObject::Make(host, CellClass(), node));
}

const FakeClass& TableClass() {
  static const FakeClass made = {
      "Table",
      ppt::kTable,
      false,
      {Getter<FakeTable>(u"Rows", 2004,
                         [](FakeHost& host, const auto& table, const auto&, Variant& out) {
                           return Give(out,
                                       CountObject(host, "Rows", ppt::kRows, table->cells.size()));
                         }),
       Getter<FakeTable>(u"Columns", 2003,
                         [](FakeHost& host, const auto& table, const auto&, Variant& out) {
                           const std::size_t columns =
                               table->cells.empty() ? 0 : table->cells.front().size();
                           return Give(out, CountObject(host, "Columns", ppt::kColumns, columns));
                         }),
       Getter<FakeTable>(u"Cell", kIdCell, GetCell)}};
  return made;
}

const FakeClass& GroupShapesClass() {
  static const FakeClass made = {
      "GroupShapes",
      ppt::kGroupShapes,
      false,
      {Getter<GroupNode>(u"Count", 2,
                         [](FakeHost&, const auto& node, const auto&, Variant& out) {
                           return Give(out, SizeOf(node->items));
                         }),
       Getter<GroupNode>(u"Item", 0,
                         [](FakeHost& host, const auto& node, const auto& args, Variant& out) {
                           const std::int32_t at = WholeArg(args, 0);
                           if (!Reaches(node->items, at)) return kInvalidArgument;
                           return Give(out, host.ShapeObject(ItemOf(node->items, at)));
                         })}};
  return made;
}

ResultCode GetGroupItems(FakeHost& host, const std::shared_ptr<FakeShape>& shape, const FakeArgs&,
                         Variant& out) {
  if (shape->type != kTypeGroup && shape->children.empty()) return kHostException;
  auto node = std::make_shared<GroupNode>();
  node->refusesTyped = shape->failing.contains("GroupShapes");
  if (host.personality.nestedGroups) {
    node->items = shape->children;
  } else {
    AddLeaves(shape->children, node->items);
  }
  return Give(out, FakeObject::Make(host, GroupShapesClass(), node));
}

FakeMember SizeMember(const char16_t* name, DispId id, float FakeShape::*field) {
  return {name,
          id,
          [field](FakeHost&, const std::shared_ptr<FakeNode>& node, const FakeArgs&, Variant& out) {
            return Give(out, std::static_pointer_cast<FakeShape>(node).get()->*field);
          },
          {}};
}

const FakeClass& TagsClass() {
  static const FakeClass made = {
      "Tags",
      ppt::kTags,
      false,
      {Getter<SlideNode>(
          u"Item", 0, [](FakeHost&, const auto& node, const auto& args, Variant& out) {
            if (args.size() != 1) return kBadParamCount;
            Wide name = args[0].text();
            for (char16_t& unit : name) {
              if (unit >= u'a' && unit <= u'z') {
                unit = static_cast<char16_t>(unit - u'a' + u'A');
              }
            }
            const auto found = node->slide->tags.find(name);
            return Give(out, found == node->slide->tags.end() ? Wide() : found->second);
          })}};
  return made;
}

const FakeClass& NotesClass() {
  static const FakeClass made = {
      "SlideRange",
      ppt::kSlideRange,
      false,
      {Getter<FakeShapeTree>(u"Shapes", 2003,
                             [](FakeHost& host, const auto& tree, const auto&, Variant& out) {
                               return Give(out, host.ShapesObject(tree));
                             })}};
  return made;
}

const FakeClass& SlideClass() {
  static const FakeClass made = {
      "Slide",
      ppt::kSlide,
      false,
      {Getter<SlideNode>(u"Shapes", 2003,
                         [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                           return Give(out, host.ShapesObject(node->slide->tree));
                         }),
       Getter<SlideNode>(u"SlideID", 2009,
                         [](FakeHost&, const auto& node, const auto&, Variant& out) {
                           return Give(out, node->slide->id);
                         }),
       Getter<SlideNode>(u"SlideIndex", 2018,
                         [](FakeHost&, const auto& node, const auto&, Variant& out) {
                           return Give(out, node->index);
                         }),
       Getter<SlideNode>(u"Tags", 2017,
                         [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                           return Give(out, FakeObject::Make(host, TagsClass(), node));
                         }),
       Getter<SlideNode>(
           u"NotesPage", 2022, [](FakeHost& host, const auto& node, const auto&, Variant& out) {
             return Give(out, FakeObject::Make(host, NotesClass(), node->slide->notes));
           })}};
  return made;
}

ResultCode GetSlide(FakeHost& host, const FakePresentation& presentation, std::int32_t index,
                    Variant& out) {
  if (!Reaches(presentation.slides, index)) return kInvalidArgument;
  auto node = std::make_shared<SlideNode>();
  node->slide = ItemOf(presentation.slides, index);
  node->index = index;
  node->failing = node->slide->failing;
  node->refusesTyped = node->slide->refusesTyped;
  return Give(out, FakeObject::Make(host, SlideClass(), node));
}

const FakeClass& PageSetupClass() {
  static const FakeClass made = {
      "PageSetup",
      ppt::kPageSetup,
      false,
      {Getter<FakeNode>(u"SlideWidth", 2005,
                        [](FakeHost&, const auto&, const auto&, Variant& out) {
                          return Give(out, kSlideWidth);
                        }),
       Getter<FakeNode>(u"SlideHeight", 2004,
                        [](FakeHost&, const auto&, const auto&, Variant& out) {
                          return Give(out, kSlideHeight);
                        })}};
  return made;
}

const FakeClass& PresentationClass() {
  static const FakeClass made = {
      "Presentation",
      ppt::kPresentation,
      true,
      {Getter<FakePresentation>(u"Slides", 2011,
                                [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                                  return Give(out, host.SlidesObject(node));
                                }),
       Getter<FakePresentation>(u"PageSetup", 2012,
                                [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                                  return Give(out, FakeObject::Make(host, PageSetupClass(), node));
                                })}};
  return made;
}

const FakeClass& ViewClass() {
  static const FakeClass made = {
      "View",
      ppt::kView,
      false,
      {Getter<FakeWindow>(u"Slide", 2006,
                          [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                            return GetSlide(host, *node->presentation, node->viewSlide, out);
                          }),
       Getter<FakeWindow>(u"GotoSlide", 2007,
                          [](FakeHost&, const auto& node, const auto& args, Variant&) {
                            node->viewSlide = WholeArg(args, 0);
                            node->visited.push_back(node->viewSlide);
                            return kOk;
                          })}};
  return made;
}

const FakeClass& WindowClass() {
  static const FakeClass made = {
      "DocumentWindow",
      ppt::kDocumentWindow,
      true,
      {Getter<FakeWindow>(u"HWND", 2020,
                          [](FakeHost&, const auto& node, const auto&, Variant& out) {
                            return Give(out, node->hwnd);
                          }),
       Getter<FakeWindow>(u"Presentation", 2005,
                          [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                            return Give(out, FakeObject::Make(host, PresentationClass(),
                                                              node->presentation));
                          }),
       Getter<FakeWindow>(u"View", 2004,
                          [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                            return Give(out, FakeObject::Make(host, ViewClass(), node));
                          }),
       Getter<FakeWindow>(u"Active", 2008,
                          [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                            return Give(out, host.activeWindow == node ? -1 : 0);
                          }),
       Getter<FakeWindow>(u"Selection", 2003,
                          [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                            return Give(out, SelectionObject(host, node));
                          })}};
  return made;
}

const FakeClass& WindowsClass() {
  static const FakeClass made = {
      "DocumentWindows",
      ppt::kDocumentWindows,
      false,
      {Getter<FakeNode>(u"Count", 11,
                        [](FakeHost& host, const auto&, const auto&, Variant& out) {
                          return Give(out, SizeOf(host.windows));
                        }),
       Getter<FakeNode>(
           u"Item", 0, [](FakeHost& host, const auto&, const auto& args, Variant& out) {
             const std::int32_t at = WholeArg(args, 0);
             if (!Reaches(host.windows, at)) return kInvalidArgument;
             return Give(out, FakeObject::Make(host, WindowClass(), ItemOf(host.windows, at)));
           })}};
  return made;
}

}  // namespace

ObjectRef FakeHost::WindowObject(const std::shared_ptr<FakeWindow>& window) {
  return FakeObject::Make(*this, WindowClass(), window);
}

ObjectRef FakeHost::PresentationObject(const std::shared_ptr<FakePresentation>& presentation) {
  return FakeObject::Make(*this, PresentationClass(), presentation);
}

ResultCode GiveSlide(FakeHost& host, const FakePresentation& presentation, std::int32_t index,
                     Variant& out) {
  return GetSlide(host, presentation, index, out);
}

const FakeClass& ApplicationClass() {
  static const FakeClass made = {
      "Application",
      ppt::kApplication,
      false,
      {Getter<FakeNode>(u"Windows", 2002,
                        [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                          return Give(out, FakeObject::Make(host, WindowsClass(), node));
                        }),
       Getter<FakeNode>(u"ActiveWindow", 2004,
                        [](FakeHost& host, const auto&, const auto&, Variant& out) {
                          if (!host.activeWindow) return kHostException;
                          return Give(out,
                                      FakeObject::Make(host, WindowClass(), host.activeWindow));
                        }),
       Getter<FakeNode>(u"Name", 0,
                        [](FakeHost& host, const auto&, const auto&, Variant& out) {
                          return Give(out, host.personality.applicationName);
                        }),
       Getter<FakeNode>(u"Version", 2014, [](FakeHost&, const auto&, const auto&, Variant& out) {
         return Give(out, Wide(u"16.0"));
       })}};
  return made;
}

const FakeClass& SlidesClass() {
  static const FakeClass made = {
      "Slides",
      ppt::kSlides,
      false,
      {Getter<FakePresentation>(u"Count", 11,
                                [](FakeHost&, const auto& node, const auto&, Variant& out) {
                                  return Give(out, SizeOf(node->slides));
                                }),
       Getter<FakePresentation>(
           u"Item", 0, [](FakeHost& host, const auto& node, const auto& args, Variant& out) {
             return GetSlide(host, *node, WholeArg(args, 0), out);
           })}};
  return made;
}

const FakeClass& ShapesClass() {
  static const FakeClass made = {
      "Shapes",
      ppt::kShapes,
      false,
      {Getter<FakeShapeTree>(u"Count", 2,
                             [](FakeHost&, const auto& node, const auto&, Variant& out) {
                               return Give(out, SizeOf(node->shapes));
                             }),
       Getter<FakeShapeTree>(u"Item", 0,
                             [](FakeHost& host, const auto& node, const auto& args, Variant& out) {
                               const std::int32_t at = WholeArg(args, 0);
                               if (!Reaches(node->shapes, at)) return kInvalidArgument;
                               return Give(out, host.ShapeObject(ItemOf(node->shapes, at)));
                             })}};
  return made;
}

const FakeClass& ShapeClass() {
  static const FakeClass made = {
      "Shape",
      ppt::kShape,
      false,
      {Getter<FakeShape>(u"Type", kIdType,
                         [](FakeHost&, const auto& node, const auto&, Variant& out) {
                           return Give(out, node->type);
                         }),
       Getter<FakeShape>(u"Name", 115,
                         [](FakeHost&, const auto& node, const auto&, Variant& out) {
                           return Give(out, node->name);
                         }),
       Getter<FakeShape>(u"Id", 139,
                         [](FakeHost&, const auto& node, const auto&, Variant& out) {
                           return Give(out, node->id);
                         }),
       Getter<FakeShape>(u"HasTextFrame", 2014,
                         [](FakeHost&, const auto& node, const auto&, Variant& out) {
                           return Give(out, node->text ? kTrue : 0);
                         }),
       Getter<FakeShape>(u"TextFrame", 121,
                         [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                           if (!node->text) return kHostException;
                           return Give(out, TextFrameObject(host, node->text));
                         }),
       Getter<FakeShape>(u"HasTable", 2016,
                         [](FakeHost&, const auto& node, const auto&, Variant& out) {
                           return Give(out, node->table ? kTrue : 0);
                         }),
       Getter<FakeShape>(u"Table", 2017,
                         [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                           if (!node->table) return kHostException;
                           return Give(out, FakeObject::Make(host, TableClass(), node->table));
                         }),
       Getter<FakeShape>(u"GroupItems", kIdGroupItems, GetGroupItems),
       SizeMember(u"Left", 111, &FakeShape::left), SizeMember(u"Top", 123, &FakeShape::top),
       SizeMember(u"Width", 128, &FakeShape::width),
       SizeMember(u"Height", 109, &FakeShape::height)}};
  return made;
}

}  // namespace quillmarch::addin::test
