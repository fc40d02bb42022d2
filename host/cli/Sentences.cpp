#include "host/cli/Sentences.h"

#include <algorithm>

#include "host/cli/TerminalText.h"

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
    {u"network_error", "the translation service can't be reached or gave no answer"},
    {u"translate_failed", "the translation service gave no usable answer"},
    {u"batch_size_mismatch", "the translation service gave back a wrong number of texts"},
    {u"terminology_resolve_failed", "the terminology of this run could not be read"},
    {u"collect_failed", "the texts of the deck could not be read"},
    {u"pane_window_unavailable", "the deck has no window to work in"},
    {u"presentation_busy", "the deck is being translated by another run"},
    {u"bilingual_copy_failed", "the bilingual slides could not be made"},
    {u"engine_unavailable", "the translation engine is not available"},
    {u"engine_timeout", "the translation engine took too long to answer"},
    {u"engine_failed", "the translation engine failed"},
    {u"engine_refused", "the translation engine refused the request"},
    {u"engine_bad_answer", "the translation engine gave no usable answer"},
    {u"unsupported_language_pair", "the translation engine has no such pair of languages"},
    {u"rate_limited", "the translation service asks for fewer requests"},
    {u"payload_too_large", "a slide's texts are more than the translation service takes"},
    {u"too_many_texts", "a slide has more texts than the translation service takes at once"},
    {u"shutting_down", "the translation service is being stopped"},
};

// What a run says about a selection.
constexpr CodeSentence kSelectionSentences[] = {
    {u"选区里没有可翻译的文字", "the selection holds no text to translate"},
    {u"选区过大，请缩小选择范围", "the selection is too large; select less"},
    {u"无法读取选区", "the selection could not be read"},
    {u"请先选中要翻译的形状或文字", "nothing is selected that could be translated"},
};

template <std::size_t N>
const char* SentenceOf(const CodeSentence (&sentences)[N], WideView word) {
  for (const CodeSentence& entry : sentences) {
    if (entry.code == word) return entry.sentence;
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

std::string FailureSentence(WideView code, WideView message) {
  const char* found = nullptr;
  if (code == u"collect_failed") found = SentenceOf(kSelectionSentences, message);
  if (found == nullptr) found = SentenceOf(kSentences, code);
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

std::string Counted(std::int64_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace quillmarch::host
