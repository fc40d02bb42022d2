// The colour of a range of text.
#pragma once

#include <utility>

#include "host/model/objects/DeckObject.h"

namespace quillmarch::host::model {

class ColorFormatObject final : public DeckObject {
 public:
  ColorFormatObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address,
                    deck::TextSpan span)
      : DeckObject(std::move(session), open), address_(address), span_(span) {}

 protected:
  const MemberTable& Table() const override;

 private:
  deck::TextBody* Body() const;
  const deck::ColorSpec* Common() const;
  ResultCode Put(const deck::ColorSpec& color) const;
  Answer Type() const;
  Answer Rgb() const;
  ResultCode PutRgb(const Variant& value) const;
  Answer SchemeColor() const;
  ResultCode PutSchemeColor(const Variant& value) const;
  Answer ObjectThemeColor() const;
  ResultCode PutObjectThemeColor(const Variant& value) const;
  Answer TintAndShade() const;
  ResultCode PutTintAndShade(const Variant& value) const;
  deck::ShapeAddress address_;
  deck::TextSpan span_;
};

}  // namespace quillmarch::host::model
