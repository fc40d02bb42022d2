#include "host/remote/ObjectServer.h"

#include <array>
#include <stdexcept>

#include "foundation/automation/HostMembers.h"
#include "gtest/gtest.h"
#include "remote/RemoteObject.h"
#include "support/ScriptedObject.h"

namespace quillmarch::host {

using namespace addin;

using addin::test::ScriptedCall;
using addin::test::ScriptedObject;
using test::RemoteLink;

namespace {

constexpr DispId kSomeId = 42;

class ObjectServerTest : public ::testing::Test {
 protected:
  ObjectServerTest() {
    server.SetRoot(ScriptedObject::Make(root));
    child_ = ScriptedObject::Make(child);
    root->Value(u"Child", 1, Variant::Object(child_));
  }
  ObjectRef Child() {
    ObjectRef found;
    AutoGetObject(link.Root().get(), u"Child", found);
    return found;
  }

  ObjectServer server;
  ScriptedObject* root = nullptr;
  ScriptedObject* child = nullptr;
  RemoteLink link{server};

 private:
  ObjectRef child_;
};

}  // namespace

TEST_F(ObjectServerTest, ACallArrivesAsItWasMadeAndItsValueComesBack) {
  root->Value(u"Sum", kSomeId, Variant::R4(2.5F));
  const std::array args = {Variant::I4(1), Variant::Text(u"zwei")};
  Variant value;
  EXPECT_EQ(kOk, AutoGet(link.Root().get(), u"Sum", args, value));
  EXPECT_EQ(2.5F, value.single());
  const ScriptedCall& call = root->calls().at(0);
  EXPECT_EQ(kSomeId, call.id);
  EXPECT_EQ(kInvokeMethodOrGet, call.flags);
  ASSERT_EQ(2U, call.reversedArgs.size());
  EXPECT_EQ(u"zwei", call.reversedArgs[0].text());
  EXPECT_EQ(1, call.reversedArgs[1].whole());
}

TEST_F(ObjectServerTest, APutIsNamed) {
  root->Value(u"Text", kSomeId, Variant());
  EXPECT_EQ(kOk, AutoPutText(link.Root().get(), u"new"));
  EXPECT_TRUE(root->calls().at(0).namedPut);
  EXPECT_EQ(kInvokePut, root->calls().at(0).flags);
}

TEST_F(ObjectServerTest, AFailureKeepsItsCode) {
  root->Fails(u"Busy", kSomeId, MakeResult(0x8001010A));
  Variant value;
  EXPECT_EQ(MakeResult(0x8001010A), AutoGet(link.Root().get(), u"Busy", value));
  EXPECT_EQ(kUnknownName, AutoGet(link.Root().get(), u"Nothing", value));
}

TEST_F(ObjectServerTest, AnExceptionOfAnObjectIsAFailure) {
  root->Member(u"Bad", kSomeId, [](const ScriptedCall&, Variant&) -> ResultCode {
    throw std::runtime_error("bad");
  });
  Variant value;
  EXPECT_EQ(kFail, AutoGet(link.Root().get(), u"Bad", value));
}

TEST_F(ObjectServerTest, AnObjectOfTheServerComesBackToItAsItself) {
  AutomationObject* taken = nullptr;
  root->Member(u"Take", kSomeId, [&taken](const ScriptedCall& call, Variant&) {
    taken = call.reversedArgs.at(0).object().get();
    return kOk;
  });
  const std::array args = {Variant::Object(Child())};
  Variant value;
  EXPECT_EQ(kOk, AutoGet(link.Root().get(), u"Take", args, value));
  EXPECT_EQ(child, taken);
}

TEST_F(ObjectServerTest, IdentityIsTheObjectsOwn) {
  EXPECT_EQ(child->Identity(), Child()->Identity());
  EXPECT_NE(Child()->Identity(), link.Root()->Identity());
}

TEST_F(ObjectServerTest, TheServerHoldsWhatTheOtherSideHoldsAndNothingElse) {
  EXPECT_EQ(0U, server.liveHandles());
  const int before = child->references();
  {
    const ObjectRef one = Child();
    const ObjectRef two = Child();
    EXPECT_EQ(2U, server.liveHandles());
  }
  EXPECT_EQ(0U, server.liveHandles());
  const ObjectRef left = Child();
  server.ReleaseAll();
  EXPECT_EQ(0U, server.liveHandles());
  // What the scripted call remembers of its arguments holds none of them.
  EXPECT_EQ(before, child->references());
}

TEST_F(ObjectServerTest, AnInterfaceIsAnsweredToAsTheObjectAnswers) {
  child->Value(u"Name", ppt::shape::kName.id, Variant::Text(u"n"));
  Variant value;
  EXPECT_EQ(kNoInterface, CallMember(Child().get(), ppt::shape::kName, value));
  child->Interface(ppt::kShape);
  EXPECT_EQ(kOk, CallMember(Child().get(), ppt::shape::kName, value));
  EXPECT_EQ(u"n", value.text());
}

TEST_F(ObjectServerTest, EachRoadCanBeClosedByItselfAndTheRootStaysOpen) {
  child->Value(u"Name", ppt::shape::kName.id, Variant::Text(u"n"));
  child->Interface(ppt::kShape);
  Variant value;
  server.faults.refuseNames = true;
  EXPECT_EQ(kUnknownName, AutoGet(Child().get(), u"Name", value));
  EXPECT_EQ(kOk, CallMember(Child().get(), ppt::shape::kName, value));
  server.faults = {};
  server.faults.refuseTypes = true;
  EXPECT_EQ(kOk, AutoGet(Child().get(), u"Name", value));
  EXPECT_EQ(kNoInterface, CallMember(Child().get(), ppt::shape::kName, value));
}

TEST_F(ObjectServerTest, OneCallCanBeMadeToFail) {
  child->Value(u"Name", kSomeId, Variant::Text(u"n"));
  server.faults.failAt = 2;
  server.faults.code = kOutOfMemory;
  const ObjectRef object = Child();
  DispId id = 0;
  EXPECT_EQ(kOk, object->IdOfName(u"Name", id));
  EXPECT_EQ(kOutOfMemory, object->Invoke(id, kInvokeGet, {}, nullptr));
  EXPECT_EQ(kOk, object->Invoke(id, kInvokeGet, {}, nullptr));
}

TEST_F(ObjectServerTest, WhatIsNoRequestIsRefusedAndTheServerGoesOn) {
  for (const std::string& request :
       {std::string(), std::string("\x07"), std::string("\x03"), std::string(9, '\x02'),
        std::string("\x02\x63\0\0\0\0\0\0\0", 9), std::string("\x04garbagegarbage")}) {
    const std::string body = server.Answer(request);
    WireReader reply(body);
    EXPECT_EQ(kInvalidArgument, reply.Code());
    EXPECT_TRUE(reply.AtEnd());
  }
  EXPECT_TRUE(Child());
}

TEST_F(ObjectServerTest, ALostConnectionIsAHostThatHasGone) {
  const ObjectRef object = Child();
  link.connected = false;
  Variant value;
  EXPECT_EQ(kDisconnected, AutoGet(object.get(), u"Name", value));
}

}  // namespace quillmarch::host
