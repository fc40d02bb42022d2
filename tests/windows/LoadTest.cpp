// How long a host waits for the add-in at its start.
#include <cstdio>

#include "windows/host/Fixture.h"

namespace quillmarch::addin {

namespace {

class LoadTest : public winhost::ModuleTest {};

double NowMs() {
  LARGE_INTEGER frequency;
  LARGE_INTEGER now;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&now);
  return 1000.0 * static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

}  // namespace

// In a process of its own, which has not loaded the module yet. Less than 50 ms are expected on a
// machine with nothing else to do.
TEST_F(LoadTest, LoadingConnectingAndGivingTheRibbonAreMeasured) {
  ASSERT_EQ(nullptr, GetModuleHandleW(L"PptAddin.dll"));
  const ComPtr<IDispatch> application = OpenSample();
  const double begin = NowMs();
  ASSERT_EQ(S_OK, host.Load());
  const double loaded = NowMs();
  ASSERT_EQ(S_OK, host.OnConnection(application.get()));
  const double connected = NowMs();
  ASSERT_EQ(S_OK, host.GetCustomUI());
  const double end = NowMs();
  std::printf("load %.1f ms, OnConnection %.1f ms, GetCustomUI %.1f ms, together %.1f ms\n",
              loaded - begin, connected - loaded, end - connected, end - begin);
}

}  // namespace quillmarch::addin
