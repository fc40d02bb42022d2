#include "service/ScriptedModel.h"

#include <httplib.h>

#include <condition_variable>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>
#include <utility>

namespace quillmarch::service {

struct ScriptedModel::State {
  std::vector<ModelStep> steps;
  std::unique_ptr<httplib::Server> server;
  std::thread thread;
  int port = 0;
  bool tls = false;
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<ModelRequest> requests;
  bool down = false;
};

std::string ChatMessage(const std::string& content) {
  return nlohmann::json{
      {"choices", {{{"index", 0}, {"message", {{"role", "assistant"}, {"content", content}}}}}}}
      .dump();
}

ScriptedModel::ScriptedModel(std::vector<ModelStep> steps, const TestCertificate* tls)
    : state_(std::make_unique<State>()) {
  State& state = *state_;
  state.steps = std::move(steps);
  state.tls = tls != nullptr;
  if (tls != nullptr) {
    state.server =
        std::make_unique<httplib::SSLServer>(tls->certificateFile.c_str(), tls->keyFile.c_str());
  } else {
    state.server = std::make_unique<httplib::Server>();
  }
  state.server->set_keep_alive_max_count(1);
  state.server->Post(".*", [&state](const httplib::Request& request, httplib::Response& response) {
    std::unique_lock lock(state.mutex);
    const std::size_t step = state.requests.size();
    state.requests.push_back(
        {request.path, request.get_header_value("Authorization"), request.body});
    state.changed.notify_all();
    if (step >= state.steps.size()) {
      response.status = 599;
      return;
    }
    const ModelStep& now = state.steps[step];
    if (now.hang) state.changed.wait(lock, [&] { return state.down; });
    response.status = now.status;
    if (!now.retryAfter.empty()) response.set_header("Retry-After", now.retryAfter);
    if (!now.location.empty()) response.set_header("Location", now.location);
    response.set_content(now.body, "application/json");
  });
  state.port = state.server->bind_to_any_port("127.0.0.1");
  state.thread = std::thread([&state] { state.server->listen_after_bind(); });
  while (!state.server->is_running()) std::this_thread::yield();
}

ScriptedModel::~ScriptedModel() {
  {
    const std::lock_guard lock(state_->mutex);
    state_->down = true;
    state_->changed.notify_all();
  }
  state_->server->stop();
  state_->thread.join();
}

std::string ScriptedModel::url() const {
  return std::string(state_->tls ? "https" : "http") +
         "://127.0.0.1:" + std::to_string(state_->port);
}

std::vector<ModelRequest> ScriptedModel::requests() const {
  const std::lock_guard lock(state_->mutex);
  return state_->requests;
}

void ScriptedModel::WaitForRequests(std::size_t count) const {
  std::unique_lock lock(state_->mutex);
  state_->changed.wait(lock, [&] { return state_->requests.size() >= count; });
}

}  // namespace quillmarch::service
