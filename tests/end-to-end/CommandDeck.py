"""Small decks for the command's tests, and what stands in them afterwards."""

import re
import zipfile
from xml.sax.saxutils import escape

TYPES = "http://schemas.openxmlformats.org/package/2006/content-types"
RELS = "http://schemas.openxmlformats.org/package/2006/relationships"
OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
SPACES = (
    'xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main" '
    f'xmlns:r="{OFFICE}" '
    'xmlns:p="http://schemas.openxmlformats.org/presentationml/2006/main"'
)
HEAD = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
MAIN = "application/vnd.openxmlformats-officedocument.presentationml."
TREE = '<p:nvGrpSpPr><p:cNvPr id="1" name=""/><p:cNvGrpSpPr/><p:nvPr/></p:nvGrpSpPr><p:grpSpPr/>'
COLOURS = ("dk1", "lt1", "dk2", "lt2", "accent1", "accent2", "accent3", "accent4", "accent5",
           "accent6", "hlink", "folHlink")


def _rels(entries):
    rows = "".join(
        f'<Relationship Id="{i}" Type="{OFFICE}/{t}" Target="{target}"/>' for i, t, target in entries
    )
    return f'{HEAD}<Relationships xmlns="{RELS}">{rows}</Relationships>'


def _theme():
    colours = "".join(f'<a:{c}><a:srgbClr val="112233"/></a:{c}>' for c in COLOURS)
    font = '<a:latin typeface="Arial"/><a:ea typeface=""/><a:cs typeface=""/>'
    fill = '<a:solidFill><a:schemeClr val="phClr"/></a:solidFill>'
    styles = (
        f"<a:fillStyleLst>{fill * 3}</a:fillStyleLst>"
        f'<a:lnStyleLst>{("<a:ln>" + fill + "</a:ln>") * 3}</a:lnStyleLst>'
        "<a:effectStyleLst>"
        f'{"<a:effectStyle><a:effectLst/></a:effectStyle>" * 3}</a:effectStyleLst>'
        f"<a:bgFillStyleLst>{fill * 3}</a:bgFillStyleLst>"
    )
    return (
        f'{HEAD}<a:theme {SPACES} name="T"><a:themeElements><a:clrScheme name="C">{colours}'
        f'</a:clrScheme><a:fontScheme name="F"><a:majorFont>{font}</a:majorFont><a:minorFont>{font}'
        f'</a:minorFont></a:fontScheme><a:fmtScheme name="S">{styles}</a:fmtScheme>'
        "</a:themeElements></a:theme>"
    )


def _shape(number, text):
    return (
        f'<p:sp><p:nvSpPr><p:cNvPr id="{number + 1}" name="Text {number}"/><p:cNvSpPr txBox="1"/>'
        "<p:nvPr/></p:nvSpPr><p:spPr><a:xfrm>"
        f'<a:off x="900000" y="{900000 * number}"/><a:ext cx="6000000" cy="800000"/></a:xfrm>'
        '<a:prstGeom prst="rect"><a:avLst/></a:prstGeom></p:spPr><p:txBody><a:bodyPr/><a:lstStyle/>'
        f'<a:p><a:r><a:rPr lang="en-US"/><a:t>{escape(text)}</a:t></a:r></a:p></p:txBody></p:sp>'
    )


def make_deck(path, slides):
    """Writes a deck; `slides` is a list of lists of texts, one text box for each."""
    parts = {}
    overrides = [
        ("/ppt/presentation.xml", MAIN + "presentation.main+xml"),
        ("/ppt/slideMasters/slideMaster1.xml", MAIN + "slideMaster+xml"),
        ("/ppt/slideLayouts/slideLayout1.xml", MAIN + "slideLayout+xml"),
        ("/ppt/theme/theme1.xml", "application/vnd.openxmlformats-officedocument.theme+xml"),
    ]
    links = [("rId1", "slideMaster", "slideMasters/slideMaster1.xml")]
    ids = ""
    for number, texts in enumerate(slides, 1):
        overrides.append((f"/ppt/slides/slide{number}.xml", MAIN + "slide+xml"))
        links.append((f"rId{number + 1}", "slide", f"slides/slide{number}.xml"))
        ids += f'<p:sldId id="{255 + number}" r:id="rId{number + 1}"/>'
        shapes = "".join(_shape(i, text) for i, text in enumerate(texts, 1))
        parts[f"ppt/slides/slide{number}.xml"] = (
            f"{HEAD}<p:sld {SPACES}><p:cSld><p:spTree>{TREE}{shapes}</p:spTree></p:cSld></p:sld>"
        )
        parts[f"ppt/slides/_rels/slide{number}.xml.rels"] = _rels(
            [("rId1", "slideLayout", "../slideLayouts/slideLayout1.xml")]
        )
    types = "".join(f'<Override PartName="{n}" ContentType="{t}"/>' for n, t in overrides)
    defaults = (
        '<Default Extension="rels" '
        'ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
        '<Default Extension="xml" ContentType="application/xml"/>'
    )
    colour_map = " ".join(
        f'{k}="{v}"'
        for k, v in [("bg1", "lt1"), ("tx1", "dk1"), ("bg2", "lt2"), ("tx2", "dk2")]
        + [(c, c) for c in COLOURS[4:]]
    )
    first = {
        "[Content_Types].xml": f'{HEAD}<Types xmlns="{TYPES}">{defaults}{types}</Types>',
        "_rels/.rels": _rels([("rId1", "officeDocument", "ppt/presentation.xml")]),
        "ppt/presentation.xml": (
            f'{HEAD}<p:presentation {SPACES}><p:sldMasterIdLst><p:sldMasterId id="2147483648" '
            f'r:id="rId1"/></p:sldMasterIdLst><p:sldIdLst>{ids}</p:sldIdLst>'
            '<p:sldSz cx="9144000" cy="6858000"/><p:notesSz cx="6858000" cy="9144000"/>'
            "</p:presentation>"
        ),
        "ppt/_rels/presentation.xml.rels": _rels(links),
        "ppt/slideMasters/slideMaster1.xml": (
            f"{HEAD}<p:sldMaster {SPACES}><p:cSld><p:spTree>{TREE}</p:spTree></p:cSld>"
            f'<p:clrMap {colour_map}/><p:sldLayoutIdLst><p:sldLayoutId id="2147483649" '
            'r:id="rId1"/></p:sldLayoutIdLst></p:sldMaster>'
        ),
        "ppt/slideMasters/_rels/slideMaster1.xml.rels": _rels(
            [("rId1", "slideLayout", "../slideLayouts/slideLayout1.xml"),
             ("rId2", "theme", "../theme/theme1.xml")]
        ),
        "ppt/slideLayouts/slideLayout1.xml": (
            f"{HEAD}<p:sldLayout {SPACES}><p:cSld><p:spTree>{TREE}</p:spTree></p:cSld></p:sldLayout>"
        ),
        "ppt/slideLayouts/_rels/slideLayout1.xml.rels": _rels(
            [("rId1", "slideMaster", "../slideMasters/slideMaster1.xml")]
        ),
        "ppt/theme/theme1.xml": _theme(),
    }
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as package:
        for name, text in {**first, **parts}.items():
            package.writestr(name, text)
    return path


def texts_of(path, slide):
    """The texts of a slide's runs, in order."""
    with zipfile.ZipFile(path) as package:
        xml = package.read(f"ppt/slides/slide{slide}.xml").decode("utf-8")
    return re.findall(r"<a:t>([^<]*)</a:t>", xml)
