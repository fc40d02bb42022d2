// Panes that outlive their windows: a run's worker that hangs holds pointers into its pane.
#pragma once

#include <cstddef>
#include <memory>

namespace quillmarch::addin {

class CPptPane;

// What a run holds while it lasts; empty between runs.
struct RunReferences {
  std::shared_ptr<CPptPane> pane;
  std::shared_ptr<void> object;  // the object that the host knows the pane by
};

// Holds a pane whose window has gone until its worker has ended.
void KeepPane(RunReferences references);

// Releases the kept panes whose workers have ended; returns the number of those still running.
// Every new pane does this too.
std::size_t ReleaseEndedPanes();

}  // namespace quillmarch::addin
