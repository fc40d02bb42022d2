#include "service/http/HttpFront.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "service/JsonText.h"

namespace quillmarch::service {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kHeadLimit{10'000};
constexpr milliseconds kNoProgressLimit{10'000};  // while an answer leaves
constexpr milliseconds kAnswerLimit{60'000};      // until its last byte has left
constexpr milliseconds kHurryLimit{700};          // the same when the service ends
constexpr milliseconds kDrainLimit{1'000};
constexpr int kCheckMs = 100;
// A client that asks again and again does so sooner than this thread falls asleep and wakes.
constexpr std::chrono::microseconds kAwakeTime{500};

// What bodies and answers under way may take together, and those of one client. A request that
// needs more than is left waits before its body is read.
constexpr std::size_t kMostBytes = 32u << 20;
constexpr std::size_t kMostBytesOfAClient = 16u << 20;
constexpr std::size_t kMostFreeBytes = 4u << 20;

constexpr std::size_t kAcceptsAtOnce = 64;
constexpr std::size_t kReadsAtOnce = 16;
constexpr int kEventsAtOnce = 256;

constexpr std::uint64_t kListenerId = 0;
constexpr std::uint64_t kWakeId = 1;
constexpr std::uint64_t kFirstId = 2;

const char* Reason(int status) {
  switch (status) {
    case 200:
      return "OK";
    case 400:
      return "Bad Request";
    case 401:
      return "Unauthorized";
    case 402:
      return "Payment Required";
    case 404:
      return "Not Found";
    case 405:
      return "Method Not Allowed";
    case 408:
      return "Request Timeout";
    case 413:
      return "Content Too Large";
    case 414:
      return "URI Too Long";
    case 429:
      return "Too Many Requests";
    case 431:
      return "Request Header Fields Too Large";
    case 500:
      return "Internal Server Error";
    case 501:
      return "Not Implemented";
    case 502:
      return "Bad Gateway";
    case 503:
      return "Service Unavailable";
    case 504:
      return "Gateway Timeout";
    default:
      return "Status";
  }
}

std::string PeerOf(const sockaddr_storage& address) {
  char text[INET6_ADDRSTRLEN] = "";
  if (address.ss_family == AF_INET) {
    inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in&>(address).sin_addr, text, sizeof text);
  } else if (address.ss_family == AF_INET6) {
    inet_ntop(AF_INET6, &reinterpret_cast<const sockaddr_in6&>(address).sin6_addr, text,
              sizeof text);
  }
  return text;
}

}  // namespace

HttpFront::HttpFront(HttpHandler& handler, int listeningSocket, TlsContext tls, FrontLimits limits,
                     bool expectAnother)
    : handler_(handler),
      listener_(listeningSocket),
      limits_(limits),
      expectAnother_(expectAnother),
      poll_(epoll_create1(EPOLL_CLOEXEC)),
      wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      nextId_(kFirstId),
      tls_(std::move(tls)) {
  fcntl(listener_, F_SETFL, fcntl(listener_, F_GETFL) | O_NONBLOCK);
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.u64 = kListenerId;
  epoll_ctl(poll_, EPOLL_CTL_ADD, listener_, &event);
  event.data.u64 = kWakeId;
  epoll_ctl(poll_, EPOLL_CTL_ADD, wake_, &event);
}

HttpFront::~HttpFront() {
  connections_.clear();
  if (listener_ >= 0) close(listener_);
  if (wake_ >= 0) close(wake_);
  if (poll_ >= 0) close(poll_);
}

void HttpFront::Wake() const {
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(wake_, &one, sizeof one);
}

void HttpFront::Close() {
  closing_ = true;
  Wake();
}

void HttpFront::Hurry() {
  hurrying_ = true;
  Wake();
}

void HttpFront::UseTls(TlsContext tls) {
  const std::lock_guard lock(mutex_);
  tls_ = std::move(tls);
}

void HttpFront::Send(std::unique_ptr<Exchange> exchange, HttpAnswer answer) {
  {
    const std::lock_guard lock(mutex_);
    answered_.push_back({std::move(exchange), std::move(answer)});
  }
  Wake();
}

int HttpFront::WaitTime() const {
  if (!again_.empty()) return 0;
  if (expectAnother_ && Clock::now() - lastActive_ < kAwakeTime) return 0;
  return kCheckMs;
}

void HttpFront::Run() {
  std::vector<epoll_event> events(kEventsAtOnce);
  Clock::time_point checked = Clock::now();
  for (;;) {
    const int count = epoll_wait(poll_, events.data(), kEventsAtOnce, WaitTime());
    const Clock::time_point now = Clock::now();
    if (count > 0) lastActive_ = now;
    // Where there is one processor, the client needs it.
    if (count == 0 && expectAnother_) sched_yield();
    for (const std::uint64_t id : std::exchange(again_, {})) Pump(id);
    for (int i = 0; i < count; ++i) {
      const std::uint64_t id = events[static_cast<std::size_t>(i)].data.u64;
      if (id == kListenerId) {
        Accept();
      } else if (id == kWakeId) {
        std::uint64_t ignored = 0;
        [[maybe_unused]] const ssize_t got = read(wake_, &ignored, sizeof ignored);
      } else {
        Pump(id);
      }
    }
    TakeAnswers();
    if (now - checked >= milliseconds(kCheckMs) || closing_) {
      checked = now;
      CheckDeadlines(now);
    }
    if (closing_ && !closed_) DropWhatIsNotWhole();
    if (closed_ && connections_.empty()) return;
  }
}

void HttpFront::Accept() {
  for (std::size_t i = 0; i < kAcceptsAtOnce && !closing_; ++i) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    const int socket = accept4(listener_, reinterpret_cast<sockaddr*>(&address), &size,
                               SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (socket < 0 && (errno == EMFILE || errno == ENFILE)) {
      MakeRoom();
      return;
    }
    if (socket < 0) return;
    if (connections_.size() >= limits_.connections) MakeRoom();
    Add(socket, PeerOf(address));
  }
}

// A crowd of connections that say nothing gives way to those that may say something.
void HttpFront::MakeRoom() {
  for (const Phase phase : {Phase::kDraining, Phase::kHandshake, Phase::kHead, Phase::kWaiting,
                            Phase::kBody, Phase::kWriting}) {
    for (const auto& [id, connection] : connections_) {
      if (connection->phase != phase) continue;
      Drop(id);
      return;
    }
  }
}

void HttpFront::Add(int socket, const std::string& peer) {
  TlsContext tls;
  {
    const std::lock_guard lock(mutex_);
    tls = tls_;
  }
  const std::uint64_t id = nextId_++;
  auto connection = std::make_unique<Connection>(socket, tls.get());
  connection->tls = std::move(tls);
  connection->exchange = std::make_unique<Exchange>();
  connection->exchange->id = id;
  connection->exchange->peer = peer;
  const Clock::time_point now = connection->exchange->begin = Clock::now();
  connection->wholeDeadline = now + milliseconds(limits_.requestMs);
  connection->deadline = std::min(connection->wholeDeadline, now + kHeadLimit);
  connections_[id] = std::move(connection);
  Pump(id);
}

void HttpFront::Watch(std::uint64_t id, Connection& connection, std::uint32_t events) {
  if (connection.watched == events && events != 0) return;
  epoll_event event{};
  event.events = events;
  event.data.u64 = id;
  const bool known = connection.watched != 0;
  const int operation = events == 0 ? EPOLL_CTL_DEL : known ? EPOLL_CTL_MOD : EPOLL_CTL_ADD;
  if (events != 0 || known) epoll_ctl(poll_, operation, connection.io.socket(), &event);
  connection.watched = events;
}

void HttpFront::Drop(std::uint64_t id) {
  const auto found = connections_.find(id);
  GiveBack(*found->second);
  connections_.erase(found);  // closing the socket takes it out of the poll
  AdmitWaiting();
}

void HttpFront::Pump(std::uint64_t id) {
  const auto found = connections_.find(id);
  if (found == connections_.end()) return;
  Connection& connection = *found->second;

  if (connection.phase == Phase::kHandshake) {
    switch (connection.io.Handshake()) {
      case ClientSocket::Progress::kDone:
        connection.phase = Phase::kHead;
        if (connection.io.spokePlainToTls()) {
          connection.unread = true;
          Refuse(connection, 400, "tls_required", "This port speaks TLS: use https://.");
        }
        break;
      case ClientSocket::Progress::kWantsToRead:
        return Watch(id, connection, EPOLLIN);
      case ClientSocket::Progress::kWantsToWrite:
        return Watch(id, connection, EPOLLOUT);
      default:
        return Drop(id);
    }
  }

  std::size_t reads = 0;
  while (connection.phase == Phase::kHead || connection.phase == Phase::kBody) {
    if (connection.phase == Phase::kHead ? PumpHead(connection) : PumpBody(connection)) continue;
    if (++reads > kReadsAtOnce) {
      again_.push_back(id);
      return Watch(id, connection, EPOLLIN);
    }
    const ClientSocket::Progress progress = connection.io.Read(connection.in);
    if (progress == ClientSocket::Progress::kDone) continue;
    if (progress == ClientSocket::Progress::kWantsToRead) return Watch(id, connection, EPOLLIN);
    if (progress == ClientSocket::Progress::kWantsToWrite) return Watch(id, connection, EPOLLOUT);
    const bool saidNothing = connection.phase == Phase::kHead && connection.in.empty();
    if (progress == ClientSocket::Progress::kFailed || saidNothing) return Drop(id);
    Refuse(connection, 400, "bad_request", "The request ends too soon.");
  }
  if (connection.phase == Phase::kWaiting || connection.phase == Phase::kAnswering) {
    // Nothing is read meanwhile; a client that is gone is noticed when it is answered.
    return Watch(id, connection, 0);
  }
  if (connection.phase == Phase::kWriting) return PumpWriting(id, connection);
  if (connection.phase == Phase::kDraining) return Drain(id, connection);
}

// True when the phase has changed.
bool HttpFront::PumpHead(Connection& connection) {
  const std::size_t end = HeadEnd(connection.in, connection.searched);
  connection.searched = connection.in.size();
  if (end == 0 ? connection.in.size() > kLongestHead : end > kLongestHead) {
    connection.unread = true;
    Refuse(connection, 431, "payload_too_large", "The request's head is too large.");
    return true;
  }
  if (end == 0) return false;
  Result<RequestHead> head = ReadHead(std::string_view(connection.in).substr(0, end));
  connection.in.erase(0, end);
  if (!head) {
    connection.unread = true;
    const ErrorCode code = head.error().code;
    Refuse(connection,
           code == ErrorCode::kTooLarge      ? 414
           : code == ErrorCode::kUnsupported ? 501
                                             : 400,
           code == ErrorCode::kTooLarge ? "payload_too_large" : "bad_request", head.error().words);
    return true;
  }
  connection.exchange->head = std::move(head).value();
  const RequestHead& request = connection.exchange->head;
  connection.unread = request.ExpectsBody();
  const HttpHandler::Verdict verdict = handler_.OnHead(*connection.exchange);
  if (verdict.answered) {
    Reply(connection, verdict.answer);
    return true;
  }
  connection.body = BodyReader(request, verdict.mostBody);
  if (connection.body.state() == BodyReader::State::kTooLarge) {
    RefuseBody(connection);
    return true;
  }
  connection.free = verdict.free;
  const std::size_t needed = request.chunked
                                 ? verdict.mostBody
                                 : static_cast<std::size_t>(request.contentLength.value_or(0));
  connection.deadline = connection.wholeDeadline;
  if (Reserve(connection, needed)) {
    BeginBody(connection);
  } else if (connection.free) {
    Refuse(connection, 503, "busy", "Too much is being sent at once; try again later.");
  } else {
    connection.reserved = needed;
    connection.phase = Phase::kWaiting;
    waiting_.push_back(connection.exchange->id);
  }
  return true;
}

bool HttpFront::Reserve(Connection& connection, std::size_t bytes) {
  std::size_t& all = connection.free ? freeBytes_ : bytes_;
  const auto found = bytesOf_.find(connection.exchange->client);
  const std::size_t own = found == bytesOf_.end() ? 0 : found->second;
  const std::size_t most = connection.free ? kMostFreeBytes : kMostBytes;
  // Whoever has nothing yet is served even when a single request may be larger than the bounds.
  const bool fits = (all == 0 || all + bytes <= most) &&
                    (connection.free || own == 0 || own + bytes <= kMostBytesOfAClient);
  if (!fits) return false;
  connection.reserved = bytes;
  if (bytes == 0) return true;
  all += bytes;
  bytesOf_[connection.exchange->client] += bytes;
  return true;
}

void HttpFront::GiveBack(Connection& connection) {
  if (connection.phase == Phase::kWaiting) {
    connection.reserved = 0;
    std::erase(waiting_, connection.exchange->id);
  }
  if (connection.reserved == 0 || !connection.exchange) return;
  (connection.free ? freeBytes_ : bytes_) -= connection.reserved;
  const auto own = bytesOf_.find(connection.exchange->client);
  own->second -= connection.reserved;
  if (own->second == 0) bytesOf_.erase(own);
  connection.reserved = 0;
}

// In their order, save that a client that has its share does not hold up the others.
void HttpFront::AdmitWaiting() {
  for (std::size_t i = 0; i < waiting_.size();) {
    const std::uint64_t id = waiting_[i];
    Connection& connection = *connections_.at(id);
    if (Reserve(connection, connection.reserved)) {
      waiting_.erase(waiting_.begin() + static_cast<std::ptrdiff_t>(i));
      BeginBody(connection);
      again_.push_back(id);
    } else {
      ++i;
    }
  }
}

void HttpFront::BeginBody(Connection& connection) {
  connection.phase = Phase::kBody;
  if (connection.exchange->head.expectsContinue && connection.in.empty() && connection.unread) {
    // So few bytes fit into any socket that was not written to yet.
    std::size_t sent = 0;
    connection.io.Write("HTTP/1.1 100 Continue\r\n\r\n", sent);
  }
}

// True when the phase has changed.
bool HttpFront::PumpBody(Connection& connection) {
  switch (connection.body.Take(connection.in)) {
    case BodyReader::State::kReading:
      return false;
    case BodyReader::State::kDone:
      connection.unread = false;
      Hand(connection);
      return true;
    case BodyReader::State::kTooLarge:
      RefuseBody(connection);
      return true;
    case BodyReader::State::kBad:
      break;
  }
  Refuse(connection, 400, "bad_request", "The body's chunks are malformed.");
  return true;
}

void HttpFront::Hand(Connection& connection) {
  connection.phase = Phase::kAnswering;
  connection.deadline = Clock::time_point::max();
  connection.exchange->body = connection.body.TakeBody();
  auto handed = std::make_unique<Exchange>(std::move(*connection.exchange));
  // What the connection itself still needs.
  connection.exchange->id = handed->id;
  connection.exchange->client = handed->client;
  handler_.OnRequest(std::move(handed));
}

void HttpFront::TakeAnswers() {
  std::vector<Answered> answered;
  {
    const std::lock_guard lock(mutex_);
    answered.swap(answered_);
  }
  for (Answered& one : answered) {
    const std::uint64_t id = one.exchange->id;
    const auto found = connections_.find(id);
    if (found == connections_.end()) {
      handler_.OnAnswer(*one.exchange, one.answer.status);
      continue;
    }
    Connection& connection = *found->second;
    one.exchange->body = {};
    connection.exchange = std::move(one.exchange);
    // The answer takes the body's place in the account.
    GiveBack(connection);
    const std::size_t size = one.answer.body.size();
    (connection.free ? freeBytes_ : bytes_) += size;
    bytesOf_[connection.exchange->client] += size;
    connection.reserved = size;
    Reply(connection, one.answer);
    PumpWriting(id, connection);
    AdmitWaiting();
  }
}

void HttpFront::Refuse(Connection& connection, int status, const char* code,
                       const std::string& message) {
  connection.exchange->cause = code;
  Reply(connection, {status, ErrorJson(code, message), ""});
}

void HttpFront::RefuseBody(Connection& connection) {
  Refuse(connection, 413, "payload_too_large",
         "A request may hold at most " + std::to_string(connection.body.most()) + " bytes.");
}

void HttpFront::Reply(Connection& connection, const HttpAnswer& answer) {
  // Before it leaves, so that a client that has its answer finds its line in the log.
  handler_.OnAnswer(*connection.exchange, answer.status);
  connection.out = "HTTP/1.1 " + std::to_string(answer.status) + " " + Reason(answer.status) +
                   "\r\nContent-Type: application/json\r\nContent-Length: " +
                   std::to_string(answer.body.size()) + "\r\nConnection: close\r\n" +
                   answer.headers + "\r\n";
  if (connection.exchange->head.method != "HEAD") connection.out += answer.body;
  connection.phase = Phase::kWriting;
  const Clock::time_point now = Clock::now();
  connection.wholeDeadline = now + (hurrying_ ? kHurryLimit : kAnswerLimit);
  connection.deadline = std::min(connection.wholeDeadline, now + kNoProgressLimit);
}

void HttpFront::PumpWriting(std::uint64_t id, Connection& connection) {
  const std::size_t before = connection.sent;
  const ClientSocket::Progress progress = connection.io.Write(connection.out, connection.sent);
  if (connection.sent > before) {
    connection.deadline = std::min(connection.wholeDeadline, Clock::now() + kNoProgressLimit);
  }
  if (progress == ClientSocket::Progress::kWantsToWrite) return Watch(id, connection, EPOLLOUT);
  if (progress == ClientSocket::Progress::kWantsToRead) return Watch(id, connection, EPOLLIN);
  if (progress != ClientSocket::Progress::kDone) return Drop(id);
  connection.out = {};
  connection.io.FinishSending();
  if (!connection.unread || closing_) return Drop(id);
  // Closing over bytes that still come in would wipe out the answer on its way.
  connection.phase = Phase::kDraining;
  connection.deadline = Clock::now() + kDrainLimit;
  GiveBack(connection);
  Drain(id, connection);
}

void HttpFront::Drain(std::uint64_t id, Connection& connection) {
  char dropped[16 * 1024];
  for (std::size_t i = 0; i < kReadsAtOnce; ++i) {
    const ssize_t got = recv(connection.io.socket(), dropped, sizeof dropped, 0);
    if (got > 0) continue;
    if (got < 0 && (errno == EAGAIN || errno == EINTR)) break;
    return Drop(id);
  }
  Watch(id, connection, EPOLLIN);
}

void HttpFront::CheckDeadlines(Clock::time_point now) {
  std::vector<std::uint64_t> late;
  for (const auto& [id, connection] : connections_) {
    if (hurrying_ && connection->phase == Phase::kWriting) {
      connection->wholeDeadline = std::min(connection->wholeDeadline, now + kHurryLimit);
      connection->deadline = std::min(connection->deadline, connection->wholeDeadline);
    }
    if (connection->deadline <= now) late.push_back(id);
  }
  for (const std::uint64_t id : late) {
    const auto found = connections_.find(id);
    if (found == connections_.end()) continue;
    Connection& connection = *found->second;
    const bool incomplete = connection.phase == Phase::kHead ||
                            connection.phase == Phase::kWaiting || connection.phase == Phase::kBody;
    if (!incomplete) {
      Drop(id);
      continue;
    }
    GiveBack(connection);
    connection.unread = true;
    Refuse(connection, 408, "request_timeout", "The request did not arrive in time.");
    PumpWriting(id, connection);
  }
}

void HttpFront::DropWhatIsNotWhole() {
  closed_ = true;
  epoll_ctl(poll_, EPOLL_CTL_DEL, listener_, nullptr);
  close(listener_);
  listener_ = -1;
  std::vector<std::uint64_t> dropped;
  for (const auto& [id, connection] : connections_) {
    if (connection->phase != Phase::kAnswering && connection->phase != Phase::kWriting) {
      dropped.push_back(id);
    }
  }
  for (const std::uint64_t id : dropped) {
    if (connections_.contains(id)) Drop(id);
  }
}

}  // namespace quillmarch::service
