#!/usr/bin/python3
"""Compares a deck with its translation by the pseudo engine, which puts each text between U+27E6
and U+27E7, and finds every text that was missed, marked twice or changed otherwise:

    check_translation.py SOURCE RESULT [--report FILE]

FILE is what the command printed; a text over an equation may stay as it was only if it is named
there. Prints one line for each fault; exits with 1 if there is any.
"""
import argparse
import copy
import re
import sys

from lxml import etree

from deck_text import COMPATIBILITY, DRAWING, Deck, children, kind, paragraph_text


class Fault(Exception):
    pass


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


def canonical(node):
    return b"" if node is None else etree.tostring(node, method="c14n", exclusive=True, with_tail=False)


def one(node, name):
    found = children(node, DRAWING, name)
    return found[0] if found else None


def run_like(node):
    return [child for child in node if any(kind(child, DRAWING, name) for name in ("r", "br", "fld"))
            or kind(child, (COMPATIBILITY,), "AlternateContent")]


def holds_text(run):
    return not kind(run, DRAWING, "r") or bool(run.findtext("{*}t"))


def look(run):
    """The run's properties but for the speller's notes, which a new text makes void."""
    properties = one(run, "rPr")
    if properties is not None:
        properties = copy.deepcopy(properties)
        for note in ("dirty", "err"):
            properties.attrib.pop(note, None)
    return canonical(properties)


def check_marked(before, after):
    """BEFORE is the source's paragraph, AFTER the result's node."""
    text = paragraph_text(after)
    if text != before.expected:
        raise Fault(f"reads {text!r} and not {before.expected!r}")
    for name in ("pPr", "endParaRPr"):
        if canonical(one(before.node, name)) != canonical(one(after, name)):
            raise Fault(f"{before.text!r} has another {name}")
    runs = [run for run in run_like(after) if holds_text(run)]
    if len(runs) != 1 or not kind(runs[0], DRAWING, "r"):
        raise Fault(f"{before.text!r} came back in {len(runs)} runs")
    # A break at the front has properties too, but it is the first letters that a reader sees.
    first = next(run for run in run_like(before.node) if holds_text(run) and not kind(run, DRAWING, "br"))
    if look(first) != look(runs[0]):
        raise Fault(f"{before.text!r} does not look like its first run")
    others = [child for child in before.node if child not in run_like(before.node)]
    if [child.tag for child in others] != [child.tag for child in after if child not in run_like(after)]:
        raise Fault(f"{before.text!r} lost something beside its runs")


def shown(text):
    """TEXT as a report of one line may show it."""
    return " ".join(text.split())


class Check:
    def __init__(self, source, result, report=""):
        self.source, self.result = Deck(source), Deck(result)
        self.report = shown(report)
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
        old, new = pieces(before, part.root), pieces(after, etree.fromstring(after))
        nodes = [node for node in etree.fromstring(after).iter() if kind(node, DRAWING, "p")]
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
            self.check_paragraph(part.name, paragraph, raw, new[2 * at + 1], nodes[at])
            at += 1
        if new[-1] != old[-1]:
            raise Fault("the markup behind its last paragraph changed")

    def check_paragraph(self, name, paragraph, old, new, node):
        if paragraph.has_math and paragraph.fate in ("mark", "joined", "open"):
            if old != new:
                self.fault(name, f"the equation in {paragraph.text!r} was touched")
            elif paragraph.fate != "open":
                self.withheld.append(paragraph.text)
                if shown(paragraph.text)[:40].rstrip() not in self.report:
                    self.fault(name, f"{paragraph.text!r} was not written, and the command does not say so")
        elif paragraph.fate in ("keep", "open"):
            if old != new:
                self.fault(name, f"{paragraph.text!r} changed, and is none to translate")
        else:
            try:
                check_marked(paragraph, node)
                self.marked += 1
            except Fault as fault:
                self.fault(name, fault)


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("source")
    parser.add_argument("result")
    parser.add_argument("--report")
    options = parser.parse_args()
    said = open(options.report, encoding="utf-8").read() if options.report else ""
    check = Check(options.source, options.result, said)
    print("\n".join(check.faults) or f"{check.marked} texts marked, {len(check.withheld)} over an equation kept")
    sys.exit(1 if check.faults else 0)
