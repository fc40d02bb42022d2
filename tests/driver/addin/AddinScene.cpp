#include "driver/addin/AddinScene.h"

#include "foundation/identity/Analytics.h"
#include "foundation/text/JsonText.h"
#include "pane/HandOver.h"
#include "pane/LivePanes.h"
#include "pane/WebViewFailure.h"
#include "support/PageAnswers.h"

namespace quillmarch::host::test {

using namespace addin;
using namespace addin::test;

AddinScene::AddinScene() {
  ForgetAddinLoaded();
  ForgetFailureDialog();
  ForgetWebViewInitError();
  ProcessAccessToken().clear();
  HandOverBlock() = {};
  SetBeaconSender([this](const AnalyticsBeacon& beacon) { beacons.push_back(beacon.eventName); });
}

AddinScene::~AddinScene() {
  WaitForHungWorkers();
  HandOverBlock() = {};
  SetBeaconSender({});
}

FakeShapeRef AddinScene::AddDeck(const Wide& text) {
  const FakeShapeRef shape = TextShape(text);
  host.AddPresentation().AddSlide({shape});
  return shape;
}

void AddinScene::CloseWindow(std::size_t index) {
  host.windows.erase(host.windows.begin() + static_cast<std::ptrdiff_t>(index));
}

AddinHostParts AddinScene::Parts() {
  return {.thread = loop,
          .desktop = desktop,
          .input = hands,
          .fonts = fonts,
          .resources = resources,
          .observer = [this](const RunRecord& record) { records.push_back(record); },
          .onPage =
              [this](PlayedPage& page) {
                page.onLoaded = [this](const Wide& url) { loaded.push_back(ToUtf8(url)); };
                page.onMessage = [this, &page](const Wide& json) {
                  const bool batch = JsonGetString(json, u"action") == u"translateBatchRequest";
                  if (batch) ++batches;
                  if (!batch || panelTranslates) page.Say(AnswerTo(json));
                };
              },
          .answer = {},
          .bridgeWaitMs = kBridgeWaitMs};
}

bool AddinScene::OpenPage(AddinHost& addin, const Wide& button, const ObjectRef& window) {
  const std::size_t before = loaded.size();
  addin.Click(button, window);
  return Wait([&] { return loaded.size() > before; });
}

bool AddinScene::RunToTheFirstRequest(AddinHost& addin) {
  panelTranslates = false;
  if (!addin.Start() || !OpenPage(addin, u"btnTranslateFullDoc", Window(0))) return false;
  addin.SayStart(0, WholeDeck());
  return Wait([this] { return batches == 1; });
}

bool AddinScene::Run(AddinHost& addin, std::size_t index) {
  const std::size_t before = records.size();
  addin.SayStart(index, WholeDeck());
  return Wait([&] { return records.size() > before; });
}

void AddinScene::WaitForHungWorkers() {
  while (ReleaseEndedPanes() > 0) Pass(1);
}

std::string AddinScene::Leftovers() const {
  std::string left;
  if (host.liveObjects != 0) left += std::to_string(host.liveObjects) + " references to the host; ";
  if (!LivePanes().empty()) left += std::to_string(LivePanes().size()) + " panes; ";
  if (HandOverBlock().app || HandOverBlock().window) left += "the hand-over's references; ";
  return left;
}

RunRequest WholeDeck() {
  return {.targetLang = u"es", .viaPage = true};
}

}  // namespace quillmarch::host::test
