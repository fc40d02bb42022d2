#include "host/workbook/format/FormatCode.h"

#include <charconv>
#include <cstddef>

#include "foundation/text/Utf8.h"

namespace quillmarch::host::workbook {
namespace {

constexpr std::size_t kMostCodeBytes = 1024;  // Excel itself takes 255 characters
constexpr std::size_t kMostSections = 4;
constexpr int kPercentPower = 2;
constexpr int kThousandPower = 3;

char Small(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}

bool BeginsWith(std::string_view text, std::string_view word) {
  if (text.size() < word.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (Small(text[i]) != Small(word[i])) return false;
  }
  return true;
}

bool IsCurrencySign(std::string_view text) {
  for (const std::string_view sign : {"$", "\u20AC", "\u00A3", "\u00A5"}) {
    if (text.find(sign) != std::string_view::npos) return true;
  }
  return false;
}

class SectionReader {
 public:
  SectionReader(std::string_view code, std::size_t& at) : code_(code), at_(at) {}

  FormatSection Read() {
    while (at_ < code_.size() && code_[at_] != ';') Step();
    if (at_ < code_.size()) ++at_;
    Finish();
    return std::move(section_);
  }

 private:
  std::string_view Rest() const { return code_.substr(at_); }
  std::size_t CharLength(std::size_t at) const {
    const std::size_t length = at < code_.size() ? DecodeUtf8(code_.substr(at)).length : 0;
    return length == 0 ? 1 : length;
  }

  void Add(TokenKind kind, char letter = 0, unsigned count = 0) {
    section_.tokens.push_back({kind, letter, count, {}});
  }
  void AddLiteral(std::string_view text) {
    if (IsCurrencySign(text)) section_.currency = true;
    if (section_.tokens.empty() || section_.tokens.back().kind != TokenKind::kLiteral ||
        section_.tokens.back().letter != 0) {
      Add(TokenKind::kLiteral);
    }
    section_.tokens.back().text += text;
  }

  void Step();
  void Bracket();
  void DateLetters(char letter);
  bool Condition(std::string_view inside);
  bool Elapsed(std::string_view inside);
  void Finish();
  void FinishDate();
  void FinishNumber();

  std::string_view code_;
  std::size_t& at_;
  FormatSection section_;
};

void SectionReader::Step() {
  const char c = code_[at_];
  const char small = Small(c);
  if (c == '"') {
    const std::size_t close = std::min(code_.find('"', at_ + 1), code_.size());
    AddLiteral(code_.substr(at_ + 1, close - at_ - 1));
    at_ = std::min(close + 1, code_.size());
  } else if (c == '\\' || c == '_' || c == '*') {
    // "_" leaves a space of the next character's width, "*" fills the column with it.
    const std::size_t length = at_ + 1 < code_.size() ? CharLength(at_ + 1) : 0;
    if (c == '\\') AddLiteral(code_.substr(at_ + 1, length));
    if (c == '_') AddLiteral(" ");
    at_ += 1 + length;
  } else if (c == '[') {
    Bracket();
  } else if (BeginsWith(Rest(), "General")) {
    Add(TokenKind::kGeneral);
    at_ += 7;
  } else if (BeginsWith(Rest(), "AM/PM")) {
    Add(TokenKind::kHalfDay, 0, 2);
    section_.date = true;
    at_ += 5;
  } else if (BeginsWith(Rest(), "A/P")) {
    Add(TokenKind::kHalfDay, 0, 1);
    section_.date = true;
    at_ += 3;
  } else if ((c == 'E' || c == 'e') && at_ + 1 < code_.size() &&
             (code_[at_ + 1] == '+' || code_[at_ + 1] == '-')) {
    Add(TokenKind::kExponent, code_[at_ + 1]);
    at_ += 2;
  } else if (small == 'y' || small == 'm' || small == 'd' || small == 'h' || small == 's' ||
             small == 'e') {
    DateLetters(small);
  } else {
    ++at_;
    switch (c) {
      case '0':
      case '#':
      case '?':
        Add(TokenKind::kDigit, c);
        break;
      case '.':
        Add(TokenKind::kPoint);
        break;
      case ',':
        // What it means is known once all digits are.
        Add(TokenKind::kLiteral, ',');
        break;
      case '%':
        Add(TokenKind::kPercent);
        break;
      case '/':
        Add(TokenKind::kSlash);
        break;
      case '@':
        Add(TokenKind::kText);
        section_.text = true;
        break;
      default: {
        const std::size_t length = CharLength(at_ - 1);
        AddLiteral(code_.substr(at_ - 1, length));
        at_ += length - 1;
      }
    }
  }
}

void SectionReader::DateLetters(char letter) {
  unsigned count = 0;
  while (at_ < code_.size() && Small(code_[at_]) == letter) {
    ++count;
    ++at_;
  }
  const TokenKind kind = letter == 'm'   ? TokenKind::kMonth
                         : letter == 'd' ? TokenKind::kDay
                         : letter == 'h' ? TokenKind::kHour
                         : letter == 's' ? TokenKind::kSecond
                                         : TokenKind::kYear;
  // "e" is the whole year.
  Add(kind, 0, letter == 'e' ? 4 : count);
  section_.date = true;
}

bool SectionReader::Elapsed(std::string_view inside) {
  const char letter = inside.empty() ? '\0' : Small(inside.front());
  for (const char c : inside) {
    if (Small(c) != letter) return false;
  }
  const auto count = static_cast<unsigned>(inside.size());
  if (letter == 'h') Add(TokenKind::kElapsedHours, 0, count);
  if (letter == 'm') Add(TokenKind::kElapsedMinutes, 0, count);
  if (letter == 's') Add(TokenKind::kElapsedSeconds, 0, count);
  const bool elapsed = letter == 'h' || letter == 'm' || letter == 's';
  section_.date = section_.date || elapsed;
  return elapsed;
}

bool SectionReader::Condition(std::string_view inside) {
  struct Sign {
    std::string_view text;
    FormatCondition condition;
  };
  constexpr Sign kSigns[] = {
      {"<=", FormatCondition::kLessEqual}, {">=", FormatCondition::kMoreEqual},
      {"<>", FormatCondition::kOther},     {"<", FormatCondition::kLess},
      {">", FormatCondition::kMore},       {"=", FormatCondition::kEqual},
  };
  for (const Sign& sign : kSigns) {
    if (!inside.starts_with(sign.text)) continue;
    inside.remove_prefix(sign.text.size());
    const auto [end, error] =
        std::from_chars(inside.data(), inside.data() + inside.size(), section_.bound);
    if (error == std::errc()) section_.condition = sign.condition;
    return true;
  }
  return false;
}

// "[Red]" and "[$-409]" show nothing, "[$\u20AC-407]" shows the currency.
void SectionReader::Bracket() {
  const std::size_t close = code_.find(']', at_);
  if (close == std::string_view::npos) {
    AddLiteral(Rest());
    at_ = code_.size();
    return;
  }
  const std::string_view inside = code_.substr(at_ + 1, close - at_ - 1);
  at_ = close + 1;
  if (inside.starts_with('$')) {
    const std::string_view sign = inside.substr(1, inside.find('-') - 1);
    if (!sign.empty()) AddLiteral(sign);
    if (!sign.empty()) section_.currency = true;
    return;
  }
  if (!Condition(inside)) Elapsed(inside);
}

// An "m" beside hours or seconds means minutes; ".00" after seconds are parts of them.
void SectionReader::FinishDate() {
  std::vector<FormatToken>& tokens = section_.tokens;
  TokenKind last = TokenKind::kLiteral;
  std::size_t pending = tokens.size();  // the last "m" that may still turn out to be minutes
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    FormatToken& token = tokens[i];
    switch (token.kind) {
      case TokenKind::kMonth:
        if ((last == TokenKind::kHour || last == TokenKind::kElapsedHours) && token.count <= 2) {
          token.kind = TokenKind::kMinute;
        } else if (token.count <= 2) {
          pending = i;
        }
        last = token.kind;
        break;
      case TokenKind::kSecond:
      case TokenKind::kElapsedSeconds:
        if (last == TokenKind::kMonth && pending < i) tokens[pending].kind = TokenKind::kMinute;
        last = token.kind;
        break;
      case TokenKind::kPoint:
        if (i + 1 < tokens.size() && tokens[i + 1].kind == TokenKind::kDigit) {
          token.kind = TokenKind::kSubSecond;
          while (i + 1 < tokens.size() && tokens[i + 1].kind == TokenKind::kDigit) {
            ++tokens[i].count;
            tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(i) + 1);
          }
        } else {
          token.kind = TokenKind::kLiteral;
          token.text = ".";
        }
        break;
      case TokenKind::kSlash:
        token.kind = TokenKind::kLiteral;
        token.text = "/";
        break;
      case TokenKind::kPercent:
        token.kind = TokenKind::kLiteral;
        token.text = "%";
        break;
      case TokenKind::kLiteral:
        if (token.letter == ',') token.text = ",";
        break;
      case TokenKind::kDigit:
        token.kind = TokenKind::kLiteral;
        token.text = token.letter == '0' ? "0" : "";
        break;
      default:
        if (token.kind != TokenKind::kHalfDay) last = token.kind;
    }
  }
}

// A comma between digits groups them, one directly after the last digits divides by a thousand; any
// other is shown.
void SectionReader::FinishNumber() {
  std::vector<FormatToken>& tokens = section_.tokens;
  std::size_t firstDigit = tokens.size();
  std::size_t lastDigit = 0;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind == TokenKind::kPoint || tokens[i].kind == TokenKind::kExponent) break;
    if (tokens[i].kind != TokenKind::kDigit) continue;
    firstDigit = std::min(firstDigit, i);
    lastDigit = i;
  }
  std::vector<FormatToken> kept;
  bool scales = false;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    FormatToken& token = tokens[i];
    if (token.kind == TokenKind::kPercent) section_.power += kPercentPower;
    if (token.kind == TokenKind::kLiteral && token.letter == ',') {
      if (i > firstDigit && i < lastDigit) {
        section_.thousands = true;
        continue;
      }
      if (scales) {
        section_.power -= kThousandPower;
        continue;
      }
      token.text = ",";
      scales = false;
    } else {
      scales = token.kind == TokenKind::kDigit;
    }
    kept.push_back(std::move(token));
  }
  tokens = std::move(kept);
}

void SectionReader::Finish() {
  if (section_.date) {
    FinishDate();
  } else {
    FinishNumber();
  }
}

}  // namespace

std::vector<FormatSection> ParseFormatCode(std::string_view code) {
  std::vector<FormatSection> sections;
  std::size_t at = 0;
  if (code.size() <= kMostCodeBytes) {
    while (at < code.size() && sections.size() < kMostSections) {
      sections.push_back(SectionReader(code, at).Read());
      // A code that ends in ";" has an empty section after it, which shows nothing.
      if (at == code.size() && code.back() == ';' && sections.size() < kMostSections) {
        sections.emplace_back();
      }
    }
  }
  if (sections.empty()) {
    sections.emplace_back();
    sections.front().tokens.push_back({TokenKind::kGeneral, 0, 0, {}});
  }
  return sections;
}

}  // namespace quillmarch::host::workbook
