#include "host/cli/TranslateCommand.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "foundation/text/JsonText.h"
#include "host/cli/Backend.h"
#include "host/cli/Console.h"
#include "host/cli/DeckKind.h"
#include "host/cli/ExitCode.h"
#include "host/cli/Interrupts.h"
#include "host/cli/RunOutcomeText.h"
#include "host/cli/Sentences.h"
#include "host/cli/StandardStreams.h"
#include "host/cli/TerminalText.h"
#include "host/cli/WrittenOutputs.h"
#include "host/driver/RunDriver.h"
#include "host/model/Host.h"
#include "host/thread/HostCallGuard.h"
#include "host/thread/LoopThread.h"

namespace quillmarch::host {

namespace {

using Clock = std::chrono::steady_clock;

// Above the numbers that pane windows use for their own timers.
constexpr HostThread::TimerId kProgressTimer = 0xFFFF0000;
constexpr std::uint32_t kProgressMs = 1000;

double MsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

addin::Scope ScopeOf(const TranslateOptions& options) {
  if (options.select.kind != SelectOption::Kind::kNothing) return addin::Scope::kSelection;
  return options.slide > 0 ? addin::Scope::kCurrentSlide : addin::Scope::kWholeDeck;
}

class Command {
 public:
  explicit Command(const TranslateOptions& options)
      : options_(options),
        console_({options.quiet, options.json || options.output.file == kStandardStream}),
        loop_(options.paced ? ClockMode::kPaced : ClockMode::kUnpaced),
        guard_(loop_),
        interrupts_([this] {
          loop_.Post([this] {
            if (driver_ != nullptr) driver_->Cancel();
          });
        }) {}

  int Run();

 private:
  DeckEnd TranslateDeck(const DeckJob& job);
  // The steps of one deck, each empty when done, else the sentence that refuses it.
  std::string Open(Host& host, const DeckJob& job);
  std::string ChooseKind(Host& host, const DeckJob& job);
  std::string Save(Host& host, const DeckJob& job, const OutputPlace* place);
  DrivenRun DriveRun(Host& host, const DeckJob& job);
  DeckEnd Finish(Host& host, const DeckJob& job, const OutputPlace* place, const DrivenRun& run);
  DeckEnd Refuse(const std::string& sentence, int exitCode = kExitBadInput);
  void OnEvent(const PageCall& event);
  void ShowProgress();

  const TranslateOptions& options_;
  Console console_;
  LoopThread loop_;
  HostCallGuard guard_;
  std::unique_ptr<Backend> backend_;
  RunDriver* driver_ = nullptr;
  RunProgress progress_;
  std::string place_;  // "[2/5]"
  Clock::time_point deckSince_;
  Clock::time_point translatingSince_;
  DeckTimes times_;
  // Last, so that it goes first: it posts to the loop.
  Interrupts interrupts_;
};

std::string Listed(const std::vector<std::string>& names) {
  constexpr std::size_t kShown = 5;
  std::string list;
  for (std::size_t i = 0; i < names.size() && i < kShown; ++i) {
    list += (i > 0 ? ", " : "") + PlainLine(names[i]);
  }
  if (names.size() > kShown) list += " and " + std::to_string(names.size() - kShown) + " more";
  return list;
}

std::string NotBegun(const std::vector<DeckJob>& jobs, std::size_t from) {
  std::vector<std::string> names;
  for (std::size_t i = from; i < jobs.size(); ++i) names.push_back(ShownDeck(jobs[i].input));
  return Counted(static_cast<std::int64_t>(names.size()), "deck") + " not begun: " + Listed(names);
}

int Command::Run() {
  const Result<OutputPlan> plan = PlanOutputs(options_.decks, options_.output, options_.targetLang);
  if (!plan) {
    console_.Complain(plan.error().words);
    return kExitBadInput;
  }
  std::string error;
  backend_ = Backend::Make(options_, error);
  if (backend_ == nullptr) {
    console_.Complain(error);
    return kExitBadInput;
  }
  if (!plan->leftOut.empty()) {
    console_.Complain(Counted(static_cast<std::int64_t>(plan->leftOut.size()), "deck") +
                      " left out as translations of others: " + Listed(plan->leftOut));
  }

  const std::vector<DeckJob>& jobs = plan->jobs;
  int exitCode = kExitOk;
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    const bool last = i + 1 == jobs.size();
    interrupts_.SetLastWords("cancelled, nothing more was saved" +
                             (last ? std::string() : "; " + NotBegun(jobs, i + 1)));
    if (jobs.size() > 1) {
      place_ = "[" + std::to_string(i + 1) + "/" + std::to_string(jobs.size()) + "]";
    }
    if (options_.json) console_.Event(DeckJson(jobs[i], i + 1, jobs.size()));
    deckSince_ = Clock::now();
    DeckEnd end = TranslateDeck(jobs[i]);
    end.seconds = MsSince(deckSince_) / 1000.0;
    if (options_.json) console_.Event(ResultJson(jobs[i], end));
    exitCode = GraverExit(exitCode, end.exitCode);
    console_.ClearProgress();
    if (end.exitCode != kExitCancelled) continue;
    if (!last) console_.Complain(NotBegun(jobs, i + 1));
    break;
  }
  return exitCode;
}

DeckEnd Command::Refuse(const std::string& sentence, int exitCode) {
  console_.Complain(sentence);
  DeckEnd end;
  end.exitCode = exitCode;
  end.error = sentence;
  return end;
}

std::string Command::Open(Host& host, const DeckJob& job) {
  const std::string action = "open " + ShownDeck(job.input);
  std::string path = job.input;
  if (IsStandardInput(job.input)) {
    Result<std::string> spooled = SpoolStandardInput();
    if (!spooled) return CannotSentence(action, spooled.error().words);
    path = *spooled;
  }
  std::vector<std::string> warnings;
  const Result<void> opened = host.Open(path, warnings);
  if (!opened) return CannotSentence(action, PlainLine(opened.error().words));
  for (const std::string& warning : warnings) {
    console_.Complain(ShownDeck(job.input) + ": warning: " + PlainLine(warning));
  }
  return {};
}

// A deck that is named otherwise becomes what its new name says.
std::string Command::ChooseKind(Host& host, const DeckJob& job) {
  const std::string ending = EndingOf(job.output);
  if (options_.output.file.empty() || ending == EndingOf(job.input)) return {};
  const Result<std::string> type = ContentTypeUnder(ending, host.ContentType());
  if (!type) return CannotSentence("write " + ShownOutput(job.output), type.error().words);
  host.PutContentType(*type);
  return {};
}

DeckEnd Command::TranslateDeck(const DeckJob& job) {
  std::error_code failed;
  if (options_.output.skipExisting && std::filesystem::exists(job.output, failed)) {
    console_.Tell(ShownDeck(job.input) + ": left out, " + PlainLine(job.output) + " exists");
    return {};
  }
  Host host(*FindPersonality("powerpoint"));
  std::string refusal = Open(host, job);
  if (!refusal.empty()) return Refuse(refusal);
  std::optional<OutputPlace> place;
  if (job.output != kStandardStream) {
    Result<OutputPlace> checked = OutputPlace::Check(job, options_.output.force);
    if (!checked) return Refuse(checked.error().words);
    place = std::move(checked).value();
  }
  refusal = ChooseKind(host, job);
  if (!refusal.empty()) return Refuse(refusal);
  host.ExpectMeasuring();
  const std::string action = "translate " + ShownDeck(job.input);
  if (options_.slide > 0 && !host.ShowSlide(options_.slide)) {
    return Refuse(CannotSentence(action, "there is no slide " + std::to_string(options_.slide) +
                                             "; the deck has " +
                                             Counted(host.SlideCount(), "slide")));
  }
  const Result<void> selected = SelectIn(host, options_.select);
  if (!selected) return Refuse(CannotSentence(action, PlainLine(selected.error().words)));
  times_.openMs = MsSince(deckSince_);
  const DrivenRun run = DriveRun(host, job);
  return Finish(host, job, place ? &*place : nullptr, run);
}

DrivenRun Command::DriveRun(Host& host, const DeckJob& job) {
  DrivenRun run;
  bool ended = false;
  progress_ = {};
  progress_.deck = ShownDeck(job.input);
  progress_.place = place_;
  if (options_.select.slide > 0) progress_.slides = 1;  // where the selected shapes lie
  ShowProgress();

  RunDriver driver(host.application(), loop_);
  driver_ = &driver;
  RunRequest request;
  request.scope = ScopeOf(options_);
  request.targetLang = ToWide(options_.targetLang);
  request.sourceLang = ToWide(options_.sourceLang);
  request.targetFont = ToWide(options_.font);
  request.accessToken = backend_->accessToken();
  RunListener listener;
  listener.onEvent = [this](const PageCall& event) { OnEvent(event); };
  listener.onEnded = [&run, &ended](const DrivenRun& of) {
    run = of;
    ended = true;
  };
  driver.Start(request, std::move(listener));
  // Keeps the time left counting down while an answer takes long.
  loop_.SetTimer(kProgressTimer, kProgressMs, [this] { ShowProgress(); });
  loop_.RunUntil([&ended] { return ended; });
  loop_.KillTimer(kProgressTimer);
  driver_ = nullptr;
  return run;
}

void Command::OnEvent(const PageCall& event) {
  if (options_.json) {
    // The page's object with the event's name put in front of its fields.
    console_.Event(std::string("{\"event\":\"")
                       .append(ToUtf8(event.name))
                       .append("\",")
                       .append(ToUtf8(event.payload.substr(1))));
  }
  if (event.name == u"onProgress") {
    progress_.textsDone = NumberIn(event, u"wordIndex");
  } else if (event.name == u"onScanProgress") {
    if (JsonGetString(event.payload, u"phase") == u"slides") {
      progress_.slides = NumberIn(event, u"total");
    }
  } else if (event.name == u"onReady") {
    progress_.texts = NumberIn(event, u"total");
    translatingSince_ = Clock::now();
    // An interrupt before the worker started found nothing to cancel.
    if (interrupts_.Asked()) driver_->Cancel();
  } else {
    return;
  }
  ShowProgress();
}

void Command::ShowProgress() {
  progress_.seconds = MsSince(translatingSince_) / 1000.0;
  console_.Show(progress_);
}

std::string Command::Save(Host& host, const DeckJob& job, const OutputPlace* place) {
  const std::string action = "write " + ShownOutput(job.output);
  const auto held = interrupts_.HoldWhileSaving();
  if (place == nullptr) {
    const Result<std::string> bytes = host.SaveBytes();
    if (!bytes) return CannotSentence(action, PlainLine(bytes.error().words));
    if (WriteStandardOutput(*bytes)) return {};
    return CannotSentence(action, std::strerror(errno));
  }
  if (!host.Edited() && job.input == job.output) return {};
  if (!place->Unchanged()) return CannotSentence(action, "another program changed it meanwhile");
  const Result<void> saved = host.Save(job.output);
  if (!saved) return CannotSentence(action, PlainLine(saved.error().words));
  RememberOutput(job.output);
  return {};
}

DeckEnd Command::Finish(Host& host, const DeckJob& job, const OutputPlace* place,
                        const DrivenRun& run) {
  const std::string deck = ShownDeck(job.input);
  DeckEnd end;
  end.record = run.record;
  if (run.record.outcome == addin::RunOutcome::kFailed) {
    end =
        Refuse(CannotSentence("translate " + deck,
                              FailureSentence(run.errorCode, run.errorMessage, run.record.failure) +
                                  "; nothing was saved"),
               kExitRunFailed);
    end.record = run.record;
    return end;
  }
  if (run.record.outcome != addin::RunOutcome::kCompleted || interrupts_.Asked()) {
    return Refuse(deck + ": cancelled, nothing was saved", kExitCancelled);
  }

  const auto saving = Clock::now();
  const std::string refusal = Save(host, job, place);
  if (!refusal.empty()) return Refuse(refusal);
  times_.saveMs = MsSince(saving);

  end.saved = true;
  end.exitCode = ReachedTheDeck(run.record) ? kExitOk : kExitIncomplete;
  console_.Tell(OutcomeLine(job, run.record, MsSince(deckSince_) / 1000.0));
  for (const std::string& line : LostTextLines(run.record)) console_.Complain(deck + ": " + line);
  if (options_.listLeft) {
    for (const std::string& line : LeftTextLines(run.record))
      console_.TellAlways(deck + ": " + line);
  }
  if (options_.stats) {
    for (const std::string& line : StatsLines(run, times_)) {
      console_.TellAlways(deck + ": " + line);
    }
  }
  return end;
}

}  // namespace

int RunTranslate(const TranslateOptions& options) {
  return Command(options).Run();
}

}  // namespace quillmarch::host
