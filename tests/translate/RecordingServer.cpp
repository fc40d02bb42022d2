#include "translate/RecordingServer.h"

#include <cstdlib>
#include <stdexcept>

#include "foundation/transport/LoopbackExchange.h"

namespace quillmarch::addin::recording_server {
namespace {

std::string Told(const char* name) {
  const char* text = std::getenv(name);
  if (text == nullptr) {
    throw std::runtime_error("this test program runs through tests/translate/with-server");
  }
  return text;
}

std::uint16_t PortOf(const char* name) {
  return static_cast<std::uint16_t>(std::stoi(Told(name)));
}

Endpoint OnLoopback(const char* portName, bool useHttps) {
  return {u"localhost", PortOf(portName), useHttps};
}

std::string Order(const std::string& line) {
  return ExchangeOnLoopback(PortOf("QUILLMARCH_TEST_CONTROL_PORT"), line + "\n");
}

void OrderAndCheck(const std::string& line) {
  if (Order(line) != "ok") throw std::runtime_error("the recording server refused: " + line);
}

std::string Numbered(const char* word, int number) {
  std::string text = word;
  text += std::to_string(number);
  return text;
}

}  // namespace

Endpoint Http() {
  return OnLoopback("QUILLMARCH_TEST_HTTP_PORT", false);
}
Endpoint Https() {
  return OnLoopback("QUILLMARCH_TEST_HTTPS_PORT", true);
}
Endpoint HttpsOfAStranger() {
  return OnLoopback("QUILLMARCH_TEST_UNTRUSTED_PORT", true);
}
Endpoint HttpsOfAnotherName() {
  return OnLoopback("QUILLMARCH_TEST_WRONG_NAME_PORT", true);
}
std::string AuthorityFile() {
  return Told("QUILLMARCH_TEST_CA_FILE");
}

void Clear() {
  OrderAndCheck("clear");
}
void Next(const std::string& action) {
  OrderAndCheck("next " + action);
}
void Always(const std::string& action) {
  OrderAndCheck("always " + action);
}
void Release() {
  OrderAndCheck("release");
}
void WaitForRequests(int count) {
  OrderAndCheck(Numbered("wait ", count));
}
int RequestCount() {
  return std::stoi(Order("count"));
}
int ConnectionCount() {
  return std::stoi(Order("connections"));
}
std::string Request(int index) {
  return Order(Numbered("request ", index));
}

std::string Answer(int status, std::string_view body, std::string_view headers) {
  std::string action = Numbered("answer ", status);
  action.append(" ").append(Hex(body));
  if (!headers.empty()) action.append(" ").append(Hex(headers));
  return action;
}

std::string Hex(std::string_view bytes) {
  if (bytes.empty()) return "-";
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += kDigits[value >> 4];
    text += kDigits[value & 0x0F];
  }
  return text;
}

}  // namespace quillmarch::addin::recording_server
