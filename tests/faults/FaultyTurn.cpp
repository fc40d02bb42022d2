#include "faults/FaultyTurn.h"

#include <algorithm>

#include "foundation/text/JsonText.h"
#include "host/driver/HostedPane.h"
#include "host/driver/PanelPage.h"
#include "host/driver/RunRequest.h"
#include "run/write/ApplyText.h"
#include "support/ManualHostThread.h"
#include "support/PageAnswers.h"
#include "support/ScriptedWebView.h"

namespace quillmarch::host {

using namespace addin;
using namespace addin::test;

Turn RunOver(Host& host, test::FaultMode mode, std::int64_t failAt) {
  Turn turn;
  test::FaultyHost faults(mode, failAt);
  test::ManualHostThread thread;
  const auto page = std::make_shared<test::ScriptedWebView>();
  HostedPane hosted(faults.Wrap(host.application()), thread, page,
                    [&](const RunRecord& record) { turn.records.push_back(record); });
  page->onMessage = [&](const Wide& json) {
    for (const Wide& text : JsonGetStringArray(json, u"texts")) turn.sources.insert(text);
    const Wide answer = test::AnswerTo(json);
    if (!answer.empty()) thread.Post([&hosted, answer] { hosted.Say(answer); });
  };
  page->onScript = [&](const Wide& script) {
    PageCall call;
    if (ReadPageCall(script, call)) turn.events.push_back(ToUtf8(call.name));
  };
  hosted.Say(StartMessage({.targetFont = u"Arial", .viaPage = true}));
  do {
    thread.RunPosts();
    if (thread.outsideWork() == 0) {
      thread.Advance(CPptPane::kRunTickMs);
      thread.FireDueTimers();
    } else {
      thread.WaitForPostOrOutsideWork(1000);
    }
  } while (hosted.pane().run().runActive() || thread.HasPosts());
  turn.calls = faults.countedCalls();
  turn.failed = faults.failed();
  return turn;
}

std::vector<std::string> Wrongs(const Turn& turn, const Wide& deck, std::int64_t failAt) {
  std::vector<std::string> wrongs;
  const auto endings =
      std::count_if(turn.events.begin(), turn.events.end(), [](const std::string& event) {
        return event == "onComplete" || event == "onError" || event == "onCancelled";
      });
  if (endings != 1) wrongs.push_back("ended " + std::to_string(endings) + " times");
  if (turn.failed != (failAt != 0)) wrongs.emplace_back("the call was never made");
  if (turn.records.size() != 1) {
    wrongs.push_back(std::to_string(turn.records.size()) + " records");
    return wrongs;
  }
  std::set<Wide> named;
  for (const FailedUnit& unit : turn.records.front().failed) named.insert(unit.sourceText);
  for (const Wide& source : turn.sources) {
    const bool translated = deck.find(FlattenTranslation(u"T(" + source + u")")) != Wide::npos;
    const bool kept = deck.find(source) != Wide::npos;
    if (!translated && !named.contains(source)) wrongs.push_back("unnamed: " + ToUtf8(source));
    if (!translated && !kept) wrongs.push_back("lost: " + ToUtf8(source));
  }
  return wrongs;
}

}  // namespace quillmarch::host
