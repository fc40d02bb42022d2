// Values between the add-in and COM. Each text is copied once on its way. Windows sources only.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <span>
#include <vector>

#include "foundation/automation/Variant.h"

namespace quillmarch {

// A VARIANT that is cleared at the end of its scope.
class ComVariant {
 public:
  ComVariant() { VariantInit(&value_); }
  ~ComVariant() { VariantClear(&value_); }
  ComVariant(const ComVariant&) = delete;
  ComVariant& operator=(const ComVariant&) = delete;

  VARIANT* get() { return &value_; }
  const VARIANT& value() const { return value_; }

 private:
  VARIANT value_;
};

// The value of a host, copied. Numbers of widths that the add-in does not look at become reals, so
// that they can be read and yet are no flags; what we have no value for, like an array,
// becomes an error value. Throws when memory runs out.
Variant FromCom(const VARIANT& value);

// Fills `out`, which is empty; its owner clears it. kTypeMismatch for an object that is not
// COM's. Throws when memory runs out.
ResultCode ToCom(const Variant& value, VARIANT& out);

// A text of ours for a COM caller, who frees it; throws when memory runs out.
BSTR ToBstr(WideView text);
// A copy; null is the empty text.
Wide FromBstr(BSTR text);

// The arguments of one call in the order they come in, cleared at the end of the scope.
class ComArguments {
 public:
  explicit ComArguments(std::span<const Variant> values);
  ~ComArguments();
  ComArguments(const ComArguments&) = delete;
  ComArguments& operator=(const ComArguments&) = delete;

  ResultCode code() const { return code_; }  // of the first that could not be handed over
  VARIANT* data() { return values_.data(); }
  UINT count() const { return static_cast<UINT>(values_.size()); }

 private:
  ResultCode code_ = kOk;
  std::vector<VARIANT> values_;
};

}  // namespace quillmarch
