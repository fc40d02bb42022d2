// A certificate of our own for "localhost" and 127.0.0.1, its own authority, made anew each time.
#pragma once

#include <string>

#include "support/TempFolder.h"

namespace quillmarch::service {

struct TestCertificate {
  std::string certificateFile;
  std::string keyFile;
};

TestCertificate MakeTestCertificate(const TempFolder& folder, const std::string& name);

}  // namespace quillmarch::service
