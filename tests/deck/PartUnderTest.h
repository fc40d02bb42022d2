// A slide's part made from a few shapes, edited and read back as bytes.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "deck/DeckBuilder.h"
#include "host/deck/SlidePart.h"

namespace quillmarch::host::deck {

struct PartUnderTest {
  explicit PartUnderTest(const std::string& shapes) : xml(testdeck::SlideXml(shapes)) {
    part = SlidePart::Parse(xml);
  }
  TextBody& Text(std::uint32_t shape = 0) { return *part->ShapeText(shape); }
  std::string Bytes() { return part->TakeBytes(); }
  // The slide as it was but for one stretch of its bytes, which must be there once.
  std::string With(const std::string& old, const std::string& text) const {
    const std::size_t at = xml.find(old);
    EXPECT_NE(at, std::string::npos) << old;
    EXPECT_EQ(xml.find(old, at + 1), std::string::npos) << old;
    std::string expected = xml;
    return expected.replace(at, old.size(), text);
  }

  std::string xml;
  std::unique_ptr<SlidePart> part;
};

// The whole text of a body.
inline Wide AllText(TextBody& body) {
  return body.Text({0, body.Length()});
}

// Puts a text over `length` units from `start`.
inline bool PutText(TextBody& body, std::size_t start, std::size_t length, WideView text) {
  TextSpan span{start, length};
  return body.PutText(span, text);
}

}  // namespace quillmarch::host::deck
