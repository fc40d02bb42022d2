#include "foundation/automation/ComValues.h"

#include <oleauto.h>

#include <new>
#include <string_view>

#include "foundation/automation/ComObject.h"
#include "foundation/automation/ComPtr.h"

namespace quillmarch {

namespace {

// For calls that only read a value and yet do not say so.
VARIANT* ReadOnly(const VARIANT& value) {
  return const_cast<VARIANT*>(&value);
}

Variant NumberOf(const VARIANT& value) {
  ComVariant real;
  if (FAILED(VariantChangeTypeEx(real.get(), ReadOnly(value), LOCALE_INVARIANT, 0, VT_R8))) {
    return Variant::Error(kTypeMismatch);
  }
  return Variant::R8(real.value().dblVal);
}

Variant ObjectOf(IUnknown* object) {
  if (object == nullptr) return Variant::Object({});
  ComPtr<IDispatch> dispatch;
  if (FAILED(object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(dispatch.put())))) {
    dispatch.Detach();
    return Variant::Error(kNoInterface);
  }
  return Variant::Object(WrapDispatch(dispatch.get()));
}

}  // namespace

Wide FromBstr(BSTR text) {
  const std::wstring_view units(text, SysStringLen(text));
  return Wide(units.begin(), units.end());
}

BSTR ToBstr(WideView text) {
  static_assert(sizeof(wchar_t) == sizeof(char16_t));
  BSTR made = SysAllocStringLen(nullptr, static_cast<UINT>(text.size()));
  if (made == nullptr) throw std::bad_alloc();
  text.copy(reinterpret_cast<char16_t*>(made), text.size());
  return made;
}

Variant FromCom(const VARIANT& value) {
  if ((value.vt & VT_BYREF) != 0) {
    ComVariant direct;
    if (FAILED(VariantCopyInd(direct.get(), ReadOnly(value)))) return Variant::Error(kTypeMismatch);
    return FromCom(direct.value());
  }
  switch (value.vt) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return Variant::Null();
    case VT_I2:
      return Variant::I2(value.iVal);
    case VT_I4:
      return Variant::I4(value.lVal);
    case VT_R4:
      return Variant::R4(value.fltVal);
    case VT_R8:
      return Variant::R8(value.dblVal);
    case VT_BOOL:
      return Variant::Bool(value.boolVal != VARIANT_FALSE);
    case VT_ERROR:
      return Variant::Error(value.scode);
    case VT_BSTR:
      return Variant::Text(FromBstr(value.bstrVal));
    case VT_DISPATCH:
      return Variant::Object(WrapDispatch(value.pdispVal));
    case VT_UNKNOWN:
      return ObjectOf(value.punkVal);
    default:
      return NumberOf(value);
  }
}

ResultCode ToCom(const Variant& value, VARIANT& out) {
  VariantInit(&out);
  switch (value.type()) {
    case VariantType::kEmpty:
      return kOk;
    case VariantType::kNull:
      out.vt = VT_NULL;
      return kOk;
    case VariantType::kI2:
      out.vt = VT_I2;
      out.iVal = static_cast<SHORT>(value.whole());
      return kOk;
    case VariantType::kI4:
      out.vt = VT_I4;
      out.lVal = value.whole();
      return kOk;
    case VariantType::kBool:
      out.vt = VT_BOOL;
      out.boolVal = value.whole() != 0 ? VARIANT_TRUE : VARIANT_FALSE;
      return kOk;
    case VariantType::kError:
      out.vt = VT_ERROR;
      out.scode = value.whole();
      return kOk;
    case VariantType::kR4:
      out.vt = VT_R4;
      out.fltVal = value.single();
      return kOk;
    case VariantType::kR8:
      out.vt = VT_R8;
      out.dblVal = value.real();
      return kOk;
    case VariantType::kText:
      out.bstrVal = ToBstr(value.text());
      out.vt = VT_BSTR;
      return kOk;
    case VariantType::kObject: {
      IDispatch* const dispatch = DispatchOf(value.object().get());
      if (dispatch == nullptr && value.hasObject()) return kTypeMismatch;
      if (dispatch != nullptr) dispatch->AddRef();
      out.vt = VT_DISPATCH;
      out.pdispVal = dispatch;
      return kOk;
    }
  }
  return kTypeMismatch;
}

ComArguments::ComArguments(std::span<const Variant> values) {
  values_.reserve(values.size());
  try {
    for (const Variant& value : values) {
      VARIANT& made = values_.emplace_back();
      const ResultCode code = ToCom(value, made);
      if (Succeeded(code_)) code_ = code;
    }
  } catch (...) {
    for (VARIANT& made : values_) VariantClear(&made);
    throw;
  }
}

ComArguments::~ComArguments() {
  for (VARIANT& value : values_) VariantClear(&value);
}

}  // namespace quillmarch
