#!/usr/bin/env python3
"""Compares chart parts before and after their typed texts got a mark:

    check_charts.py FOLDER

FOLDER holds N.before.xml, N.after.xml, and in N.series the name and formula of each series.
"""
import copy
import pathlib
import sys

from lxml import etree

MARK = "\u00a4"
faults = []
counts = {"charts": 0, "marked": 0, "series": 0}


def local(element):
    return etree.QName(element).localname if isinstance(element.tag, str) else ""


def children(element, name):
    return [child for child in element if local(child) == name] if element is not None else []


def child(element, *path):
    for name in path:
        found = children(element, name)
        element = found[0] if found else None
    return element


def rich_texts(root):
    """Each typed text of a title or label, with the element that holds it."""
    for element in root.iter():
        if local(element) in ("title", "dispUnitsLbl", "dLbl"):
            rich = child(element, "tx", "rich")
            if rich is None or any(local(above) == "extLst" for above in element.iterancestors()):
                continue
            paragraphs = ["".join("\v" if local(part) == "br" else "".join(
                text.text or "" for text in part.iter() if local(text) == "t") for part in paragraph)
                          for paragraph in children(rich, "p")]
            fields = any(local(part) == "fld" for part in rich.iter())
            yield element, "\r".join(paragraphs), fields


def shows_nothing(label):
    """Whether a label takes its text from a cell that the cache does not have."""
    point = child(label, "idx").get("val") if child(label, "idx") is not None else None
    series = [above for above in label.iterancestors() if local(above) == "ser"]
    caches = [each for each in series[0].iter() if local(each) == "dlblRangeCache"] if series else []
    return bool(caches) and not any(each.get("idx") == point for each in caches[0])


def without_texts(root):
    """The tree without what was to change."""
    root = copy.deepcopy(root)
    for element, _, _ in list(rich_texts(root)):
        element.remove(child(element, "tx"))
    return etree.tostring(root, method="c14n")


def cached(holder):
    """The text of the first cached point of a reference, or of the literal value."""
    if holder is None:
        return None
    if child(holder, "v") is not None:
        return child(holder, "v").text or ""
    points = [child(point, "v").text or "" for point in holder.iter() if local(point) == "pt"]
    return " ".join(point for point in points if point)


def check_series(where, root, told):
    series = [element for element in root.iter() if local(element) == "ser" and not any(
        local(above) == "extLst" for above in element.iterancestors())]
    series.sort(key=lambda each: (int(child(each, "order").get("val")), int(child(each, "idx").get("val"))))
    records = [record.split("\x1f") for record in told.split("\x1e")[:-1]]
    if len(series) != len(records):
        faults.append(f"{where}: {len(records)} series, not {len(series)}")
        return
    for number, (each, (name, formula)) in enumerate(zip(series, records), 1):
        counts["series"] += 1
        expected = cached(child(each, "tx"))
        if name != (f"Series{number}" if expected is None else expected):
            faults.append(f"{where}: series {name!r}, not {expected!r}")
        for data in ("cat", "xVal", "val", "yVal", "bubbleSize"):
            holder = child(each, data)
            for reference in holder.iter() if holder is not None else []:
                if local(reference) == "f" and (reference.text or "") not in formula:
                    faults.append(f"{where}: {formula!r} lacks {reference.text!r}")


def main():
    folder = pathlib.Path(sys.argv[1])
    for path in sorted(folder.glob("*.before.xml"), key=lambda each: int(each.name.split(".")[0])):
        number = path.name.split(".")[0]
        where = (folder / f"{number}.from").read_text()
        before, after = (etree.parse(folder / f"{number}.{time}.xml").getroot() for time in ("before", "after"))
        counts["charts"] += 1
        old, new = list(rich_texts(before)), list(rich_texts(after))
        if len(old) != len(new):
            faults.append(f"{where}: {len(new)} typed texts, not {len(old)}")
        for (element, text, fields), (_, marked, _) in zip(old, new):
            if fields and text == "[CELLRANGE]" and shows_nothing(element):
                if marked != text:
                    faults.append(f"{where}: an empty label has become {marked!r}")
                continue
            # The host fills in fields; what they show is not in the text itself.
            if text and not (marked == MARK + text or (fields and marked.startswith(MARK))):
                faults.append(f"{where}: {marked!r} after {text!r}")
            counts["marked"] += marked.startswith(MARK)
        if without_texts(before) != without_texts(after):
            faults.append(f"{where}: more than the texts has changed")
        check_series(where, before, (folder / f"{number}.series").read_bytes().decode())
    print(", ".join(f"{count} {what}" for what, count in counts.items()))
    print("\n".join(faults[:40]))
    sys.exit(1 if faults or not all(counts.values()) else 0)


if __name__ == "__main__":
    main()
