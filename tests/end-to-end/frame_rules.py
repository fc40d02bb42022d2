"""What the text fit may change of a shape whose text was written, read with lxml by rules of its own:

- the autofit ends off, stated in the shape only where something else was stated or inherited;
- the wrap may be another, off only where the text became smaller;
- sizes of runs, and of marks that stand alone in a paragraph, may shrink, all by one share, none
  below 5 points; smaller ones stay;
- only a shape that grew with its text may stand up to 1.5 points from where it stood.

A frame that no fit sees, of a notes page, follows its text by itself where its autofit says so: the
shape has another size, or the text another scale.

Everything else of a slide is compared by its bytes: put_back() undoes these changes first.
"""
import re
from dataclasses import dataclass, field

from lxml import etree

from deck_text import DRAWING, SLIDES, child_of, children, kind

DEFAULT_SIZE = 1800  # hundredths of a point
LEAST_SIZE = 500
ROUNDING = 6  # six passes, each rounded to a hundredth
MOVED = 1.5 * 12700 + 1
LEVELS = 9
AUTOFITS = ("noAutofit", "normAutofit", "spAutoFit")
WRAPS = ("square", "none")
TITLES = ("title", "ctrTitle")
FOOTERS = ("dt", "ftr", "sldNum", "hdr", "sldImg")
TOKEN = re.compile(rb"<!--.*?-->|<!\[CDATA\[.*?\]\]>|<\?.*?\?>|</[^>]*>"
                   rb"|<[^!?/](?:[^>\"']|\"[^\"]*\"|'[^']*')*>", re.S)


class Fault(Exception):
    pass


def spans(data, root):
    """Of each element of ROOT, parsed from DATA: where its bytes begin and end."""
    nodes = [node for node in root.iter() if isinstance(node.tag, str)]
    found, still_open = [], []
    for token in TOKEN.finditer(data):
        text = token.group()
        if text.startswith(b"</"):
            found[still_open.pop()][1] = token.end()
        elif not text.startswith((b"<!", b"<?")):
            found.append([token.start(), token.end()])
            if not text.endswith(b"/>"):
                still_open.append(len(found) - 1)
    if len(nodes) != len(found) or still_open:
        raise Fault("its elements cannot be told apart")
    return {node: tuple(span) for node, span in zip(nodes, found)}


def canonical(node):
    return b"" if node is None else etree.tostring(node, method="c14n", exclusive=True, with_tail=False)


def frame_properties(shape):
    return child_of(child_of(shape, SLIDES, "txBody"), DRAWING, "bodyPr")


def place(shape):
    """The elements that say where SHAPE stands; None where it does not say."""
    transform = child_of(child_of(shape, SLIDES, "spPr"), DRAWING, "xfrm")
    return child_of(transform, DRAWING, "off"), child_of(transform, DRAWING, "ext")


def box(shape):
    offset, extent = place(shape)
    if offset is None or extent is None:
        return None
    return [int(offset.get("x")), int(offset.get("y")), int(extent.get("cx")), int(extent.get("cy"))]


def autofit_of(properties):
    found = [child for child in (properties if properties is not None else [])
             if any(kind(child, DRAWING, name) for name in AUTOFITS)]
    return found[0] if found else None


def stated_fit(shape):
    node = autofit_of(frame_properties(shape))
    return etree.QName(node).localname if node is not None else None


def stated_wrap(shape):
    properties = frame_properties(shape)
    wrap = properties.get("wrap") if properties is not None else None
    return wrap if wrap in WRAPS else None


def placeholder(shape):
    for child in shape:
        mark = child_of(child, SLIDES, "nvPr", "ph") if isinstance(child.tag, str) else None
        if mark is not None:
            return mark.get("type", "obj"), mark.get("idx", "0")
    return None


def master_type(what):
    return "title" if what in TITLES else what if what in FOOTERS else "body"


def placeholders(root):
    """(type, index, shape) of a layout's or master's placeholders."""
    tree = child_of(root, SLIDES, "cSld", "spTree")
    shapes = [node for node in (tree.iter() if tree is not None else []) if kind(node, SLIDES, "sp")]
    return [(*placeholder(shape), shape) for shape in shapes if placeholder(shape)]


def sizes_of(styles):
    """Hundredths of a point by level in a list of styles; None where none is stated."""
    def stated(name):
        size = child_of(styles, DRAWING, name, "defRPr")
        return int(size.get("sz")) if size is not None and size.get("sz") else None
    return [stated(f"lvl{level + 1}pPr") or stated("defPPr") for level in range(LEVELS)]


class Surroundings:
    """What the shapes of one slide inherit from."""

    def __init__(self, deck, slide, is_notes=False):
        main = next(target for what, target in deck.relations("").values() if what == "officeDocument")
        self.defaults = child_of(etree.fromstring(deck.data(main)), SLIDES, "defaultTextStyle")
        layout = None if is_notes else self._target(deck, slide, "slideLayout")
        master = self._target(deck, slide, "notesMaster") if is_notes else (
            layout and self._target(deck, layout, "slideMaster"))
        self.layout = placeholders(etree.fromstring(deck.data(layout))) if layout else []
        root = etree.fromstring(deck.data(master)) if master else None
        self.master = placeholders(root)
        self.styles = child_of(root, SLIDES, "txStyles")
        self.known = {}

    @staticmethod
    def _target(deck, part, what):
        return next((target for found, target in deck.relations(part).values() if found == what), None)

    def above(self, shape):
        """The placeholders that SHAPE stands on."""
        key = placeholder(shape)
        if not key:
            return []
        what, index = key

        def same(other):
            return other == what or {other, what} <= set(TITLES)
        on_layout = ([s for w, i, s in self.layout if i == index and same(w)]
                     or [s for w, i, s in self.layout if i == index and index != "0"]
                     or [s for w, i, s in self.layout if same(w)])
        on_master = [s for w, i, s in self.master if master_type(w) == master_type(what)]
        return on_layout[:1] + on_master[:1]

    def inherited(self, shape, stated, otherwise):
        return next((found for found in map(stated, self.above(shape)) if found), otherwise)

    def sizes(self, shape):
        """Hundredths of a point by level, of runs that state none."""
        if shape not in self.known:
            lists = [child_of(child_of(step, SLIDES, "txBody"), DRAWING, "lstStyle")
                     for step in [shape, *self.above(shape)]]
            key = placeholder(shape)
            if key:
                name = {"title": "titleStyle", "body": "bodyStyle"}.get(master_type(key[0]), "otherStyle")
                lists.append(child_of(self.styles, SLIDES, name))
            rows = [sizes_of(styles) for styles in (*lists, self.defaults) if styles is not None]
            self.known[shape] = [next((row[level] for row in rows if row[level]), DEFAULT_SIZE)
                                 for level in range(LEVELS)]
        return self.known[shape]


def group_scale(shape):
    """How much larger a length of SHAPE's own shows on the slide, across and down."""
    scale = [1.0, 1.0]
    for group in shape.iterancestors():
        if not kind(group, SLIDES, "grpSp"):
            continue
        transform = child_of(child_of(group, SLIDES, "grpSpPr"), DRAWING, "xfrm")
        outer, inner = child_of(transform, DRAWING, "ext"), child_of(transform, DRAWING, "chExt")
        for axis, name in enumerate(("cx", "cy")):
            if outer is not None and inner is not None and int(inner.get(name)):
                scale[axis] *= int(outer.get(name)) / int(inner.get(name))
    return scale


@dataclass
class Frame:
    """A shape before and after a run that wrote into it."""
    before: object
    after: object
    around: Surroundings
    sizes: list = field(default_factory=list)  # of each run: hundredths of a point before and after

    def size(self, paragraph, run):
        mark = run is None or kind(run, DRAWING, "endParaRPr")
        own = run if mark else child_of(run, DRAWING, "rPr")
        if own is not None and own.get("sz"):
            return int(own.get("sz"))
        properties = child_of(paragraph, DRAWING, "pPr")
        return self.around.sizes(self.before)[int(properties.get("lvl", "0")) if properties is not None else 0]

    def fit_before(self):
        return stated_fit(self.before) or self.around.inherited(self.before, stated_fit, "noAutofit")

    def same_size(self, old_paragraph, old_run, new_paragraph, new_run):
        """Whether both runs are as large; notes their sizes for faults()."""
        self.sizes.append((self.size(old_paragraph, old_run), self.size(new_paragraph, new_run)))
        return self.sizes[-1][0] == self.sizes[-1][1]

    def faults(self):
        yield from self.size_faults()
        for what, stated, otherwise in (("autofit", stated_fit, "noAutofit"), ("wrap", stated_wrap, "square")):
            inherited = self.around.inherited(self.before, stated, otherwise)
            old, new = stated(self.before), stated(self.after)
            if what == "autofit" and (new or inherited) != "noAutofit":
                yield f"its autofit is {new or inherited}"
            if old != new and (old or inherited) == (new or inherited):
                yield f"it says anew that its {what} is {new}"
        shrunk = any(new < old for old, new in self.sizes) or all(old <= LEAST_SIZE for old, _ in self.sizes)
        if stated_wrap(self.after) == "none" and stated_wrap(self.before) != "none" and not shrunk:
            yield "its wrap is off, and its text is as large as before"

    def size_faults(self):
        largest, became = max(self.sizes, default=(1, 1))
        for old, new in self.sizes:
            if new > old:
                yield f"a size grew from {old} to {new}"
            elif old <= LEAST_SIZE and new != old:
                yield f"a size of {old} is too small to shrink, and is now {new}"
            elif old > LEAST_SIZE and abs(new - max(LEAST_SIZE, old * became / largest)) > ROUNDING:
                yield f"a size shrank from {old} to {new}, another from {largest} to {became}"


def same_but_for(old, new, attribute):
    """Whether two a:bodyPr differ in nothing but their autofit and one attribute."""
    def rest(node):
        attributes = {name: value for name, value in node.attrib.items() if name != attribute}
        return attributes, [canonical(child) for child in node if child is not autofit_of(node)]
    return rest(old) == rest(new)


def check_autofit(old, new):
    """Raises unless the autofit of an a:bodyPr stands where it belongs."""
    before = new.getprevious()
    if old is None and before is not None and not kind(before, DRAWING, "prstTxWarp"):
        raise Fault("a frame's autofit stands behind what follows it")


def check_switched_off(frame):
    old, new = frame_properties(frame.before), frame_properties(frame.after)
    if not same_but_for(old, new, "wrap"):
        raise Fault("a frame's other properties changed")
    fits = [autofit_of(node) for node in (old, new)]
    if fits[1] is not None and canonical(fits[0]) != canonical(fits[1]):
        check_autofit(*fits)
        if len(fits[1]) or fits[1].attrib:
            raise Fault("a frame's autofit says more than it can")


def check_scaled(frame):
    """Of a frame that no fit sees: another scale at most, where the text fits itself to its shape."""
    old, new = frame_properties(frame.before), frame_properties(frame.after)
    fits = [autofit_of(node) for node in (old, new)]
    if canonical(old) == canonical(new):
        return
    if frame.fit_before() != "normAutofit" or not same_but_for(old, new, None):
        raise Fault("a frame changed that no fit sees")
    if fits[1] is None or not kind(fits[1], DRAWING, "normAutofit"):
        raise Fault("a frame lost its autofit, and no fit sees it")
    check_autofit(*fits)
    scale, spacing = (int(fits[1].get(name, other)) for name, other in (("fontScale", 100000), ("lnSpcReduction", 0)))
    if set(fits[1].attrib) - {"fontScale", "lnSpcReduction"} or not 1000 <= scale <= 100000 or not 0 <= spacing < 100000:
        raise Fault("a frame's scale is none")


def check_moved(frame, most):
    was, now = box(frame.before) or frame.around.inherited(frame.before, box, None), box(frame.after)
    for old, new, scale in zip(was, now, group_scale(frame.before) * 2):
        if abs(new - old) * scale > most:
            raise Fault(f"a shape moved from {was} to {now}")


def put_back(frames, before, after, before_root, after_root, fitted):
    """AFTER with the place and frame properties of FRAMES' shapes as they are in BEFORE. Raises where
    they changed further than they may: by a fit if FITTED, otherwise by their own autofit."""
    old_spans, new_spans = spans(before, before_root), spans(after, after_root)
    swaps = []

    def swap(new, old):
        swaps.append((*new_spans[new], before[slice(*old_spans[old])]))
    for frame in frames:
        if frame_properties(frame.before) is not None and frame_properties(frame.after) is not None:
            check_switched_off(frame) if fitted else check_scaled(frame)
            swap(frame_properties(frame.after), frame_properties(frame.before))
        if frame.fit_before() != "spAutoFit" or box(frame.after) is None:
            continue
        if fitted:
            check_moved(frame, MOVED)
        if box(frame.before) is not None:
            for new, old in zip(place(frame.after), place(frame.before)):
                swap(new, old)
            continue
        holder, old_holder = (child_of(shape, SLIDES, "spPr") for shape in (frame.after, frame.before))
        if holder[0].attrib or len(holder[0]) != 2:
            raise Fault("a shape's new place says more than it can")
        if [canonical(child) for child in holder[1:]] != [canonical(child) for child in old_holder]:
            raise Fault("a shape's other properties changed")
        swap(holder, old_holder)
    out, at = b"", 0
    for begin, end, text in sorted(swaps):
        out += after[at:begin] + text
        at = end
    return out + after[at:]


def without_sizes(paragraph):
    """A paragraph's bytes without its sizes, and without properties of runs that say nothing else."""
    def bare(tag):
        return re.sub(rb"""\s+sz\s*=\s*("[^"]*"|'[^']*')""", b"", tag.group())
    names = rb"<((?:\w+:)?(?:rPr|endParaRPr))"
    paragraph = re.sub(names + rb"(\s[^>]*)?>", bare, paragraph)
    paragraph = re.sub(names + rb"\s*(/>|>\s*</\1\s*>)", b"", paragraph)
    return re.sub(rb"<((?:\w+:)?(?:br|p))\s*></\1\s*>", rb"<\1/>", paragraph)
