// quillmarch-service: the API host as a program of its own.
#include <signal.h>
#include <sys/resource.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>

#include "service/Service.h"
#include "service/engines/Engine.h"

namespace quillmarch::service {

namespace {

constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

constexpr char kFooter[] = R"(
Examples:
  quillmarch-service --port 8080
      serves this machine, without tokens, with the offline engine
  quillmarch-service --address 0.0.0.0 --port 443 --certificate cert.pem --key key.pem \
                     --token-file tokens
      serves the network over TLS; "tokens" holds a token a line, or a token and its credits
  quillmarch-service --port 8080 --engine openai --openai-url http://localhost:11434 \
                     --openai-model llama3
      translates through a model's server

Exit codes:
  0  stopped by SIGINT or SIGTERM
  1  could not start
  2  wrong usage)";

// Waits for one of the signals that end the service. They are blocked in all threads, so that
// nothing else is interrupted by them.
void WaitForEnd(const sigset_t& signals) {
  int number = 0;
  while (sigwait(&signals, &number) != 0) {
  }
}

// With the usual 1024 files a crowd of clients would find the service deaf.
void RaiseFileLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
}

bool IsLoopback(const std::string& address) {
  return address.rfind("127.", 0) == 0 || address == "::1" || address == "localhost";
}

}  // namespace

}  // namespace quillmarch::service

int main(int argc, char** argv) {
  using namespace quillmarch;
  using namespace quillmarch::service;
  ServiceOptions service;
  EngineOptions engine;
  std::string logFile;

  CLI::App app{"Translates texts for the Quillmarch add-in and the quillmarch command."};
  app.footer(kFooter);
  app.add_option("--address", service.address, "Address to listen on")->capture_default_str();
  app.add_option("--port", service.port, "Port to listen on; 0 takes any free one")
      ->capture_default_str();
  app.add_option("--token-file", service.tokenFile,
                 "File with the accepted tokens, each on a line, with its credits (characters) "
                 "behind it where they are limited; without the file everybody is served");
  auto* certificate = app.add_option("--certificate", service.certificateFile,
                                     "PEM file with the certificate; turns TLS on");
  auto* key = app.add_option("--key", service.keyFile, "PEM file with the certificate's key");
  certificate->needs(key);
  key->needs(certificate);
  app.add_option("--engine", engine.name,
                 "auto or apertium (offline), openai (a model's server), pseudo (for tests)")
      ->check(CLI::IsMember({"auto", "apertium", "openai", "pseudo"}))
      ->capture_default_str();
  app.add_option("--growth", engine.growth, "pseudo: how many times as long a text becomes")
      ->capture_default_str();
  app.add_option("--openai-url", engine.openaiUrl, "openai: the server's base URL");
  app.add_option("--openai-model", engine.openaiModel, "openai: the model's name");
  app.add_option("--openai-key-file", engine.openaiKeyFile,
                 "openai: file whose first line is the key");
  app.add_option("--openai-ca-file", engine.openaiCaFile,
                 "openai: PEM file with one more trusted authority");
  app.add_option("--log", logFile,
                 "File that gets a line for each request and event; else standard error");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? 0 : kExitUsage;
  }

  const auto fail = [](const std::string& sentence) {
    std::cerr << "quillmarch-service: " << sentence << "\n";
    return kExitFailure;
  };
  std::ofstream log;
  if (!logFile.empty()) {
    log.open(logFile, std::ios::app);
    if (!log) return fail("The log file " + logFile + " can't be written.");
  }
  std::ostream& out = logFile.empty() ? std::cerr : log;
  service.requestLog = [&out](const std::string& line) { out << line << std::endl; };
  service.eventLog = service.requestLog;

  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  RaiseFileLimit();

  Result<std::unique_ptr<Engine>> made = MakeEngine(engine);
  if (!made) return fail(made.error().words);
  const std::string name = (*made)->name();
  const Result<std::unique_ptr<Service>> started = Service::Start(service, std::move(made).value());
  if (!started) return fail(started.error().words);
  Service* const running = started->get();

  const bool tls = !service.certificateFile.empty();
  if (!IsLoopback(service.address) && (!tls || service.tokenFile.empty())) {
    std::cerr << "quillmarch-service: Others can reach this address"
              << (service.tokenFile.empty() ? ", and no token is asked for" : "")
              << (tls ? "" : ", and nothing is encrypted") << ".\n";
  }
  const bool v6 = service.address.find(':') != std::string::npos;
  std::cout << "listening on " << (tls ? "https://" : "http://")
            << (v6 ? "[" + service.address + "]" : service.address) << ":" << running->port()
            << " with the engine " << name << std::endl;
  WaitForEnd(signals);
  running->Stop();
  return 0;
}
