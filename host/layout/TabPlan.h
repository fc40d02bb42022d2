// Where tabs of a paragraph lead, counted from the edge where its lines begin.
#pragma once

#include "host/layout/LayoutFrame.h"

namespace quillmarch::host::layout {

class TabPlan {
 public:
  TabPlan(const LayoutParagraph& paragraph, double defaultTab);
  // The next stop after `position`.
  TabStop Next(double position) const;

 private:
  const LayoutParagraph& paragraph_;
  double defaultTab_;
};

// Where text ends while it is placed after a tab, bit by bit.
class LineCursor {
 public:
  LineCursor(const TabPlan& tabs, double start) : tabs_(tabs), base_(start) {}
  void Tab();
  // `isPoint`: the text is the first that a decimal tab stops at.
  void Add(double advance, bool isPoint = false);
  // The end of the text so far.
  double End() const { return Begin() + width_; }
  // Where the text after the last tab begins.
  double Begin() const;

 private:
  const TabPlan& tabs_;
  double base_;         // end of the text before the last tab
  double width_ = 0.0;  // of the text after it
  double beforePoint_ = 0.0;
  bool pointSeen_ = false;
  TabStop stop_;
  bool tabbed_ = false;
};

}  // namespace quillmarch::host::layout
