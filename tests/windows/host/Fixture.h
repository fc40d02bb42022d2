// What the tests of the module share: COM, the module registered for the user, the process with the
// decks, the stand-in browser and the host's message loop.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "foundation/automation/Automation.h"
#include "foundation/system/LiveCounts.h"
#include "windows/ScriptedPage.h"
#include "windows/browser/StandInBrowser.h"
#include "windows/host/AddinHost.h"
#include "windows/host/Boxes.h"
#include "windows/host/Pump.h"
#include "windows/host/RemoteWorld.h"

namespace quillmarch::addin::winhost {

// Of the environment that the test program was started in; empty where it says nothing.
std::wstring Setting(const wchar_t* name);

// The module that is under test, loaded; never let go of by this.
HMODULE TestedModule();
std::wstring TestedModulePath();
// One of its exports.
template <typename Function>
Function Export(const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(TestedModule(), name)));
}

// What the module holds now, by LiveKind.
std::vector<long> ModuleCounts();
long CountOf(LiveKind kind);

standin::Control& Browser();

// The lines of the add-in's log, without time and thread.
std::vector<std::string> LogLines();
bool Logged(const std::string& line);

class ModuleTest : public ::testing::Test {
 protected:
  ModuleTest();
  ~ModuleTest() override;
  ModuleTest(const ModuleTest&) = delete;
  ModuleTest& operator=(const ModuleTest&) = delete;

  // Opens a deck of the samples in a host of its own; its application.
  ComPtr<IDispatch> OpenDeck(const std::wstring& path,
                             const std::wstring& personality = L"powerpoint");
  ComPtr<IDispatch> OpenSample();
  // Starts the add-in over an application, presses the button of the whole deck and has the page
  // loaded.
  void OpenPane(IDispatch* application);
  // What the page says to start a run of the whole deck over the module's own transport.
  static std::wstring StartMessage(const std::wstring& moreFields = {});
  // Waits until the page is asked for its terminology, and says that there is none.
  void AnswerTerminology();
  // Waits for the run's end: the page function that told it, "onComplete" or another.
  std::wstring WaitForEnd();
  // A member of the desk, with arguments in their natural order.
  Variant Ask(WideView member, std::vector<Variant> args = {});
  static ObjectRef Member(IDispatch* object, WideView name);

  // The last page that a pane has made.
  PageRecord& page() { return *pages.back(); }

  Boxes boxes;  // no box is left for a user who is not there
  RemoteWorld world;
  ComPtr<IDispatch> desk;
  AddinHost host;
  std::vector<std::shared_ptr<PageRecord>> pages;
  bool keptByAWorker = false;  // the test leaves a busy worker behind, with what it holds
};

}  // namespace quillmarch::addin::winhost
