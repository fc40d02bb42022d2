#include <curl/curl.h>
#include <fcntl.h>
#include <sched.h>

#include <climits>
#include <fstream>
#include <iterator>
#include <memory>
#include <new>

#include "foundation/transport/HeaderText.h"
#include "foundation/transport/HttpTransport.h"
#include "foundation/transport/RunHold.h"
#include "foundation/transport/TransferTimes.h"

namespace quillmarch {

namespace {

constexpr long kFirstFinalStatus = 200;
// An answer that comes within this time is waited for without sleeping: from a service on the same
// machine it takes less time than falling asleep and being woken.
constexpr std::chrono::microseconds kAwakeTime{300};
constexpr int kSleepMs = 1000;  // until the limits are looked at again

struct CloseHandle {
  void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
using Handle = std::unique_ptr<CURL, CloseHandle>;

struct CloseMulti {
  void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
using Multi = std::unique_ptr<CURLM, CloseMulti>;

struct FreeHeaders {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using Headers = std::unique_ptr<curl_slist, FreeHeaders>;

// What the callbacks of one transfer share.
struct Transfer {
  Transfer(CURL* curl, std::uint64_t bodyBytes, const RunFlag* cancelFlag, const RunFlag* pauseFlag)
      : handle(curl), times(bodyBytes), cancel(cancelFlag), pause(pauseFlag) {}

  CURL* handle;
  TransferTimes times;
  const RunFlag* cancel;
  const RunFlag* pause;
  std::string answer;
  long status = 0;  // 0 until the headers of the answer are complete
};

TransferTimes::Time Now() {
  return std::chrono::steady_clock::now();
}

int OnSocket(void* context, curl_socket_t socket, curlsocktype) {
  // A program that the host starts meanwhile must not inherit the connection.
  fcntl(socket, F_SETFD, FD_CLOEXEC);
  static_cast<Transfer*>(context)->times.SocketOpened(Now());
  return CURL_SOCKOPT_OK;
}

int OnConnected(void* context, char*, char*, int, int) {
  static_cast<Transfer*>(context)->times.Connected(Now());
  return CURL_PREREQFUNC_OK;
}

int OnProgress(void* context, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent) {
  Transfer& transfer = *static_cast<Transfer*>(context);
  const TransferTimes::Time now = Now();
  transfer.times.Sent(now, static_cast<std::uint64_t>(sent));
  return transfer.times.Expired(now) ? 1 : 0;
}

std::size_t OnHeader(char* line, std::size_t unit, std::size_t count, void* context) {
  Transfer& transfer = *static_cast<Transfer*>(context);
  const std::string_view text(line, unit * count);
  const bool isLast = text == "\r\n" || text == "\n";
  if (isLast && transfer.status == 0) {
    long status = 0;
    curl_easy_getinfo(transfer.handle, CURLINFO_RESPONSE_CODE, &status);
    if (status >= kFirstFinalStatus) {
      transfer.status = status;
      transfer.times.HeadersCame(Now());
    }
  }
  return unit * count;
}

std::size_t OnData(char* data, std::size_t unit, std::size_t count, void* context) {
  Transfer& transfer = *static_cast<Transfer*>(context);
  const std::size_t taken = unit * count;
  if (taken > kMaxAnswerBytes - transfer.answer.size()) return 0;
  if (!HoldWhilePaused(transfer.cancel, transfer.pause)) return 0;
  try {
    transfer.answer.append(data, taken);
  } catch (const std::bad_alloc&) {
    return 0;
  }
  transfer.times.DataCame(Now());
  return taken;
}

bool LibraryReady() {
  static const bool ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  return ready;
}

// The system's authorities and the one handed in, as one text; empty without one.
std::string& TrustedAuthorities() {
  static std::string pem;
  return pem;
}

std::string ReadWhole(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// An address of IPv6 needs brackets in a URL, whether or not it was given with them.
Endpoint WithBrackets(const Endpoint& endpoint) {
  Endpoint result = endpoint;
  if (result.host.find(u':') != Wide::npos && result.host.front() != u'[') {
    result.host = u"[" + result.host + u"]";
  }
  return result;
}

Headers MakeHeaders(const Wide* bearerToken) {
  Headers headers;
  const auto add = [&headers](const std::string& line) {
    curl_slist* longer = curl_slist_append(headers.get(), line.c_str());
    if (longer == nullptr) return false;
    static_cast<void>(headers.release());
    headers.reset(longer);
    return true;
  };
  bool complete = add("Content-Type: application/json");
  if (bearerToken != nullptr && !bearerToken->empty()) {
    complete = complete && IsHeaderText(*bearerToken) &&
               add("Authorization: Bearer " + ToUtf8(*bearerToken));
  }
  complete = complete && add("Connection: Keep-Alive");
  // A name without a value removes a header that the library would send on its own.
  complete = complete && add("Accept:") && add("Expect:");
  if (!complete) headers.reset();
  return headers;
}

template <typename Value>
bool Set(CURL* handle, CURLoption option, Value value) {
  return curl_easy_setopt(handle, option, value) == CURLE_OK;
}

// The options that are the same for every call.
bool PrepareAlways(CURL* handle) {
  return Set(handle, CURLOPT_PATH_AS_IS, 1L) && Set(handle, CURLOPT_PROTOCOLS_STR, "http,https") &&
         // No proxy, and the variables that name one are ignored.
         Set(handle, CURLOPT_PROXY, "") && Set(handle, CURLOPT_NOPROXY, "*") &&
         Set(handle, CURLOPT_POST, 1L) && Set(handle, CURLOPT_USERAGENT, "Quillmarch/1.0") &&
         Set(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1)) &&
         // A connection of its own: a request is never sent again because a kept connection turned
         // out to be dead.
         Set(handle, CURLOPT_FRESH_CONNECT, 1L) && Set(handle, CURLOPT_FORBID_REUSE, 1L) &&
         // The body and the token go to the address asked for and to no other.
         Set(handle, CURLOPT_FOLLOWLOCATION, 0L) && Set(handle, CURLOPT_NOSIGNAL, 1L) &&
         Set(handle, CURLOPT_NOPROGRESS, 0L) && Set(handle, CURLOPT_SOCKOPTFUNCTION, &OnSocket) &&
         Set(handle, CURLOPT_PREREQFUNCTION, &OnConnected) &&
         Set(handle, CURLOPT_XFERINFOFUNCTION, &OnProgress) &&
         Set(handle, CURLOPT_HEADERFUNCTION, &OnHeader) &&
         Set(handle, CURLOPT_WRITEFUNCTION, &OnData) &&
         // The library's own limit counts the name's resolving in; TransferTimes does not.
         Set(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(INT_MAX));
}

bool PrepareAddress(CURL* handle, const Endpoint& endpoint, WideView path) {
  const std::string url = ToUtf8(BuildUrl(WithBrackets(endpoint), path));
  return Set(handle, CURLOPT_URL, url.c_str());
}

bool PrepareTrust(CURL* handle) {
  std::string& authorities = TrustedAuthorities();
  if (authorities.empty()) return Set<curl_blob*>(handle, CURLOPT_CAINFO_BLOB, nullptr);
  curl_blob blob{authorities.data(), authorities.size(), CURL_BLOB_NOCOPY};
  return Set(handle, CURLOPT_CAINFO_BLOB, &blob);
}

bool PrepareRequest(CURL* handle, std::string_view body, curl_slist* headers, Transfer& transfer) {
  return Set(handle, CURLOPT_POSTFIELDS, body.data()) &&
         Set(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size())) &&
         Set(handle, CURLOPT_HTTPHEADER, headers) && PrepareTrust(handle) &&
         Set(handle, CURLOPT_SOCKOPTDATA, &transfer) &&
         Set(handle, CURLOPT_PREREQDATA, &transfer) &&
         Set(handle, CURLOPT_XFERINFODATA, &transfer) &&
         Set(handle, CURLOPT_HEADERDATA, &transfer) && Set(handle, CURLOPT_WRITEDATA, &transfer);
}

// One thread's handles: making them costs more than a request over loopback. No connection is kept,
// and each call sets whatever differs between calls.
class Client {
 public:
  Client() : multi_(curl_multi_init()), easy_(curl_easy_init()) {
    if (easy_ && !PrepareAlways(easy_.get())) easy_.reset();
  }
  bool Ready() const { return multi_ && easy_; }
  CURL* handle() const { return easy_.get(); }
  CURLcode Perform();

 private:
  Multi multi_;
  Handle easy_;  // destroyed before the other
};

CURLcode Client::Perform() {
  if (curl_multi_add_handle(multi_.get(), easy_.get()) != CURLM_OK) return CURLE_OUT_OF_MEMORY;
  const auto sleepsFrom = Now() + kAwakeTime;
  int running = 1;
  bool failed = false;
  while (!failed) {
    failed = curl_multi_perform(multi_.get(), &running) != CURLM_OK;
    if (failed || running == 0) break;
    if (Now() < sleepsFrom) {
      // Where there is one processor, whoever has to answer needs it.
      sched_yield();
    } else {
      failed = curl_multi_poll(multi_.get(), nullptr, 0, kSleepMs, nullptr) != CURLM_OK;
    }
  }
  CURLcode result = CURLE_OUT_OF_MEMORY;
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
    if (message->msg == CURLMSG_DONE) result = message->data.result;
  }
  curl_multi_remove_handle(multi_.get(), easy_.get());
  return result;
}

Wide Fail(Wide* outError, const char16_t* text) {
  if (outError != nullptr) *outError = text;
  return {};
}

}  // namespace

// The error texts name the calls of Windows on every platform, since callers and logs know them.
Wide HttpPostJson(const Endpoint& endpoint, WideView path, std::string_view bodyUtf8,
                  Wide* outError, const Wide* bearerToken, const RunFlag* cancelFlag,
                  const RunFlag* pauseFlag, std::uint32_t* outStatus) {
  if (outStatus != nullptr) *outStatus = 0;
  if (!HoldWhilePaused(cancelFlag, pauseFlag)) return Fail(outError, u"Cancelled");
  if (!LibraryReady()) return Fail(outError, u"WinHttpOpen failed");

  static thread_local Client client;
  if (!client.Ready()) return Fail(outError, u"WinHttpOpen failed");
  if (endpoint.host.empty() || !PrepareAddress(client.handle(), endpoint, path)) {
    return Fail(outError, u"WinHttpConnect failed");
  }
  Transfer transfer(client.handle(), bodyUtf8.size(), cancelFlag, pauseFlag);
  const Headers headers = MakeHeaders(bearerToken);
  if (!headers || !PrepareRequest(client.handle(), bodyUtf8, headers.get(), transfer)) {
    return Fail(outError, u"WinHttpOpenRequest failed");
  }

  const CURLcode result = client.Perform();
  if (outStatus != nullptr) *outStatus = static_cast<std::uint32_t>(transfer.status);
  if (result == CURLE_URL_MALFORMAT) return Fail(outError, u"WinHttpConnect failed");
  if (result != CURLE_OK || transfer.answer.empty()) {
    return Fail(outError, u"HTTP request failed");
  }
  return ToWide(transfer.answer);
}

void TrustAuthorityFile(std::string pathUtf8) {
  std::string& authorities = TrustedAuthorities();
  authorities.clear();
  const std::string added = ReadWhole(pathUtf8.c_str());
  if (added.empty() || !LibraryReady()) return;
  const Handle handle(curl_easy_init());
  const char* systemFile = nullptr;
  if (handle) curl_easy_getinfo(handle.get(), CURLINFO_CAINFO, &systemFile);
  if (systemFile != nullptr) authorities = ReadWhole(systemFile) + "\n";
  authorities += added;
}

}  // namespace quillmarch
