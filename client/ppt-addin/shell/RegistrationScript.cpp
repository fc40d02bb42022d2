#include "shell/RegistrationScript.h"

#include <optional>
#include <utility>
#include <vector>

namespace quillmarch::addin {

namespace {

constexpr std::uint32_t kWin32Facility = 0x80070000;
constexpr std::size_t kNumberDigits = 9;  // more could overflow

enum class Removal { kWhenEmpty, kWhole, kNever };

struct Content {
  bool isNumber = false;
  Wide text;
  std::uint32_t number = 0;
};

struct ScriptValue {
  Wide name;  // empty: the key's default
  Content content;
  bool keep = false;  // marked NoRemove
};

struct ScriptKey {
  Wide name;
  Removal removal = Removal::kWhenEmpty;
  std::vector<ScriptValue> values;
  std::vector<ScriptKey> keys;
};

// ---- Words -------------------------------------------------------------------------------------

struct Word {
  Wide text;
  bool quoted = false;
  bool Is(WideView plain) const { return !quoted && text == plain; }
};

bool IsBlank(char16_t unit) {
  return unit == u' ' || unit == u'\t' || unit == u'\r' || unit == u'\n';
}

// Quotes in a replacement are doubled, as it is always inside quotes.
bool Replace(WideView script, const ScriptVariables& variables, Wide& out) {
  for (std::size_t i = 0; i < script.size(); ++i) {
    if (script[i] != u'%') {
      out += script[i];
      continue;
    }
    const std::size_t end = script.find(u'%', i + 1);
    if (end == WideView::npos) return false;
    if (end == i + 1) {
      out += u'%';
    } else {
      const auto found = variables.find(Wide(script.substr(i + 1, end - i - 1)));
      if (found == variables.end()) return false;
      for (const char16_t unit : found->second) out.append(unit == u'\'' ? 2 : 1, unit);
    }
    i = end;
  }
  return true;
}

// One quoted word, from after its opening quote; `at` ends after the closing one.
bool ReadQuoted(WideView text, std::size_t& at, Wide& out) {
  for (; at < text.size(); ++at) {
    if (text[at] == u'\'') {
      if (at + 1 == text.size() || text[at + 1] != u'\'') {
        ++at;
        return true;
      }
      ++at;
    }
    out += text[at];
  }
  return false;
}

bool SplitWords(WideView text, std::vector<Word>& words) {
  std::size_t at = 0;
  while (at < text.size()) {
    if (IsBlank(text[at])) {
      ++at;
      continue;
    }
    Word word;
    if (text[at] == u'\'') {
      word.quoted = true;
      if (!ReadQuoted(text, ++at, word.text)) return false;
    } else {
      while (at < text.size() && !IsBlank(text[at])) word.text += text[at++];
    }
    words.push_back(std::move(word));
  }
  return true;
}

// ---- The tree ----------------------------------------------------------------------------------

class Parser {
 public:
  explicit Parser(const std::vector<Word>& words) : words_(words) {}

  bool ParseRoots(std::vector<ScriptKey>& roots) {
    while (at_ < words_.size()) {
      ScriptKey root;
      if (!ParseRoot(root)) return false;
      roots.push_back(std::move(root));
    }
    return !roots.empty();
  }

 private:
  const Word* Next() { return at_ < words_.size() ? &words_[at_++] : nullptr; }
  bool Take(WideView plain) {
    if (at_ == words_.size() || !words_[at_].Is(plain)) return false;
    ++at_;
    return true;
  }

  bool ParseRoot(ScriptKey& root) {
    root.removal = Removal::kNever;
    if (Take(u"HKCR")) {
      root.name = u"Software\\Classes";
    } else if (!Take(u"HKCU")) {
      return false;
    }
    return Take(u"{") && ParseBody(root);
  }

  // Up to the closing brace.
  bool ParseBody(ScriptKey& key) {
    while (!Take(u"}")) {
      Removal removal = Removal::kWhenEmpty;
      if (Take(u"NoRemove")) {
        removal = Removal::kNever;
      } else if (Take(u"ForceRemove")) {
        removal = Removal::kWhole;
      }
      if (Take(u"val") ? !ParseValue(key, removal) : !ParseKey(key, removal)) return false;
    }
    return true;
  }

  bool ParseValue(ScriptKey& key, Removal removal) {
    const Word* const name = Next();
    ScriptValue value;
    value.keep = removal == Removal::kNever;
    if (name == nullptr || !Take(u"=") || !ParseContent(value.content)) return false;
    value.name = name->text;
    key.values.push_back(std::move(value));
    return true;
  }

  bool ParseKey(ScriptKey& above, Removal removal) {
    const Word* const name = Next();
    // A backslash would name a key further down, whose parents nobody marked.
    if (name == nullptr || name->text.empty() || name->Is(u"{") || name->Is(u"=") ||
        name->text.find(u'\\') != Wide::npos) {
      return false;
    }
    ScriptKey key;
    key.name = name->text;
    key.removal = removal;
    if (Take(u"=")) {
      ScriptValue value;
      value.keep = removal == Removal::kNever;
      if (!ParseContent(value.content)) return false;
      key.values.push_back(std::move(value));
    }
    if (Take(u"{") && !ParseBody(key)) return false;
    above.keys.push_back(std::move(key));
    return true;
  }

  bool ParseContent(Content& content) {
    const Word* const type = Next();
    const Word* const text = type == nullptr ? nullptr : Next();
    if (text == nullptr || !text->quoted) return false;
    if (type->Is(u"s")) {
      content.text = text->text;
      return true;
    }
    content.isNumber = true;
    return type->Is(u"d") && ParseNumber(text->text, content.number);
  }

  static bool ParseNumber(const Wide& text, std::uint32_t& number) {
    if (text.empty() || text.size() > kNumberDigits) return false;
    for (const char16_t unit : text) {
      if (unit < u'0' || unit > u'9') return false;
      number = number * 10 + static_cast<std::uint32_t>(unit - u'0');
    }
    return true;
  }

  const std::vector<Word>& words_;
  std::size_t at_ = 0;
};

std::optional<std::vector<ScriptKey>> ParseScript(WideView script,
                                                  const ScriptVariables& variables) {
  Wide text;
  std::vector<Word> words;
  std::vector<ScriptKey> roots;
  if (!Replace(script, variables, text) || !SplitWords(text, words) ||
      !Parser(words).ParseRoots(roots)) {
    return std::nullopt;
  }
  return roots;
}

// ---- The two runs ------------------------------------------------------------------------------

Wide Below(const Wide& path, const Wide& name) {
  return path.empty() ? name : path + u"\\" + name;
}

UserRegistry::Code Write(const ScriptKey& key, const Wide& path, UserRegistry& registry) {
  if (key.removal == Removal::kWhole) {
    const UserRegistry::Code gone = registry.DeleteTree(path);
    if (gone != UserRegistry::kDone && gone != UserRegistry::kNotFound) return gone;
  }
  UserRegistry::Code code = path.empty() ? UserRegistry::kDone : registry.CreateKey(path);
  for (const ScriptValue& value : key.values) {
    if (code != UserRegistry::kDone) return code;
    code = value.content.isNumber ? registry.PutNumber(path, value.name, value.content.number)
                                  : registry.PutText(path, value.name, value.content.text);
  }
  for (const ScriptKey& below : key.keys) {
    if (code != UserRegistry::kDone) return code;
    code = Write(below, Below(path, below.name), registry);
  }
  return code;
}

class Remover {
 public:
  explicit Remover(UserRegistry& registry) : registry_(registry) {}

  void Remove(const ScriptKey& key, const Wide& path) {
    if (!path.empty() && !registry_.Exists(path)) return;
    if (key.removal == Removal::kWhole) {
      Note(registry_.DeleteTree(path));
      return;
    }
    for (const ScriptValue& value : key.values) {
      if (!value.keep) Note(registry_.DeleteValue(path, value.name));
    }
    for (const ScriptKey& below : key.keys) Remove(below, Below(path, below.name));
    if (key.removal == Removal::kWhenEmpty && registry_.IsEmpty(path)) {
      Note(registry_.DeleteKey(path));
    }
  }

  UserRegistry::Code first() const { return first_; }

 private:
  void Note(UserRegistry::Code code) {
    if (first_ == UserRegistry::kDone && code != UserRegistry::kNotFound) first_ = code;
  }

  UserRegistry& registry_;
  UserRegistry::Code first_ = UserRegistry::kDone;
};

}  // namespace

ResultCode ResultOfWin32(UserRegistry::Code code) {
  constexpr std::uint32_t kCodeMask = 0xFFFF;
  return code == UserRegistry::kDone ? kOk : MakeResult(kWin32Facility | (code & kCodeMask));
}

ResultCode RunRegisterScript(WideView script, const ScriptVariables& variables,
                             UserRegistry& registry) {
  const auto roots = ParseScript(script, variables);
  if (!roots) return kBadScript;
  for (const ScriptKey& root : *roots) {
    const UserRegistry::Code code = Write(root, root.name, registry);
    if (code != UserRegistry::kDone) return ResultOfWin32(code);
  }
  return kOk;
}

ResultCode RunUnregisterScript(WideView script, const ScriptVariables& variables,
                               UserRegistry& registry) {
  const auto roots = ParseScript(script, variables);
  if (!roots) return kBadScript;
  Remover remover(registry);
  for (const ScriptKey& root : *roots) remover.Remove(root, root.name);
  return ResultOfWin32(remover.first());
}

}  // namespace quillmarch::addin
