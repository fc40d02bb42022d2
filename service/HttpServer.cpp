#include "service/HttpServer.h"

#include <fcntl.h>
#include <httplib.h>
#include <poll.h>
#include <sched.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <mutex>
#include <thread>
#include <utility>

#include "service/AnalyticsEvents.h"
#include "service/ClientConnection.h"
#include "service/JsonText.h"
#include "service/TokenTable.h"
#include "service/TranslateRequest.h"

namespace quillmarch::service {

namespace {

using Clock = std::chrono::steady_clock;

constexpr char kTranslatePath[] = "/v1/translate";
constexpr char kEventsPath[] = "/v1/analytics/events";
constexpr char kHealthPath[] = "/v1/health";
constexpr std::size_t kLoggedPathLimit = 200;

// What the log wants to know of the request that this thread is answering.
struct RequestRecord {
  std::string method;
  std::string path;
  int status = 0;
  std::size_t texts = 0;
  std::size_t chars = 0;
  bool bodyUnread = false;
};

// The library hands its handlers no place for such a record; a request stays on one thread.
thread_local RequestRecord* currentRequest = nullptr;

// How long the next connection is waited for awake where one client asks again and again: going to
// sleep and being woken takes longer than the client does between two requests.
constexpr std::chrono::microseconds kAwakeTime{500};

// Answers where the connection was accepted: without the hand-over to another thread, which costs
// more than a short answer does.
class AnswerAtOnce : public httplib::TaskQueue {
 public:
  void enqueue(std::function<void()> answer) override { answer(); }
  void shutdown() override {}
};

// The library's view of a connection.
class ConnectionStream : public httplib::Stream {
 public:
  explicit ConnectionStream(ClientConnection& connection) : connection_(connection) {}
  bool is_readable() const override { return true; }
  bool is_writable() const override { return true; }
  ssize_t read(char* to, std::size_t size) override { return connection_.Read(to, size); }
  ssize_t write(const char* from, std::size_t size) override {
    connection_.Write(from, size);
    return static_cast<ssize_t>(size);
  }
  void get_remote_ip_and_port(std::string&, int&) const override {}
  void get_local_ip_and_port(std::string&, int&) const override {}
  socket_t socket() const override { return connection_.socket(); }

 private:
  ClientConnection& connection_;
};

bool ExpectsBody(const httplib::Request& request) {
  return request.has_header("Transfer-Encoding") ||
         (request.has_header("Content-Length") &&
          request.get_header_value("Content-Length") != "0");
}

void Answer(httplib::Response& response, int status, const std::string& body) {
  response.status = status;
  response.set_content(body, "application/json");
}

// The whole body. False when it is refused, which has been answered then.
bool ReadBody(const httplib::Request& request, httplib::Response& response,
              const httplib::ContentReader& read, std::size_t maxBytes, std::string& body) {
  // The library would take a form apart and write its fields nowhere.
  if (request.is_multipart_form_data()) {
    Answer(response, 400, ErrorJson("bad_request", "The body must be JSON."));
    return false;
  }
  const auto tooLarge = [&] {
    Answer(response, 413,
           ErrorJson("payload_too_large",
                     "A request may hold " + std::to_string(maxBytes) + " bytes at most."));
    return false;
  };
  const std::size_t announced = request.get_header_value<std::uint64_t>("Content-Length");
  if (announced > maxBytes) return tooLarge();

  body.reserve(announced);
  bool over = false;
  const bool complete = ExpectsBody(request) && read([&](const char* data, std::size_t size) {
                          over = body.size() + size > maxBytes;
                          if (!over) body.append(data, size);
                          return !over;
                        });
  if (over) return tooLarge();
  if (!complete) {
    Answer(response, 400, ErrorJson("bad_request", "The body is missing or incomplete."));
    return false;
  }
  currentRequest->bodyUnread = false;
  return true;
}

std::string UtcNow() {
  const auto now =
      std::chrono::time_point_cast<std::chrono::milliseconds>(std::chrono::system_clock::now());
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

class HttpServer : public Service, private httplib::Server {
 public:
  HttpServer(const ServiceOptions& options, int listeningSocket, std::uint16_t port,
             std::unique_ptr<Engine> engine)
      : options_(options), engine_(std::move(engine)), port_(port) {
    svr_sock_ = listeningSocket;
    stopFd_ = eventfd(0, EFD_CLOEXEC);
  }

  ~HttpServer() override {
    HttpServer::Stop();
    if (svr_sock_ != INVALID_SOCKET) close(svr_sock_);
    if (stopFd_ >= 0) close(stopFd_);
  }

  Result<void> Run();
  ServiceReport TakeReport() override;
  std::uint16_t port() const override { return port_; }
  void Stop() override;

 private:
  void SetRoutes();
  HandlerResponse Route(const httplib::Request& request, httplib::Response& response);
  void Translate(const httplib::Request& request, httplib::Response& response,
                 const httplib::ContentReader& read);
  void TakeEvents(const httplib::Request& request, httplib::Response& response,
                  const httplib::ContentReader& read);
  void Report(TranslateAnswer& answer);
  void Log(const RequestRecord& record, Clock::duration took);
  bool process_and_close_socket(socket_t socket) override;
  bool AnswerConnection(int socket);
  int NextConnection() const;

  ServiceOptions options_;
  std::unique_ptr<Engine> engine_;
  TokenTable tokens_;
  TlsContext tls_;
  std::uint16_t port_;
  int stopFd_ = -1;
  std::atomic<bool> stopping_{false};
  std::mutex stopMutex_;
  std::mutex logMutex_;
  std::mutex reportMutex_;
  ServiceReport report_;
  std::thread listen_;
};

Result<void> HttpServer::Run() {
  if (stopFd_ < 0) {
    return Error{ErrorCode::kFailed, "Cannot start: no more files may be opened."};
  }
  if (Result<void> loaded = tokens_.Load(options_.tokenFile, options_.tokens); !loaded) {
    return loaded;
  }
  if (options_.certificateFile.empty() != options_.keyFile.empty()) {
    return Error{ErrorCode::kInvalidArgument, "TLS needs both a certificate file and a key file."};
  }
  if (!options_.certificateFile.empty()) {
    Result<TlsContext> tls = LoadTls(options_.certificateFile, options_.keyFile);
    if (!tls) return std::move(tls).error();
    tls_ = std::move(tls).value();
  }
  SetRoutes();
  new_task_queue = [threads = options_.threads]() -> httplib::TaskQueue* {
    if (threads == 0) return std::make_unique<AnswerAtOnce>().release();
    return std::make_unique<httplib::ThreadPool>(threads).release();
  };
  listen_ = std::thread([this] { listen_after_bind(); });
  return {};
}

void HttpServer::Stop() {
  const std::lock_guard lock(stopMutex_);
  if (!listen_.joinable()) return;
  stopping_ = true;
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(stopFd_, &one, sizeof one);
  // Wakes the accept; the listening thread then closes the socket itself, after its last use.
  shutdown(svr_sock_, SHUT_RDWR);
  listen_.join();
  svr_sock_ = INVALID_SOCKET;
}

void HttpServer::SetRoutes() {
  // All paths but two are answered here: the library matches a route by a regular expression,
  // whose recursion a long path would drive too deep.
  set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
    return Route(request, response);
  });
  Post(kTranslatePath,
       [this](const httplib::Request& request, httplib::Response& response,
              const httplib::ContentReader& read) { Translate(request, response, read); });
  Post(kEventsPath,
       [this](const httplib::Request& request, httplib::Response& response,
              const httplib::ContentReader& read) { TakeEvents(request, response, read); });
  // The library's own refusals come without a body.
  set_error_handler([](const httplib::Request&, httplib::Response& response) {
    if (!response.body.empty()) return;
    const bool tooLarge = response.status == 413 || response.status == 414;
    Answer(response, response.status,
           response.status >= 500
               ? ErrorJson("internal_error", "The service could not answer the request.")
           : tooLarge ? ErrorJson("payload_too_large", "The request is too large.")
                      : ErrorJson("bad_request", "The request is no valid HTTP request."));
  });
  set_exception_handler([](const httplib::Request&, httplib::Response& response,
                           const std::exception_ptr&) {
    Answer(response, 500, ErrorJson("internal_error", "The service could not answer the request."));
  });
  set_logger([](const httplib::Request& request, const httplib::Response& response) {
    currentRequest->method = request.method;
    currentRequest->path = request.path;
    currentRequest->status = response.status;
  });
}

httplib::Server::HandlerResponse HttpServer::Route(const httplib::Request& request,
                                                   httplib::Response& response) {
  const bool takesPost = request.path == kTranslatePath || request.path == kEventsPath;
  if (takesPost && request.method == "POST") return HandlerResponse::Unhandled;
  currentRequest->bodyUnread = ExpectsBody(request);
  const bool reading = request.method == "GET" || request.method == "HEAD";
  if (request.path == kHealthPath && reading) {
    std::string body = "{\"status\":\"ok\",\"engine\":";
    AppendJsonString(body, engine_->name());
    Answer(response, 200, body + "}");
  } else if (takesPost || request.path == kHealthPath) {
    response.set_header("Allow", takesPost ? "POST" : "GET");
    Answer(response, 405,
           ErrorJson("method_not_allowed", "This address does not take the request's method."));
  } else {
    Answer(response, 404, ErrorJson("not_found", "There is nothing at this address."));
  }
  return HandlerResponse::Handled;
}

void HttpServer::Translate(const httplib::Request& request, httplib::Response& response,
                           const httplib::ContentReader& read) {
  currentRequest->bodyUnread = ExpectsBody(request);
  TokenHandle token;
  if (!tokens_.Open()) {
    token = tokens_.Find(request.get_header_value("Authorization"));
    if (!token) {
      response.set_header("WWW-Authenticate", "Bearer");
      return Answer(response, 401,
                    ErrorJson("unauthorized", "The access token is missing or not valid."));
    }
  }
  std::string body;
  if (!ReadBody(request, response, read, options_.maxBodyBytes, body)) return;
  TranslateAnswer answer = AnswerTranslate(
      body, {*engine_, tokens_, token, token ? token->secret : "", options_.maxTexts, stopping_});
  Report(answer);
  currentRequest->texts = answer.texts;
  currentRequest->chars = answer.chars;
  Answer(response, answer.status, answer.body);
}

void HttpServer::TakeEvents(const httplib::Request& request, httplib::Response& response,
                            const httplib::ContentReader& read) {
  currentRequest->bodyUnread = ExpectsBody(request);
  std::string body;
  const std::size_t most = std::min(options_.maxBodyBytes, kMaxEventsBytes);
  if (!ReadBody(request, response, read, most, body)) return;
  const EventsAnswer answer = AnswerEvents(body);
  Answer(response, answer.status, answer.body);
  if (!options_.eventLog) return;
  const std::lock_guard lock(logMutex_);
  for (const std::string& line : answer.lines) options_.eventLog(UtcNow() + " " + line);
}

bool HttpServer::process_and_close_socket(socket_t socket) {
  fcntl(socket, F_SETFL, fcntl(socket, F_GETFL) | O_NONBLOCK);
  fcntl(socket, F_SETFD, FD_CLOEXEC);
  bool sent = AnswerConnection(socket);
  if (options_.threads > 0) return sent;
  for (int next = NextConnection(); next >= 0; next = NextConnection()) {
    sent = AnswerConnection(next);
  }
  return sent;
}

// -1 when none came while awake; the library goes on accepting then.
int HttpServer::NextConnection() const {
  const Clock::time_point sleepsFrom = Clock::now() + kAwakeTime;
  pollfd listening{svr_sock_, POLLIN, 0};
  while (!stopping_) {
    if (poll(&listening, 1, 0) > 0) {
      return accept4(svr_sock_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    }
    if (Clock::now() >= sleepsFrom) break;
    // Where there is one processor, the client needs it.
    sched_yield();
  }
  return -1;
}

bool HttpServer::AnswerConnection(int socket) {
  const Clock::time_point start = Clock::now();
  ClientConnection connection(socket, tls_.get(), stopFd_);
  if (!connection.Handshake()) return false;
  RequestRecord record;
  currentRequest = &record;
  ConnectionStream stream(connection);
  bool closed = false;
  process_request(stream, true, closed, [](httplib::Request&) {});
  currentRequest = nullptr;
  const bool sent = connection.Flush();
  // Before the close, so that a client that saw the end of its answer finds its line.
  if (record.status != 0) Log(record, Clock::now() - start);
  connection.Close(record.bodyUnread || record.status == 400);
  return sent;
}

void HttpServer::Report(TranslateAnswer& answer) {
  if (!options_.keepReport) return;
  const std::lock_guard lock(reportMutex_);
  for (TranslateAnswer::Left& left : answer.left) {
    report_.left.push_back({left.cause, std::move(left.language), std::move(left.text)});
  }
  if (!answer.failure) return;
  report_.failure = answer.failure;
  report_.failureMessage = answer.failureMessage;
}

ServiceReport HttpServer::TakeReport() {
  const std::lock_guard lock(reportMutex_);
  return std::exchange(report_, {});
}

void HttpServer::Log(const RequestRecord& record, Clock::duration took) {
  if (!options_.requestLog) return;
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(took).count();
  const std::string line = UtcNow() + " " + Printable(record.method) + " " +
                           Printable(record.path) + " " + std::to_string(record.status) +
                           " texts=" + std::to_string(record.texts) +
                           " chars=" + std::to_string(record.chars) + " ms=" + std::to_string(ms);
  const std::lock_guard lock(logMutex_);
  options_.requestLog(line);
}

}  // namespace

Result<std::unique_ptr<Service>> ServeHttp(const ServiceOptions& options, int listeningSocket,
                                           std::uint16_t port, std::unique_ptr<Engine> engine) {
  auto server = std::make_unique<HttpServer>(options, listeningSocket, port, std::move(engine));
  if (Result<void> run = server->Run(); !run) return std::move(run).error();
  return std::unique_ptr<Service>(std::move(server));
}

}  // namespace quillmarch::service
