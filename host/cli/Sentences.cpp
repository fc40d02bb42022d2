#include "host/cli/Sentences.h"

#include <algorithm>

#include "host/cli/OutputPlan.h"
#include "host/cli/StandardStreams.h"
#include "host/cli/TerminalText.h"
#include "run/document/CollectCodes.h"

namespace quillmarch::host {

namespace {

constexpr std::size_t kLongestMessage = 200;

struct CodeSentence {
  WideView code;
  const char* sentence;
};

constexpr CodeSentence kSentences[] = {
    {u"unauthorized", "the access token is missing or has expired"},
    {u"insufficient_credits", "there are no credits left for this translation"},
    {u"network_error", "the translation service cannot be reached or gave no answer"},
    {u"translate_failed", "the translation service gave no usable answer"},
    {u"batch_size_mismatch", "the translation service returned a wrong number of texts"},
    {u"terminology_resolve_failed", "the terminology of this run could not be read"},
    {u"collect_failed", "the texts of the deck could not be read"},
    {u"pane_window_unavailable", "the deck has no window to work in"},
    {u"presentation_busy", "the deck is being translated by another run"},
    {u"bilingual_copy_failed", "the bilingual slides could not be created"},
    {u"engine_unavailable", "the translation engine is not available"},
    {u"engine_timeout", "the translation engine took too long to answer"},
    {u"engine_failed", "the translation engine failed"},
    {u"engine_refused", "the translation engine refused the request"},
    {u"engine_bad_answer", "the translation engine gave no usable answer"},
    {u"unsupported_language_pair", "the translation engine does not serve this pair of languages"},
    {u"rate_limited", "the translation service wants fewer requests"},
    {u"payload_too_large", "one slide has more text than the translation service accepts"},
    {u"too_many_texts", "one slide has more texts than the translation service accepts at once"},
    {u"shutting_down", "the translation service is shutting down"},
};

struct ResultSentence {
  ResultCode code;
  const char* sentence;
};

constexpr ResultSentence kCollectSentences[] = {
    {addin::kNothingSelected, "nothing translatable is selected"},
    {addin::kSelectionWithoutText, "the selection holds no text to translate"},
    {addin::kSelectionUnreadable, "the selection could not be read"},
    {addin::kSelectionTooLarge, "the selection is too large; select less"},
};

const char* SentenceOf(WideView code, ResultCode failure) {
  for (const ResultSentence& entry : kCollectSentences) {
    if (entry.code == failure) return entry.sentence;
  }
  for (const CodeSentence& entry : kSentences) {
    if (entry.code == code) return entry.sentence;
  }
  return nullptr;
}

bool IsPlainEnglish(WideView text) {
  return !text.empty() && std::all_of(text.begin(), text.end(),
                                      [](char16_t unit) { return unit >= 0x20 && unit < 0x7F; });
}

// Texts of our own transport, which the sentence of their code already says.
bool SaysNothingMore(WideView message) {
  return message == u"HTTP request failed" || message == u"batch size mismatch" ||
         message == u"terminology resolve failed";
}

}  // namespace

std::string FailureSentence(WideView code, WideView message, ResultCode failure) {
  const char* const found = SentenceOf(code, failure);
  std::string sentence;
  if (found != nullptr) {
    sentence = found;
  } else {
    sentence = "the translation service answered with the error \"" +
               Shorten(PlainLine(ToUtf8(code)), kLongestMessage) + "\"";
  }
  if (IsPlainEnglish(message) && !SaysNothingMore(message)) {
    sentence += " (" + Shorten(ToUtf8(message), kLongestMessage) + ")";
  }
  return sentence;
}

std::string CannotSentence(std::string_view action, std::string_view reason) {
  std::string sentence = "Cannot " + std::string(action) + ": " + std::string(reason);
  char& first = sentence[sentence.size() - reason.size()];
  // "The part ...", but not a name in capitals.
  const bool isWord =
      reason.size() > 1 && (reason[1] == ' ' || (reason[1] >= 'a' && reason[1] <= 'z'));
  if (isWord && first >= 'A' && first <= 'Z') first = static_cast<char>(first - 'A' + 'a');
  if (!sentence.ends_with('.')) sentence += '.';
  return sentence;
}

std::string ShownDeck(const std::string& deck) {
  return IsStandardInput(deck) ? "standard input" : PlainLine(deck);
}

std::string ShownOutput(const std::string& output) {
  return output == kStandardStream ? "standard output" : PlainLine(output);
}

std::string Counted(std::int64_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace quillmarch::host
