// One slide or notes page, parsed: its bytes, its shapes and, as they are asked for, its text
// bodies, tables and frames. Edits wait in text bodies and frames until TakeBytes().
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/deck/FrameProps.h"
#include "host/deck/ShapeTree.h"
#include "host/deck/TableGrid.h"
#include "host/deck/XmlNames.h"
#include "host/deck/text/RunFormats.h"
#include "host/deck/text/TextBody.h"

namespace quillmarch::host::deck {

// A shape's frame where it was asked for. The properties are resolved, all set.
struct FrameState {
  FrameProps file;
  FrameProps now;
  std::optional<ShapeBox> moved;  // in the coordinates of whatever holds the shape
  std::uint64_t fitted = 0;       // the text's revision that the last fit saw
  bool changed = false;           // since the last fit
};

class SlidePart {
 public:
  // `bytes` is well-formed XML. Null when it cannot be parsed after all (out of memory).
  static std::unique_ptr<SlidePart> Parse(std::string bytes);
  SlidePart(const SlidePart&) = delete;
  SlidePart& operator=(const SlidePart&) = delete;

  // Reads all its texts, and with `formats` the look of their runs, that are otherwise read as they
  // are asked for: worth it on a thread that has nothing else to do.
  void ReadTexts(bool formats);

  const XmlNames& names() const { return names_; }
  const ShapeTree& shapes() const { return shapes_; }
  // p:sld or p:notes.
  pugi::xml_node root() const { return document_.document_element(); }

  // The text body of a shape, null when it has none.
  TextBody* ShapeText(std::uint32_t shape);
  // The grid of a table's frame, null for any other shape.
  TableGrid* Table(std::uint32_t shape);
  // The text body at a 0-based grid position: a merged cell's origin answers for all of its
  // positions. Null when the table has no such cell or the cell no text body.
  TextBody* CellText(std::uint32_t shape, std::uint32_t row, std::uint32_t column);

  // The shape's own frame as the file has it, once somebody worked it out.
  std::optional<ShapeBox>& FileBox(std::uint32_t shape) { return fileBoxes_[shape]; }

  // The text body of a shape if it was asked for before.
  const TextBody* KnownText(std::uint32_t shape) const { return shapeTexts_[shape]; }

  // Null when the shape's frame was not asked for yet.
  FrameState* Frame(std::uint32_t shape);
  FrameState& AddFrame(std::uint32_t shape, const FrameProps& file);
  // Where the shape was moved to; nothing while it is where the file says.
  const std::optional<ShapeBox>& MovedBox(std::uint32_t shape) const;
  // To be called with every change of a frame.
  void TouchFrames() { ++framesRevision_; }
  std::uint64_t FramesRevision() const { return framesRevision_; }

  std::size_t Size() const { return bytes_.size(); }
  bool Edited() const;
  // The part's bytes with every edit in place; the object is of no further use.
  std::string TakeBytes();

 private:
  explicit SlidePart(std::string bytes);
  TextBody* Body(pugi::xml_node node);

  std::string bytes_;
  XmlNames names_;
  pugi::xml_document document_;
  ShapeTree shapes_;
  RunFormats formats_;
  std::unordered_map<const void*, std::unique_ptr<TextBody>> bodies_;
  std::vector<TextBody*> shapeTexts_;               // by shape, as far as they were asked for
  std::vector<std::optional<ShapeBox>> fileBoxes_;  // the same
  std::unordered_map<std::uint32_t, std::unique_ptr<TableGrid>> tables_;
  std::unordered_map<std::uint32_t, FrameState> frames_;
  std::uint64_t framesRevision_ = 0;
};

}  // namespace quillmarch::host::deck
