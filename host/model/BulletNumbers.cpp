#include "host/model/BulletNumbers.h"

#include <algorithm>
#include <string_view>

#include "foundation/text/Wide.h"

namespace quillmarch::host::model {
namespace {

// There are no Roman numerals beyond this.
constexpr std::int32_t kMostRoman = 3999;
constexpr std::int32_t kLetters = 26;

std::string Roman(std::int32_t number) {
  struct Row {
    std::int32_t value;
    std::string_view sign;
  };
  constexpr Row kRows[] = {{1000, "m"}, {900, "cm"}, {500, "d"}, {400, "cd"}, {100, "c"},
                           {90, "xc"},  {50, "l"},   {40, "xl"}, {10, "x"},   {9, "ix"},
                           {5, "v"},    {4, "iv"},   {1, "i"}};
  std::string text;
  for (const Row& row : kRows) {
    for (; number >= row.value; number -= row.value) text += row.sign;
  }
  return text;
}

std::string Digits(std::string_view type, std::int32_t number) {
  std::string text;
  if (type.starts_with("alpha")) {
    // After z comes aa, then bb.
    const auto letter = static_cast<char>('a' + (number - 1) % kLetters);
    text.assign(static_cast<std::size_t>((number - 1) / kLetters) + 1, letter);
  } else if (type.starts_with("roman") && number <= kMostRoman) {
    text = Roman(number);
  } else {
    return std::to_string(number);
  }
  if (type.find("Uc") != std::string_view::npos) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return static_cast<char>(c - 'a' + 'A'); });
  }
  return text;
}

std::string Shown(std::string_view type, std::int32_t number) {
  std::string text = Digits(type, number);
  if (type.ends_with("ParenBoth")) return "(" + text + ")";
  if (type.ends_with("ParenR")) return text + ")";
  if (type.ends_with("Plain")) return text;
  if (type.ends_with("Minus")) return text + "-";
  return text + ".";
}

}  // namespace

std::u16string BulletNumbers::Next(const deck::BulletMark& bullet, std::size_t level) {
  for (std::size_t deeper = level + 1; deeper < counts_.size(); ++deeper) counts_[deeper] = {};
  Count& count = counts_[level];
  if (bullet.kind != deck::BulletMark::Kind::kNumber) {
    count = {};
    // A picture is about as wide as a dot.
    if (bullet.kind == deck::BulletMark::Kind::kPicture) return u"\u2022";
    return bullet.kind == deck::BulletMark::Kind::kNone ? std::u16string() : ToWide(bullet.text);
  }
  if (count.type != bullet.text || count.start != bullet.startAt || count.number == 0) {
    count = {bullet.text, bullet.startAt, bullet.startAt};
  } else {
    ++count.number;
  }
  return ToWide(Shown(bullet.text, count.number));
}

}  // namespace quillmarch::host::model
