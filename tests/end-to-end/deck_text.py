"""Reads the texts of a .pptx with lxml: an eye of its own on what the translation should touch.

Shares nothing with the host, so that a mistake there is not repeated here.
"""
import posixpath
import re
import unicodedata
import zipfile
from dataclasses import dataclass, field

from lxml import etree

MATH = "http://schemas.openxmlformats.org/officeDocument/2006/math"
COMPATIBILITY = "http://schemas.openxmlformats.org/markup-compatibility/2006"
# Transitional and Strict.
DRAWING = ("http://schemas.openxmlformats.org/drawingml/2006/main", "http://purl.oclc.org/ooxml/drawingml/main")
SLIDES = ("http://schemas.openxmlformats.org/presentationml/2006/main",
          "http://purl.oclc.org/ooxml/presentationml/main")
RELATIONS = ("http://schemas.openxmlformats.org/officeDocument/2006/relationships",
             "http://purl.oclc.org/ooxml/officeDocument/relationships")
# What Microsoft's programs of 2016 and later understand, first choice first.
UNDERSTOOD = ("http://schemas.microsoft.com/", "urn:schemas-microsoft-com:")
CJK = ((0x4E00, 0x9FFF), (0x3040, 0x30FF), (0xAC00, 0xD7AF))
PHRASE_BREAKS = "，。！？；：、,.!?;:"
LONGEST_BROKEN_PHRASE = 30
DEEPEST_GROUP = 31


def kind(node, namespaces, name):
    if not isinstance(node.tag, str):
        return False
    tag = etree.QName(node)
    return tag.localname == name and tag.namespace in namespaces


def children(node, namespaces, name):
    return [child for child in node if kind(child, namespaces, name)]


def child_of(node, namespaces, *names):
    for name in names:
        found = children(node, namespaces, name) if node is not None else []
        node = found[0] if found else None
    return node


def is_cjk(char):
    return any(low <= ord(char) <= high for low, high in CJK)


def is_letter(char):
    """Windows looks at UTF-16 units, and half of a pair is no letter."""
    if ord(char) > 0xFFFF:
        return False
    category = unicodedata.category(char)
    return category.startswith("L") or category == "Nl"


def is_space(char):
    return char in "\t\n\v\f\r\x85" or unicodedata.category(char) in ("Zs", "Zl", "Zp")


def is_digit(char):
    return ord(char) <= 0xFFFF and (unicodedata.category(char) == "Nd" or char in "²³¹")


def worth_translating(text):
    return any(is_cjk(char) or is_letter(char) for char in text)


def flattened(text):
    """Line breaks become one blank, unless a blank or a tab follows; no blanks at the end."""
    out, pending = "", False
    for char in text:
        if char in "\r\n\v\f":
            pending = bool(out)
            continue
        if pending and char not in " \t":
            out += " "
        pending = False
        out += char
    return out.rstrip(" \t")


def marked(text):
    return flattened("\u27e6" + text + "\u27e7")


@dataclass
class Paragraph:
    node: object
    text: str
    has_math: bool
    # keep: not one byte changes; mark: its text is marked; joined: the first of a frame that goes
    # out whole; gone: its other paragraphs; open: a text under an equation alone, either way
    fate: str = "keep"
    expected: str = ""


@dataclass
class Part:
    name: str
    is_notes: bool
    root: object
    paragraphs: list = field(default_factory=list)
    bodies: list = field(default_factory=list)  # (shape or cell, is a cell, its paragraphs)


def paragraph_text(node):
    """As a host reads it: runs and fields by their texts, a line break as a vertical tab. A line feed
    within a run is white space like any other, as XML has it."""
    text = ""
    for child in node:
        if kind(child, DRAWING, "br"):
            text += "\v"
        elif kind(child, DRAWING, "r") or kind(child, DRAWING, "fld"):
            for leaf in children(child, DRAWING, "t"):
                text += re.sub("[\r\n]", " ", leaf.text or "")
    return text.rstrip("\r\n")


def has_math(node):
    return next(node.iter(f"{{{MATH}}}oMath", f"{{{MATH}}}oMathPara"), None) is not None


def chosen(alternates):
    for choice in children(alternates, (COMPATIBILITY,), "Choice"):
        spaces = [choice.nsmap.get(prefix, "") for prefix in choice.get("Requires", "").split()]
        if all(space.startswith(UNDERSTOOD) for space in spaces):
            return choice
    return child_of(alternates, (COMPATIBILITY,), "Fallback")


def frames(tree, depth=0):
    """(text body, is a table's cell) of all shapes below a shape tree or a group."""
    for node in tree:
        if kind(node, (COMPATIBILITY,), "AlternateContent"):
            branch = chosen(node)
            if branch is not None:
                yield from frames(branch, depth)
        elif kind(node, SLIDES, "grpSp") and depth < DEEPEST_GROUP:
            yield from frames(node, depth + 1)
        elif kind(node, SLIDES, "sp"):
            body = child_of(node, SLIDES, "txBody")
            if body is not None:
                yield body, False
        elif kind(node, SLIDES, "graphicFrame"):
            table = child_of(child_of(node, DRAWING, "graphic", "graphicData"), DRAWING, "tbl")
            for row in children(table, DRAWING, "tr") if table is not None else []:
                for cell in children(row, DRAWING, "tc"):
                    # The other places of a merged cell answer with the origin's text.
                    covered = cell.get("hMerge") in ("1", "true") or cell.get("vMerge") in ("1", "true")
                    body = child_of(cell, DRAWING, "txBody")
                    if body is not None and not covered:
                        yield body, True


def goes_out_whole(texts):
    """Whether a frame is one phrase that its author broke by hand over several paragraphs."""
    return (len(texts) >= 2 and sum(map(len, texts)) <= LONGEST_BROKEN_PHRASE
            and all(all(is_cjk(c) or is_digit(c) or is_space(c) for c in text) for text in texts)
            and not any(c in PHRASE_BREAKS for text in texts for c in text)
            and all(worth_translating(text) for text in texts))


def decide(part):
    known = {}
    for node in part.root.iter():
        if kind(node, DRAWING, "p"):
            known[node] = Paragraph(node, paragraph_text(node), has_math(node))
    part.paragraphs = list(known.values())
    tree = child_of(part.root, SLIDES, "cSld", "spTree")
    for body, in_table in frames(tree) if tree is not None else []:
        held = [known[node] for node in children(body, DRAWING, "p")]
        part.bodies.append((body.getparent(), in_table, held))
        texts = [paragraph.text for paragraph in held]
        if not in_table and not part.is_notes and goes_out_whole(texts):
            for paragraph in held:
                paragraph.fate = "gone"
            held[0].fate, held[0].expected = "joined", marked("".join(texts))
            continue
        for paragraph in held:
            if worth_translating(paragraph.text):
                paragraph.fate, paragraph.expected = "mark", marked(paragraph.text)
            elif paragraph.has_math:
                paragraph.fate = "open"


class Deck:
    def __init__(self, path):
        self.archive = zipfile.ZipFile(path)
        self.names = [name for name in self.archive.namelist() if not name.endswith("/")]
        self.by_lower = {name.lower(): name for name in self.names}

    def data(self, name):
        return self.archive.read(name)

    def quarrels(self):
        """The entries whose flags in the archive's directory are not those before their data."""
        file = self.archive.fp
        found = []
        for entry in self.archive.infolist():
            file.seek(entry.header_offset + 6)
            if int.from_bytes(file.read(2), "little") != entry.flag_bits:
                found.append(entry.filename)
        return found

    def relations(self, part):
        folder, _, name = part.rpartition("/")
        where = self.by_lower.get(f"{folder}/_rels/{name}.rels".strip("/").lower())
        if not where:
            return {}
        found = {}
        for node in etree.fromstring(self.data(where)):
            if isinstance(node.tag, str) and node.get("TargetMode") != "External":
                target = node.get("Target", "").split("#")[0]
                target = target.lstrip("/") if target.startswith("/") else posixpath.normpath(
                    posixpath.join(folder, target))
                found[node.get("Id")] = (node.get("Type", "").rsplit("/", 1)[-1],
                                         self.by_lower.get(target.lower()))
        return found

    def text_parts(self):
        """The slides of the slide list and their notes, each with what is expected of it."""
        main = next(target for what, target in self.relations("").values() if what == "officeDocument")
        relations = self.relations(main)
        order = child_of(etree.fromstring(self.data(main)), SLIDES, "sldIdLst")
        parts = []
        for entry in order if order is not None else []:
            identity = next((entry.get(f"{{{space}}}id") for space in RELATIONS if entry.get(f"{{{space}}}id")), None)
            slide = relations.get(identity, (None, None))[1]
            if not slide:
                continue
            notes = [target for what, target in self.relations(slide).values() if what == "notesSlide" and target]
            for name, is_notes in [(slide, False)] + [(name, True) for name in notes[:1]]:
                part = Part(name, is_notes, etree.fromstring(self.data(name)))
                decide(part)
                parts.append(part)
        return parts
