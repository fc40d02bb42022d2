#include <windows.h>
#include <winhttp.h>

#include <memory>
#include <string>
#include <type_traits>

#include "foundation/system/LiveCounts.h"
#include "foundation/system/WinText.h"
#include "foundation/transport/HeaderText.h"
#include "foundation/transport/HttpTransport.h"
#include "foundation/transport/RunHold.h"

namespace quillmarch {

namespace {

constexpr wchar_t kUserAgent[] = L"Quillmarch/1.0";

struct CloseInternetHandle {
  void operator()(HINTERNET handle) const { WinHttpCloseHandle(handle); }
  LiveCount<LiveKind::kConnection> live;
};
using InternetHandle = std::unique_ptr<std::remove_pointer_t<HINTERNET>, CloseInternetHandle>;

// The brackets around an IPv6 address in a URL are not part of the address.
std::wstring ConnectName(WideView host) {
  if (host.size() > 2 && host.front() == u'[' && host.back() == u']') {
    host = host.substr(1, host.size() - 2);
  }
  return ToWinText(host);
}

std::wstring HeaderBlock(const Wide* bearerToken) {
  std::wstring headers = L"Content-Type: application/json\r\n";
  if (bearerToken != nullptr && !bearerToken->empty()) {
    headers += L"Authorization: Bearer " + ToWinText(*bearerToken) + L"\r\n";
  }
  return headers;
}

bool SendAndReceive(HINTERNET request, const std::wstring& headers, std::string_view body) {
  const auto bodyBytes = static_cast<DWORD>(body.size());
  return WinHttpSendRequest(request, headers.c_str(), static_cast<DWORD>(headers.size()),
                            const_cast<char*>(body.data()), bodyBytes, bodyBytes, 0) != FALSE &&
         WinHttpReceiveResponse(request, nullptr) != FALSE;
}

// False when the answer has no such header.
bool QueryNumber(HINTERNET request, DWORD header, DWORD& number) {
  DWORD size = sizeof(number);
  return WinHttpQueryHeaders(request, header | WINHTTP_QUERY_FLAG_NUMBER,
                             WINHTTP_HEADER_NAME_BY_INDEX, &number, &size,
                             WINHTTP_NO_HEADER_INDEX) != FALSE;
}

// Not every version of the system reports a connection that ended before the answer did.
bool IsCutShort(HINTERNET request, const std::string& body) {
  DWORD announced = 0;
  return QueryNumber(request, WINHTTP_QUERY_CONTENT_LENGTH, announced) && body.size() < announced;
}

// False when the answer could not be read to its end, is too long, or the run was cancelled
// meanwhile.
bool ReadBody(HINTERNET request, const RunFlag* cancelFlag, const RunFlag* pauseFlag,
              std::string& body) {
  for (;;) {
    DWORD available = 0;
    if (WinHttpQueryDataAvailable(request, &available) == FALSE) return false;
    if (available == 0) return !IsCutShort(request, body);
    if (!HoldWhilePaused(cancelFlag, pauseFlag)) return false;
    const std::size_t length = body.size();
    if (available > kMaxAnswerBytes - length) return false;
    body.resize(length + available);
    DWORD read = 0;
    if (WinHttpReadData(request, body.data() + length, available, &read) == FALSE) return false;
    body.resize(length + read);
  }
}

Wide Fail(Wide* outError, const char16_t* text) {
  if (outError != nullptr) *outError = text;
  return {};
}

}  // namespace

Wide HttpPostJson(const Endpoint& endpoint, WideView path, std::string_view bodyUtf8,
                  Wide* outError, const Wide* bearerToken, const RunFlag* cancelFlag,
                  const RunFlag* pauseFlag, std::uint32_t* outStatus) {
  if (outStatus != nullptr) *outStatus = 0;
  if (!HoldWhilePaused(cancelFlag, pauseFlag)) return Fail(outError, u"Cancelled");

  const InternetHandle session(WinHttpOpen(kUserAgent, WINHTTP_ACCESS_TYPE_NO_PROXY,
                                           WINHTTP_NO_PROXY_NAME, WINHTTP_NO_PROXY_BYPASS, 0));
  if (!session) return Fail(outError, u"WinHttpOpen failed");
  const InternetHandle connection(
      endpoint.host.empty()
          ? nullptr
          : WinHttpConnect(session.get(), ConnectName(endpoint.host).c_str(), endpoint.port, 0));
  if (!connection) return Fail(outError, u"WinHttpConnect failed");
  const bool goodToken = bearerToken == nullptr || IsHeaderText(*bearerToken);
  const InternetHandle request(
      goodToken ? WinHttpOpenRequest(connection.get(), L"POST", ToWinText(path).c_str(), nullptr,
                                     WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES,
                                     endpoint.useHttps ? WINHTTP_FLAG_SECURE : 0)
                : nullptr);
  if (!request) return Fail(outError, u"WinHttpOpenRequest failed");
  // The body and the token go to the given address, once: neither a redirect nor a challenge by
  // the server makes the system send them again.
  DWORD disabled = WINHTTP_DISABLE_REDIRECTS | WINHTTP_DISABLE_AUTHENTICATION;
  WinHttpSetOption(request.get(), WINHTTP_OPTION_DISABLE_FEATURE, &disabled, sizeof(disabled));

  std::string body;
  bool complete = SendAndReceive(request.get(), HeaderBlock(bearerToken), bodyUtf8);
  if (complete) {
    DWORD status = 0;
    if (QueryNumber(request.get(), WINHTTP_QUERY_STATUS_CODE, status) && outStatus != nullptr) {
      *outStatus = status;
    }
    complete = ReadBody(request.get(), cancelFlag, pauseFlag, body);
  }
  if (!complete || body.empty()) return Fail(outError, u"HTTP request failed");
  return ToWide(body);
}

// The system's store decides whom to trust; an authority is added there by its owner.
void TrustAuthorityFile(std::string) {}

}  // namespace quillmarch
