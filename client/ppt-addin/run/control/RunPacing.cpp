#include "run/control/RunPacing.h"

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"
#include "run/document/BilingualSlides.h"
#include "run/document/RunWindow.h"
#include "run/document/StaGate.h"
#include "run/write/Writeback.h"

namespace quillmarch::addin {

namespace {

void EnterPhase(RunState& run, std::int32_t phase) {
  run.tickPhase = phase;
  run.phaseStart = run.Now();
}

void JumpToCopy(RunState& run, std::int32_t slideNumber) {
  if (UserIsBusy(run.surroundings.input)) return;
  ObjectRef slides;
  std::int32_t copy = 0;
  if (Get(RunPresentation(run.document), ppt::presentation::kSlides, slides) &&
      LocateCopySlide(run.copies, slides.get(), slideNumber, copy)) {
    ShowSlide(run.document, copy);
  }
}

// Nothing is owed when the user is busy: the write that follows waits by itself.
void ShowSource(RunState& run) {
  const GateHold gate(&run, run.surroundings.thread);
  if (gate.held() && !UserIsBusy(run.surroundings.input)) {
    ShowSlide(run.document, run.texts.SlideNumberAt(run.nextSlide));
  }
}

void TickFull(RunState& run) {
  switch (run.tickPhase) {
    case kPhaseShow:
      ShowSource(run);
      EnterPhase(run, kPhaseWrite);
      return;
    case kPhaseWrite:
      if (run.Now() - run.phaseStart < kShowBeforeWriteMs) return;
      if (ApplySlide(run, run.nextSlide, true, run.params.bilingual)) EnterPhase(run, kPhaseRest);
      return;
    default:
      if (run.Now() - run.phaseStart < kShowAfterWriteMs) return;
      ++run.nextSlide;
      run.tickPhase = kPhaseShow;
      return;
  }
}

}  // namespace

bool ApplySlide(RunState& run, std::int32_t entry, bool checkInput, bool jumpToCopy) {
  if (checkInput && UserIsBusy(run.surroundings.input)) {
    RaiseInputQuiet(run.surroundings.thread);
    return false;
  }
  const Heed heed = checkInput ? Heed::kEveryQuiet : Heed::kMutationQuiet;
  const GateHold gate(&run, run.surroundings.thread, heed);
  if (!gate.held()) return false;
  WriteSlide(run.Writing(), static_cast<std::size_t>(entry));
  if (jumpToCopy && run.params.bilingual) JumpToCopy(run, run.texts.SlideNumberAt(entry));
  return true;
}

void TickRun(RunState& run) {
  if (run.nextSlide >= run.job.slidesReady.load(std::memory_order_acquire)) return;
  if (run.params.full) {
    TickFull(run);
  } else if (ApplySlide(run, run.nextSlide, true, run.params.bilingual)) {
    ++run.nextSlide;
  }
}

}  // namespace quillmarch::addin
