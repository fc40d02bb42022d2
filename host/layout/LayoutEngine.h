// Lays out the text of a frame: fonts by Fontconfig, advances by HarfBuzz, lines by the Unicode
// rules. Knows neither files nor automation.
#pragma once

#include <string>
#include <vector>

#include "host/layout/FontBook.h"
#include "host/layout/LayoutFrame.h"
#include "host/layout/LayoutResult.h"
#include "host/layout/LineBreaks.h"
#include "host/layout/WordAdvances.h"

namespace quillmarch::host::layout {

struct MeasuredParagraph;

// Keeps fonts and shaped words from one text to the next, and what its paragraphs measure from a
// text to the same one in another frame. One thread at a time. The same frame
// gives the same result on the same fonts, whatever the environment says.
class LayoutEngine {
 public:
  LayoutEngine();
  ~LayoutEngine();
  LayoutEngine(const LayoutEngine&) = delete;
  LayoutEngine& operator=(const LayoutEngine&) = delete;

  // Begins reading the machine's fonts on a thread of its own.
  void ReadFontsAhead() { book_.ReadAhead(); }

  // Linear in the text. A frame without paragraphs has no lines and no extent.
  LayoutResult LayOut(const LayoutFrame& frame);

  // Whether a font of this name, or one of the same metrics, is installed.
  bool HasFont(const std::string& family) { return book_.Has(family); }

 private:
  FontBook book_;
  WordAdvances words_;
  LineBreaks breaks_;
  std::vector<MeasuredParagraph> measured_;  // of the last frame, in its order
};

}  // namespace quillmarch::host::layout
