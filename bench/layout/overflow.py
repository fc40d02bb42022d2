#!/usr/bin/python3
"""How many frames overflow after a run, as LibreOffice shows them, with the text fit and without:

    bench/layout/overflow.py [--decks FOLDER] [--growth 1.4 2.0] [--list N] [--without-build]

Builds what it needs in build/bench and translates the decks of FOLDER, or of $QUILLMARCH_DECKS, with
the pseudo engine. Prints tables with a row for each growth: frames that overflow, and titles that
have more lines than before. Ends with 1 if more frames overflow than may.

A frame is a shape whose text was written, not a cell or a note. It overflows when the lines that
LibreOffice makes of its text are higher, or with the wrap off wider, than the shape is in the file, by
more than a point and two hundredths. So a shape that grows with its text overflows by growing. Of
shapes that are no plain boxes, and of text that LibreOffice fits to its shape, it is asked instead how
far what it draws reaches beyond the shape. Frames that overflowed before the run are left out.

LibreOffice puts a space between Asian and Western text that slides do not know; it is switched off.
"""
import argparse
import collections
import os
import pathlib
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass

import uno

from frames import HUNDREDTHS, Office, make_measurable, measure, shapes_of, text_height

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = ROOT / "build" / "bench"
PROGRAMS = {"with the fit": BUILD / "host/cli/quillmarch", "without it": BUILD / "bench/layout/quillmarch_without_fit"}
SUFFIXES = (".pptx", ".potx", ".ppsx", ".pptm", ".ppsm")
TOLERANCE_SHARE, TOLERANCE_POINTS = 0.02, 1.0
MOST_OVERFLOWS = 0.02  # of the frames
BOXES = ("rectangle", "ooxml-rect", "mso-spt202")


def build():
    subprocess.run(["cmake", "--preset", "bench"], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", str(BUILD), "--parallel", str(os.cpu_count()), "--target",
                    *(program.name for program in PROGRAMS.values())], cwd=ROOT, check=True)


def translated(program, deck, growth, folder):
    result = folder / deck.name
    with tempfile.TemporaryDirectory() as home:
        subprocess.run([program, "translate", deck, "--to", "es", "--engine", "pseudo", "--growth", str(growth),
                        "--output", result], env=dict(os.environ, HOME=home, XDG_DATA_HOME=home), check=False,
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return result


@dataclass
class Frame:
    """Lengths in points, edges as left, top, right and bottom."""
    text: str
    title: bool
    size: tuple            # width and height of the shape, unturned
    drawn: tuple           # edges of what is drawn of shape and text
    outline: tuple = ()    # the same of the shape alone
    block: tuple = ()      # width (0 where lines wrap) and height of the text's lines, in a plain box
    lines: int = 0         # of a title
    height: float = 0.0    # of these lines


def edges(shape):
    box = shape.BoundRect
    return tuple(value * HUNDREDTHS for value in (box.X, box.Y, box.X + box.Width, box.Y + box.Height))


def outline(shape):
    """What is drawn of SHAPE without its text, which must not shrink it."""
    shape.TextFitToSize = uno.Enum("com.sun.star.drawing.TextFitToSizeType", "NONE")
    shape.TextAutoGrowHeight = shape.TextAutoGrowWidth = False
    shape.setString("")
    return edges(shape)


def is_plain_box(shape):
    if not shape.supportsService("com.sun.star.drawing.CustomShape"):
        return True
    return any(p.Name == "Type" and p.Value in BOXES for p in shape.CustomShapeGeometry)


def block_of(shape):
    """Width, where lines do not wrap, and height of the lines of a plain box."""
    if shape.TextFitToSize.value != "NONE" or not is_plain_box(shape):
        return ()
    position, size = shape.Position, shape.Size
    # Placeholders always wrap.
    wraps = shape.TextWordWrap or not shape.supportsService("com.sun.star.drawing.CustomShape")
    make_measurable(shape)
    if not wraps:
        shape.TextAutoGrowWidth = True
    width = 0 if wraps else shape.Size.Width - shape.TextLeftDistance - shape.TextRightDistance
    block = width * HUNDREDTHS, text_height(shape) * HUNDREDTHS
    shape.TextAutoGrowHeight = shape.TextAutoGrowWidth = False
    shape.Position, shape.Size = position, size
    return block


def lines_of(shape):
    position, size = shape.Position, shape.Size
    make_measurable(shape)
    measured = measure(shape)
    shape.TextAutoGrowHeight = False
    shape.Position, shape.Size = position, size
    return measured["lines"], measured["height"]


def without_script_space(shape):
    text = shape.createTextCursor()
    text.gotoEnd(True)
    text.ParaIsCharacterDistance = False


def frames_of(office, path):
    """The frames of a deck by place."""
    document = office.open(path)
    shapes, found = [], {}
    for i in range(document.DrawPages.Count):
        for place, shape in shapes_of(document.DrawPages.getByIndex(i), str(i + 1)):
            if shape.getString().strip() and not getattr(shape, "IsEmptyPresentationObject", False):
                shapes.append((place, shape))
    for place, shape in shapes:
        without_script_space(shape)
        title = shape.supportsService("com.sun.star.presentation.TitleTextShape")
        size = shape.Size.Width * HUNDREDTHS, shape.Size.Height * HUNDREDTHS
        found[place] = Frame(shape.getString(), title, size, edges(shape))
    # What follows changes a shape, and nothing is drawn behind it.
    for place, shape in shapes:
        frame = found[place]
        frame.block = block_of(shape)
        if frame.title:
            frame.lines, frame.height = lines_of(shape)
        frame.outline = outline(shape)
    document.close(True)
    return found


def beyond(frame, place):
    """Points that FRAME is too large for the shape as it stands in PLACE; 0 and less where it fits."""
    across, down = (side * TOLERANCE_SHARE + TOLERANCE_POINTS for side in place.size)
    if frame.block:
        return max(frame.block[0] - place.size[0] - across, frame.block[1] - place.size[1] - down)
    past = (place.outline[0] - frame.drawn[0], place.outline[1] - frame.drawn[1],
            frame.drawn[2] - place.outline[2], frame.drawn[3] - place.outline[3])
    return max(by - allowed for by, allowed in zip(past, (across, down) * 2))


class Count:
    def __init__(self):
        self.frames = self.overflowed_before = 0
        self.overflows = collections.Counter()
        self.titles = self.flat_titles = 0
        self.longer_titles = collections.Counter()
        self.longer_flat_titles = collections.Counter()
        self.worst = []

    def add(self, deck, before, after):
        """AFTER: the frames by way, with the fit first."""
        fitted = after["with the fit"]
        for place, frame in fitted.items():
            if place not in before or before[place].text == frame.text:
                continue
            if before[place].title and before[place].lines == 1:
                # A title whose shape has room for a second line may take it.
                flat = 2 * before[place].height > frame.size[1] * (1 + TOLERANCE_SHARE) + TOLERANCE_POINTS
                self.titles += 1
                self.flat_titles += flat
                for way, frames in after.items():
                    self.longer_titles[way] += frames[place].lines > 1
                    self.longer_flat_titles[way] += flat and frames[place].lines > 1
            # The fit leaves the shape where the file has it, and lets nothing grow.
            if beyond(before[place], frame) > 0:
                self.overflowed_before += 1
                continue
            self.frames += 1
            for way, frames in after.items():
                by = beyond(frames[place], frame)
                self.overflows[way] += by > 0
                if by > 0 and frames is fitted:
                    self.worst.append((by, f"{deck.name}, slide {place.replace('/', ', shape ', 1)}", frame.text))


def table(title, counts, of, value):
    ways = list(PROGRAMS)
    print(f"\n{title}\n{'growth':>8}{of:>12}" + "".join(f"{way:>22}" for way in ways))
    for growth, count in counts.items():
        whole, part = value(count)
        print(f"{growth:8}{whole:12}" + "".join(f"{part[way]:12} ({part[way] / max(1, whole):6.2%})" for way in ways))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--decks", type=pathlib.Path, default=os.environ.get("QUILLMARCH_DECKS"))
    parser.add_argument("--growth", type=float, nargs="+", default=[1.4, 2.0])
    parser.add_argument("--list", type=int, default=0, metavar="N", help="names the N frames that overflow most")
    parser.add_argument("--without-build", action="store_true")
    options = parser.parse_args()
    if not options.decks:
        parser.error("no decks: name a folder, or set QUILLMARCH_DECKS")
    if not options.without_build:
        build()
    decks = sorted(path for path in pathlib.Path(options.decks).iterdir() if path.suffix in SUFFIXES)
    counts = {growth: Count() for growth in options.growth}
    office = Office()
    try:
        with tempfile.TemporaryDirectory() as folder, ThreadPoolExecutor(os.cpu_count()) as pool:
            ways = {(way, growth): pathlib.Path(folder) / f"{way} {growth}" for way in PROGRAMS for growth in counts}
            for place in ways.values():
                place.mkdir()
            jobs = {(deck, *key): pool.submit(translated, PROGRAMS[key[0]], deck, key[1], place)
                    for deck in decks for key, place in ways.items()}
            for deck in decks:
                before = frames_of(office, deck)
                for growth, count in counts.items():
                    after = {way: frames_of(office, jobs[deck, way, growth].result()) for way in PROGRAMS}
                    count.add(deck, before, after)
    finally:
        office.close()
    for growth, count in counts.items():
        for by, place, text in sorted(count.worst, reverse=True)[:options.list]:
            print(f"growth {growth}: {by:6.1f} points over in {place}: {text[:60]!r}")
    table("frames that overflow, of those that did not before", counts, "frames", lambda c: (c.frames, c.overflows))
    print("left out, for they overflowed before: " + ", ".join(str(c.overflowed_before) for c in counts.values()))
    table("titles of one line that have more", counts, "titles", lambda c: (c.titles, c.longer_titles))
    table("the same, of shapes that hold but one line", counts, "titles",
          lambda c: (c.flat_titles, c.longer_flat_titles))
    sys.exit(any(c.overflows["with the fit"] > MOST_OVERFLOWS * c.frames for c in counts.values()))


if __name__ == "__main__":
    main()
