#include "host/cli/TranslateCommand.h"

#include <chrono>
#include <memory>
#include <string>

#include "foundation/text/JsonText.h"
#include "host/cli/Backend.h"
#include "host/cli/Console.h"
#include "host/cli/ExitCode.h"
#include "host/cli/Interrupts.h"
#include "host/cli/RunOutcomeText.h"
#include "host/cli/Sentences.h"
#include "host/cli/TerminalText.h"
#include "host/driver/RunDriver.h"
#include "host/model/Host.h"
#include "host/thread/HostCallGuard.h"
#include "host/thread/LoopThread.h"

namespace quillmarch::host {

namespace {

using Clock = std::chrono::steady_clock;

// Beyond the numbers that the windows of panes take for their own timers.
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
        console_({options.quiet, options.json}),
        loop_(options.paced ? ClockMode::kPaced : ClockMode::kUnpaced),
        guard_(loop_),
        interrupts_([this] {
          loop_.Post([this] {
            if (driver_ != nullptr) driver_->Cancel();
          });
        }) {}

  int Run();

 private:
  int TranslateDeck(const DeckJob& job, const std::string& shownName);
  RunReport DriveRun(Host& host, const std::string& shownName);
  int Finish(Host& host, const DeckJob& job, const RunReport& report, Clock::time_point start);
  void OnEvent(const PageCall& event);
  void ShowProgress();
  int Refuse(const DeckJob& job, const std::string& sentence);

  const TranslateOptions& options_;
  Console console_;
  LoopThread loop_;
  HostCallGuard guard_;
  std::unique_ptr<Backend> backend_;
  RunDriver* driver_ = nullptr;
  RunProgress progress_;
  Clock::time_point translatingSince_;
  DeckTimes times_;
  // Last, so that it goes first: it posts to the loop.
  Interrupts interrupts_;
};

int Command::Run() {
  std::string error;
  std::vector<DeckJob> jobs;
  if (!PlanOutputs(options_.decks, options_.output, options_.targetLang, jobs, error)) {
    console_.Complain(error);
    return kExitBadInput;
  }
  backend_ = Backend::Make(options_, error);
  if (backend_ == nullptr) {
    console_.Complain(error);
    return kExitBadInput;
  }

  int exitCode = kExitOk;
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    std::string shownName = PlainLine(jobs[i].input);
    if (jobs.size() > 1) {
      const std::string place = std::to_string(i + 1) + "/" + std::to_string(jobs.size());
      shownName.insert(0, std::string("[").append(place).append("] "));
    }
    exitCode = GraverExit(exitCode, TranslateDeck(jobs[i], shownName));
    console_.ClearProgress();
    if (exitCode == kExitCancelled) break;
  }
  if (!console_.OutputComplete()) exitCode = GraverExit(exitCode, kExitBadInput);
  return exitCode;
}

int Command::Refuse(const DeckJob& job, const std::string& sentence) {
  console_.Complain(PlainLine(job.input) + ": " + PlainLine(sentence));
  return kExitBadInput;
}

int Command::TranslateDeck(const DeckJob& job, const std::string& shownName) {
  const auto start = Clock::now();
  std::string error;
  Host host(*FindPersonality("powerpoint"));
  std::vector<std::string> warnings;
  const Result<void> opened = host.Open(job.input, warnings);
  if (!opened.ok()) return Refuse(job, opened.error().words);
  for (const std::string& warning : warnings) {
    console_.Complain(PlainLine(job.input) + ": warning: " + PlainLine(warning));
  }
  if (!OutputWritable(job, error)) return Refuse(job, error);
  host.ExpectMeasuring();
  if (options_.slide > 0 && !host.ShowSlide(options_.slide)) {
    return Refuse(job, std::string("there is no slide ")
                           .append(std::to_string(options_.slide))
                           .append("; the deck has ")
                           .append(Counted(host.SlideCount(), "slide")));
  }
  const Result<void> selected = SelectIn(host, options_.select);
  if (!selected) return Refuse(job, selected.error().words);
  times_.openMs = MsSince(start);
  const RunReport report = DriveRun(host, shownName);
  return Finish(host, job, report, start);
}

RunReport Command::DriveRun(Host& host, const std::string& shownName) {
  RunReport report;
  bool ended = false;
  progress_ = {};
  progress_.deck = shownName;
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
  listener.onEnded = [&report, &ended](const RunReport& of) {
    report = of;
    ended = true;
  };
  driver.Start(request, std::move(listener));
  // Keeps the time left running while an answer takes long.
  loop_.SetTimer(kProgressTimer, kProgressMs, [this] { ShowProgress(); });
  loop_.RunUntil([&ended] { return ended; });
  loop_.KillTimer(kProgressTimer);
  driver_ = nullptr;
  return report;
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
    // An interrupt that came before there was a worker found nothing to cancel.
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

int Command::Finish(Host& host, const DeckJob& job, const RunReport& report,
                    Clock::time_point start) {
  const addin::RunRecord& record = report.record;
  const std::string deck = PlainLine(job.input);
  if (record.outcome == addin::RunOutcome::kFailed) {
    console_.Complain(deck + ": " + FailureSentence(report.errorCode, report.errorMessage) +
                      "; nothing was saved");
    return kExitRunFailed;
  }
  if (record.outcome != addin::RunOutcome::kCompleted || interrupts_.Asked()) {
    console_.Complain(deck + ": cancelled, nothing was saved");
    return kExitCancelled;
  }

  const auto saving = Clock::now();
  if (host.Edited() || job.input != job.output) {
    const auto held = interrupts_.HoldWhileSaving();
    const Result<void> saved = host.Save(job.output);
    if (!saved.ok()) return Refuse(job, saved.error().words);
  }
  times_.saveMs = MsSince(saving);

  console_.Tell(OutcomeLine(job, record, MsSince(start) / 1000.0));
  for (const std::string& line : LostTextLines(record)) console_.Complain(deck + ": " + line);
  if (options_.stats) {
    for (const std::string& line : StatsLines(report, times_)) {
      console_.TellAlways(deck + ": " + line);
    }
  }
  return ReachedTheDeck(record) ? kExitOk : kExitIncomplete;
}

}  // namespace

int RunTranslate(const TranslateOptions& options) {
  return Command(options).Run();
}

}  // namespace quillmarch::host
