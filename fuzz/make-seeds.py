#!/usr/bin/env python3
"""Makes what the fuzz targets begin with, a folder for each:

    make-seeds.py ROOT FOLDER

Slides and whole packages come from the samples of the tree ROOT, messages from the recorded
conversations of its tests.
"""
import json
import pathlib
import sys
import zipfile


def messages(root):
    for file in sorted((root / "tests" / "pane").glob("*.jsonl")):
        for line in file.read_text(encoding="utf-8").splitlines():
            for text in json.loads(line).values():
                if isinstance(text, str):
                    yield text.encode()


ANSWERS = ['{"translations":["uno","dos \\u00e1"],"unitIds":["s1","s2"]}', '{"translations":["[[QM_A_1]] uno"]}',
           '{"code":"rate_limited","message":"Later \\"perhaps\\"."}', '{"error":{"message":"no"}}', "", "Bad Gateway"]


def main():
    root, out = map(pathlib.Path, sys.argv[1:3])
    decks = [file for file in sorted((root / "samples").glob("*.pptx")) if file.stem.count(".") == 0]
    slides = []
    for deck in decks:
        with zipfile.ZipFile(deck) as package:
            slides += [package.read(name) for name in package.namelist() if name.startswith("ppt/slides/slide")]
    told = list(messages(root))
    seeds = {
        "JsonTextFuzz": told, "PageMessageFuzz": told, "ServiceAnswerFuzz": [text.encode() for text in ANSWERS],
        "SlideXmlFuzz": slides,
        "PackageFuzz": [b"Z" + deck.read_bytes() for deck in decks] + [b"X" + slide for slide in slides]}
    for target, texts in seeds.items():
        folder = out / target
        folder.mkdir(parents=True, exist_ok=True)
        for number, text in enumerate(texts):
            (folder / f"{number:03}").write_bytes(text)


if __name__ == "__main__":
    main()
