// Replays a recorded conversation between a page and the add-in. One JSON object a line:
//   {"page": ...}    a message of the page, as its text
//   {"script": ...}  what the add-in runs in the page next
//   {"message": ...} what it posts to the page next
//   {"worker": "ended"} waits for the run's worker
//   {"ticks": "3"}   the clock moves on, by so many ticks of a run
//   {"select": ...}  the user selects something, as the test's host understands it
// What the add-in says must be the recorded text, byte for byte, save the numbers of the runs,
// which never come again: the recorded number of the first run stands for that of the first run,
// and so on.
//
// With QUILLMARCH_RECORD_TO naming a file, what the add-in says is not compared but recorded there,
// between the lines that are kept.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "support/ManualHostThread.h"
#include "support/ScriptedWebView.h"

namespace quillmarch::addin::test {

class ConversationReplay {
 public:
  // `say` hands the pane a message of the page; `tickMs` is one tick of a run.
  ConversationReplay(ManualHostThread& thread, ScriptedWebView& page,
                     std::function<void(const Wide&)> say, std::uint32_t tickMs);

  std::function<void(const std::string&)> select;

  // Fails the test at whatever differs, and when more was said than is recorded.
  void Replay(const std::string& path);
  // How many scripts and messages of the add-in were compared.
  std::size_t heard() const { return heard_; }

 private:
  void Line(const std::string& line);
  void Act(const Wide& json);
  void Expect(bool script, const std::string& recorded);
  void RecordWhatIsSaid();
  void RunPosts();
  bool RunUntil(const std::function<bool()>& done);
  std::string WithActualIds(std::string text) const;

  ManualHostThread& thread_;
  ScriptedWebView& page_;
  std::function<void(const Wide&)> say_;
  std::uint32_t tickMs_;
  std::size_t heard_ = 0;
  std::map<std::string, std::string> ids_;  // by the recorded number
  std::string record_;
  bool recording_ = false;
};

}  // namespace quillmarch::addin::test
