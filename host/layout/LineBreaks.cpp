#include "host/layout/LineBreaks.h"

#include <unicode/ubrk.h>

#include "host/layout/ScriptClass.h"

namespace quillmarch::host::layout {

LineBreaks::LineBreaks() {
  UErrorCode error = U_ZERO_ERROR;
  // The root rules: the same on every machine, whatever its language.
  rules_ = ubrk_open(UBRK_LINE, "", nullptr, 0, &error);
  if (U_FAILURE(error)) rules_ = nullptr;
}

LineBreaks::~LineBreaks() {
  if (rules_) ubrk_close(rules_);
}

const std::vector<bool>& LineBreaks::Before(std::u16string_view text) {
  before_.assign(text.size(), false);
  UErrorCode error = U_ZERO_ERROR;
  if (rules_) ubrk_setText(rules_, text.data(), static_cast<std::int32_t>(text.size()), &error);
  if (!rules_ || U_FAILURE(error)) {
    for (std::size_t i = 1; i < text.size(); ++i) {
      before_[i] = IsHangingBlank(text[i - 1]) && !IsHangingBlank(text[i]);
    }
    return before_;
  }
  for (std::int32_t at = ubrk_next(rules_); at != UBRK_DONE; at = ubrk_next(rules_)) {
    if (static_cast<std::size_t>(at) < text.size()) before_[static_cast<std::size_t>(at)] = true;
  }
  return before_;
}

}  // namespace quillmarch::host::layout
