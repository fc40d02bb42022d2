// The headless host: PowerPoint's object model over one deck or several, as automation objects.
// Host thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "foundation/automation/AutomationObject.h"
#include "foundation/text/Result.h"
#include "host/package/Package.h"

namespace quillmarch::host {

// How a host behaves where real hosts differ.
struct Personality {
  std::string name = "powerpoint";
  std::u16string applicationName = u"Microsoft PowerPoint";
  std::u16string applicationVersion = u"16.0";
  bool flatGroups = true;  // GroupItems lists the leaves of every level
  bool hasTextFrame2 = true;
  bool twoAutoSizeStates = false;  // TextFrame and TextFrame2 keep autosize apart
};

// "powerpoint", "nested", "no-textframe2", "two-autosize-states", "top-level-nodes" or "wps"; null
// for any other word.
const Personality* FindPersonality(const std::string& name);

// A shape of a slide by its name (UTF-8), or without one by indexes from 1: the first into the
// slide's shapes, each further one into the members of the group reached so far.
struct ShapeKey {
  std::string name;
  std::vector<std::int32_t> path;
};

class Host {
 public:
  explicit Host(const Personality& personality);
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // Opens a deck in a window of its own and makes it the active one. What the deck's structure
  // needs and is missing or broken is an error; a missing leaf (picture, workbook, sound) is a
  // sentence in `warnings`.
  Result<void> Open(const std::string& path, std::vector<std::string>& warnings);
  // Announces that texts will be measured, so that the machine's fonts can be read in advance.
  void ExpectMeasuring();
  // Saves the deck of the active window; nothing that was not edited changes.
  Result<void> Save(const std::string& path);
  // The bytes that Save would write.
  Result<std::string> SaveBytes();
  // Which kind of presentation it is, by its main part's content type; and makes it another kind.
  std::string ContentType() const;
  void PutContentType(const std::string& type);
  bool Edited() const;
  std::int32_t SlideCount() const;
  // Shows a slide (1-based) in the active window, as a user would before a one-slide run.
  bool ShowSlide(std::int32_t index);

  // Each selects in the active window and shows the slide. What cannot be selected is an error
  // that leaves the window as it was. Slides count from 1 and keep their order; what is named twice
  // is selected once.
  Result<void> SelectSlides(const std::vector<std::int32_t>& slides);
  // Shapes of one slide: of its top level, or members of one group. A name is looked for on the top
  // level first.
  Result<void> SelectShapes(std::int32_t slide, const std::vector<ShapeKey>& shapes);
  // `length` UTF-16 units of the shape's text from `start`, which counts from 1; a paragraph's end
  // is one unit.
  Result<void> SelectText(std::int32_t slide, const ShapeKey& shape, std::int32_t start,
                          std::int32_t length);
  void ClearSelection();

  // The Application object.
  ObjectRef application() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace quillmarch::host
