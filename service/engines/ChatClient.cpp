#include "service/engines/ChatClient.h"

#include <curl/curl.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>

namespace quillmarch::service {

namespace {

constexpr int kStopCheckMs = 50;
struct Collected {
  std::string& body;
  std::size_t most;
  bool over = false;
};

std::size_t Collect(char* data, std::size_t size, std::size_t count, void* to) {
  auto& collected = *static_cast<Collected*>(to);
  collected.over = collected.body.size() + size * count > collected.most;
  if (collected.over) return 0;
  collected.body.append(data, size * count);
  return size * count;
}

ChatReply::Outcome OutcomeOf(CURLcode result, const std::string& reason) {
  switch (result) {
    case CURLE_OPERATION_TIMEDOUT:
      return ChatReply::Outcome::kTimedOut;
    case CURLE_PEER_FAILED_VERIFICATION:
      return ChatReply::Outcome::kUntrusted;
    case CURLE_COULDNT_RESOLVE_HOST:
      return ChatReply::Outcome::kUnknownName;
    case CURLE_COULDNT_CONNECT:
      return ChatReply::Outcome::kRefusedPort;
    case CURLE_SSL_CONNECT_ERROR:
      // The library has no code of its own for a first record that is not TLS.
      return reason.find("wrong version number") != std::string::npos
                 ? ChatReply::Outcome::kNoTls
                 : ChatReply::Outcome::kNoConnection;
    default:
      return ChatReply::Outcome::kNoConnection;
  }
}

// The system's authorities and one more, since libcurl takes one source only.
std::string TrustedWith(const std::string& caFile) {
  std::string pem;
  for (const std::string& path : {std::string("/etc/ssl/certs/ca-certificates.crt"), caFile}) {
    std::ifstream file(path, std::ios::binary);
    pem.append(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    pem += '\n';
  }
  return pem;
}

void StartLibrary() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

}  // namespace

ChatReply PostChat(const std::string& url, const std::string& key, const std::string& caFile,
                   const std::string& body, std::size_t maxAnswer, std::chrono::milliseconds limit,
                   const std::atomic<bool>& stop) {
  StartLibrary();
  ChatReply reply;
  const std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> multi(curl_multi_init(),
                                                                    &curl_multi_cleanup);
  const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> easy(curl_easy_init(),
                                                                 &curl_easy_cleanup);
  curl_slist* list = curl_slist_append(nullptr, "Content-Type: application/json");
  // Without it libcurl waits a second for a "100 Continue" that many servers never send.
  list = curl_slist_append(list, "Expect:");
  if (!key.empty()) list = curl_slist_append(list, ("Authorization: Bearer " + key).c_str());
  const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> headers(list,
                                                                            &curl_slist_free_all);
  if (!multi || !easy || !headers) return reply;
  CURL* const request = easy.get();
  char reason[CURL_ERROR_SIZE] = "";
  Collected collected{reply.body, maxAnswer};
  curl_easy_setopt(request, CURLOPT_URL, url.c_str());
  curl_easy_setopt(request, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(request, CURLOPT_HTTPHEADER, headers.get());
  curl_easy_setopt(request, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
  curl_easy_setopt(request, CURLOPT_POSTFIELDS, body.c_str());
  curl_easy_setopt(request, CURLOPT_WRITEFUNCTION, &Collect);
  curl_easy_setopt(request, CURLOPT_WRITEDATA, &collected);
  curl_easy_setopt(request, CURLOPT_ERRORBUFFER, reason);
  curl_easy_setopt(request, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(request, CURLOPT_TIMEOUT_MS,
                   std::max<long>(1, static_cast<long>(limit.count())));
  const std::string trusted = caFile.empty() ? "" : TrustedWith(caFile);
  if (!trusted.empty()) {
    curl_blob blob{const_cast<char*>(trusted.data()), trusted.size(), CURL_BLOB_NOCOPY};
    curl_easy_setopt(request, CURLOPT_CAINFO_BLOB, &blob);
  }

  curl_multi_add_handle(multi.get(), request);
  int running = 1;
  while (running > 0 && !stop) {
    if (curl_multi_perform(multi.get(), &running) != CURLM_OK) break;
    if (running > 0) curl_multi_poll(multi.get(), nullptr, 0, kStopCheckMs, nullptr);
  }
  CURLcode result = CURLE_ABORTED_BY_CALLBACK;
  int left = 0;
  if (const CURLMsg* message = curl_multi_info_read(multi.get(), &left)) {
    result = message->data.result;
  }
  curl_multi_remove_handle(multi.get(), request);

  if (result == CURLE_OK) {
    reply.outcome = ChatReply::Outcome::kAnswered;
    curl_easy_getinfo(request, CURLINFO_RESPONSE_CODE, &reply.status);
    curl_header* header = nullptr;
    if (curl_easy_header(request, "Retry-After", 0, CURLH_HEADER, -1, &header) == CURLHE_OK) {
      curl_off_t seconds = 0;
      curl_easy_getinfo(request, CURLINFO_RETRY_AFTER, &seconds);
      reply.retryAfterSeconds = static_cast<int>(std::clamp<curl_off_t>(seconds, 0, 86'400));
    }
  } else if (stop) {
    reply.outcome = ChatReply::Outcome::kStopped;
  } else if (collected.over) {
    reply.outcome = ChatReply::Outcome::kTooLarge;
  } else {
    reply.outcome = OutcomeOf(result, reason);
    reply.error = reason[0] != '\0' ? reason : curl_easy_strerror(result);
  }
  return reply;
}

}  // namespace quillmarch::service
