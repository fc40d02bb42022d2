#include "foundation/settings/WriterProcess.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <memory>

namespace quillmarch::addin {

namespace {

constexpr const char* kRole = "QUILLMARCH_TEST_ROLE";

// In the other process, which runs the same program, the role takes the place of the tests.
class OtherProcess : public ::testing::Environment {
 public:
  void SetUp() override {
    if (const char* const role = std::getenv(kRole)) std::_Exit(ActInRole(role) ? 0 : 1);
  }
};

// The framework owns what is handed over.
const auto* const kOtherProcess =
    ::testing::AddGlobalTestEnvironment(std::make_unique<OtherProcess>().release());

}  // namespace

WriterProcess::WriterProcess(const std::string& role) {
  char program[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, program, MAX_PATH);
  std::string line = std::string("\"") + program + "\"";
  SetEnvironmentVariableA(kRole, role.c_str());
  STARTUPINFOA start = {};
  start.cb = sizeof(start);
  PROCESS_INFORMATION made = {};
  // Without a console, as what it says is nobody's.
  if (CreateProcessA(program, line.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr,
                     nullptr, &start, &made)) {
    CloseHandle(made.hThread);
    process_ = reinterpret_cast<std::intptr_t>(made.hProcess);
  }
  SetEnvironmentVariableA(kRole, nullptr);
}

WriterProcess::~WriterProcess() {
  if (process_ == 0) return;
  const auto handle = reinterpret_cast<HANDLE>(process_);
  WaitForSingleObject(handle, INFINITE);
  CloseHandle(handle);
}

bool WriterProcess::Runs() {
  if (process_ == 0) return false;
  const auto handle = reinterpret_cast<HANDLE>(process_);
  if (WaitForSingleObject(handle, 0) == WAIT_TIMEOUT) return true;
  DWORD code = 1;
  GetExitCodeProcess(handle, &code);
  succeeded_ = code == 0;
  CloseHandle(handle);
  process_ = 0;
  return false;
}

}  // namespace quillmarch::addin
