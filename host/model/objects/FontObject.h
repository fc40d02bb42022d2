// The font of a range of text.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

#include "host/model/objects/DeckObject.h"

namespace quillmarch::host::model {

class FontObject final : public DeckObject {
 public:
  FontObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address,
             deck::TextSpan span)
      : DeckObject(std::move(session), open), address_(address), span_(span) {}

 protected:
  const MemberTable& Table() const override;

 private:
  using Flag = std::int8_t deck::CharProps::*;
  using Face = std::string deck::CharProps::*;
  deck::TextBody* Body() const;
  Answer Size() const;
  ResultCode PutSize(const Variant& value) const;
  Answer GetFlag(Flag flag) const;
  ResultCode PutFlag(Flag flag, const char* attribute, const char* on, const char* off,
                     const Variant& value) const;
  bool Faces(Face face, std::string& common) const;
  Answer GetFace(Face face) const;
  ResultCode PutFaces(std::initializer_list<Face> faces, const Variant& value) const;
  Answer Color() const;
  deck::ShapeAddress address_;
  deck::TextSpan span_;
};

}  // namespace quillmarch::host::model
