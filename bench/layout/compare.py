#!/usr/bin/python3
"""Compares our measures of text frames with LibreOffice's and prints the tables:

    compare.py MEASURE_FRAMES [--decks FOLDER] [--keep FOLDER] [--worst N] [--pictures FOLDER]

MEASURE_FRAMES is our built program. The decks are those of FOLDER, or of $QUILLMARCH_DECKS. What
LibreOffice said stays in the folder --keep and is taken from there the next time. Frames count when
all their fonts, or ones of the same metrics, are installed.

With --pictures the worst frames are put side by side, as printed and as we lay them out, on a page
worst.html.

Lines are counted twice: LibreOffice's own, and on the printed page, of the frames that nothing else
overlaps.
"""
import argparse
import collections
import html
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

LINES_WANTED, HEIGHT_WANTED = 0.95, 0.90
HEIGHT_TOLERANCE = 0.05


def measured_by_us(program, frames):
    text = "".join(json.dumps(frame) + "\n" for frame in frames)
    answer = subprocess.run([program], input=text, capture_output=True, text=True, check=True)
    return [json.loads(line) for line in answer.stdout.splitlines()]


def asked_of_office(decks, folder):
    answers = folder / "frames.jsonl"
    if not answers.exists():
        folder.mkdir(parents=True, exist_ok=True)
        files = sorted(path for path in decks.iterdir() if path.suffix in (".pptx", ".potx", ".ppsx", ".pptm", ".ppsm"))
        part = folder / "frames.part"
        script = pathlib.Path(__file__).with_name("frames.py")
        subprocess.run(["/usr/bin/python3", script, "--pdf", folder, part, *files], check=True)
        part.rename(answers)
    with open(answers) as lines:
        return [json.loads(line) for line in lines]


WORD = re.compile(r'<word xMin="([\d.-]+)" yMin="([\d.-]+)" xMax="([\d.-]+)" yMax="([\d.-]+)">')


def printed_words(pdf):
    """For each page the words' boxes."""
    if not pdf.exists():
        return []
    text = subprocess.run(["pdftotext", "-bbox", pdf, "-"], capture_output=True, text=True, check=True).stdout
    return [[tuple(map(float, word)) for word in WORD.findall(page)] for page in text.split("<page ")[1:]]


def printed_lines(frame, words):
    """The lines of text inside the frame's box: words whose middles lie less than half a word apart
    stand in one line."""
    left, top, width, height = frame["box"]
    middles = sorted(((y0 + y1) / 2, y1 - y0) for x0, y0, x1, y1 in words
                     if left <= (x0 + x1) / 2 <= left + width and top <= (y0 + y1) / 2 <= top + height)
    lines, last = 0, None
    for middle, high in middles:
        if last is None or middle - last > high / 2:
            lines += 1
        last = middle
    return lines


def seen_lines(frame, our):
    """Ours that show something."""
    text = "\r".join("".join(run["text"] for run in p["runs"]) for p in frame["paragraphs"])
    units = text.encode("utf-16-le")
    starts = our["starts"] + [len(units) // 2]
    return sum(bool(units[2 * a:2 * b].decode("utf-16-le", "replace").strip()) for a, b in zip(starts, starts[1:]))


def compare_printed(frames, ours, folder):
    same, count, pages = 0, 0, {}
    for frame, our in zip(frames, ours):
        if our["missing"] or not frame["alone"] or our["height"] > frame["box"][3]:
            continue
        deck, place = frame["id"].rsplit(":", 1)
        if deck not in pages:
            pages[deck] = printed_words(folder / f"{deck}.pdf")
        page = int(place.split("/")[0]) - 1
        if page >= len(pages[deck]):
            continue
        count += 1
        same += printed_lines(frame, pages[deck][page]) == seen_lines(frame, our)
    return same, count


def our_drawing(frame, our):
    """Our lines as SVG, in points, each drawn with the font of the paragraph's first run."""
    width, height = frame["box"][2], max(frame["box"][3], our["height"] + 8)
    text = "\r".join("".join(run["text"] for run in p["runs"]) for p in frame["paragraphs"])
    units = text.encode("utf-16-le")
    ends = our["starts"][1:] + [len(units) // 2]
    formats = [run for p in frame["paragraphs"] for run in (p["runs"] or [p["mark"]])[:1]]
    lines = []
    for start, end, (left, base, wide) in zip(our["starts"], ends, our["places"]):
        shown = units[2 * start:2 * end].decode("utf-16-le", "replace").strip("\r\v")
        paragraph = units[:2 * start].decode("utf-16-le", "replace").count("\r")
        run = formats[min(paragraph, len(formats) - 1)]
        lines.append(f'<text x="{left + frame["insets"][0]:.2f}" y="{base + frame["insets"][1]:.2f}" '
                     f'textLength="{max(wide, 0.1):.2f}" font-family="{html.escape(run["latin"])}" '
                     f'font-size="{run["size"]}">{html.escape(shown)}</text>')
    return (f'<svg width="{width}pt" height="{height}pt" viewBox="0 0 {width} {height}" '
            f'style="outline:1px solid red" xml:space="preserve">{"".join(lines)}</svg>')


def picture_of_page(frame, folder, pictures, name):
    """The printed page around the frame, as a PNG file; False where the deck was not printed."""
    deck, place = frame["id"].rsplit(":", 1)
    pdf = folder / f"{deck}.pdf"
    if not pdf.exists():
        return False
    left, top, width, height = (round(max(0, value) * 96 / 72) for value in frame["box"])
    page = place.split("/")[0]
    cut = ["-x", str(left), "-y", str(top), "-W", str(width), "-H", str(round(height * 1.2) + 1)]
    subprocess.run(["pdftoppm", "-png", "-singlefile", "-r", "96", "-f", page, "-l", page, *cut, pdf, pictures / name],
                   check=True)
    return True


def draw_worst(worst, folder, pictures):
    pictures.mkdir(parents=True, exist_ok=True)
    rows = []
    for i, (_, frame, our) in enumerate(worst):
        printed = f'<img src="{i}.png">' if picture_of_page(frame, folder, pictures, str(i)) else ""
        rows.append(f"<h3>{html.escape(frame['id'])}: {our['lines']} lines against {frame['measured']['lines']}</h3>"
                    f"{printed} {our_drawing(frame, our)}")
    (pictures / "worst.html").write_text('<meta charset="utf-8">' + "\n".join(rows))


def text_of(frame):
    return " / ".join("".join(run["text"] for run in p["runs"]) for p in frame["paragraphs"])


def traits_of(frame):
    """What a frame has in it that might be what we measure differently."""
    runs = [run for p in frame["paragraphs"] for run in p["runs"]]
    text = "".join(run["text"] for run in runs)
    yield "all"
    if frame["measured"]["lines"] > len(frame["paragraphs"]):
        yield "wrapped or broken lines"
    if len({(run["size"], run["latin"]) for run in runs}) > 1:
        yield "mixed formats"
    if any(ord(c) >= 0x2E80 for c in text):
        yield "East Asian"
    if any(0x590 <= ord(c) < 0x900 for c in text):
        yield "right to left"
    if any(p["bullet"] for p in frame["paragraphs"]):
        yield "bullets"
    if "\t" in text:
        yield "tabs"
    if "\v" in text:
        yield "line breaks"
    if not frame["wrap"]:
        yield "no wrap"
    if frame["columns"] > 1:
        yield "columns"
    if any(p["lineSpacing"] != {"unit": "share", "value": 1.0} for p in frame["paragraphs"]):
        yield "line spacing"


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("program")
    arguments.add_argument("--decks", type=pathlib.Path, default=os.environ.get("QUILLMARCH_DECKS"))
    arguments.add_argument("--keep", type=pathlib.Path)
    arguments.add_argument("--worst", type=int, default=10)
    arguments.add_argument("--pictures", type=pathlib.Path)
    arguments = arguments.parse_args()
    with tempfile.TemporaryDirectory() as scratch:
        return compare(arguments, arguments.keep or pathlib.Path(scratch))


def compare(arguments, folder):
    if arguments.decks is None and not (folder / "frames.jsonl").exists():
        sys.exit("compare.py: say --decks FOLDER or set QUILLMARCH_DECKS")
    records = asked_of_office(arguments.decks and pathlib.Path(arguments.decks), folder)
    left_out = collections.Counter(r["left out"] for r in records if "left out" in r)
    frames = [r for r in records if "left out" not in r]
    ours = measured_by_us(arguments.program, frames)

    groups = collections.defaultdict(lambda: [0, 0, 0])
    worst, missing, without_fonts = [], collections.Counter(), [0, 0, 0]
    for frame, our in zip(frames, ours):
        theirs = frame["measured"]
        same_lines = our["lines"] == theirs["lines"]
        off = abs(our["height"] - theirs["height"]) / max(theirs["height"], 1)
        row = (1, same_lines, off <= HEIGHT_TOLERANCE)
        if our["missing"]:
            missing.update(our["missing"])
            without_fonts = [a + b for a, b in zip(without_fonts, row)]
            continue
        for trait in traits_of(frame):
            groups[trait] = [a + b for a, b in zip(groups[trait], row)]
        if not same_lines or off > HEIGHT_TOLERANCE:
            worst.append((off, frame, our))

    print(f"{'frames with':24} {'count':>6} {'same lines':>11} {'height in 5 %':>14}")
    for trait, (count, lines, height) in sorted(groups.items(), key=lambda item: -item[1][0]):
        print(f"{trait:24} {count:6} {lines / count:10.1%} {height / count:13.1%}")
    if without_fonts[0]:
        count, lines, height = without_fonts
        print(f"{'(fonts missing)':24} {count:6} {lines / count:10.1%} {height / count:13.1%}")
    same, count = compare_printed(frames, ours, folder)
    if count:
        print(f"{'(printed, frames apart)':24} {count:6} {same / count:10.1%}")
    for reason, count in left_out.items():
        print(f"left out: {count} with {reason}")
    if missing:
        print("missing fonts: " + ", ".join(f"{name} {count}" for name, count in missing.most_common(12)))
    worst.sort(key=lambda entry: -entry[0])
    for off, frame, our in worst[:arguments.worst]:
        print(f"{frame['id']}: lines {our['lines']} against {frame['measured']['lines']}, height {our['height']:.1f} "
              f"against {frame['measured']['height']:.1f} pt: {text_of(frame)[:90]!r}")
    if arguments.pictures:
        draw_worst(worst[:arguments.worst], folder, arguments.pictures)
    count, lines, height = groups["all"]
    good = count > 0 and lines >= LINES_WANTED * count and height >= HEIGHT_WANTED * count
    print("reached" if good else "not reached", f"(wanted: lines {LINES_WANTED:.0%}, height {HEIGHT_WANTED:.0%})")
    return 0 if good else 1


if __name__ == "__main__":
    raise SystemExit(main())
