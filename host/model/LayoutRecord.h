// A deck's text frame as the layout takes it: plain records with everything inherited looked up.
#pragma once

#include "host/deck/Deck.h"
#include "host/layout/LayoutFrame.h"

namespace quillmarch::host::model {

// By how much the text is turned within its shape: radians, clockwise.
double TextTurn(deck::Deck& deck, const deck::ShapeAddress& address);
// Where the text of a shape or cell may be, insets included, in slide coordinates, before shape
// and text are turned.
deck::ShapeBox TextArea(deck::Deck& deck, const deck::ShapeAddress& address);

// The text and its frame, which is of the size of `area`. `before` is null or an earlier record of
// the same text, which has not been edited since; its frame may have been.
layout::LayoutFrame LayoutRecord(deck::Deck& deck, const deck::ShapeAddress& address,
                                 deck::TextBody& text, const deck::ShapeBox& area,
                                 const layout::LayoutFrame* before = nullptr);

}  // namespace quillmarch::host::model
