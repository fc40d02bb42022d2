#!/usr/bin/python3
"""How many frames overflow after a run, as LibreOffice shows them, with the text fit and without:

    bench/layout/overflow.py [--decks FOLDER] [--growth 1.4 2.0] [--list N] [--without-build]

Builds what it needs in build/bench and translates the decks of FOLDER, or of $QUILLMARCH_DECKS, with
the pseudo engine. Prints two tables, a row for each growth: frames that overflow, and titles that
have more lines than before.

A frame is a shape whose text was written, not a cell or a note. It overflows when what LibreOffice
draws of it, text and all, reaches beyond the place that the file gives its shape by more than a point
and two hundredths of the side. Frames that overflowed before the run are left out. A shape that grows
with its text overflows by growing.
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

from frames import HUNDREDTHS, Office, make_measurable, measure, shapes_of

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = ROOT / "build" / "bench"
PROGRAMS = {"with the fit": BUILD / "host/cli/quillmarch", "without it": BUILD / "bench/layout/quillmarch_without_fit"}
SUFFIXES = (".pptx", ".potx", ".ppsx", ".pptm", ".ppsm")
TOLERANCE_SHARE, TOLERANCE_POINTS = 0.02, 1.0
MOST_OVERFLOWS = 0.02


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
    text: str
    drawn: tuple    # left, top, right and bottom of shape and text, in points
    outline: tuple  # of the shape alone
    title: bool
    lines: int


def edges(shape):
    box = shape.BoundRect
    return tuple(value * HUNDREDTHS for value in (box.X, box.Y, box.X + box.Width, box.Y + box.Height))


def outline(shape):
    """What is drawn of SHAPE without its text, which must not shrink it."""
    shape.TextFitToSize = uno.Enum("com.sun.star.drawing.TextFitToSizeType", "NONE")
    shape.TextAutoGrowHeight = shape.TextAutoGrowWidth = False
    shape.setString("")
    return edges(shape)


def lines_of(shape):
    position, size = shape.Position, shape.Size
    make_measurable(shape)
    lines = measure(shape)["lines"]
    shape.TextAutoGrowHeight = False
    shape.Position, shape.Size = position, size
    return lines


def frames_of(office, path):
    """The frames of a deck by place."""
    found = {}
    document = office.open(path)
    shapes = []
    for i in range(document.DrawPages.Count):
        shapes += shapes_of(document.DrawPages.getByIndex(i), str(i + 1))
    for place, shape in shapes:
        text = shape.getString()
        if text.strip() and not getattr(shape, "IsEmptyPresentationObject", False):
            title = shape.supportsService("com.sun.star.presentation.TitleTextShape")
            found[place] = Frame(text, edges(shape), (), title, 0)
    # What follows changes the shapes, and nothing is looked at behind it.
    for place, shape in shapes:
        if place in found:
            found[place].lines = lines_of(shape) if found[place].title else 0
            found[place].outline = outline(shape)
    document.close(True)
    return found


def beyond(drawn, outline):
    """Points that DRAWN reaches beyond what OUTLINE allows, over the side where it is furthest."""
    width, height = outline[2] - outline[0], outline[3] - outline[1]
    room = [side * TOLERANCE_SHARE + TOLERANCE_POINTS for side in (width, height) * 2]
    past = (outline[0] - drawn[0], outline[1] - drawn[1], drawn[2] - outline[2], drawn[3] - outline[3])
    return max(by - allowed for by, allowed in zip(past, room))


class Count:
    def __init__(self):
        self.frames = self.overflowed_before = 0
        self.overflows = collections.Counter()
        self.titles = 0
        self.longer_titles = collections.Counter()
        self.worst = []

    def add(self, deck, before, after):
        """AFTER: the frames by way, with the fit first."""
        fitted = after["with the fit"]
        for place, frame in fitted.items():
            if place not in before or before[place].text == frame.text:
                continue
            if before[place].title and before[place].lines == 1:
                self.titles += 1
                for way, frames in after.items():
                    self.longer_titles[way] += frames[place].lines > 1
            # The fit leaves the shape where the file has it, and lets nothing grow.
            if beyond(before[place].drawn, frame.outline) > 0:
                self.overflowed_before += 1
                continue
            self.frames += 1
            for way, frames in after.items():
                by = beyond(frames[place].drawn, frame.outline)
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
    sys.exit(any(c.overflows["with the fit"] > MOST_OVERFLOWS * c.frames for c in counts.values()))


if __name__ == "__main__":
    main()
