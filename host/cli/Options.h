// The command line of quillmarch.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/transport/Endpoint.h"
#include "host/cli/OutputPlan.h"
#include "host/cli/SelectOption.h"
#include "service/engines/Engine.h"

namespace quillmarch::host {

struct TranslateOptions {
  std::vector<std::string> decks;
  std::string targetLang;
  std::string sourceLang = "auto";
  OutputRule output;
  std::int32_t slide = 0;  // 1-based; 0: the whole deck
  SelectOption select;     // nothing: the slide or the whole deck
  std::string font;        // empty: fonts stay as they are
  bool ownService = true;  // the embedded one, with `engine`; else `service`
  Endpoint service;
  std::string accessToken;
  std::string authorityFile;
  service::EngineOptions engine;
  bool paced = false;
  bool json = false;
  bool listLeft = false;
  bool stats = false;
  bool quiet = false;
};

struct CommandLine {
  bool run = false;  // `translate` is to be run; otherwise `output` and `exitCode` are all
  int exitCode = 0;
  std::string output;  // help or version, for standard output
  std::string error;   // a usage error, one line without the program's name
  TranslateOptions translate;
};

// Reads the command line; files named there (a token file) are read too.
CommandLine ReadCommandLine(int argc, const char* const* argv);

}  // namespace quillmarch::host
