// Another process of this test program that does what ActInRole says, and ends.
#pragma once

#include <cstdint>
#include <string>

namespace quillmarch::addin {

class WriterProcess {
 public:
  explicit WriterProcess(const std::string& role);
  ~WriterProcess();  // waits for its end
  WriterProcess(const WriterProcess&) = delete;
  WriterProcess& operator=(const WriterProcess&) = delete;

  bool Runs();
  // Whether it did something and ended as it should; to be asked when it runs no more.
  bool Succeeded() const { return succeeded_; }

 private:
  std::intptr_t process_ = 0;  // 0 when there is none any more
  bool succeeded_ = false;
};

// Called in the other process, which succeeds when this returns true.
bool ActInRole(const std::string& role);

}  // namespace quillmarch::addin
