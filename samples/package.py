"""Writes a deck of shapes as a .pptx whose bytes are the same each time."""
import struct
import zipfile
import zlib
from dataclasses import dataclass, field
from xml.sax.saxutils import escape, quoteattr

import templates
from drawing import tree

OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/"
TYPES = "application/vnd.openxmlformats-officedocument."
DECLARATION = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
NAMESPACES = templates.NAMESPACES


@dataclass
class Slide:
    layout: str
    shapes: list
    notes: list = field(default_factory=list)
    hidden: bool = False
    links: dict = field(default_factory=dict)     # relation id -> address
    pictures: dict = field(default_factory=dict)  # relation id -> PNG bytes
    charts: dict = field(default_factory=dict)    # relation id -> chart part
    tags: dict = field(default_factory=dict)


def png(width, height, colour_at):
    rows = b"".join(b"\0" + bytes(v for x in range(width) for v in colour_at(x, y)) for y in range(height))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


class Package:
    def __init__(self):
        self.parts = {}
        self.kinds = {}
        self.relations = {}

    def add(self, name, markup, kind):
        self.parts[name] = (DECLARATION + markup).encode() if isinstance(markup, str) else markup
        if kind:
            self.kinds[name] = kind

    def relate(self, source, identity, kind, target, external=False):
        mode = ' TargetMode="External"' if external else ""
        kind = kind if kind.startswith("http") else OFFICE + kind
        self.relations.setdefault(source, []).append(
            f'<Relationship Id="{identity}" Type="{kind}" Target={quoteattr(target)}{mode}/>')

    def save(self, path):
        overrides = "".join(f'<Override PartName="/{n}" ContentType="{k}"/>' for n, k in self.kinds.items())
        types = (f'{DECLARATION}<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
                 '<Default Extension="png" ContentType="image/png"/>'
                 '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
                 f'<Default Extension="xml" ContentType="application/xml"/>{overrides}</Types>')
        files = {"[Content_Types].xml": types.encode()}
        for source, lines in self.relations.items():
            folder, _, name = source.rpartition("/")
            where = f"{folder}/_rels/{name}.rels" if folder else f"_rels/{name}.rels"
            files[where] = (f'{DECLARATION}<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/'
                            f'relationships">{"".join(lines)}</Relationships>').encode()
        files.update(self.parts)
        with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
            for name, data in files.items():
                entry = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))
                entry.compress_type = zipfile.ZIP_DEFLATED
                entry.create_system = 3
                entry.external_attr = 0o644 << 16
                archive.writestr(entry, data)


def add_frame_parts(package, title, lang):
    """Everything but the slides."""
    package.relate("", "rId1", "officeDocument", "ppt/presentation.xml")
    package.relate("", "rId2", "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties",
                   "docProps/core.xml")
    package.relate("", "rId3", "extended-properties", "docProps/app.xml")
    package.add("docProps/core.xml", templates.core_properties(title, lang),
                "application/vnd.openxmlformats-package.core-properties+xml")
    package.add("docProps/app.xml", templates.APP_PROPERTIES, TYPES + "extended-properties+xml")
    master = "ppt/slideMasters/slideMaster1.xml"
    layouts = list(templates.LAYOUTS)
    package.add(master, templates.master(len(layouts)), TYPES + "presentationml.slideMaster+xml")
    for number, name in enumerate(layouts, 1):
        layout = f"ppt/slideLayouts/slideLayout{number}.xml"
        package.add(layout, templates.layout(name), TYPES + "presentationml.slideLayout+xml")
        package.relate(layout, "rId1", "slideMaster", "../slideMasters/slideMaster1.xml")
        package.relate(master, f"rId{number}", "slideLayout", f"../slideLayouts/slideLayout{number}.xml")
    package.relate(master, f"rId{len(layouts) + 1}", "theme", "../theme/theme1.xml")
    package.add("ppt/notesMasters/notesMaster1.xml", templates.notes_master(),
                TYPES + "presentationml.notesMaster+xml")
    package.relate("ppt/notesMasters/notesMaster1.xml", "rId1", "theme", "../theme/theme2.xml")
    for number in (1, 2):
        package.add(f"ppt/theme/theme{number}.xml", templates.theme(), TYPES + "theme+xml")
    deck = "ppt/presentation.xml"
    package.relate(deck, "rId1", "slideMaster", "slideMasters/slideMaster1.xml")
    package.relate(deck, "rId2", "notesMaster", "notesMasters/notesMaster1.xml")
    package.relate(deck, "rId3", "theme", "theme/theme1.xml")


def add_slide(package, number, slide, lang):
    part = f"ppt/slides/slide{number}.xml"
    layout = list(templates.LAYOUTS).index(slide.layout) + 1
    package.relate(part, "rIdLayout", "slideLayout", f"../slideLayouts/slideLayout{layout}.xml")
    tags = ""
    if slide.tags:
        lines = "".join(f"<p:tag name={quoteattr(k)} val={quoteattr(v)}/>" for k, v in slide.tags.items())
        package.add(f"ppt/tags/tag{number}.xml", f"<p:tagLst {NAMESPACES}>{lines}</p:tagLst>",
                    TYPES + "presentationml.tags+xml")
        package.relate(part, "rIdTags", "tags", f"../tags/tag{number}.xml")
        tags = '<p:custDataLst><p:tags r:id="rIdTags"/></p:custDataLst>'
    hidden = ' show="0"' if slide.hidden else ""
    package.add(part, f"<p:sld {NAMESPACES}{hidden}>{tree(slide.shapes)}{tags}</p:cSld>"
                "<p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sld>", TYPES + "presentationml.slide+xml")
    for identity, address in slide.links.items():
        package.relate(part, identity, "hyperlink", address, external=True)
    for identity, data in slide.pictures.items():
        name = f"image{number}_{identity}.png"
        package.add(f"ppt/media/{name}", data, "")
        package.relate(part, identity, "image", f"../media/{name}")
    for identity, markup in slide.charts.items():
        package.add(f"ppt/charts/chart{number}.xml", markup, TYPES + "drawingml.chart+xml")
        package.relate(part, identity, "chart", f"../charts/chart{number}.xml")
    if slide.notes:
        notes = f"ppt/notesSlides/notesSlide{number}.xml"
        package.add(notes, f"<p:notes {NAMESPACES}>{tree(templates.notes_shapes(slide.notes, lang))}</p:cSld>"
                    "<p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:notes>",
                    TYPES + "presentationml.notesSlide+xml")
        package.relate(notes, "rId1", "notesMaster", "../notesMasters/notesMaster1.xml")
        package.relate(notes, "rId2", "slide", f"../slides/slide{number}.xml")
        package.relate(part, "rIdNotes", "notesSlide", f"../notesSlides/notesSlide{number}.xml")


def write_deck(path, title, slides, lang="en-GB"):
    package = Package()
    add_frame_parts(package, title, lang)
    entries = ""
    for number, slide in enumerate(slides, 1):
        add_slide(package, number, slide, lang)
        package.relate("ppt/presentation.xml", f"rId{number + 3}", "slide", f"slides/slide{number}.xml")
        entries += f'<p:sldId id="{255 + number}" r:id="rId{number + 3}"/>'
    package.add("ppt/presentation.xml",
                f'<p:presentation {NAMESPACES} saveSubsetFonts="1">'
                '<p:sldMasterIdLst><p:sldMasterId id="2147483648" r:id="rId1"/></p:sldMasterIdLst>'
                '<p:notesMasterIdLst><p:notesMasterId r:id="rId2"/></p:notesMasterIdLst>'
                f"<p:sldIdLst>{entries}</p:sldIdLst>"
                '<p:sldSz cx="12192000" cy="6858000"/><p:notesSz cx="6858000" cy="9144000"/>'
                f"<p:defaultTextStyle>{templates.default_text_style(escape(lang))}</p:defaultTextStyle>"
                "</p:presentation>", TYPES + "presentationml.presentation.main+xml")
    package.save(path)
