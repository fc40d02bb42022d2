// The event loop in front of the service: one thread accepts connections, reads requests and sends
// answers without ever blocking, so that silent and slow clients cost memory in bounds and nothing
// else. Whole requests are answered elsewhere. A connection serves one request.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "service/TokenTable.h"
#include "service/http/ClientSocket.h"
#include "service/http/RequestReader.h"

namespace quillmarch::service {

struct HttpAnswer {
  int status = 200;
  std::string body;     // JSON
  std::string headers;  // further ones, each with its line end
};

// One request on its way.
struct Exchange {
  std::uint64_t id = 0;
  std::chrono::steady_clock::time_point begin;
  RequestHead head;
  std::string peer;    // the client's address
  TokenHandle token;   // whose it is
  std::string client;  // whom it counts for, where work is shared
  std::string body;
  // For the log.
  std::size_t texts = 0;
  std::size_t chars = 0;
  std::string cause;
};

// What is done with requests. Called on the loop's thread, so it must not block.
class HttpHandler {
 public:
  virtual ~HttpHandler() = default;
  struct Verdict {
    bool answered = false;  // with `answer`; else the body is read, of at most so many bytes
    HttpAnswer answer;
    std::size_t mostBody = 0;
    bool free = false;  // of a token: all such bodies share a small part of the memory
  };
  virtual Verdict OnHead(Exchange& exchange) = 0;
  // The request is whole. It is answered by HttpFront::Send, now or later, from any thread.
  virtual void OnRequest(std::unique_ptr<Exchange> exchange) = 0;
  // An answer is about to leave.
  virtual void OnAnswer(const Exchange& exchange, int status) = 0;
};

struct FrontLimits {
  int requestMs = 30'000;  // from the connection to the request's last byte
  std::size_t connections = 2'000;
};

class HttpFront {
 public:
  HttpFront(HttpHandler& handler, int listeningSocket, TlsContext tls, FrontLimits limits,
            bool expectAnother);
  ~HttpFront();
  HttpFront(const HttpFront&) = delete;
  HttpFront& operator=(const HttpFront&) = delete;

  bool ready() const { return poll_ >= 0 && wake_ >= 0; }
  // The loop; returns after a Close when all has ended.
  void Run();
  // Takes nothing new, drops what is not whole; requests under way go on until they are answered.
  // Any thread.
  void Close();
  // From now on answers have a moment to leave. Any thread.
  void Hurry();
  // For new connections. Any thread.
  void UseTls(TlsContext tls);
  // Answers an exchange that OnRequest got. Any thread.
  void Send(std::unique_ptr<Exchange> exchange, HttpAnswer answer);

 private:
  using Clock = std::chrono::steady_clock;
  enum class Phase { kHandshake, kHead, kWaiting, kBody, kAnswering, kWriting, kDraining };
  struct Connection {
    Connection(int socket, ssl_ctx_st* context) : io(socket, context) {}
    ClientSocket io;
    TlsContext tls;  // kept while the connection uses it
    Phase phase = Phase::kHandshake;
    std::unique_ptr<Exchange> exchange;
    std::string in;
    std::size_t searched = 0;
    BodyReader body;
    std::size_t reserved = 0;
    bool free = false;
    std::string out;
    std::size_t sent = 0;
    bool unread = false;  // the client may still be sending
    Clock::time_point deadline;
    Clock::time_point wholeDeadline;
    std::uint32_t watched = 0;
  };
  using Connections = std::map<std::uint64_t, std::unique_ptr<Connection>>;

  void Accept();
  void Add(int socket, const std::string& peer);
  void MakeRoom();
  // Goes on as far as it can; the connection may be gone afterwards.
  void Pump(std::uint64_t id);
  bool PumpHead(Connection& connection);
  bool PumpBody(Connection& connection);
  void BeginBody(Connection& connection);
  bool Reserve(Connection& connection, std::size_t bytes);
  void GiveBack(Connection& connection);
  void AdmitWaiting();
  void Hand(Connection& connection);
  void Reply(Connection& connection, const HttpAnswer& answer);
  void Refuse(Connection& connection, int status, const char* code, const std::string& message);
  void RefuseBody(Connection& connection);
  void PumpWriting(std::uint64_t id, Connection& connection);
  void Drain(std::uint64_t id, Connection& connection);
  void Watch(std::uint64_t id, Connection& connection, std::uint32_t events);
  void Drop(std::uint64_t id);
  void TakeAnswers();
  void CheckDeadlines(Clock::time_point now);
  void DropWhatIsNotWhole();
  int WaitTime() const;
  void Wake() const;

  HttpHandler& handler_;
  int listener_;
  FrontLimits limits_;
  const bool expectAnother_;
  int poll_ = -1;
  int wake_ = -1;
  std::uint64_t nextId_;
  Connections connections_;
  std::deque<std::uint64_t> waiting_;  // for memory
  std::vector<std::uint64_t> again_;   // have bytes that no event will announce
  std::map<std::string, std::size_t> bytesOf_;
  std::size_t bytes_ = 0;
  std::size_t freeBytes_ = 0;
  bool closed_ = false;
  Clock::time_point lastActive_;

  std::mutex mutex_;
  TlsContext tls_;
  struct Answered {
    std::unique_ptr<Exchange> exchange;
    HttpAnswer answer;
  };
  std::vector<Answered> answered_;
  std::atomic<bool> closing_{false};
  std::atomic<bool> hurrying_{false};
};

}  // namespace quillmarch::service
