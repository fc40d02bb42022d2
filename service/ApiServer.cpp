#include "service/ApiServer.h"

#include <signal.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

#include "service/AnalyticsEvents.h"
#include "service/JsonText.h"
#include "service/RateLimit.h"
#include "service/TokenTable.h"
#include "service/TranslateRequest.h"
#include "service/http/HttpFront.h"
#include "service/http/WorkQueue.h"

namespace quillmarch::service {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr char kTranslatePath[] = "/v1/translate";
constexpr char kEventsPath[] = "/v1/analytics/events";
constexpr char kHealthPath[] = "/v1/health";
constexpr std::size_t kLoggedPathLimit = 200;

// Add-ins send a handful of events a day; nobody needs a token for it.
constexpr double kEventRequestsPerSecond = 20;
constexpr double kEventRequestsAtOnce = 100;

// An embedding program that never asks for its report must not collect one without end.
constexpr std::size_t kMostLeftKept = 100'000;

std::string UtcNow() {
  const auto now = std::chrono::time_point_cast<milliseconds>(std::chrono::system_clock::now());
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  char text[48];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900,
                utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec,
                static_cast<int>(now.time_since_epoch().count() % 1000));
  return text;
}

// A client chooses its path, so it may hold anything; a log line must stay one line.
std::string Printable(const std::string& path) {
  std::string out;
  for (const char c : path.substr(0, kLoggedPathLimit)) {
    out += c > ' ' && c < '\x7f' ? c : '?';
  }
  return out.empty() ? "-" : out;
}

class ApiServer : public Service, private HttpHandler {
 public:
  ApiServer(const ServiceOptions& options, std::uint16_t port, std::unique_ptr<Engine> engine)
      : options_(options), engine_(std::move(engine)), port_(port) {}
  ~ApiServer() override { ApiServer::Stop(); }

  Result<void> Run(int listeningSocket);
  std::uint16_t port() const override { return port_; }
  void Stop() override;
  void HurryStop() override;
  Result<void> Reload() override;
  ServiceReport TakeReport() override;

 private:
  Verdict OnHead(Exchange& exchange) override;
  void OnRequest(std::unique_ptr<Exchange> exchange) override;
  void OnAnswer(const Exchange& exchange, int status) override;
  Result<TlsContext> MakeTls() const;
  void Answer(std::unique_ptr<Exchange> exchange);
  HttpAnswer Translate(Exchange& exchange);
  HttpAnswer TakeEvents(Exchange& exchange);
  void Report(TranslateAnswer& answer);

  const ServiceOptions options_;
  const std::unique_ptr<Engine> engine_;
  const std::uint16_t port_;
  TokenTable tokens_;
  RateLimit events_{kEventRequestsPerSecond, kEventRequestsAtOnce};
  std::unique_ptr<HttpFront> front_;
  std::unique_ptr<WorkQueue> workers_;
  std::atomic<bool> stopping_{false};  // engines look at it
  std::mutex stopMutex_;
  std::thread loop_;
  std::mutex endMutex_;
  std::condition_variable endChanged_;
  bool ended_ = false;
  bool hurried_ = false;
  std::mutex logMutex_;
  std::mutex reportMutex_;
  ServiceReport report_;
};

HttpAnswer Refusal(Exchange& exchange, int status, const char* code, const std::string& message,
                   std::string headers = {}) {
  exchange.cause = code;
  return {status, ErrorJson(code, message), std::move(headers)};
}

Result<TlsContext> ApiServer::MakeTls() const {
  if (options_.certificateFile.empty() != options_.keyFile.empty()) {
    return Error{ErrorCode::kBadArgument, "TLS needs both a certificate file and a key file."};
  }
  if (options_.certificateFile.empty()) return TlsContext();
  return LoadTls(options_.certificateFile, options_.keyFile);
}

Result<void> ApiServer::Run(int listeningSocket) {
  HttpHandler& handler = *this;
  front_ = std::make_unique<HttpFront>(handler, listeningSocket, nullptr,
                                       FrontLimits{options_.requestLimitMs}, options_.threads == 0);
  if (!front_->ready()) {
    return Error{ErrorCode::kFailed, "Cannot start: no more files may be opened."};
  }
  if (Result<void> loaded = Reload(); !loaded) return loaded;
  // A client that is gone must not end the process.
  signal(SIGPIPE, SIG_IGN);
  if (options_.threads > 0) workers_ = std::make_unique<WorkQueue>(options_.threads);
  loop_ = std::thread([this] {
    front_->Run();
    const std::lock_guard lock(endMutex_);
    ended_ = true;
    endChanged_.notify_all();
  });
  return {};
}

Result<void> ApiServer::Reload() {
  Result<TlsContext> tls = MakeTls();
  if (!tls) return std::move(tls).error();
  if (Result<void> loaded = tokens_.Load(options_.tokenFile, options_.tokens); !loaded) {
    return loaded;
  }
  front_->UseTls(std::move(tls).value());
  return {};
}

void ApiServer::Stop() {
  const std::lock_guard lock(stopMutex_);
  if (!loop_.joinable()) return;
  front_->Close();
  {
    std::unique_lock wait(endMutex_);
    endChanged_.wait_for(wait, milliseconds(options_.stopGraceMs),
                         [this] { return ended_ || hurried_; });
  }
  stopping_ = true;
  front_->Hurry();
  loop_.join();
  workers_.reset();
}

void ApiServer::HurryStop() {
  const std::lock_guard lock(endMutex_);
  hurried_ = true;
  endChanged_.notify_all();
}

HttpHandler::Verdict ApiServer::OnHead(Exchange& exchange) {
  const RequestHead& head = exchange.head;
  const auto answer = [](HttpAnswer with) { return Verdict{true, std::move(with), 0, false}; };
  const bool takesPost = head.path == kTranslatePath || head.path == kEventsPath;
  const bool reading = head.method == "GET" || head.method == "HEAD";
  if (head.path == kHealthPath && reading) {
    std::string body = "{\"status\":\"ok\",\"engine\":";
    AppendJsonString(body, engine_->name());
    return answer({200, body + "}", ""});
  }
  if (!takesPost && head.path != kHealthPath) {
    return answer(Refusal(exchange, 404, "not_found", "There is nothing at this address."));
  }
  if (!takesPost || head.method != "POST") {
    return answer(Refusal(exchange, 405, "method_not_allowed",
                          "This address does not take the request's method.",
                          takesPost ? "Allow: POST\r\n" : "Allow: GET\r\n"));
  }
  if (head.contentType.starts_with("multipart/")) {
    return answer(Refusal(exchange, 400, "bad_request", "The body must be JSON."));
  }
  exchange.client = exchange.peer;
  if (head.path == kEventsPath) {
    if (!events_.Take(exchange.begin)) {
      return answer(Refusal(exchange, 429, "rate_limited", "Too many events; try again later.",
                            "Retry-After: 1\r\n"));
    }
    return {false, {}, std::min(options_.maxBodyBytes, kMaxEventsBytes), true};
  }
  if (!tokens_.Open()) {
    exchange.token = tokens_.Find(head.authorization);
    if (!exchange.token) {
      return answer(Refusal(exchange, 401, "unauthorized",
                            "The access token is missing or not valid.",
                            "WWW-Authenticate: Bearer\r\n"));
    }
    exchange.client = exchange.token->secret;
  }
  return {false, {}, options_.maxBodyBytes, false};
}

void ApiServer::OnRequest(std::unique_ptr<Exchange> exchange) {
  if (exchange->head.path == kEventsPath) {
    HttpAnswer answer = TakeEvents(*exchange);
    return front_->Send(std::move(exchange), std::move(answer));
  }
  if (!workers_) return Answer(std::move(exchange));
  // The queue copies its work, which an exchange can't be.
  const auto shared = std::make_shared<std::unique_ptr<Exchange>>(std::move(exchange));
  const std::string client = (*shared)->client;
  if (workers_->Add(client, [this, shared] { Answer(std::move(*shared)); })) return;
  HttpAnswer busy = Refusal(**shared, 503, "busy", "Too many requests are waiting already.",
                            "Retry-After: 1\r\n");
  front_->Send(std::move(*shared), std::move(busy));
}

void ApiServer::Answer(std::unique_ptr<Exchange> exchange) {
  HttpAnswer answer;
  try {
    answer = Translate(*exchange);
  } catch (const std::exception&) {
    answer = Refusal(*exchange, 500, "internal_error", "The service could not answer the request.");
  }
  front_->Send(std::move(exchange), std::move(answer));
}

HttpAnswer ApiServer::Translate(Exchange& exchange) {
  if (stopping_) return Refusal(exchange, 503, "shutting_down", "The service is stopping.");
  TranslateAnswer answer = AnswerTranslate(
      exchange.body,
      {*engine_, tokens_, exchange.token, exchange.client, options_.maxTexts, stopping_});
  exchange.texts = answer.texts;
  exchange.chars = answer.chars;
  exchange.cause = answer.cause;
  Report(answer);
  return {answer.status, std::move(answer.body), ""};
}

HttpAnswer ApiServer::TakeEvents(Exchange& exchange) {
  const EventsAnswer answer = AnswerEvents(exchange.body);
  if (answer.status != 200) exchange.cause = "bad_request";
  if (options_.eventLog) {
    const std::lock_guard lock(logMutex_);
    for (const std::string& line : answer.lines) options_.eventLog(UtcNow() + " " + line);
  }
  return {answer.status, answer.body, ""};
}

void ApiServer::Report(TranslateAnswer& answer) {
  if (!options_.keepReport) return;
  const std::lock_guard lock(reportMutex_);
  for (TranslateAnswer::Left& left : answer.left) {
    if (report_.left.size() == kMostLeftKept) break;
    report_.left.push_back({left.cause, std::move(left.language), std::move(left.text)});
  }
  if (!answer.failure) return;
  report_.failure = answer.failure;
  report_.failureMessage = answer.failureMessage;
}

ServiceReport ApiServer::TakeReport() {
  const std::lock_guard lock(reportMutex_);
  return std::exchange(report_, {});
}

void ApiServer::OnAnswer(const Exchange& exchange, int status) {
  // A connection on which nothing was said is no request.
  if (!options_.requestLog || (status == 408 && exchange.head.method.empty())) return;
  const auto ms = std::chrono::duration_cast<milliseconds>(Clock::now() - exchange.begin).count();
  const std::string line =
      UtcNow() + " " + Printable(exchange.head.method) + " " + Printable(exchange.head.path) + " " +
      std::to_string(status) + " token=" + (exchange.token ? exchange.token->name : "-") +
      " texts=" + std::to_string(exchange.texts) + " chars=" + std::to_string(exchange.chars) +
      " engine=" + engine_->name() + " ms=" + std::to_string(ms) +
      " cause=" + (exchange.cause.empty() ? "-" : exchange.cause);
  const std::lock_guard lock(logMutex_);
  options_.requestLog(line);
}

}  // namespace

Result<std::unique_ptr<Service>> ServeApi(const ServiceOptions& options, int listeningSocket,
                                          std::uint16_t port, std::unique_ptr<Engine> engine) {
  auto server = std::make_unique<ApiServer>(options, port, std::move(engine));
  if (Result<void> run = server->Run(listeningSocket); !run) return std::move(run).error();
  return std::unique_ptr<Service>(std::move(server));
}

}  // namespace quillmarch::service
