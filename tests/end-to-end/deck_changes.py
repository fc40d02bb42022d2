"""What differs between two decks, by parts and by shapes, as an eye that shares nothing with the host sees it."""
from lxml import etree

from deck_text import COMPATIBILITY, DRAWING, SLIDES, Deck, child_of, kind, paragraph_text

SHAPES = ("sp", "pic", "cxnSp", "grpSp", "graphicFrame")


def top_shapes(root):
    """The slide's shapes in z-order; an alternate content counts as the one shape it stands for."""
    tree = child_of(root, SLIDES, "cSld", "spTree")
    return [node for node in tree if any(kind(node, SLIDES, name) for name in SHAPES)
            or kind(node, (COMPATIBILITY,), "AlternateContent")]


def texts(shape):
    return [paragraph_text(node) for node in shape.iter() if kind(node, DRAWING, "p")]


def canonical(node):
    return etree.tostring(node, method="c14n", exclusive=True, with_tail=False)


class Changes:
    """What differs between two decks: parts by name, and shapes by (slide, place in z-order)."""

    def __init__(self, before, after):
        self.before, self.after = Deck(before), Deck(after)
        self.slides = [part.name for part in self.before.text_parts() if not part.is_notes]
        self.parts = {name for name in self.before.names if self.before.data(name) != self.after.data(name)}
        self.shapes = set()
        self.elsewhere = self.before.names != self.after.names
        for number, name in enumerate(self.slides, 1):
            if name in self.parts:
                self.compare_slide(number, self.roots(name))

    def roots(self, name):
        return etree.fromstring(self.before.data(name)), etree.fromstring(self.after.data(name))

    def compare_slide(self, number, roots):
        old, new = map(top_shapes, roots)
        if len(old) != len(new):
            self.elsewhere = True
            return
        for place, (one, other) in enumerate(zip(old, new), 1):
            if canonical(one) != canonical(other):
                self.shapes.add((number, place))
        # With its shapes taken out the rest of the slide must be the same.
        for shapes in (old, new):
            for shape in shapes:
                shape.getparent().remove(shape)
        self.elsewhere |= canonical(roots[0]) != canonical(roots[1])

    def texts(self, slide, place):
        old, new = (top_shapes(root)[place - 1] for root in self.roots(self.slides[slide - 1]))
        return texts(old), texts(new)
