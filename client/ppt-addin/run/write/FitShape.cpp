#include "run/write/FitShape.h"

#include <cstdio>

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"
#include "foundation/log/Log.h"
#include "run/write/FitScale.h"
#include "run/write/ShrinkRuns.h"

namespace quillmarch::addin {

namespace {

constexpr std::int32_t kAutoSizeNone = 0;
constexpr std::int32_t kWrapOff = 0;
constexpr std::int32_t kWrapOn = -1;
constexpr float kMovedTolerance = 1.5F;     // points a shape may differ from its rectangle
constexpr float kLeastContent = 8.0F;       // points
constexpr float kLeastContentShare = 0.5F;  // of the shape's width
constexpr float kToleranceShare = 0.02F;
constexpr float kTolerancePoints = 1.0F;
// A box lower than this many times its unwrapped text is one line high. One that several paragraphs
// fill counts too, so that each of them keeps to its line; that is deliberate.
constexpr float kOneLineShare = 1.8F;
constexpr float kLeastFontSize = 5.0F;  // points
constexpr float kNextScaleShare = 0.9F;
constexpr float kFirstScaleInstead = 0.95F * 0.9F;
constexpr int kMaxPasses = 6;

// One call of FitShape.
struct Fit {
  AutomationObject* shape;
  ObjectRef frame;
  ObjectRef range;
  ObjectRef frame2;
  std::int32_t savedAutoSize = 0;
  bool autoSizeRead = false;
  std::int32_t savedAutoSize2 = 0;
  bool autoSize2Read = false;
  std::int32_t savedWrap = 0;
  bool restored = false;
  bool shrunk = false;
  FitRoom room;
};

enum class FitMode { kFit, kWrap, kOneLine, kHeight };

const char* ModeName(FitMode mode) {
  switch (mode) {
    case FitMode::kWrap:
      return "wrap";
    case FitMode::kOneLine:
      return "oneLine";
    case FitMode::kHeight:
      return "height";
    default:
      return "fit";
  }
}

void SwitchAutoSizeOff(Fit& fit) {
  AutomationObject* frame = fit.frame.get();
  fit.autoSizeRead = Get(frame, ppt::textFrame::kAutoSize, fit.savedAutoSize);
  Put(frame, ppt::textFrame::kAutoSize, kAutoSizeNone);
  if (!AutoGetObject(fit.shape, u"TextFrame2", fit.frame2)) return;
  Variant value;
  if (Failed(AutoGet(fit.frame2.get(), u"AutoSize", value)) ||
      !VariantToWhole(value, fit.savedAutoSize2)) {
    return;
  }
  fit.autoSize2Read = true;
  AutoPut(fit.frame2.get(), u"AutoSize", Variant::I4(kAutoSizeNone));
}

void PutAutoSizeBack(const Fit& fit) {
  if (fit.autoSizeRead) {
    Put(fit.frame.get(), ppt::textFrame::kAutoSize, fit.savedAutoSize);
  }
  if (fit.autoSize2Read) {
    AutoPut(fit.frame2.get(), u"AutoSize", Variant::I4(fit.savedAutoSize2));
  }
}

bool Moved(float now, float before) {
  const float by = now - before;
  return by > kMovedTolerance || by < -kMovedTolerance;
}

void RestorePlace(Fit& fit, const ShapeRect& rect) {
  const ShapeRect now = ReadShapeRect(fit.shape);
  if (!now.valid || (!Moved(now.left, rect.left) && !Moved(now.top, rect.top) &&
                     !Moved(now.width, rect.width) && !Moved(now.height, rect.height))) {
    return;
  }
  Put(fit.shape, ppt::shape::kLeft, rect.left);
  Put(fit.shape, ppt::shape::kTop, rect.top);
  Put(fit.shape, ppt::shape::kWidth, rect.width);
  Put(fit.shape, ppt::shape::kHeight, rect.height);
  fit.restored = true;
}

float Margin(const Fit& fit, const Member<float>& member) {
  float margin = 0.0F;
  Get(fit.frame.get(), member, margin);
  return margin < 0.0F ? 0.0F : margin;
}

// False when the shape gives no size.
bool ReadRoom(Fit& fit, float slideWidth) {
  FitRoom& room = fit.room;
  const bool width = Get(fit.shape, ppt::shape::kWidth, room.shapeW);
  const bool height = Get(fit.shape, ppt::shape::kHeight, room.shapeH);
  if (!width || !height || !(room.shapeW > 0.0F) || !(room.shapeH > 0.0F)) return false;
  const float left = Margin(fit, ppt::textFrame::kMarginLeft);
  const float right = Margin(fit, ppt::textFrame::kMarginRight);
  room.contentW = room.shapeW - left - right;
  if (room.contentW < kLeastContent || room.contentW < room.shapeW * kLeastContentShare) {
    room.contentW = room.shapeW;
  }
  room.tolH = room.shapeH * kToleranceShare + kTolerancePoints;
  room.tolW = room.contentW * kToleranceShare + kTolerancePoints;
  room.slideW = slideWidth;
  return true;
}

TextMeasure Measure(const Fit& fit) {
  TextMeasure measure;
  AutomationObject* range = fit.range.get();
  measure.validHeight =
      Get(range, ppt::textRange::kBoundHeight, measure.height) && measure.height > 0.0F;
  measure.validWidth =
      Get(range, ppt::textRange::kBoundWidth, measure.width) && measure.width > 0.0F;
  if (!Get(range, ppt::textRange::kBoundLeft, measure.left)) measure.left = 0.0F;
  return measure;
}

TextMeasure MeasureWithWrap(const Fit& fit, std::int32_t wrap) {
  Put(fit.frame.get(), ppt::textFrame::kWordWrap, wrap);
  return Measure(fit);
}

struct Choice {
  FitMode mode = FitMode::kFit;
  std::int32_t wrap = kWrapOn;
  bool shrink = false;
};

// `unwrapped` was taken with the wrap off, `wrapped` with the wrap on.
Choice Choose(const Fit& fit, const TextMeasure& unwrapped, const TextMeasure& wrapped) {
  const FitRoom& room = fit.room;
  const bool overA = OverWidth(unwrapped, room);
  const bool fitsA = FitsHeight(unwrapped, room);
  const bool oneLineBox = unwrapped.validHeight && unwrapped.height * kOneLineShare > room.shapeH;
  const bool fitsB = FitsHeight(wrapped, room);
  const bool overB = OverWidth(wrapped, room);
  if (overA && fitsA && oneLineBox && wrapped.validHeight && !fitsB) {
    return {FitMode::kOneLine, kWrapOff, true};
  }
  if (!wrapped.validHeight || (fitsB && !overB)) {
    if (overA && fitsB && !overB) return {FitMode::kWrap, kWrapOn, false};
    return {FitMode::kFit, fit.savedWrap, false};
  }
  return {FitMode::kHeight, kWrapOn, true};
}

void Shrink(Fit& fit, const TextMeasure& start) {
  float scale = HeldScale(start, fit.room);
  // The first scale only; the later ones are held by the one before.
  if (!(scale < kGreatestScale)) scale = kFirstScaleInstead;
  for (int pass = 1; scale < 1.0F && scale >= kLeastScale; ++pass) {
    if (!ShrinkRuns(fit.range.get(), scale, kLeastFontSize, fit.shrunk)) return;
    const TextMeasure measure = Measure(fit);
    if (!measure.validHeight || (FitsHeight(measure, fit.room) && !OverWidth(measure, fit.room))) {
      return;
    }
    if (pass == kMaxPasses) return;
    const float next = HeldScale(measure, fit.room);
    scale = next < scale ? next : scale * kNextScaleShare;
  }
}

void LogFit(const Fit& fit, FitMode mode) {
  const TextMeasure last = Measure(fit);
  const FitRoom& room = fit.room;
  char line[256];
  std::snprintf(line, sizeof line,
                "PptFit mode=%s restored=%d shrunk=%d boundW=%.1f contentW=%.1f shape=%.1fx%.1f "
                "slideW=%.1f",
                ModeName(mode), fit.restored ? 1 : 0, fit.shrunk ? 1 : 0,
                static_cast<double>(last.validWidth ? last.width : 0.0F),
                static_cast<double>(room.contentW), static_cast<double>(room.shapeW),
                static_cast<double>(room.shapeH), static_cast<double>(room.slideW));
  LogLine(ToWide(line));
}

void GiveUp(const Fit& fit) {
  if (!fit.restored) PutAutoSizeBack(fit);
}

}  // namespace

ShapeRect ReadShapeRect(AutomationObject* shape) {
  ShapeRect rect;
  const bool left = Get(shape, ppt::shape::kLeft, rect.left);
  const bool top = Get(shape, ppt::shape::kTop, rect.top);
  const bool width = Get(shape, ppt::shape::kWidth, rect.width);
  const bool height = Get(shape, ppt::shape::kHeight, rect.height);
  rect.valid = left && top && width && height && rect.width > 0.0F && rect.height > 0.0F;
  return rect;
}

void FitShape(AutomationObject* shape, const ShapeRect* rect, float slideWidth) {
  Fit fit;
  fit.shape = shape;
  if (!Get(shape, ppt::shape::kTextFrame, fit.frame) ||
      !Get(fit.frame.get(), ppt::textFrame::kTextRange, fit.range)) {
    return;
  }
  SwitchAutoSizeOff(fit);
  if (rect != nullptr && rect->valid) RestorePlace(fit, *rect);
  if (!ReadRoom(fit, slideWidth)) return GiveUp(fit);

  if (!Get(fit.frame.get(), ppt::textFrame::kWordWrap, fit.savedWrap)) fit.savedWrap = 0;
  const TextMeasure unwrapped = MeasureWithWrap(fit, kWrapOff);
  const TextMeasure wrapped = MeasureWithWrap(fit, kWrapOn);
  if (!unwrapped.validHeight && !wrapped.validHeight) return GiveUp(fit);

  const TextMeasure& best = unwrapped.validHeight ? unwrapped : wrapped;
  const Choice choice = Choose(fit, unwrapped, wrapped);
  Put(fit.frame.get(), ppt::textFrame::kWordWrap, choice.wrap);
  if (choice.shrink) {
    const bool fromWrapped = choice.wrap != kWrapOff && wrapped.validHeight;
    Shrink(fit, fromWrapped ? wrapped : best);
  }
  if (!fit.restored && !fit.shrunk && choice.wrap == fit.savedWrap) return PutAutoSizeBack(fit);
  LogFit(fit, choice.mode);
}

}  // namespace quillmarch::addin
