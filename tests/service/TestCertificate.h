// A certificate of our own for "localhost" and 127.0.0.1, its own authority, made anew each time.
#pragma once

#include <string>

#include "service/TemporaryFolder.h"

struct TestCertificate {
  std::string certificateFile;
  std::string keyFile;
};

TestCertificate MakeTestCertificate(const TemporaryFolder& folder, const std::string& name);
