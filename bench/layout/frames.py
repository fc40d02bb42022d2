#!/usr/bin/python3
"""Asks LibreOffice for the text frames of decks, resolved, and for its own measures of them:

    frames.py [--pdf FOLDER] OUT.jsonl DECK...

Each line of OUT is a frame: its text with all properties that decide on the layout, and under
"measured" the height of the text in points and the number of its lines. The decks stay as they
are. With --pdf each deck is also printed, before anything is measured.
"""
import argparse
import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

import uno
from com.sun.star.beans import PropertyValue
from com.sun.star.connection import NoConnectException
from com.sun.star.style import LineSpacing

HUNDREDTHS = 72 / 2540  # points in 1/100 mm
LINE = 1000  # 1/100 mm: the height that every line gets while lines are counted
PROPORTIONAL, FIXED = 0, 3
BULLET, NO_NUMBER, BITMAP = 6, 5, 8


def prop(name, value):
    result = PropertyValue()
    result.Name, result.Value = name, value
    return result


class Office:
    """A LibreOffice of our own, with a profile of its own."""

    def __init__(self):
        self.profile = tempfile.TemporaryDirectory(prefix="layout-office-")
        pipe = f"quillmarch-layout-{pathlib.Path(self.profile.name).name}"
        self.process = subprocess.Popen(
            ["soffice", "--headless", "--norestore", f"-env:UserInstallation=file://{self.profile.name}",
             f"--accept=pipe,name={pipe};urp;"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        local = uno.getComponentContext()
        resolver = local.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", local)
        for _ in range(240):
            try:
                context = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
                break
            except NoConnectException:
                time.sleep(0.25)
        else:
            sys.exit("LibreOffice does not answer")
        self.desktop = context.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", context)

    def open(self, path):
        # A copy: LibreOffice leaves lock files beside what it opens.
        copy = pathlib.Path(self.profile.name) / pathlib.Path(path).name
        shutil.copyfile(path, copy)
        url = copy.as_uri()
        return self.desktop.loadComponentFromURL(url, "_blank", 0, (prop("Hidden", True), prop("ReadOnly", False)))

    def close(self):
        try:
            self.desktop.terminate()
        except Exception:
            pass
        self.process.wait(60)
        self.profile.cleanup()


def print_to(document, path):
    filter_data = uno.Any("[]com.sun.star.beans.PropertyValue", (prop("ExportHiddenSlides", True),))
    document.storeToURL(pathlib.Path(path).resolve().as_uri(),
                        (prop("FilterName", "impress_pdf_Export"), prop("FilterData", filter_data)))


def shapes_of(container, path):
    for i in range(container.Count):
        shape = container.getByIndex(i)
        place = f"{path}/{i + 1}"
        if shape.supportsService("com.sun.star.drawing.GroupShape"):
            yield from shapes_of(shape, place)
        elif shape.supportsService("com.sun.star.drawing.Text"):
            yield place, shape


def run_of(portion, text):
    height = portion.CharHeight
    return {
        "text": text, "latin": portion.CharFontName, "eastAsian": portion.CharFontNameAsian,
        "complex": portion.CharFontNameComplex, "size": height,
        "language": "-".join(filter(None, (portion.CharLocaleAsian.Language, portion.CharLocaleAsian.Country))),
        "bold": portion.CharWeight > 100, "italic": portion.CharPosture.value != "NONE",
        "spacing": portion.CharKerning * HUNDREDTHS, "kerning": bool(portion.CharAutoKerning),
        # LibreOffice's automatic heights are beyond 100.
        "baseline": max(-0.33, min(0.33, portion.CharEscapement / 100)),
        "caps": {1: 2, 4: 1}.get(portion.CharCaseMap, 0)}


def bullet_of(paragraph):
    rules, level = paragraph.NumberingRules, paragraph.NumberingLevel
    if rules is None or level is None or level < 0 or not paragraph.NumberingIsNumber:
        return "", "", 1.0
    rule = {p.Name: p.Value for p in rules.getByIndex(level)}
    kind = rule.get("NumberingType", NO_NUMBER)
    size = rule.get("BulletRelSize", 100) / 100
    if kind == BULLET:
        return rule.get("BulletChar", ""), rule["BulletFont"].Name if "BulletFont" in rule else "", size
    if kind == BITMAP:
        return "\u2022", "", size  # a picture about as wide as a dot
    if kind == NO_NUMBER:
        return "", "", 1.0
    return rule.get("Prefix", "") + "1" + rule.get("Suffix", ""), "", size


def paragraph_of(paragraph, shape):
    runs, portions = [], paragraph.createEnumeration()
    # The paragraph itself answers with what it inherits, its end with what it shows.
    mark = run_of(shape.createTextCursorByRange(paragraph.getEnd()), "")
    while portions.hasMoreElements():
        portion = portions.nextElement()
        text = portion.getString()
        if text:
            runs.append(run_of(portion, text.replace("\n", "\v").replace("\r", "")))
    spacing = paragraph.ParaLineSpacing
    if spacing.Mode == PROPORTIONAL:
        line = {"unit": "share", "value": spacing.Height / 100}
    elif spacing.Mode == FIXED:
        line = {"unit": "points", "value": spacing.Height * HUNDREDTHS}
    else:
        line = None
    bullet, font, size = bullet_of(paragraph)
    tabs = [{"position": (tab.Position + paragraph.ParaLeftMargin) * HUNDREDTHS,
             "alignment": {"LEFT": 0, "CENTER": 1, "RIGHT": 2, "DECIMAL": 3}.get(tab.Alignment.value, 0)}
            for tab in paragraph.ParaTabStops if tab.Alignment.value != "DEFAULT"]
    left, first = paragraph.ParaLeftMargin, paragraph.ParaFirstLineIndent
    if bullet and not left and not first:
        # Outlines keep their indents with the numbering.
        rule = {p.Name: p.Value for p in paragraph.NumberingRules.getByIndex(paragraph.NumberingLevel)}
        left, first = rule.get("LeftMargin", 0), rule.get("FirstLineOffset", 0)
    return {
        "runs": runs, "mark": mark,
        "alignment": {0: 0, 1: 2, 2: 3, 3: 1}.get(int(paragraph.ParaAdjust), 0),
        "rightToLeft": paragraph.WritingMode == 1,
        "hangingPunctuation": bool(paragraph.ParaIsHangingPunctuation),
        "marginStart": left * HUNDREDTHS,
        "marginEnd": paragraph.ParaRightMargin * HUNDREDTHS,
        "indent": first * HUNDREDTHS,
        "before": paragraph.ParaTopMargin * HUNDREDTHS, "after": paragraph.ParaBottomMargin * HUNDREDTHS,
        "lineSpacing": line, "tabs": tabs, "bullet": bullet, "bulletFont": font, "bulletSize": size}


def paragraphs_of(shape):
    result, paragraphs = [], shape.createEnumeration()
    while paragraphs.hasMoreElements():
        result.append(paragraphs.nextElement())
    return result


def frame_of(shape, default_tab):
    paragraphs = [paragraph_of(p, shape) for p in paragraphs_of(shape)]
    if any(p["lineSpacing"] is None for p in paragraphs):
        return None
    columns = shape.TextColumns
    return {
        "width": shape.Size.Width * HUNDREDTHS, "height": shape.Size.Height * HUNDREDTHS,
        "insets": [getattr(shape, f"Text{side}Distance") * HUNDREDTHS for side in ("Left", "Upper", "Right", "Lower")],
        "wrap": bool(shape.TextWordWrap), "columns": max(1, columns.ColumnCount) if columns else 1,
        "columnSpacing": columns.AutomaticDistance * HUNDREDTHS if columns else 0.0,
        "defaultTab": default_tab, "ofSize": bool(shape.FontIndependentLineSpacing), "paragraphs": paragraphs}


def text_height(shape):
    return shape.Size.Height - shape.TextUpperDistance - shape.TextLowerDistance


def make_measurable(shape):
    """A plain box whose width is as long as the shape's lines and whose height follows its text."""
    width = shape.Size.Width
    if shape.supportsService("com.sun.star.drawing.CustomShape"):
        geometry = {p.Name: p.Value for p in shape.CustomShapeGeometry}
        turned = geometry.get("TextPreRotateAngle", 0) + geometry.get("TextRotateAngle", 0)
        if turned % 180:
            width = shape.Size.Height
        shape.CustomShapeGeometry = (prop("Type", "rectangle"),)
    shape.TextFitToSize = uno.Enum("com.sun.star.drawing.TextFitToSizeType", "NONE")
    shape.TextAutoGrowWidth = False
    shape.TextMinimumFrameHeight = 0
    size = shape.Size
    size.Width, size.Height = width, 1
    shape.Size = size
    shape.TextAutoGrowHeight = True


def measure(shape):
    height = text_height(shape)
    for paragraph in paragraphs_of(shape):
        spacing = LineSpacing()
        spacing.Mode, spacing.Height = FIXED, LINE
        paragraph.ParaLineSpacing = spacing
        paragraph.ParaTopMargin = paragraph.ParaBottomMargin = 0
    return {"height": height * HUNDREDTHS, "lines": round(text_height(shape) / LINE),
            "exactLines": text_height(shape) / LINE}


def box_of(shape):
    return [round(value * HUNDREDTHS, 2) for value in
            (shape.Position.X, shape.Position.Y, shape.Size.Width, shape.Size.Height)]


def boxes_of_page(container):
    """Of everything that may show text."""
    for i in range(container.Count):
        shape = container.getByIndex(i)
        if shape.supportsService("com.sun.star.drawing.GroupShape"):
            yield from boxes_of_page(shape)
        elif not shape.supportsService("com.sun.star.drawing.Text") or shape.getString().strip():
            yield box_of(shape)


def overlap(one, other):
    return all(one[i] < other[i] + other[i + 2] and other[i] < one[i] + one[i + 2] for i in (0, 1))


def stands_alone(shape, boxes):
    """Whether its lines can be told on the printed page: upright, at its full size, apart."""
    if getattr(shape, "RotateAngle", 0) or shape.TextFitToSize.value != "NONE":
        return False
    if shape.supportsService("com.sun.star.drawing.CustomShape"):
        geometry = {p.Name: p.Value for p in shape.CustomShapeGeometry}
        # Other shapes keep their text away from their edges, which the measured box does not.
        if geometry.get("Type") not in ("rectangle", "ooxml-rect", "mso-spt202"):
            return False
        if geometry.get("TextPreRotateAngle", 0) or geometry.get("TextRotateAngle", 0):
            return False
    box = box_of(shape)
    return sum(overlap(box, other) for other in boxes) == 1


def frames_of_page(page, name, default_tab):
    boxes = list(boxes_of_page(page))
    for place, shape in shapes_of(page, name):
        if not shape.getString().strip() or getattr(shape, "IsEmptyPresentationObject", False):
            continue
        if not hasattr(shape, "TextAutoGrowHeight"):
            continue
        if shape.TextWritingMode.value not in ("LR_TB", "RL_TB"):
            yield {"id": place, "left out": "East Asian vertical text"}
            continue
        box, alone = box_of(shape), stands_alone(shape, boxes)
        if getattr(shape, "RotateAngle", 0):
            shape.RotateAngle = 0
        if shape.Size.Width <= shape.TextLeftDistance + shape.TextRightDistance:
            yield {"id": place, "left out": "no room for text"}
            continue
        make_measurable(shape)
        frame = frame_of(shape, default_tab)
        if frame is None:
            yield {"id": place, "left out": "line spacing that slides do not know"}
            continue
        frame["id"], frame["box"], frame["alone"] = place, box, alone
        frame["fonts"] = sorted(fonts_in(frame))
        frame["measured"] = measure(shape)
        yield frame


def fonts_in(frame):
    """Names of the fonts that some character of the frame takes."""
    names = set()
    for paragraph in frame["paragraphs"]:
        for run in paragraph["runs"]:
            for character in run["text"]:
                code = ord(character)
                if code <= 0x20:
                    continue
                if 0x2E80 <= code <= 0xD7AF or 0xF900 <= code <= 0xFAFF or 0xFF00 <= code <= 0xFFEF:
                    names.add(run["eastAsian"])
                elif 0x590 <= code <= 0x1CFF:
                    names.add(run["complex"])
                else:
                    names.add(run["latin"])
    return names - {""}


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("--pdf", type=pathlib.Path)
    arguments.add_argument("out")
    arguments.add_argument("decks", nargs="+")
    arguments = arguments.parse_args()
    office = Office()
    try:
        with open(arguments.out, "w") as lines:
            for deck in arguments.decks:
                try:
                    document = office.open(deck)
                except Exception as failure:
                    print(f"{deck}: {failure}", file=sys.stderr)
                    continue
                if document is None:
                    print(f"{deck}: not opened", file=sys.stderr)
                    continue
                if arguments.pdf:
                    print_to(document, arguments.pdf / f"{pathlib.Path(deck).name}.pdf")
                settings = document.createInstance("com.sun.star.document.Settings")
                default_tab = settings.DefaultTabStop * HUNDREDTHS
                for i in range(document.DrawPages.Count):
                    page, name = document.DrawPages.getByIndex(i), f"{pathlib.Path(deck).name}:{i + 1}"
                    for frame in frames_of_page(page, name, default_tab):
                        lines.write(json.dumps(frame) + "\n")
                document.close(True)
    finally:
        office.close()


if __name__ == "__main__":
    main()
