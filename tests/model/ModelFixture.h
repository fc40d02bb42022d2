// A host over a deck made for one test, and short ways to ask it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "deck/DeckBuilder.h"
#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"
#include "host/model/Host.h"
#include "support/TempFolder.h"

namespace quillmarch::host {

class ModelTest : public ::testing::Test {
 protected:
  void OpenDeck(const testdeck::DeckSource& source, const char* personality = "powerpoint") {
    testdeck::Write(source, path());
    host = std::make_unique<Host>(*FindPersonality(personality));
    const Result<void> opened = host->Open(path(), warnings);
    ASSERT_TRUE(opened.ok()) << opened.error().words;
  }
  // One slide of these shapes.
  void OpenSlide(const std::string& shapes, const char* personality = "powerpoint") {
    testdeck::DeckSource source;
    source.slides.push_back({testdeck::SlideXml(shapes), {}, {}, {}});
    slideXml = source.slides[0].xml;
    OpenDeck(source, personality);
  }

  // The late-bound road: a null object when any step fails.
  static ObjectRef Get(const ObjectRef& object, WideView member, std::vector<Variant> args = {}) {
    Variant value;
    if (Failed(AutoGet(object.get(), member, args, value)) || !value.hasObject()) return {};
    return value.object();
  }
  static Variant Value(const ObjectRef& object, WideView member, std::vector<Variant> args = {}) {
    Variant value;
    EXPECT_TRUE(Succeeded(AutoGet(object.get(), member, args, value))) << ToUtf8(member);
    return value;
  }
  static ResultCode Code(const ObjectRef& object, WideView member, std::vector<Variant> args = {}) {
    Variant value;
    return AutoGet(object.get(), member, args, value);
  }
  static std::int32_t Whole(const ObjectRef& object, WideView member,
                            std::vector<Variant> args = {}) {
    const Variant value = Value(object, member, std::move(args));
    EXPECT_EQ(value.type(), VariantType::kI4) << ToUtf8(member);
    return value.type() == VariantType::kI4 ? value.whole() : -99;
  }
  static float Single(const ObjectRef& object, WideView member) {
    const Variant value = Value(object, member);
    EXPECT_EQ(value.type(), VariantType::kR4) << ToUtf8(member);
    return value.type() == VariantType::kR4 ? value.single() : -99.0f;
  }
  static Wide TextOf(const ObjectRef& object, WideView member, std::vector<Variant> args = {}) {
    const Variant value = Value(object, member, std::move(args));
    EXPECT_EQ(value.type(), VariantType::kText) << ToUtf8(member);
    return value.type() == VariantType::kText ? value.text() : Wide(u"?");
  }

  ObjectRef Presentation() { return Get(host->application(), u"ActivePresentation"); }
  ObjectRef Slide(int index) {
    return Get(Get(Presentation(), u"Slides"), u"Item", {Variant::I4(index)});
  }
  ObjectRef Shape(int index, int slide = 1) {
    return Get(Get(Slide(slide), u"Shapes"), u"Item", {Variant::I4(index)});
  }
  static ObjectRef RangeOf(const ObjectRef& shape) {
    return Get(Get(shape, u"TextFrame"), u"TextRange");
  }
  ObjectRef Range(int shape, int slide = 1) { return RangeOf(Shape(shape, slide)); }
  static ObjectRef Part(const ObjectRef& range, WideView unit, int start, int length) {
    return Get(range, unit, {Variant::I4(start), Variant::I4(length)});
  }
  static ResultCode Put(const ObjectRef& range, WideView text) {
    return AutoPutText(range.get(), text);
  }

  std::string Saved(const std::string& part = "ppt/slides/slide1.xml") {
    const std::string target = scratch.Path("saved.pptx");
    const Result<void> saved = host->Save(target);
    EXPECT_TRUE(saved.ok()) << saved.error().words;
    return testdeck::ReadPart(target, part);
  }
  std::string path() const { return scratch.Path("deck.pptx"); }

  TempFolder scratch;
  std::unique_ptr<Host> host;
  std::vector<std::string> warnings;
  std::string slideXml;
};

}  // namespace quillmarch::host
