// What the tests of the module share: COM, the module registered for the user, the process with the
// decks, the stand-in browser and the host's message loop.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "foundation/Automation.h"
#include "windows/ScriptedPage.h"
#include "windows/browser/StandInBrowser.h"
#include "windows/host/AddinHost.h"
#include "windows/host/Boxes.h"
#include "windows/host/Pump.h"
#include "windows/host/RemoteWorld.h"

namespace winhost {

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
};

}  // namespace winhost
