#include "host/cli/Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <fstream>
#include <memory>
#include <string_view>

#include "host/cli/DeckKind.h"
#include "host/cli/ExitCode.h"
#include "host/cli/Sentences.h"
#include "host/cli/ServiceUrl.h"
#include "host/cli/StandardStreams.h"
#include "host/cli/TerminalText.h"
#include "host/cli/TokenFile.h"

namespace quillmarch::host {

namespace {

constexpr const char* kExamples = R"(Examples:
  quillmarch translate talk.pptx --to es
      writes talk.es.pptx, translated by the offline engine
  quillmarch translate *.pptx --to pt --from es --output-dir translated
  quillmarch translate talk.pptx --to es --select "3:Title 1" --select "3:#2"
      translates two shapes of slide 3 and leaves everything else as it is
  quillmarch translate talk.pptx --to de --engine openai --openai-url http://localhost:8080/v1 \
      --openai-model llama3
  quillmarch translate talk.pptx --to fr --service https://api.example.com --token-file token.txt
  quillmarch translate talk.pptx --to xx --engine pseudo --growth 1.4
      checks the layout with longer texts and without an engine

Exit codes:
  0    all decks are translated
  1    a run failed; nothing was saved for that deck
  2    bad input or usage; nothing was saved for that deck
  3    a deck is saved, but some translated text did not reach it; each is named
  130  cancelled by Ctrl-C; nothing was saved for the deck in progress
  With several decks the most severe code wins: 130, 2, 1, 3, 0.
)";

constexpr int kMostSlides = 1000000;
constexpr double kGreatestGrowth = 20.0;

// Codes go into requests and file names as they are.
std::string CheckLanguage(const std::string& code) {
  constexpr std::size_t kLongestCode = 35;
  const bool plain = std::all_of(code.begin(), code.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_';
  });
  if (plain && code.size() >= 2 && code.size() <= kLongestCode) return {};
  return "a language is a code such as es or pt-BR, not \"" + PlainLine(code) + "\"";
}

std::string CheckGrowth(const std::string& text) {
  double growth = 0.0;
  const char* const end = text.data() + text.size();
  const auto [rest, code] = std::from_chars(text.data(), end, growth);
  // Written so that NaN is out of range, too.
  if (code == std::errc() && rest == end && growth >= 1.0 && growth <= kGreatestGrowth) return {};
  return "takes a number from 1 to 20";
}

// Option, value and explanation, without the parser's notes on what needs or excludes what, which
// the groups already say.
class PlainFormatter final : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override {
    std::string text = option->get_type_size() == 0 ? "" : " " + option->get_type_name();
    if (option->get_expected_max() > 1) text += "...";
    if (!option->get_default_str().empty()) text += " (" + option->get_default_str() + ")";
    return text;
  }
};

struct RawOptions {
  std::string serviceUrl;
  std::string tokenFile;
  std::vector<std::string> select;
};

void Declare(CLI::App& translate, TranslateOptions& options, RawOptions& raw) {
  translate.add_option("DECK", options.decks, "Decks: .pptx .pptm .potx .potm .ppsx .ppsm")
      ->type_name("FILE");
  translate
      .add_option("--to", options.targetLang, "Language to translate to, such as es; required")
      ->type_name("LANG")
      ->required()
      ->check(CheckLanguage);
  translate.add_option("--from", options.sourceLang, "Language of the decks; auto detects it")
      ->type_name("LANG")
      ->check(CheckLanguage)
      ->capture_default_str();

  const char* const where = "Output (default: NAME.LANG.EXT beside the deck)";
  auto* const file = translate.add_option("--output,-o", options.output.file,
                                          "File to write, for one deck; - is standard output");
  auto* const folder = translate.add_option("--output-dir", options.output.directory,
                                            "Folder to write NAME.LANG.EXT to; it must exist");
  auto* const inPlace =
      translate.add_flag("--in-place", options.output.inPlace, "Replace the decks themselves");
  auto* const force =
      translate.add_flag("--force", options.output.force,
                         "Replace an output even if it was edited since or is not ours");
  auto* const skip = translate.add_flag("--skip-existing", options.output.skipExisting,
                                        "Leave decks out whose output exists");
  force->group(where)->excludes(inPlace);
  skip->group(where)->excludes(inPlace)->excludes(force);
  file->type_name("FILE")->group(where)->excludes(folder)->excludes(inPlace);
  folder->type_name("DIR")->group(where)->excludes(inPlace);
  inPlace->group(where);

  const char* const what = "What to translate";
  auto* const slide =
      translate.add_option("--slide", options.slide, "Translate only this slide, counted from 1")
          ->type_name("N")
          ->check(CLI::Range(1, kMostSlides).description(""))
          ->group(what);
  translate
      .add_option("--select", raw.select,
                  "Translate only a selection: slides (2,5-7); shapes of one slide by\n"
                  "name or number (3:Title 1, 3:#2, 3:#2/1 within a group); or part of\n"
                  "a text (3:#2:5+12: 12 characters from the 5th). Separate several\n"
                  "with commas, or repeat the option")
      ->type_name("WHAT")
      ->allow_extra_args(false)
      ->group(what)
      ->excludes(slide);
  translate.add_option("--font", options.font, "Font for translated text (default: unchanged)")
      ->type_name("NAME")
      ->group(what);

  const char* const engines = "Engine (the service is then part of this command)";
  auto* const engine =
      translate
          .add_option("--engine", options.engine.name,
                      "apertium (offline), openai (a chat completions server), pseudo\n"
                      "(marks texts, for tests) or auto, which takes apertium")
          ->type_name("NAME")
          ->check(CLI::IsMember({"auto", "apertium", "openai", "pseudo"}).description(""))
          ->capture_default_str()
          ->group(engines);
  auto* const growth = translate
                           .add_option("--growth", options.engine.growth,
                                       "pseudo: factor by which texts grow, 1 to 20")
                           ->type_name("F")
                           ->check(CheckGrowth)
                           ->group(engines);
  auto* const url = translate
                        .add_option("--openai-url", options.engine.openaiUrl,
                                    "openai: base URL, such as http://localhost:8080/v1")
                        ->type_name("URL")
                        ->group(engines);
  auto* const model =
      translate
          .add_option("--openai-model", options.engine.openaiModel, "openai: the model's name")
          ->type_name("NAME")
          ->group(engines);
  auto* const key = translate
                        .add_option("--openai-key-file", options.engine.openaiKeyFile,
                                    "openai: file whose first line is the key")
                        ->type_name("FILE")
                        ->group(engines);

  auto* const authority =
      translate
          .add_option("--openai-ca-file", options.engine.openaiCaFile,
                      "openai: PEM file with one more certificate authority to trust")
          ->type_name("FILE")
          ->group(engines);

  const char* const services = "Service (in place of an engine)";
  auto* const service =
      translate.add_option("--service", raw.serviceUrl, "http(s)://host[:port] of a service")
          ->type_name("URL")
          ->group(services);
  for (CLI::Option* const other : {engine, growth, url, model, key, authority})
    service->excludes(other);
  translate.add_option("--token-file", raw.tokenFile, "File whose first word is the access token")
      ->type_name("FILE")
      ->needs(service)
      ->group(services);
  translate
      .add_option("--ca-file", options.authorityFile,
                  "PEM file with one more certificate authority to trust")
      ->type_name("FILE")
      ->needs(service)
      ->group(services);

  const char* const telling = "Messages";
  translate
      .add_flag("--json", options.json,
                "Print one JSON object a line instead: each deck, its events, its result")
      ->group(telling);
  translate
      .add_flag("--list-left", options.listLeft,
                "List each text that came back unchanged or not at all")
      ->group(telling);
  translate
      .add_flag("--stats", options.stats,
                "Print where the time went, calls into the deck, and peak memory")
      ->group(telling);
  translate.add_flag("--quiet,-q", options.quiet, "Print only errors and warnings")->group(telling);
  translate
      .add_flag("--paced", options.paced,
                "Work at the pace of a user's screen instead of full speed")
      ->group(telling);
  translate.footer(kExamples);
}

bool IsReadable(const std::string& path) {
  return std::ifstream(path, std::ios::binary).peek() != std::ifstream::traits_type::eof();
}

// Checks that involve several options; a sentence, or nothing when all is well.
std::string Complete(const CLI::App& translate, const RawOptions& raw, TranslateOptions& options) {
  std::string error;
  if (options.targetLang == "auto") return "--to takes a language; auto is only for --from";
  if (translate.count("--growth") > 0 && options.engine.name != "pseudo") {
    return "--growth needs --engine pseudo";
  }
  for (const char* const name :
       {"--openai-url", "--openai-model", "--openai-key-file", "--openai-ca-file"}) {
    if (translate.count(name) > 0 && options.engine.name != "openai") {
      return std::string(name) + " needs --engine openai";
    }
  }
  const bool toOutput = options.output.file == kStandardStream;
  if (toOutput && options.json) return "--json and --output - both need standard output";
  for (const std::string& deck : options.decks) {
    if (deck.empty()) return "a deck's name is empty";
    if (IsStandardInput(deck) && (options.output.file.empty() || options.decks.size() > 1)) {
      return "a deck from standard input is translated by itself and needs --output";
    }
  }
  if (!ReadSelect(raw.select, options.select, error)) return error;
  if (raw.serviceUrl.empty() && translate.count("--service") == 0) return {};

  options.ownService = false;
  if (!ParseServiceUrl(raw.serviceUrl, options.service, error)) return PlainLine(error);
  if (translate.count("--token-file") > 0 &&
      !ReadTokenFile(raw.tokenFile, options.accessToken, error)) {
    return error;
  }
  if (translate.count("--ca-file") > 0 && !IsReadable(options.authorityFile)) {
    return CannotSentence("read " + PlainLine(options.authorityFile),
                          "no such file, or it is empty");
  }
  return {};
}

// The parser's formatter leaves two empty lines between groups and several at the end.
std::string WithoutGaps(const std::string& text) {
  std::string kept;
  for (const char c : text) {
    const std::size_t size = kept.size();
    if (c == '\n' && size >= 2 && kept[size - 1] == '\n' && kept[size - 2] == '\n') continue;
    kept += c;
  }
  while (kept.size() >= 2 && kept[kept.size() - 2] == '\n') kept.pop_back();
  return kept;
}

// "quillmarch talk.pptx --to es": the one thing that a deck as the first word can mean.
bool MeansTranslate(const std::vector<const char*>& words) {
  return words.size() > 1 && IsDeckEnding(EndingOf(words[1]));
}

std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return PlainLine(text);
}

}  // namespace

CommandLine ReadCommandLine(int argc, const char* const* argv) {
  CommandLine line;
  RawOptions raw;
  CLI::App app("Translates presentations and loses nothing in them.", "quillmarch");
  app.formatter(std::make_shared<PlainFormatter>());
  app.require_subcommand(1);
  app.set_version_flag("--version", "quillmarch " QUILLMARCH_VERSION);
  app.footer(kExamples);
  CLI::App& translate = *app.add_subcommand("translate", "Translate decks");
  Declare(translate, line.translate, raw);

  std::vector<const char*> words(argv, argv + argc);
  if (MeansTranslate(words)) words.insert(words.begin() + 1, "translate");
  // The parser takes no further name after "--" once it has one, so those are set apart.
  const auto mark = std::find_if(words.begin(), words.end(),
                                 [](const char* word) { return std::string_view(word) == "--"; });
  try {
    app.parse(static_cast<int>(mark - words.begin()), words.data());
    if (mark != words.end()) {
      line.translate.decks.insert(line.translate.decks.end(), mark + 1, words.end());
    }
    if (line.translate.decks.empty()) throw CLI::RequiredError("DECK");
  } catch (const CLI::CallForHelp&) {
    line.output = WithoutGaps(app.help());
    return line;
  } catch (const CLI::CallForVersion& version) {
    line.output = std::string(version.what()) + "\n";
    return line;
  } catch (const CLI::ParseError& problem) {
    line.exitCode = kExitBadInput;
    line.error = OneLine(problem.what()) + " (see quillmarch translate --help)";
    return line;
  }

  const std::string problem = Complete(translate, raw, line.translate);
  if (!problem.empty()) {
    line.exitCode = kExitBadInput;
    line.error = problem;
    return line;
  }
  line.run = true;
  return line;
}

}  // namespace quillmarch::host
