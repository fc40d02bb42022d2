#!/usr/bin/python3
"""Selects a piece of each deck at a time and lets an independent reader look at every text of it:

    select_in_decks.py --command PROGRAM --decks FOLDER

Of each deck, where it has them: one shape, one group, one member of a group, one table, one word,
and one slide, with its notes if a slide has any. The selected texts must come back between the pseudo
engine's marks; every other text, every other shape and every other part must be as it was.
"""
import argparse
import collections
import concurrent.futures
import itertools
import os
import pathlib
import re
import sys
import tempfile

from lxml import etree

from command import Command
from deck_changes import SHAPES, Changes, top_shapes
from deck_text import COMPATIBILITY, DRAWING, SLIDES, Deck, children, frames, child_of, kind, marked, paragraph_text

KINDS = {".pptx", ".pptm", ".potx", ".potm", ".ppsx", ".ppsm"}
# `says` is the option's value; `holds` tells whether a text body of `parts` is selected.
Selection = collections.namedtuple("Selection", "what says slide place parts holds word", defaults=(None,))


def within(shape):
    return lambda owner: owner is shape or shape in owner.iterancestors()


def has_text(part, holds):
    return any(holds(owner) and any(one.fate in ("mark", "joined") for one in held)
               for owner, _, held in part.bodies)


def leaves(group):
    for node in group:
        if kind(node, SLIDES, "grpSp"):
            yield from leaves(node)
        elif any(kind(node, SLIDES, name) for name in SHAPES):
            yield node


def plain_word(part, shape):
    """The first longer word of the shape's first paragraph, if that is nothing but runs."""
    held = next((held for owner, _, held in part.bodies if owner is shape), None)
    if not held or any(one.has_math for one in held):
        return None
    odd = [node for node in held[0].node
           if not any(kind(node, DRAWING, name) for name in ("pPr", "r", "endParaRPr"))]
    return None if odd else re.search(r"[^\W\d_]{4,}", held[0].text)


def units(text):
    return len(text.encode("utf-16-le")) // 2


def selections(deck):
    """At most one of each kind."""
    found = {}
    parts = deck.text_parts()
    slides = [part for part in parts if not part.is_notes]

    def offer(what, *rest):
        found.setdefault(what, Selection(what, *rest))

    for number, part in enumerate(slides, 1):
        own = list(itertools.takewhile(lambda one: one.is_notes, parts[parts.index(part) + 1:]))
        everything = [part, *own]
        if any(has_text(one, lambda _: True) for one in own):
            offer("slide with notes", str(number), number, None, everything, lambda _: True)
        elif has_text(part, lambda _: True):
            offer("slide", str(number), number, None, everything, lambda _: True)
        for place, shape in enumerate(top_shapes(part.root), 1):
            if not has_text(part, within(shape)):
                continue
            says = f"{number}:#{place}"
            if kind(shape, SLIDES, "sp"):
                offer("shape", says, number, place, [part], within(shape))
                word = plain_word(part, shape)
                if word:
                    start = units(word.string[:word.start()]) + 1
                    offer("word", f"{says}:{start}+{units(word[0])}", number, place, [part], within(shape), word)
            elif kind(shape, SLIDES, "graphicFrame"):
                offer("table", says, number, place, [part], within(shape))
            elif kind(shape, SLIDES, "grpSp"):
                offer("group", says, number, place, [part], within(shape))
                if next(shape.iter(f"{{{COMPATIBILITY}}}AlternateContent"), None) is not None:
                    continue
                for index, leaf in enumerate(leaves(shape), 1):
                    if has_text(part, within(leaf)):
                        offer("member", f"{says}/{index}", number, place, [part], within(leaf))
    return found.values()


def expected(selection, part, owner, held):
    """The texts of one body afterwards; None where either way is right."""
    before = [one.text for one in held]
    if not selection.holds(owner):
        return before
    if selection.word:
        word = selection.word
        return [before[0][:word.start()] + marked(word[0]) + before[0][word.end():], *before[1:]]
    if any(one.has_math or one.fate == "open" for one in held):
        return None
    if held and held[0].fate == "joined":
        return [held[0].expected]
    return [one.expected if one.fate == "mark" else one.text for one in held]


def faults_of(selection, source, result):
    changes = Changes(source, result)
    allowed = {part.name for part in selection.parts}
    if changes.elsewhere or not changes.parts or not changes.parts <= allowed:
        yield f"changed beyond the selection: {sorted(changes.parts - allowed)}"
        return
    if selection.place and changes.shapes != {(selection.slide, selection.place)}:
        yield f"changed other shapes: {sorted(changes.shapes)}"
    if {slide for slide, _ in changes.shapes} - {selection.slide}:
        yield f"changed other slides: {sorted(changes.shapes)}"
    for part in selection.parts:
        tree = child_of(etree.fromstring(changes.after.data(part.name)), SLIDES, "cSld", "spTree")
        bodies = [body for body, _ in frames(tree)]
        if len(bodies) != len(part.bodies):
            yield f"{part.name}: has {len(bodies)} texts and not {len(part.bodies)}"
            continue
        for body, (owner, _, held) in zip(bodies, part.bodies):
            texts = [paragraph_text(node) for node in children(body, DRAWING, "p")]
            wanted = expected(selection, part, owner, held)
            if wanted is not None and texts != wanted:
                yield f"{part.name}: {texts} in place of {wanted}"


def check_deck(command, source, folder):
    checked, faults = [], []
    for selection in selections(Deck(source)):
        result = folder / f"{source.stem}-{selection.what.replace(' ', '-')}{source.suffix}"
        outcome = command.run("translate", source, "--to", "xx", "--engine", "pseudo", "--output", result,
                              "--select", selection.says)
        checked.append(selection.what)
        # 3: a text over an equation has to stay.
        if outcome.code not in (0, 3) or not result.exists():
            faults.append(f"{selection.what} {selection.says}: ended with {outcome.code}: {outcome.err.strip()[-500:]}")
            continue
        faults += [f"{selection.what} {selection.says}: {fault}" for fault in faults_of(selection, source, result)]
        result.unlink()
    return checked, faults


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--command", required=True)
    parser.add_argument("--decks", required=True, type=pathlib.Path)
    options = parser.parse_args()
    decks = sorted(path for path in options.decks.iterdir() if path.suffix.lower() in KINDS)
    counted, failed = collections.Counter(), 0
    with tempfile.TemporaryDirectory() as home, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        command = Command(options.command, home)
        for deck, (checked, faults) in zip(decks, pool.map(
                lambda deck: check_deck(command, deck, pathlib.Path(home)), decks)):
            counted.update(checked)
            failed += bool(faults)
            print(f"{'FAILED' if faults else 'ok':6} {deck.name}: {', '.join(checked) or 'no text'}")
            for fault in faults[:20]:
                print(f"         {fault}")
            sys.stdout.flush()
    print(f"{len(decks) - failed} of {len(decks)} decks changed where they were selected and nowhere else: "
          + ", ".join(f"{count} x {what}" for what, count in sorted(counted.items())))
    sys.exit(1 if failed or not counted else 0)


if __name__ == "__main__":
    main()
