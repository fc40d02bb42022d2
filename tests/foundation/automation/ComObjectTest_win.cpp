#include "foundation/automation/ComObject.h"

#include <oleauto.h>

#include <array>
#include <stdexcept>

#include "foundation/automation/Automation.h"
#include "foundation/automation/ComValues.h"
#include "foundation/automation/HostMembers.h"
#include "foundation/system/LiveCounts.h"
#include "gtest/gtest.h"
#include "support/ScriptedDispatch.h"

namespace quillmarch::addin {

using test::ScriptedDispatch;

namespace {

constexpr DISPID kSomeId = 42;
constexpr IID kShapeIid = {
    0x91493479, 0x5A91, 0x11CF, {0x87, 0x00, 0x00, 0xAA, 0x00, 0x60, 0x26, 0x3B}};

VARIANT Whole(LONG value) {
  VARIANT v = {};
  v.vt = VT_I4;
  v.lVal = value;
  return v;
}

VARIANT OfType(VARTYPE type) {
  VARIANT v = {};
  v.vt = type;
  return v;
}

long HostReferences() {
  return LiveCounts()[static_cast<std::size_t>(LiveKind::kHostReference)];
}

// What a host written in another language does when it throws.
[[noreturn]] void ThrowAsAnotherLanguage() {
  constexpr DWORD kOtherCompilersThrow = 0xE06D7363;
  RaiseException(kOtherCompilersThrow, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  std::abort();
}

}  // namespace

TEST(ComObject, AMemberIsFoundByNameAndInvokedInTheUsersLocale) {
  ScriptedDispatch host;
  host.Value(L"Count", kSomeId, Whole(7));
  const ObjectRef object = WrapDispatch(&host);
  Variant value;
  EXPECT_EQ(kOk, AutoGet(object.get(), u"Count", value));
  EXPECT_EQ(7, value.whole());
  ASSERT_EQ(1U, host.calls().size());
  EXPECT_EQ(kSomeId, host.calls()[0].id);
  EXPECT_EQ(DISPATCH_METHOD | DISPATCH_PROPERTYGET, host.calls()[0].flags);
}

TEST(ComObject, AnUnknownNameKeepsTheHostsCodeAndIsNotInvoked) {
  ScriptedDispatch host;
  const ObjectRef object = WrapDispatch(&host);
  Variant value;
  EXPECT_EQ(DISP_E_UNKNOWNNAME, AutoGet(object.get(), u"Nothing", value));
  EXPECT_TRUE(host.calls().empty());
}

TEST(ComObject, EveryCodeOfABusyOrLeavingHostComesThroughAndNothingIsRetried) {
  for (const HRESULT code : {RPC_E_CALL_REJECTED, RPC_E_SERVERCALL_RETRYLATER, RPC_E_DISCONNECTED,
                             RPC_E_SERVERFAULT, CO_E_OBJNOTCONNECTED, DISP_E_EXCEPTION,
                             E_ACCESSDENIED, E_ABORT, static_cast<HRESULT>(0x800A01A8)}) {
    ScriptedDispatch host;
    host.Member(L"Name", kSomeId, [code](const DISPPARAMS&, VARIANT*) { return code; });
    const ObjectRef object = WrapDispatch(&host);
    Variant value = Variant::I4(1);
    EXPECT_EQ(code, AutoGet(object.get(), u"Name", value));
    EXPECT_EQ(VariantType::kEmpty, value.type());
    EXPECT_EQ(1U, host.calls().size());
  }
}

TEST(ComObject, APutNamesItsOneArgument) {
  ScriptedDispatch host;
  std::wstring put;
  host.Member(L"Text", kSomeId, [&put](const DISPPARAMS& params, VARIANT* result) {
    EXPECT_EQ(nullptr, result);
    put.assign(params.rgvarg[0].bstrVal, SysStringLen(params.rgvarg[0].bstrVal));
    return S_OK;
  });
  const ObjectRef object = WrapDispatch(&host);
  EXPECT_EQ(kOk, AutoPutText(object.get(), u"Grüße 日本"));
  EXPECT_EQ(L"Grüße 日本", put);
  EXPECT_EQ(DISPATCH_PROPERTYPUT, host.calls().at(0).flags);
  EXPECT_TRUE(host.calls().at(0).namedPut);
}

TEST(ComObject, ArgumentsStandLastFirstWithTheirTypes) {
  ScriptedDispatch host;
  host.Value(L"Cell", kSomeId, Whole(0));
  const ObjectRef object = WrapDispatch(&host);
  const std::array args = {
      Variant::I2(1),     Variant::I4(2),      Variant::R4(1.5F),
      Variant::R8(2),     Variant::Bool(true), Variant::Text(u"t"),
      Variant::Null(),    Variant(),           Variant::Error(DISP_E_PARAMNOTFOUND),
      Variant::Object({})};
  Variant value;
  EXPECT_EQ(kOk, AutoGet(object.get(), u"Cell", args, value));
  EXPECT_EQ((std::vector<VARTYPE>{VT_DISPATCH, VT_ERROR, VT_EMPTY, VT_NULL, VT_BSTR, VT_BOOL, VT_R8,
                                  VT_R4, VT_I4, VT_I2}),
            host.calls().at(0).types);
}

TEST(ComObject, AnObjectOfItsOwnGoesToTheHostAsTheHostGaveIt) {
  ScriptedDispatch host;
  ScriptedDispatch other;
  IDispatch* given = nullptr;
  host.Member(L"Take", kSomeId, [&given](const DISPPARAMS& params, VARIANT*) {
    given = params.rgvarg[0].pdispVal;
    return S_OK;
  });
  {
    const ObjectRef object = WrapDispatch(&host);
    const std::array args = {Variant::Object(WrapDispatch(&other))};
    Variant value;
    EXPECT_EQ(kOk, AutoGet(object.get(), u"Take", args, value));
  }
  EXPECT_EQ(&other, given);
  EXPECT_EQ(1U, other.references());
}

TEST(ComObject, EveryReferenceTakenIsGivenBack) {
  const long before = HostReferences();
  ScriptedDispatch host;
  ScriptedDispatch child;
  VARIANT object = OfType(VT_DISPATCH);
  object.pdispVal = &child;
  host.Value(L"Child", kSomeId, object);
  host.Interface(kShapeIid, &child);
  {
    const ObjectRef wrapped = WrapDispatch(&host);
    EXPECT_EQ(2U, host.references());
    ObjectRef got;
    EXPECT_TRUE(AutoGetObject(wrapped.get(), u"Child", got));
    EXPECT_EQ(2U, child.references());
    EXPECT_TRUE(AnswersTo(wrapped.get(), ppt::kShape));
    EXPECT_NE(0U, wrapped->Identity());
    EXPECT_EQ(before + 2, HostReferences());
  }
  EXPECT_EQ(1U, host.references());
  EXPECT_EQ(1U, child.references());
  EXPECT_EQ(before, HostReferences());
}

TEST(ComObject, ANullObjectIsAValueWithoutAnObject) {
  ScriptedDispatch host;
  host.Value(L"Child", kSomeId, OfType(VT_DISPATCH));
  const ObjectRef object = WrapDispatch(&host);
  Variant value;
  EXPECT_EQ(kOk, AutoGet(object.get(), u"Child", value));
  EXPECT_EQ(VariantType::kObject, value.type());
  EXPECT_FALSE(value.hasObject());
  EXPECT_FALSE(WrapDispatch(nullptr));
}

TEST(ComObject, TheTypedRoadInvokesWhatTheInterfaceQueryGave) {
  ScriptedDispatch host;
  ScriptedDispatch typed;
  host.Value(L"Name", ppt::shape::kName.id, Whole(1));
  typed.Value(L"Name", ppt::shape::kName.id, Whole(2));
  host.Interface(kShapeIid, &typed);
  const ObjectRef object = WrapDispatch(&host);
  Variant value;
  EXPECT_EQ(kOk, CallMember(object.get(), ppt::shape::kName, value));
  EXPECT_EQ(2, value.whole());
  EXPECT_TRUE(host.calls().empty());
  EXPECT_EQ(0, typed.lookUps());
}

TEST(ComObject, ARefusedInterfaceIsTheTypedRoadsFailureAndLeavesTheOtherRoadOpen) {
  ScriptedDispatch host;
  host.Value(L"Name", ppt::shape::kName.id, Whole(1));
  const ObjectRef object = WrapDispatch(&host);
  Variant value;
  EXPECT_EQ(kNoInterface, CallMember(object.get(), ppt::shape::kName, value));
  EXPECT_TRUE(host.calls().empty());
  EXPECT_EQ(kOk, AutoGet(object.get(), u"Name", value));
}

TEST(ComObject, IdentityIsThatOfTheUnknownAndNotOfThePointer) {
  ScriptedDispatch one;
  ScriptedDispatch face;
  face.IdentityOf(&one);
  ScriptedDispatch stranger;
  EXPECT_EQ(WrapDispatch(&one)->Identity(), WrapDispatch(&face)->Identity());
  EXPECT_NE(WrapDispatch(&one)->Identity(), WrapDispatch(&stranger)->Identity());
  EXPECT_EQ(1U, one.references());
}

TEST(ComObject, AnExceptionOfOurOwnMakeShowsAsPlainFailure) {
  ScriptedDispatch host;
  host.Member(L"Name", kSomeId,
              [](const DISPPARAMS&, VARIANT*) -> HRESULT { throw std::runtime_error("host"); });
  const ObjectRef object = WrapDispatch(&host);
  Variant value;
  EXPECT_EQ(kFail, AutoGet(object.get(), u"Name", value));
}

TEST(ComObject, AnExceptionOfAnotherLanguageShowsAsPlainFailure) {
  ScriptedDispatch host;
  host.Member(L"Name", kSomeId,
              [](const DISPPARAMS&, VARIANT*) -> HRESULT { ThrowAsAnotherLanguage(); });
  const ObjectRef object = WrapDispatch(&host);
  Variant value;
  EXPECT_EQ(kFail, AutoGet(object.get(), u"Name", value));
  // And again: nothing is left behind that the next one would fall over.
  EXPECT_EQ(kFail, AutoGet(object.get(), u"Name", value));
  EXPECT_EQ(2U, host.calls().size());
}

TEST(InvokeForOwnCode, WhereTheHostRaisedAnExceptionItsOwnCodeIsTheResult) {
  ScriptedDispatch host;
  HRESULT answer = DISP_E_EXCEPTION;
  host.Member(L"Make", kSomeId, [&answer](const DISPPARAMS&, VARIANT*) { return answer; });
  host.ExceptionCode(E_ACCESSDENIED);
  const ObjectRef object = WrapDispatch(&host);
  Variant value;
  EXPECT_EQ(E_ACCESSDENIED, InvokeForOwnCode(object.get(), kSomeId, kInvokeMethod, {}, value));
  answer = E_ABORT;
  EXPECT_EQ(E_ABORT, InvokeForOwnCode(object.get(), kSomeId, kInvokeMethod, {}, value));
  answer = DISP_E_EXCEPTION;
  host.ExceptionCode(S_OK);
  EXPECT_EQ(DISP_E_EXCEPTION, InvokeForOwnCode(object.get(), kSomeId, kInvokeMethod, {}, value));
  EXPECT_EQ(kPointer, InvokeForOwnCode(nullptr, kSomeId, kInvokeMethod, {}, value));
}

TEST(ComValues, NumbersOfOtherWidthsCanBeReadAndAreNoFlags) {
  VARIANT small = OfType(VT_UI1);
  small.bVal = 200;
  VARIANT wide = OfType(VT_I8);
  wide.llVal = 1234567890123;
  VARIANT money = OfType(VT_CY);
  money.cyVal.int64 = 25000;
  for (const auto& [value, text] :
       {std::pair{small, u"200"}, std::pair{wide, u"1234567890123"}, std::pair{money, u"2.5"}}) {
    EXPECT_EQ(text, VariantToText(FromCom(value)));
    EXPECT_FALSE(VariantToFlag(FromCom(value)));
  }
  std::int32_t whole = 0;
  EXPECT_TRUE(VariantToWhole(FromCom(small), whole));
  EXPECT_EQ(200, whole);
}

TEST(ComValues, AValueBehindAReferenceIsTakenFromThere) {
  LONG number = 5;
  VARIANT value = OfType(VT_BYREF | VT_I4);
  value.plVal = &number;
  EXPECT_EQ(5, FromCom(value).whole());
}

TEST(ComValues, AnArrayIsNoValueAndReadsAsNothing) {
  VARIANT value = OfType(VT_ARRAY | VT_VARIANT);
  value.parray = SafeArrayCreateVector(VT_VARIANT, 0, 3);
  const Variant read = FromCom(value);
  VariantClear(&value);
  std::int32_t whole = 0;
  EXPECT_EQ(VariantType::kError, read.type());
  EXPECT_EQ(u"", VariantToText(read));
  EXPECT_FALSE(VariantToWhole(read, whole));
}

TEST(ComValues, ATextMayHoldZeroUnitsAndBeNull) {
  const Wide text(u"a\0b", 3);
  BSTR made = ToBstr(text);
  EXPECT_EQ(3U, SysStringLen(made));
  EXPECT_EQ(text, FromBstr(made));
  SysFreeString(made);
  EXPECT_EQ(u"", FromBstr(nullptr));
}

TEST(ComValues, TruthIsMinusOneOnBothSides) {
  VARIANT out;
  EXPECT_EQ(kOk, ToCom(Variant::Bool(true), out));
  EXPECT_EQ(VARIANT_TRUE, out.boolVal);
  EXPECT_EQ(-1, FromCom(out).whole());
}

}  // namespace quillmarch::addin
