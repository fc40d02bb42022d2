// What a selection costs in host calls and time on a deck whose last slide's shapes, and those of
// its notes page, have numbers that no other slide has: bench_selection DECK
#include <chrono>
#include <cstdio>
#include <functional>

#include "foundation/automation/Automation.h"
#include "host/model/CallCount.h"
#include "host/model/Host.h"
#include "run/collect/LocateSelected.h"
#include "run/collect/SelectionPreview.h"

namespace quillmarch::host {

using namespace addin;

namespace {

void Measure(const char* what, const std::function<bool()>& work, bool expected) {
  const CallCount before = HostCallCount();
  const auto start = std::chrono::steady_clock::now();
  const bool result = work();
  const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
  std::printf("%-58s %8llu invokes %6llu look-ups %9.2f ms%s\n", what,
              static_cast<unsigned long long>(HostCallCount().invokes - before.invokes),
              static_cast<unsigned long long>(HostCallCount().nameLookups - before.nameLookups),
              took.count(), result == expected ? "" : "   (not as it should be)");
}

ObjectRef At(const ObjectRef& object, std::initializer_list<const char16_t*> path) {
  ObjectRef here = object;
  for (const char16_t* member : path) {
    ObjectRef next;
    if (!here || !AutoGetObject(here.get(), member, next)) return {};
    here = next;
  }
  return here;
}

ObjectRef Item(const ObjectRef& list, std::int32_t index) {
  Variant item;
  const Variant args[] = {Variant::I4(index)};
  if (!list || Failed(AutoGet(list.get(), u"Item", args, item)) || !item.hasObject()) return {};
  return item.object();
}

}  // namespace

}  // namespace quillmarch::host

int main(int argc, char** argv) {
  using namespace quillmarch;
  using namespace quillmarch::host;
  if (argc != 2) {
    std::fputs("bench_selection DECK\n", stderr);
    return 2;
  }
  Host host(*FindPersonality("powerpoint"));
  std::vector<std::string> warnings;
  const Result<void> opened = host.Open(argv[1], warnings);
  if (!opened.ok()) {
    std::fprintf(stderr, "%s\n", opened.error().words.c_str());
    return 2;
  }
  const ObjectRef app = host.application();
  const std::int32_t slides = host.SlideCount();
  WindowContext window;
  VariantToWhole(AutoGetPath(app.get(), {u"ActiveWindow", u"HWND"}), window.hwnd);
  const auto preview = [&] { return !ReadSelectionPreview(app.get(), window).empty; };

  std::printf("%d slides\n", slides);
  Measure("ReadSelectionPreview, nothing selected", preview, false);
  static_cast<void>(host.SelectShapes(slides, {{"", {1}}}));
  Measure("ReadSelectionPreview, one shape on the last slide", preview, true);
  static_cast<void>(host.SelectText(slides, {"", {1}}, 1, 3));
  Measure("ReadSelectionPreview, a piece of text", preview, true);
  std::vector<std::int32_t> all;
  for (std::int32_t slide = 1; slide <= slides; ++slide) all.push_back(slide);
  static_cast<void>(host.SelectSlides(all));
  Measure("ReadSelectionPreview, every slide", preview, true);

  const ObjectRef slideList = At(app, {u"ActivePresentation", u"Slides"});
  const ObjectRef last = Item(slideList, slides);
  const ObjectRef onSlide = Item(At(last, {u"Shapes"}), 1);
  const ObjectRef onNotes = Item(At(last, {u"NotesPage", u"Shapes"}), 1);
  const auto locate = [&](const ObjectRef& shape, std::int32_t active) {
    return [&slideList, shape, active] {
      ShapeMatch match;
      return LocateSelected(slideList.get(), shape.get(), active, match);
    };
  };
  Measure("LocateSelected, on the active slide", locate(onSlide, slides), true);
  Measure("LocateSelected, on the active slide's notes page", locate(onNotes, slides), true);
  Measure("LocateSelected, on the last slide, the first one active", locate(onSlide, 1), true);
  Measure("LocateSelected, on the last slide's notes page", locate(onNotes, 1), true);
  Measure("LocateSelected, on the last slide, no slide known to be active", locate(onSlide, 0),
          true);
  return 0;
}
