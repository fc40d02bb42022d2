#!/usr/bin/env python3
"""Writes decks of the given numbers of slides, the same bytes each time:

    make_decks.py FOLDER COUNT...

A slide weighs what the slides of real decks weigh on average, notes included: 14 KB of XML with 13
paragraphs and 17 runs.
"""
import pathlib
import random
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "samples"))

from drawing import Break, Cell, Paragraph, Pen, Run  # noqa: E402
from package import Slide, write_deck  # noqa: E402

PEN = Pen("en-GB")
WORDS = ("the river market opens early and many people from small villages bring apples bread warm tea "
         "cheese flowers letters news stories while boats wait below old stone bridge until evening").split()


# What presentation programs write into a run whose look somebody once touched.
LOOK = ('<a:solidFill><a:schemeClr val="tx1"><a:lumMod val="85000"/><a:lumOff val="15000"/></a:schemeClr></a:solidFill>'
        '<a:effectLst/>' + "".join(
            f'<a:{script} typeface="Calibri" panose="020F0502020204030204" pitchFamily="34" charset="0"/>'
            for script in ("latin", "ea", "cs")))


def wordy(plain):
    def xml(run, lang):
        return plain(run, lang).replace('"/><a:t>', f'" altLang="en-US" dirty="0">{LOOK}</a:rPr><a:t>', 1)
    return xml


Run.xml = wordy(Run.xml)


def sentence(chance, least=4, most=14):
    return " ".join(chance.choices(WORDS, k=chance.randint(least, most))).capitalize()


def bullets(chance):
    lines = []
    for number in range(6):
        parts = [sentence(chance)]
        if number % 3 == 1:
            parts += [Run(" " + sentence(chance, 2, 4), bold=True), " and more"]
        if number % 5 == 4:
            parts += [Break(), sentence(chance, 2, 5)]
        lines.append(Paragraph(parts, level=number % 2))
    return lines


def slide(number):
    chance = random.Random(number)
    shapes = [PEN.placeholder("title", sentence(chance, 3, 6))]
    if number % 4 == 3:
        rows = [[Cell(sentence(chance, 1, 4)) for _ in range(4)] for _ in range(5)]
        shapes.append(PEN.table(0.8, 1.9, [2.9] * 4, 0.8, rows))
    else:
        shapes.append(PEN.placeholder("", bullets(chance), 1))
    if number % 5 == 2:
        shapes.append(PEN.group(8, 5.5, 4, 1, [PEN.shape("rect", 8, 5.5, 1.9, 1, sentence(chance, 1, 2)),
                                               PEN.shape("ellipse", 10.1, 5.5, 1.9, 1, str(number))]))
    return Slide("Content" if number % 4 != 3 else "Title only", shapes,
                 notes=[sentence(chance, 10, 30), sentence(chance, 10, 30)])


if __name__ == "__main__":
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for count in map(int, sys.argv[2:]):
        write_deck(folder / f"deck-{count}.pptx", f"{count} slides", [slide(n) for n in range(count)])
