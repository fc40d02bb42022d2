#include "run/write/FrameModel.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "foundation/automation/HostMembers.h"

namespace quillmarch::addin::test {

namespace {

constexpr float kUnitShare = 0.5F;
constexpr float kLineShare = 1.2F;
constexpr std::int32_t kTextToFit = 2;
constexpr std::int32_t kTextToFitSeenByFrame = -2;

std::string Short(float value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
  return text;
}

// Every object that is made lives as long as its references do; the model outlives them.
ScriptedObject& Made(ObjectRef& ref) {
  ScriptedObject* object = nullptr;
  ref = ScriptedObject::Make(object);
  return *object;
}

using Answer = ScriptedObject::Answer;

Answer Single(const FrameModel& model, float& field, std::vector<std::string>& log,
              std::string name) {
  return [&model, &field, &log, name](const ScriptedCall& call, Variant& out) {
    if (!call.namedPut) {
      out = Variant::R4(field);
      return model.unreadable.contains(name) ? kHostException : kOk;
    }
    field = call.reversedArgs.front().single();
    log.push_back(name + "=" + Short(field));
    return kOk;
  };
}

}  // namespace

int FrameModel::Measures() const {
  return static_cast<int>(std::count(log.begin(), log.end(), "measure"));
}

std::vector<std::string> FrameModel::Puts() const {
  std::vector<std::string> puts;
  for (const std::string& entry : log) {
    if (entry != "measure") puts.push_back(entry);
  }
  return puts;
}

std::int32_t FrameModel::Units() const {
  std::int32_t units = 0;
  for (const FrameRun& run : runs) units += run.units;
  return units;
}

float FrameModel::GreatestSize() const {
  float size = 0.0F;
  for (const FrameRun& run : runs) size = std::max(size, run.size);
  return size;
}

float FrameModel::BoundWidth() const {
  float all = 0.0F;
  for (const FrameRun& run : runs) all += static_cast<float>(run.units) * run.size * kUnitShare;
  return wrap == 0 ? all : std::min(all, width - marginLeft - marginRight);
}

float FrameModel::BoundHeight() const {
  const float size = GreatestSize();
  if (wrap == 0) return size * kLineShare;
  const float perLine =
      std::max(1.0F, std::floor((width - marginLeft - marginRight) / (size * kUnitShare)));
  return std::ceil(static_cast<float>(Units()) / perLine) * size * kLineShare;
}

float FrameModel::BoundLeft() const {
  return left + marginLeft;
}

ObjectRef FrameModel::Run(std::size_t index) {
  ObjectRef ref;
  ScriptedObject& run = Made(ref);
  run.Interface(ppt::kTextRange);
  ObjectRef fontRef;
  ScriptedObject& font = Made(fontRef);
  font.Interface(ppt::kFont);
  font.Member(u"Size", ppt::font::kSize.id, [this, index](const ScriptedCall& call, Variant& out) {
    if (runs[index].refuses) return kHostException;
    return Single(*this, runs[index].size, log, "size")(call, out);
  });
  run.Value(u"Font", ppt::textRange::kFont.id, Variant::Object(fontRef));
  return ref;
}

ObjectRef FrameModel::Range() {
  ObjectRef ref;
  ScriptedObject& range = Made(ref);
  range.Interface(ppt::kTextRange);
  const auto bound = [this](int which) {
    return [this, which](const ScriptedCall&, Variant& out) {
      if (which == 0) log.push_back("measure");
      constexpr const char* kNames[] = {"BoundHeight", "BoundWidth", "BoundLeft"};
      if (!givesBounds || unreadable.contains(kNames[which])) return kHostException;
      float of[3] = {BoundHeight(), BoundWidth(), BoundLeft()};
      if (bounds) bounds(*this, of[0], of[1], of[2]);
      out = Variant::R4(of[which]);
      return kOk;
    };
  };
  range.Member(u"BoundHeight", ppt::textRange::kBoundHeight.id, bound(0));
  range.Member(u"BoundWidth", ppt::textRange::kBoundWidth.id, bound(1));
  range.Member(u"BoundLeft", ppt::textRange::kBoundLeft.id, bound(2));
  range.Member(u"Runs", ppt::textRange::kRuns.id, [this](const ScriptedCall& call, Variant& out) {
    if (!givesRuns) return kHostException;
    const std::int32_t start = call.reversedArgs[1].whole();
    if (start > 0) {
      out = Variant::Object(Run(static_cast<std::size_t>(start - 1)));
      return kOk;
    }
    ObjectRef allRef;
    ScriptedObject& all = Made(allRef);
    all.Interface(ppt::kTextRange);
    all.Value(u"Count", ppt::textRange::kCount.id,
              Variant::I4(static_cast<std::int32_t>(runs.size())));
    out = Variant::Object(allRef);
    return kOk;
  });
  return ref;
}

ObjectRef FrameModel::Frame() {
  ObjectRef ref;
  ScriptedObject& frame = Made(ref);
  frame.Interface(ppt::kTextFrame);
  frame.Value(u"TextRange", ppt::textFrame::kTextRange.id, Variant::Object(Range()));
  frame.Member(u"MarginLeft", ppt::textFrame::kMarginLeft.id,
               Single(*this, marginLeft, log, "MarginLeft"));
  frame.Member(u"MarginRight", ppt::textFrame::kMarginRight.id,
               Single(*this, marginRight, log, "MarginRight"));
  frame.Member(u"WordWrap", ppt::textFrame::kWordWrap.id,
               [this](const ScriptedCall& call, Variant& out) {
                 if (!call.namedPut) {
                   out = Variant::I4(wrap);
                   return unreadable.contains("WordWrap") ? kHostException : kOk;
                 }
                 wrap = call.reversedArgs.front().whole();
                 log.push_back("WordWrap=" + std::to_string(wrap));
                 return kOk;
               });
  frame.Member(u"AutoSize", ppt::textFrame::kAutoSize.id,
               [this](const ScriptedCall& call, Variant& out) {
                 if (!call.namedPut) {
                   out = Variant::I4(autoSize == kTextToFit ? kTextToFitSeenByFrame : autoSize);
                   return unreadable.contains("AutoSize") ? kHostException : kOk;
                 }
                 const std::int32_t value = call.reversedArgs.front().whole();
                 log.push_back("AutoSize=" + std::to_string(value));
                 if (value == kTextToFitSeenByFrame) return kInvalidArgument;
                 autoSize = value;
                 if (oneAutoSizeState) autoSize2 = value;
                 return kOk;
               });
  return ref;
}

ObjectRef FrameModel::Frame2() {
  ObjectRef ref;
  ScriptedObject& frame = Made(ref);
  frame.Member(u"AutoSize", 111, [this](const ScriptedCall& call, Variant& out) {
    if (!call.namedPut) {
      out = Variant::I4(autoSize2);
      return unreadable.contains("AutoSize2") ? kHostException : kOk;
    }
    autoSize2 = call.reversedArgs.front().whole();
    if (oneAutoSizeState) autoSize = autoSize2;
    log.push_back("AutoSize2=" + std::to_string(autoSize2));
    return kOk;
  });
  return ref;
}

ObjectRef FrameModel::Shape() {
  ObjectRef ref;
  ScriptedObject& shape = Made(ref);
  shape.Interface(ppt::kShape);
  shape.Value(u"TextFrame", ppt::shape::kTextFrame.id, Variant::Object(Frame()));
  if (hasFrame2) shape.Value(u"TextFrame2", 145, Variant::Object(Frame2()));
  shape.Member(u"Left", ppt::shape::kLeft.id, Single(*this, left, log, "Left"));
  shape.Member(u"Top", ppt::shape::kTop.id, Single(*this, top, log, "Top"));
  shape.Member(u"Width", ppt::shape::kWidth.id, Single(*this, width, log, "Width"));
  shape.Member(u"Height", ppt::shape::kHeight.id, Single(*this, height, log, "Height"));
  return ref;
}

}  // namespace quillmarch::addin::test
