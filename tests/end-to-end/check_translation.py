#!/usr/bin/python3
"""Compares a deck with its translation by the pseudo engine, which puts each text between U+27E6
and U+27E7, and finds every text that was missed, marked twice or changed otherwise:

    check_translation.py SOURCE RESULT [--report FILE] [--grown]

With --grown the texts may have become longer. FILE is what the command printed; a text over an equation may stay as it was only if it is named
there. Prints one line for each fault; exits with 1 if there is any.
"""
import argparse
import copy
import re
import sys

from lxml import etree

from deck_text import COMPATIBILITY, DRAWING, SLIDES, Deck, children, has_math, kind, paragraph_text
from frame_rules import Fault, Frame, Surroundings, canonical, put_back, without_sizes


def pieces(data, root):
    """DATA cut at its paragraphs: what stands between them, and the paragraphs, in turn."""
    prefixes = {prefix for node in root.iter() if isinstance(node.tag, str)
                for prefix, uri in node.nsmap.items() if uri in DRAWING}
    if len(prefixes) != 1 or None in prefixes:
        raise Fault(f"its drawing namespace has the prefixes {prefixes}")
    p = re.escape(prefixes.pop().encode()) + b":p"
    start = b"<" + p + b"(?:\\s[^>]*)?"
    pattern = b"(" + start + b"/>|" + start + b"(?<!/)>.*?</" + p + b"\\s*>)"
    return re.split(pattern, data, flags=re.S)


def one(node, name):
    found = children(node, DRAWING, name)
    return found[0] if found else None


def run_like(node):
    return [child for child in node if any(kind(child, DRAWING, name) for name in ("r", "br", "fld"))
            or kind(child, (COMPATIBILITY,), "AlternateContent")]


def holds_text(run):
    return not kind(run, DRAWING, "r") or bool(run.findtext("{*}t"))


def look(run, but_for):
    """The run's properties but for the speller's notes, which a new text makes void, and BUT_FOR."""
    properties = one(run, "rPr")
    if properties is None:
        return b""
    properties = copy.deepcopy(properties)
    for name in ("dirty", "err", *but_for):
        properties.attrib.pop(name, None)
    bare = "sz" in but_for and not properties.attrib and not len(properties)
    return b"" if bare else canonical(properties)


def reads_right(text, expected, grown):
    """A text that grew goes on behind the source's words, before the closing mark."""
    if not grown:
        return text == expected
    begin, end = expected[:-1].rstrip(), expected[-1]
    return text.startswith(begin) and text.endswith(end) and text.count(end) == expected.count(end)


def check_marked(before, after, frame, grown):
    """BEFORE is the source's paragraph, AFTER the result's node."""
    text = paragraph_text(after)
    if not reads_right(text, before.expected, grown):
        raise Fault(f"reads {text!r} and not {before.expected!r}")
    for name in ("pPr", "endParaRPr"):
        if canonical(one(before.node, name)) != canonical(one(after, name)):
            raise Fault(f"{before.text!r} has another {name}")
    runs = [run for run in run_like(after) if holds_text(run)]
    if len(runs) != 1 or not kind(runs[0], DRAWING, "r"):
        raise Fault(f"{before.text!r} came back in {len(runs)} runs")
    # A break at the front has properties too, but it is the first letters that a reader sees.
    first = next(run for run in run_like(before.node) if holds_text(run) and not kind(run, DRAWING, "br"))
    but_for = ("sz",) if frame and not frame.same_size(before.node, first, after, runs[0]) else ()
    if look(first, but_for) != look(runs[0], but_for):
        raise Fault(f"{before.text!r} does not look like its first run")
    others = [child for child in before.node if child not in run_like(before.node)]
    if [child.tag for child in others] != [child.tag for child in after if child not in run_like(after)]:
        raise Fault(f"{before.text!r} lost something beside its runs")


def sized(paragraph):
    """What of PARAGRAPH may have another size after a fit: what shows text; a mark that stands alone,
    if a paragraph follows."""
    runs = [child for child in paragraph if kind(child, DRAWING, "br")
            or (kind(child, DRAWING, "r") or kind(child, DRAWING, "fld")) and child.findtext("{*}t")]
    others = any(kind(child, (COMPATIBILITY,), "AlternateContent") or has_math(child) for child in paragraph)
    follows = any(kind(node, DRAWING, "p") for node in paragraph.itersiblings())
    return [one(paragraph, "endParaRPr")] if not runs and not others and follows else runs


def check_kept(before, after, old, new, frame):
    """OLD and NEW are the bytes of both paragraphs."""
    if frame is None:
        if old != new:
            raise Fault(f"{before.text!r} changed, and is none to translate")
        return
    old_sized, new_sized = sized(before.node), sized(after)
    rest = [[canonical(child) for child in node if child not in those]
            for node, those in ((before.node, old_sized), (after, new_sized))]
    if without_sizes(old) != without_sizes(new) or rest[0] != rest[1]:
        raise Fault(f"{before.text!r} changed in more than its size, and is none to translate")
    same = [frame.same_size(before.node, was, after, now) for was, now in zip(old_sized, new_sized)]
    if old != new and all(same):
        raise Fault(f"{before.text!r} says its size anew")


def shown(text):
    """TEXT as a report of one line may show it."""
    return " ".join(text.split())


class Check:
    def __init__(self, source, result, report="", grown=False):
        self.source, self.result = Deck(source), Deck(result)
        self.report = shown(report)
        self.grown = grown
        self.faults = []
        self.marked = 0
        self.edited = []   # names of parts that changed
        self.withheld = []  # texts over an equation that stayed as they were
        self.run()

    def fault(self, where, what):
        self.faults.append(f"{where}: {what}")

    def run(self):
        if self.source.names != self.result.names:
            self.fault("package", "other parts, or in another order")
            return
        for name in set(self.result.quarrels()) - set(self.source.quarrels()):
            self.fault(name, "the archive's directory has other flags than stand before the data")
        text_parts = {part.name: part for part in self.source.text_parts()}
        for name in self.source.names:
            before, after = self.source.data(name), self.result.data(name)
            if before != after:
                self.edited.append(name)
            if name in text_parts:
                try:
                    self.check_part(text_parts[name], before, after)
                except (Fault, etree.XMLSyntaxError) as fault:
                    self.fault(name, fault)
            elif before != after:
                self.fault(name, "changed, and holds no text to translate")

    def check_part(self, part, before, after):
        if not part.paragraphs:
            if before != after:
                raise Fault("changed, and holds no paragraph")
            return
        after_root = etree.fromstring(after)
        frames = self.written(part, after_root) if before != after else []
        after = put_back([frame for frame, _ in frames], before, after, part.root, after_root, not part.is_notes)
        if part.is_notes:
            frames = []  # no fit sees them, so no size may change
        frame_of = {id(paragraph): frame for frame, held in frames for paragraph in held}
        old, new = pieces(before, part.root), pieces(after, after_root)
        nodes = [node for node in after_root.iter() if kind(node, DRAWING, "p")]
        if len(old) != 2 * len(part.paragraphs) + 1 or len(new) != 2 * len(nodes) + 1:
            raise Fault("its paragraphs cannot be told apart")
        if len(nodes) != sum(paragraph.fate != "gone" for paragraph in part.paragraphs):
            raise Fault(f"{len(nodes)} paragraphs came back of {len(part.paragraphs)}")
        at = 0
        for index, paragraph in enumerate(part.paragraphs):
            if paragraph.fate == "gone":
                continue
            gap, raw = old[2 * index], old[2 * index + 1]
            # What stood between a phrase's paragraphs goes with them.
            first = index
            while part.paragraphs[first - 1].fate == "gone" and first > 0 and old[2 * first].strip() == b"":
                first -= 1
            if new[2 * at] != gap and not (first < index and new[2 * at].strip() == gap.strip()):
                raise Fault(f"the markup before {paragraph.text!r} changed")
            try:
                self.check_paragraph(paragraph, raw, new[2 * at + 1], nodes[at], frame_of.get(id(paragraph)))
            except Fault as fault:
                self.fault(part.name, fault)
            at += 1
        if new[-1] != old[-1]:
            raise Fault("the markup behind its last paragraph changed")
        for frame, held in frames:
            for fault in frame.faults():
                self.fault(part.name, f"the shape of {held[0].text!r}: {fault}")

    def written(self, part, after_root):
        """The shapes, not cells, whose text was written, each with its paragraphs."""
        shapes = [[node for node in root.iter() if kind(node, SLIDES, "sp")] for root in (part.root, after_root)]
        if len(shapes[0]) != len(shapes[1]):
            raise Fault("it has other shapes")
        after = dict(zip(*shapes))
        around = Surroundings(self.source, part.name, part.is_notes)
        return [(Frame(shape, after[shape], around), held) for shape, in_table, held in part.bodies
                if not in_table and any(p.fate in ("mark", "joined") and not p.has_math for p in held)]

    def check_paragraph(self, paragraph, old, new, node, frame):
        if paragraph.fate in ("keep", "open") or paragraph.has_math:
            check_kept(paragraph, node, old, new, frame)
            if paragraph.fate in ("mark", "joined"):
                self.withheld.append(paragraph.text)
                if shown(paragraph.text)[:40].rstrip() not in self.report:
                    raise Fault(f"{paragraph.text!r} was not written, and the command does not say so")
        else:
            check_marked(paragraph, node, frame, self.grown)
            self.marked += 1


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("source")
    parser.add_argument("result")
    parser.add_argument("--report")
    parser.add_argument("--grown", action="store_true")
    options = parser.parse_args()
    said = open(options.report, encoding="utf-8").read() if options.report else ""
    check = Check(options.source, options.result, said, options.grown)
    print("\n".join(check.faults) or f"{check.marked} texts marked, {len(check.withheld)} over an equation kept")
    sys.exit(1 if check.faults else 0)
