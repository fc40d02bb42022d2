// A model's server that plays a script: one step for each request, in order.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "service/TestCertificate.h"

namespace quillmarch::service {

struct ModelStep {
  int status = 200;
  std::string body;
  std::string retryAfter = {};
  bool hang = false;  // answers only when the server goes down
  std::string location = {};
};

struct ModelRequest {
  std::string path;
  std::string authorization;
  std::string body;
};

// The body of an answer that says `content`.
std::string ChatMessage(const std::string& content);

class ScriptedModel {
 public:
  explicit ScriptedModel(std::vector<ModelStep> steps, const TestCertificate* tls = nullptr);
  ~ScriptedModel();
  std::string url() const;
  std::vector<ModelRequest> requests() const;
  void WaitForRequests(std::size_t count) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace quillmarch::service
