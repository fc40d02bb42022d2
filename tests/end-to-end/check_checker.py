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
from frame_rules import frame_properties, spans


def rewritten(before, replaced):
    """BEFORE with each paragraph's bytes replaced as REPLACED (old bytes -> new bytes) says, in turn."""
    at, out = 0, b""
    for old, new in replaced:
        found = before.index(old, at)
        out += before[at:found] + new
        at = found + len(old)
    return out + before[at:]


def switched_off(part, data):
    """DATA with the autofit off in the slide's shapes that hold text to translate."""
    found = spans(data, part.root)
    frames = [found[frame_properties(shape)] for shape, in_table, held in part.bodies if not in_table
              and any(paragraph.fate == "mark" and not paragraph.has_math for paragraph in held)]
    for begin, end in sorted(frames, reverse=True):
        frame = re.sub(rb"<a:(?:norm|sp)Auto[fF]it[^>]*/>", b"<a:noAutofit/>", data[begin:end])
        data = data[:begin] + frame + data[end:]
    return data


def translated(deck):
    """All parts of DECK, its texts marked by the rules, nothing shrunk."""
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
        if not part.is_notes:
            data = switched_off(part, data)
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


def both(*changes):
    def change(parts):
        for one in changes:
            one(parts)
    return change


def resized(share):
    """All of the content placeholder of the first slide SHARE times as large."""
    def change(parts):
        head, frame, tail = re.split(rb'(name="Content".*?</p:txBody>)', parts[FIRST], maxsplit=1, flags=re.S)

        def paragraph(found):
            size = b'sz="%d"' % round((2000 if b'lvl="1"' in found.group() else 2400) * share)
            text = found.group().replace(b"<a:rPr", b"<a:rPr " + size)
            return text.replace(b"<a:p></a:p>", b"<a:p><a:endParaRPr " + size + b"/></a:p>")
        parts[FIRST] = head + re.sub(rb"<a:p>.*?</a:p>", paragraph, frame, flags=re.S) + tail
    return change


def frame(name, old, new):
    """In the shape NAME of the second slide."""
    return swap(SHAPES, rb'(name="%s".*?)%s' % (name, old), rb"\g<1>" + new)


FIRST, NOTES, SHAPES, TABLE, MATH = (f"ppt/{name}.xml" for name in (
    "slides/slide1", "notesSlides/notesSlide1", "slides/slide2", "slides/slide4", "slides/slide5"))
OPEN, CLOSE = "\u27e6".encode(), "\u27e7".encode()
RIGHT = {
    "nothing shrunk": lambda parts: None,
    "a text that shrank": resized(0.8),
    "a text that shrank to the least size": resized(500 / 2000),
    "a text on one line that shrank": both(resized(0.8), swap(FIRST, rb'(name="Content".*?<a:bodyPr)', rb'\1 wrap="none"')),
    "a shape that grew by a point before its autofit went off": frame(b"Growing", b'cy="1097280"', b'cy="1109980"'),
}
WRONG = {
    "a text without its marks": swap(FIRST, OPEN + b"A second level" + CLOSE, b"A second level"),
    "a text marked twice": swap(FIRST, OPEN + b"A second level" + CLOSE, OPEN * 2 + b"A second level" + CLOSE * 2),
    "a line break that stays": swap(FIRST, b"Placeholders and", b"Placeholders</a:t></a:r><a:br/><a:r><a:t>and"),
    "a text that lost its format": swap(FIRST, rb'<a:rPr lang="en-GB"/><a:t>' + OPEN + b"A second", b"<a:t>" + OPEN + b"A second"),
    "a changed level": swap(FIRST, rb'<a:pPr lvl="1"', b'<a:pPr lvl="2"'),
    "a changed number": swap(FIRST, b"2025 ", b"2026 "),
    "a stored scale that stays": swap(FIRST, b"<a:noAutofit/>", b'<a:normAutofit fontScale="92500" lnSpcReduction="10000"/>'),
    "an autofit that says too much": swap(FIRST, b"<a:noAutofit/>", b'<a:noAutofit fontScale="92500"/>'),
    "an autofit that was off already": swap(FIRST, rb"(name=\"Title\".*?<a:bodyPr>)", rb"\1<a:noAutofit/>"),
    "a size that grew": resized(1.25),
    "sizes below the least": resized(0.2),
    "one size out of proportion": both(resized(0.8), swap(FIRST, rb'sz="1600"', b'sz="1500"')),
    "one size that stayed": both(resized(0.8), swap(FIRST, rb' sz="1920"( lang="en-GB"/><a:t>2025)', rb"\1")),
    "a mark that stayed large": both(resized(0.8), swap(FIRST, rb'<a:endParaRPr sz="1920"/>', b"")),
    "a size said anew": resized(1),
    "a size in a table's cell": swap(TABLE, b'sz="1500"', b'sz="1400"'),
    "a size in a covered cell": swap(TABLE, rb'(hMerge="1">.*?)</a:p>', rb'\1<a:endParaRPr sz="900"/></a:p>'),
    "a size in the notes": swap(NOTES, b"<a:rPr ", b'<a:rPr sz="900" '),
    "a frame of the notes without its wrap": swap(NOTES, b"<a:bodyPr>", b'<a:bodyPr wrap="none">'),
    "a frame of the notes with an autofit": swap(NOTES, b"(<a:bodyPr>)", rb"\1<a:normAutofit/>"),
    "a wrap that is off though nothing shrank": frame(b"Fixed", b'wrap="square"', b'wrap="none"'),
    "another inset": frame(b"Fixed", b'lIns="91440"', b'lIns="0"'),
    "another anchor": frame(b"Fixed", b'anchor="t"', b'anchor="b"'),
    "a shape that moved": frame(b"Fixed", b'<a:off x="4754880"', b'<a:off x="4754881"'),
    "a shape that grew by two points": frame(b"Growing", b'cy="1097280"', b'cy="1122680"'),
    "a frame that was not written and changed": frame(b"Digits alone", b"normAutofit", b"noAutofit"),
    "a size where nothing was written": frame(b"Digits alone", b"<a:rPr ", b'<a:rPr sz="900" '),
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
        for name, change in RIGHT.items():
            parts = dict(right)
            change(parts)
            check = Check(path, saved(result, parts), said)
            assert not check.faults and check.marked > 30, (name, check.faults)
            assert check.withheld == ["Energy and mass: "], check.withheld
        assert Check(path, result, "").faults, "a text over an equation that nobody named went through"
        for old, new, good in ((b"level", b"level, a second level", True), (b"level", b"lev", False),
                               (b"level" + CLOSE, b"level, a", False)):
            parts = dict(right)
            swap(FIRST, b"A second " + old, b"A second " + new)(parts)
            faults = Check(path, saved(result, parts), said, grown=True).faults
            assert bool(faults) != good, (new, faults)
        for name, change in WRONG.items():
            parts = dict(right)
            change(parts)
            faults = Check(path, saved(result, parts), said).faults
            assert faults, f"{name} went through"
            print(f"{name}: {faults[0]}")


if __name__ == "__main__":
    main(sys.argv[1])
