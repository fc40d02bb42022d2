#!/usr/bin/python3
"""Makes a right translation of a deck and then wrong ones, and sees that check_translation tells
them apart:

    check_checker.py DECK

DECK must hold an equation, a line break, a table with merged cells and notes.
"""
import pathlib
import re
import sys
import tempfile
import zipfile

from lxml import etree

from check_translation import Check, run_like
from deck_text import DRAWING, Deck, kind


def rewritten(before, replaced):
    """BEFORE with each paragraph's bytes replaced as REPLACED (old bytes -> new bytes) says, in turn."""
    at, out = 0, b""
    for old, new in replaced:
        found = before.index(old, at)
        out += before[at:found] + new
        at = found + len(old)
    return out + before[at:]


def translated(deck):
    """All parts of DECK, its texts marked by the rules."""
    parts = {name: deck.data(name) for name in deck.names}
    for part in deck.text_parts():
        data = parts[part.name]
        raw = re.findall(rb"<a:p>.*?</a:p>", data, re.S)
        assert len(raw) == len(part.paragraphs), part.name
        changes = []
        for paragraph, old in zip(part.paragraphs, raw):
            if paragraph.fate != "mark" or paragraph.has_math:
                continue
            runs = run_like(paragraph.node)
            look = next((etree.tostring(node, with_tail=False) for node in runs[0] if kind(node, DRAWING, "rPr")), b"")
            look = re.sub(rb' xmlns:\w+="[^"]*"', b"", look)
            text = paragraph.expected.replace("&", "&amp;").replace("<", "&lt;").encode()
            first = re.search(rb"<a:(r|br|fld)\b", old).start()
            last = max(old.rfind(end) + len(end) for end in (b"</a:r>", b"</a:br>", b"</a:fld>"))
            changes.append((old, old[:first] + b"<a:r>" + look + b"<a:t>" + text + b"</a:t></a:r>" + old[last:]))
        parts[part.name] = rewritten(data, changes)
    return parts


def saved(path, parts):
    with zipfile.ZipFile(path, "w") as archive:
        for name, data in parts.items():
            archive.writestr(name, data)
    return path


def swap(name, old, new):
    def change(parts):
        data = parts[name]
        parts[name] = re.sub(old, new, data, count=1, flags=re.S)
        assert parts[name] != data, (name, old)
    return change


FIRST, NOTES, TABLE, MATH = (f"ppt/{name}.xml" for name in (
    "slides/slide1", "notesSlides/notesSlide1", "slides/slide4", "slides/slide5"))
OPEN, CLOSE = "\u27e6".encode(), "\u27e7".encode()
WRONG = {
    "a text without its marks": swap(FIRST, OPEN + b"A second level" + CLOSE, b"A second level"),
    "a text marked twice": swap(FIRST, OPEN + b"A second level" + CLOSE, OPEN * 2 + b"A second level" + CLOSE * 2),
    "a line break that stays": swap(FIRST, b"Placeholders and", b"Placeholders</a:t></a:r><a:br/><a:r><a:t>and"),
    "a text that lost its format": swap(FIRST, rb'<a:rPr lang="en-GB"/><a:t>' + OPEN + b"A second", b"<a:t>" + OPEN + b"A second"),
    "a changed level": swap(FIRST, rb'<a:pPr lvl="1"', b'<a:pPr lvl="2"'),
    "a changed number": swap(FIRST, b"2025 ", b"2026 "),
    "a stored scale that is gone": swap(FIRST, rb' fontScale="92500"', b""),
    "a changed name": swap(FIRST, b'name="Title"', b'name="Tytle"'),
    "a missing paragraph": swap(FIRST, rb"<a:p></a:p>", b""),
    "notes left out": swap(NOTES, OPEN + b"First line of the notes" + CLOSE, b"First line of the notes"),
    "a cell left out": swap(TABLE, OPEN + b"Two lines" + CLOSE, b"Two lines"),
    "a covered cell that was written": swap(TABLE, rb'(hMerge="1">.*?<a:p>)', rb"\1<a:r><a:t>x</a:t></a:r>"),
    "an equation that is gone": swap(MATH, rb"<a14:m .*?</a14:m>", b""),
    "another branch that was written": swap(MATH, b"(<mc:Fallback>.*?)Energy", rb"\1Mass"),
    "another part that changed": swap("ppt/presentation.xml", b"saveSubsetFonts", b"saveSubsetFont_"),
    "a part that is missing": lambda parts: parts.pop("docProps/app.xml"),
}


def main(path):
    said = "slide 5: Energy and mass:"
    with tempfile.TemporaryDirectory() as folder:
        result = pathlib.Path(folder) / "result.pptx"
        right = translated(Deck(path))
        check = Check(path, saved(result, right), said)
        assert not check.faults and check.marked > 30, check.faults
        assert check.withheld == ["Energy and mass: "], check.withheld
        assert Check(path, result, "").faults, "a text over an equation that nobody named went through"
        for name, change in WRONG.items():
            parts = dict(right)
            change(parts)
            faults = Check(path, saved(result, parts), said).faults
            assert faults, f"{name} went through"
            print(f"{name}: {faults[0]}")


if __name__ == "__main__":
    main(sys.argv[1])
