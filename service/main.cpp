// quillmarch-service: the API host as a program of its own.
#include <malloc.h>
#include <signal.h>
#include <sys/resource.h>

#include <CLI/CLI.hpp>
#include <atomic>
#include <cstdint>
#include <iostream>
#include <string>
#include <thread>
#include <utility>

#include "service/LogFile.h"
#include "service/Service.h"
#include "service/engines/Engine.h"

namespace quillmarch::service {

namespace {

constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

constexpr std::uint16_t kDefaultPort = 8710;
constexpr int kStopGraceMs = 30'000;
// One heap for each thread would keep what a burst of large requests took.
constexpr int kHeaps = 2;
constexpr long kSignalCheckMs = 50;

constexpr char kFooter[] = R"(
Examples:
  quillmarch-service
      serves this machine on port 8710, without tokens, with the offline engine
  quillmarch-service --address 0.0.0.0 --port 443 --certificate cert.pem --key key.pem \
                     --token-file tokens
      serves the network over TLS; see below for the token file
  quillmarch-service --engine openai --openai-url http://localhost:11434 --openai-model llama3
      translates through a model's server
  quillmarch-service --check --engine openai --openai-url ... --openai-model ...
      tries everything that the other options name, says what is wrong and exits

Token file:
  one token a line, optionally followed by its credits in characters and by name=NAME for the log;
  lines that begin with # are skipped. Other users of the machine must not be able to read it.

Signals:
  SIGHUP            reads token file and certificate anew and opens the log file anew
  SIGINT, SIGTERM   stops; requests being answered may finish for up to 30 seconds, a second signal
                    ends them

Exit codes:
  0  stopped by a signal; with --check: everything works
  1  could not start; with --check: something is wrong
  2  wrong usage)";

struct Options {
  ServiceOptions service;
  EngineOptions engine;
  std::string logFile;
  bool check = false;
};

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

int Fail(const std::string& sentence) {
  std::cerr << "quillmarch-service: " << sentence << "\n";
  return kExitFailure;
}

// Serves until a signal ends it. The signals are blocked in all threads, so that nothing else is
// interrupted by them.
void WaitForEnd(const sigset_t& signals, Service& running, const Options& options, LogFile& log) {
  for (int number = 0;;) {
    if (sigwait(&signals, &number) != 0) continue;
    if (number != SIGHUP) return;
    const Result<void> opened = log.Open(options.logFile);
    if (!opened) log.Write("reload failed: " + opened.error().words);
    const Result<void> loaded = running.Reload();
    log.Write(loaded
                  ? "reloaded tokens and certificate"
                  : "reload failed, the old tokens and certificate stay: " + loaded.error().words);
  }
}

// A second signal does not wait for the grace.
void Stop(const sigset_t& signals, Service& running) {
  std::atomic<bool> stopped{false};
  std::thread stop([&] {
    running.Stop();
    stopped = true;
  });
  while (!stopped) {
    const timespec wait{0, kSignalCheckMs * 1'000'000};
    const int number = sigtimedwait(&signals, nullptr, &wait);
    if (number > 0 && number != SIGHUP) running.HurryStop();
  }
  stop.join();
}

// Tries one short text; starts the service on a port of its own for its files.
int Check(const Options& options) {
  int exit = 0;
  const auto say = [&](const char* what, const Result<void>& result) {
    std::cout << what << ": " << (result ? "works" : result.error().words) << "\n";
    if (!result) exit = kExitFailure;
  };
  Result<std::unique_ptr<Engine>> engine = MakeEngine(options.engine);
  if (!engine) {
    say("engine", engine.error());
  } else {
    EngineRequest request;
    request.texts = {"The house is big."};
    request.sourceLang = "en";
    request.targetLang = "es";
    const std::atomic<bool> stop{false};
    const EngineResult tried = (*engine)->Translate(request, stop);
    // An offline installation without this one pair is sound.
    const bool sound = tried.ok || tried.failure == EngineFailure::kUnsupportedPair;
    say("engine", sound ? Result<void>() : Error{ErrorCode::kUnavailable, tried.message});
    ServiceOptions service = options.service;
    const Result<std::unique_ptr<Service>> started =
        Service::Start(service, std::move(engine).value());
    say("address, tokens and certificate", started ? Result<void>() : started.error());
  }
  if (!options.logFile.empty()) {
    LogFile log;
    say("log file", log.Open(options.logFile));
  }
  return exit;
}

int Serve(Options options) {
  LogFile log;
  if (const Result<void> opened = log.Open(options.logFile); !opened) {
    return Fail(opened.error().words);
  }
  options.service.requestLog = [&log](const std::string& line) { log.Write(line); };
  options.service.eventLog = options.service.requestLog;
  options.service.stopGraceMs = kStopGraceMs;

  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, number);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  RaiseFileLimit();

  Result<std::unique_ptr<Engine>> made = MakeEngine(options.engine);
  if (!made) return Fail(made.error().words);
  const std::string name = (*made)->name();
  const Result<std::unique_ptr<Service>> started =
      Service::Start(options.service, std::move(made).value());
  if (!started) return Fail(started.error().words);
  Service& running = **started;

  const ServiceOptions& service = options.service;
  const bool tls = !service.certificateFile.empty();
  if (!IsLoopback(service.address) && (!tls || service.tokenFile.empty())) {
    std::cerr << "quillmarch-service: Others can reach this address"
              << (service.tokenFile.empty() ? ", and no token is asked for" : "")
              << (tls ? "" : ", and nothing is encrypted") << ".\n";
  }
  const bool v6 = service.address.find(':') != std::string::npos;
  std::cout << "listening on " << (tls ? "https://" : "http://")
            << (v6 ? "[" + service.address + "]" : service.address) << ":" << running.port()
            << " with the engine " << name << std::endl;
  WaitForEnd(signals, running, options, log);
  std::cout << "stopping" << std::endl;
  Stop(signals, running);
  std::cout << "stopped" << std::endl;
  return 0;
}

}  // namespace

}  // namespace quillmarch::service

int main(int argc, char** argv) {
  using namespace quillmarch::service;
  mallopt(M_ARENA_MAX, kHeaps);
  Options options;
  ServiceOptions& service = options.service;
  EngineOptions& engine = options.engine;
  service.port = kDefaultPort;

  CLI::App app{"Translates texts for the Quillmarch add-in and the quillmarch command."};
  app.footer(kFooter);
  app.set_version_flag("--version", std::string("quillmarch-service ") + QUILLMARCH_VERSION,
                       "Print the version and exit");
  app.add_option("--address", service.address, "Address to listen on")
      ->capture_default_str()
      ->type_name("HOST");
  app.add_option("--port", service.port, "Port to listen on; 0 takes any free one")
      ->capture_default_str()
      ->type_name("PORT");
  app.add_option("--token-file", service.tokenFile,
                 "File with the accepted tokens; without it everybody is served")
      ->type_name("FILE");
  auto* certificate = app.add_option("--certificate", service.certificateFile,
                                     "PEM file with the certificate; turns TLS on")
                          ->type_name("FILE");
  auto* key = app.add_option("--key", service.keyFile, "PEM file with the certificate's key")
                  ->type_name("FILE");
  certificate->needs(key);
  key->needs(certificate);
  app.add_option("--engine", engine.name,
                 "auto or apertium (offline), openai (a model's server), pseudo (for tests)")
      ->check(CLI::IsMember({"auto", "apertium", "openai", "pseudo"}))
      ->capture_default_str()
      ->type_name("NAME");
  app.add_option("--growth", engine.growth, "pseudo: how many times as long a text becomes")
      ->capture_default_str()
      ->type_name("FACTOR");
  app.add_option("--openai-url", engine.openaiUrl, "openai: the server's base URL")
      ->type_name("URL");
  app.add_option("--openai-model", engine.openaiModel, "openai: the model's name")
      ->type_name("NAME");
  app.add_option("--openai-key-file", engine.openaiKeyFile,
                 "openai: file whose first line is the key")
      ->type_name("FILE");
  app.add_option("--openai-ca-file", engine.openaiCaFile,
                 "openai: PEM file with one more trusted authority")
      ->type_name("FILE");
  app.add_option("--log", options.logFile,
                 "File that gets a line for each request and event; standard error by default")
      ->type_name("FILE");
  app.add_flag("--check", options.check,
               "Try engine, address, tokens, certificate and log, say what is wrong and exit");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? 0 : kExitUsage;
  }
  return options.check ? Check(options) : Serve(std::move(options));
}
