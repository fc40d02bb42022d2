#include "shell/RegistrationScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shell/FakeRegistry.h"

namespace quillmarch::addin {

namespace {

using test::FakeRegistry;
using testing::ElementsAre;
using testing::IsEmpty;

class RegistrationScript : public testing::Test {
 protected:
  ResultCode Register(WideView script) { return RunRegisterScript(script, variables_, registry_); }
  ResultCode Unregister(WideView script) {
    return RunUnregisterScript(script, variables_, registry_);
  }

  FakeRegistry registry_;
  ScriptVariables variables_ = {{u"MODULE", u"C:\\a dir\\x.dll"}, {u"QUOTED", u"it's"}};
};

TEST_F(RegistrationScript, WritesKeysDefaultsTextsAndNumbers) {
  EXPECT_EQ(Register(u"HKCU { A = s 'default' { B { val N = d '3' val T = s 'text' } C } }"), kOk);
  EXPECT_THAT(registry_.Listing(), ElementsAre("A", "A :  = \"default\"", "A\\B", "A\\B : N = 3",
                                               "A\\B : T = \"text\"", "A\\C"));
}

TEST_F(RegistrationScript, ReplacesVariablesWithTheirQuotesDoubled) {
  EXPECT_EQ(Register(u"HKCU { A = s '%MODULE%' { val Q = s '%QUOTED%' val P = s '100%%' } }"), kOk);
  EXPECT_EQ(registry_.Value(u"A", ""), "\"C:\\a dir\\x.dll\"");
  EXPECT_EQ(registry_.Value(u"A", "Q"), "\"it's\"");
  EXPECT_EQ(registry_.Value(u"A", "P"), "\"100%\"");
}

TEST_F(RegistrationScript, KnowsQuotedWordsWithBlanksQuotesAndNothing) {
  EXPECT_EQ(Register(u"HKCU { 'A key' { val 'a name' = s 'it''s' val E = s '' '1' = s 'x' } }"),
            kOk);
  EXPECT_EQ(registry_.Value(u"A key", "a name"), "\"it's\"");
  EXPECT_EQ(registry_.Value(u"A key", "E"), "\"\"");
  EXPECT_EQ(registry_.Value(u"A key\\1", ""), "\"x\"");
}

TEST_F(RegistrationScript, TheClassesRootIsTheUsersOwn) {
  EXPECT_EQ(Register(u"HKCR { A.B } HKCU { C }"), kOk);
  EXPECT_THAT(registry_.Listing(),
              ElementsAre("C", "Software", "Software\\Classes", "Software\\Classes\\A.B"));
}

TEST_F(RegistrationScript, AForceRemoveKeyIsMadeAnew) {
  Register(u"HKCU { A { Old { Deep } val X = s '1' } }");
  EXPECT_EQ(Register(u"HKCU { ForceRemove A { val Y = s '2' } }"), kOk);
  EXPECT_THAT(registry_.Listing(), ElementsAre("A", "A : Y = \"2\""));
}

TEST_F(RegistrationScript, AnOrdinaryKeyKeepsWhatOthersWrote) {
  Register(u"HKCU { A { val X = s '1' } }");
  EXPECT_EQ(Register(u"HKCU { A { val Y = s '2' } NoRemove A { val Z = s '3' } }"), kOk);
  EXPECT_THAT(registry_.Listing(),
              ElementsAre("A", "A : X = \"1\"", "A : Y = \"2\"", "A : Z = \"3\""));
}

TEST_F(RegistrationScript, TheFirstFailureEndsTheRunAndIsItsResult) {
  registry_.refuses["put A : N"] = UserRegistry::kAccessDenied;
  EXPECT_EQ(Register(u"HKCU { A { val M = s '1' val N = s '2' val O = s '3' } B }"),
            MakeResult(0x80070005));
  EXPECT_THAT(registry_.Listing(), ElementsAre("A", "A : M = \"1\""));
  registry_.refuses["delete tree C"] = 1018;
  EXPECT_EQ(Register(u"HKCU { ForceRemove C }"), MakeResult(0x800703FA));
}

TEST_F(RegistrationScript, WhatIsNoScriptTouchesNothing) {
  for (const char16_t* script : {u"",
                                 u"  ",
                                 u"A { }",
                                 u"HKLM { A }",
                                 u"HKCU",
                                 u"HKCU {",
                                 u"HKCU { A",
                                 u"HKCU { A { }",
                                 u"HKCU { A = }",
                                 u"HKCU { A = s }",
                                 u"HKCU { A = s x }",
                                 u"HKCU { A = b '1' }",
                                 u"HKCU { A = s 'x }",
                                 u"HKCU { val = s 'x' }",
                                 u"HKCU { val A s 'x' }",
                                 u"HKCU { A\\B }",
                                 u"HKCU { '' }",
                                 u"HKCU { { } }",
                                 u"HKCU { A = d '' }",
                                 u"HKCU { A = d '1x' }",
                                 u"HKCU { A = d '1234567890' }",
                                 u"HKCU { A = s '%NOBODY%' }",
                                 u"HKCU { A = s '%' }",
                                 u"HKCU { } }",
                                 u"HKCU { A } HKCC { B }"}) {
    EXPECT_EQ(Register(script), kBadScript) << ToUtf8(script);
    EXPECT_EQ(Unregister(script), kBadScript) << ToUtf8(script);
  }
  EXPECT_THAT(registry_.calls, IsEmpty());
}

// ---- Unregistering -----------------------------------------------------------------------------

TEST_F(RegistrationScript, TakesAwayForceRemoveKeysWithAllBelowThem) {
  const WideView script = u"HKCU { NoRemove A { ForceRemove B { C } } }";
  Register(script);
  registry_.CreateKey(u"A\\B\\Foreign");
  EXPECT_EQ(Unregister(script), kOk);
  EXPECT_THAT(registry_.Listing(), ElementsAre("A"));
}

TEST_F(RegistrationScript, TakesAwayItsValuesAndTheKeysThatAreThenEmpty) {
  const WideView script = u"HKCU { A = s 'x' { B { val M = s '1' val N = d '2' } } }";
  Register(script);
  EXPECT_EQ(Unregister(script), kOk);
  EXPECT_THAT(registry_.Listing(), IsEmpty());
  Register(script);
  registry_.PutText(u"A\\B", u"Foreign", u"stays");
  EXPECT_EQ(Unregister(script), kOk);
  EXPECT_THAT(registry_.Listing(), ElementsAre("A", "A\\B", "A\\B : Foreign = \"stays\""));
}

TEST_F(RegistrationScript, LeavesWhatIsMarkedNoRemove) {
  const WideView script = u"HKCU { NoRemove A = s 'x' { val M = s '1' NoRemove val K = s '2' } }";
  Register(script);
  EXPECT_EQ(Unregister(script), kOk);
  EXPECT_THAT(registry_.Listing(), ElementsAre("A", "A :  = \"x\"", "A : K = \"2\""));
}

TEST_F(RegistrationScript, WhatIsGoneAlreadyIsNoFailure) {
  EXPECT_EQ(Unregister(u"HKCU { A { B { val M = s '1' } ForceRemove C } }"), kOk);
  registry_.CreateKey(u"A\\B");
  EXPECT_EQ(Unregister(u"HKCU { A { B { val M = s '1' } ForceRemove C } }"), kOk);
  EXPECT_THAT(registry_.Listing(), IsEmpty());
}

TEST_F(RegistrationScript, GoesOnOverFailuresAndGivesTheFirst) {
  const WideView script = u"HKCU { ForceRemove A ForceRemove B ForceRemove C }";
  Register(script);
  registry_.refuses["delete tree A"] = UserRegistry::kAccessDenied;
  registry_.refuses["delete tree B"] = 1018;
  EXPECT_EQ(Unregister(script), MakeResult(0x80070005));
  EXPECT_THAT(registry_.Listing(), ElementsAre("A", "B"));
}

TEST(ResultOfWin32, MakesAnHresultOfAnyFailure) {
  EXPECT_EQ(ResultOfWin32(0), kOk);
  EXPECT_EQ(ResultOfWin32(2), MakeResult(0x80070002));
}

}  // namespace

}  // namespace quillmarch::addin
