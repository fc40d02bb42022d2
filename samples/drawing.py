"""Shapes of DrawingML as text: what a slide, a group or a notes page holds.

Lengths are inches. A paragraph is a string, or a Paragraph for anything finer; runs carry their
own properties. Ids are given when the slide is written, by replacing ID_MARK in order.
"""
from dataclasses import dataclass, replace
from xml.sax.saxutils import escape, quoteattr

ID_MARK = "@id@"


def emu(inches):
    return round(inches * 914400)


@dataclass
class Run:
    text: str
    bold: bool = False
    italic: bool = False
    size: float = 0
    colour: str = ""
    link: str = ""

    def xml(self, lang):
        attributes = f" lang={quoteattr(lang)}"
        attributes += f' sz="{round(self.size * 100)}"' if self.size else ""
        attributes += ' b="1"' if self.bold else ""
        attributes += ' i="1"' if self.italic else ""
        inside = fill(self.colour) if self.colour else ""
        inside += f'<a:hlinkClick r:id="{self.link}"/>' if self.link else ""
        properties = f"<a:rPr{attributes}>{inside}</a:rPr>" if inside else f"<a:rPr{attributes}/>"
        return f"<a:r>{properties}<a:t>{escape(self.text)}</a:t></a:r>"


@dataclass
class Break:
    def xml(self, lang):
        return f"<a:br><a:rPr lang={quoteattr(lang)}/></a:br>"


@dataclass
class Field:
    kind: str
    text: str

    def xml(self, lang):
        # The standard's schema wants a GUID; one for each kind keeps the output the same each time.
        guid = {"slidenum": "{8A1F5B0E-6B1C-4C53-9D6A-1D1B1F7C0A01}"}.get(
            self.kind, "{8A1F5B0E-6B1C-4C53-9D6A-1D1B1F7C0A02}")
        return (f'<a:fld id="{guid}" type="{self.kind}"><a:rPr lang={quoteattr(lang)}/>'
                f"<a:t>{escape(self.text)}</a:t></a:fld>")


@dataclass
class Raw:
    """Markup that stands where a run may stand, such as an equation."""
    markup: str

    def xml(self, lang):
        return self.markup


@dataclass
class Paragraph:
    parts: list
    level: int = 0
    align: str = ""
    rtl: bool = False
    lang: str = ""
    bullet: str = ""
    after: float = 0

    def xml(self, lang):
        lang = self.lang or lang
        attributes = f' lvl="{self.level}"' if self.level else ""
        attributes += f' algn="{self.align}"' if self.align else ""
        attributes += ' rtl="1"' if self.rtl else ""
        inside = f'<a:spcAft><a:spcPts val="{round(self.after * 100)}"/></a:spcAft>' if self.after else ""
        inside += {"": "", "none": "<a:buNone/>",
                   "number": '<a:buFont typeface="+mj-lt"/><a:buAutoNum type="arabicPeriod"/>'}[self.bullet]
        properties = f"<a:pPr{attributes}>{inside}</a:pPr>" if attributes or inside else ""
        return "<a:p>" + properties + "".join(part.xml(lang) for part in runs(self.parts)) + "</a:p>"


def runs(parts):
    parts = [parts] if not isinstance(parts, list) else parts
    return [Run(part) if isinstance(part, str) else part for part in parts]


def fill(colour):
    """COLOUR is a theme slot such as accent1, six hex digits, or "none"."""
    if colour == "none":
        return "<a:noFill/>"
    kind = "srgbClr" if len(colour) == 6 and all(c in "0123456789ABCDEF" for c in colour) else "schemeClr"
    return f'<a:solidFill><a:{kind} val="{colour}"/></a:solidFill>'


def line(colour, points=1.0, head="", dash=""):
    if colour == "none":
        return "<a:ln><a:noFill/></a:ln>"
    inside = fill(colour)
    inside += f'<a:prstDash val="{dash}"/>' if dash else ""
    inside += f'<a:tailEnd type="{head}"/>' if head else ""
    return f'<a:ln w="{round(points * 12700)}">{inside}</a:ln>'


def frame_xml(x, y, w, h, tag="a:xfrm", rotate=0, flip=False):
    attributes = f' rot="{round(rotate * 60000)}"' if rotate else ""
    attributes += ' flipV="1"' if flip else ""
    return (f'<{tag}{attributes}><a:off x="{emu(x)}" y="{emu(y)}"/>'
            f'<a:ext cx="{emu(w)}" cy="{emu(h)}"/></{tag}>')


def paragraphs(content, lang):
    content = content if isinstance(content, list) else [content]
    content = [p if isinstance(p, Paragraph) else Paragraph([p]) for p in content]
    return "".join(p.xml(lang) for p in content) or f"<a:p><a:endParaRPr lang={quoteattr(lang)}/></a:p>"


def body(tag, content, lang, options="", inside="", style=""):
    return (f"<{tag}><a:bodyPr{options}>{inside}</a:bodyPr><a:lstStyle>{style}</a:lstStyle>"
            f"{paragraphs(content, lang)}</{tag}>")


def list_style(size, colour, align="l", bold=False):
    """Level 1 of a shape's own list style."""
    return (f'<a:lvl1pPr algn="{align}"><a:defRPr sz="{round(size * 100)}" b="{int(bold)}">'
            f"{fill(colour)}</a:defRPr></a:lvl1pPr>")


@dataclass
class Pen:
    """Makes shapes in one language."""
    lang: str = "en-GB"

    def head(self, tag, name, inner="", app="", extra=""):
        return (f'<p:nv{tag}Pr><p:cNvPr id="{ID_MARK}" name={quoteattr(name)}{extra}/>'
                f"<p:cNv{tag}Pr{inner}/><p:nvPr>{app}</p:nvPr></p:nv{tag}Pr>")

    def placeholder(self, kind, content, index=0, at=None, inside="", name=""):
        """Takes place, size and font from the layout; AT (x, y, w, h) overrides the place."""
        reference = "<p:ph" + (f' type="{kind}"' if kind else "") + (f' idx="{index}"' if index else "") + "/>"
        head = (f'<p:nvSpPr><p:cNvPr id="{ID_MARK}" name={quoteattr(name or (kind or "content").title())}/>'
                f'<p:cNvSpPr><a:spLocks noGrp="1"/></p:cNvSpPr><p:nvPr>{reference}</p:nvPr></p:nvSpPr>')
        place = frame_xml(*at) if at else ""
        return f"<p:sp>{head}<p:spPr>{place}</p:spPr>{body('p:txBody', content, self.lang, inside=inside)}</p:sp>"

    def shape(self, geometry, x, y, w, h, content="", name="", paint="accent1", edge="none", size=16,
              colour="bg1", align="ctr", anchor="ctr", bold=False, rotate=0, options="", inside="",
              textbox=False, inset=0.1):
        kind = ' txBox="1"' if textbox else ""
        place = frame_xml(x, y, w, h, rotate=rotate)
        form = geometry if geometry.startswith("<") else f'<a:prstGeom prst="{geometry}"><a:avLst/></a:prstGeom>'
        sides = "".join(f' {side}="{emu(inset)}"' for side in ("lIns", "rIns"))
        text = body("p:txBody", content, self.lang, f' wrap="square"{options}{sides} anchor="{anchor}"',
                    inside or "<a:normAutofit/>", list_style(size, colour, align, bold))
        return (f"<p:sp>{self.head('Sp', name or geometry, kind)}<p:spPr>{place}{form}{fill(paint)}{line(edge)}"
                f"</p:spPr>{text}</p:sp>")

    def text(self, x, y, w, h, content, name="Text", size=16, colour="tx1", align="l", anchor="t", **more):
        return self.shape("rect", x, y, w, h, content, name, "none", "none", size, colour, align, anchor,
                          textbox=True, **more)

    def connector(self, x, y, w, h, name="Connector", geometry="straightConnector1", colour="tx2",
                  flip=False):
        return (f"<p:cxnSp>{self.head('CxnSp', name)}<p:spPr>{frame_xml(x, y, w, h, flip=flip)}"
                f'<a:prstGeom prst="{geometry}"><a:avLst/></a:prstGeom>{line(colour, 2, "triangle")}</p:spPr></p:cxnSp>')

    def picture(self, relation, x, y, w, h, name, description):
        return (f"<p:pic>{self.head('Pic', name, extra=f' descr={quoteattr(description)}')}"
                f'<p:blipFill><a:blip r:embed="{relation}"/><a:stretch><a:fillRect/></a:stretch></p:blipFill>'
                f"<p:spPr>{frame_xml(x, y, w, h)}"
                '<a:prstGeom prst="rect"><a:avLst/></a:prstGeom></p:spPr></p:pic>')

    def group(self, x, y, w, h, shapes, name="Group"):
        """Children keep the slide's own coordinates."""
        child = f'<a:chOff x="{emu(x)}" y="{emu(y)}"/><a:chExt cx="{emu(w)}" cy="{emu(h)}"/></a:xfrm>'
        place = frame_xml(x, y, w, h).replace("</a:xfrm>", child)
        return (f"<p:grpSp>{self.head('GrpSp', name)}<p:grpSpPr>{place}</p:grpSpPr>"
                f"{''.join(shapes)}</p:grpSp>")

    def graphic(self, x, y, w, h, uri, markup, name):
        return (f"<p:graphicFrame>{self.head('GraphicFrame', name)}{frame_xml(x, y, w, h, 'p:xfrm')}"
                f'<a:graphic><a:graphicData uri="{uri}">{markup}</a:graphicData></a:graphic></p:graphicFrame>')

    def table(self, x, y, widths, height, rows, name="Table", numbers=()):
        """ROWS holds texts, lists of paragraphs or Cells; NUMBERS names the columns set to the right."""
        grid = "".join(f'<a:gridCol w="{emu(w)}"/>' for w in widths)
        lines = []
        for number, row in enumerate(rows):
            cells = []
            for column, cell in enumerate(row):
                cell = cell if isinstance(cell, Cell) else Cell(cell)
                align = "r" if column in numbers else "l"
                cells.append(cell.xml(self.lang, align, header=number == 0, band=number % 2 == 1))
            lines.append(f'<a:tr h="{emu(height)}">{"".join(cells)}</a:tr>')
        markup = ('<a:tbl><a:tblPr firstRow="1" bandRow="1"/>'
                  f"<a:tblGrid>{grid}</a:tblGrid>{''.join(lines)}</a:tbl>")
        return self.graphic(x, y, sum(widths), height * len(rows),
                            "http://schemas.openxmlformats.org/drawingml/2006/table", markup, name)


@dataclass
class Cell:
    content: object = ""
    columns: int = 1
    rows: int = 1
    covered: str = ""  # "h" or "v": a merged cell's other places
    bold: bool = False

    def xml(self, lang, align, header, band):
        attributes = f' rowSpan="{self.rows}"' if self.rows > 1 else ""
        attributes += f' gridSpan="{self.columns}"' if self.columns > 1 else ""
        attributes += "".join(f' {side}Merge="1"' for side in self.covered)
        text = cell_body(self.content, lang, "bg1" if header else "tx1", align, header or self.bold)
        paint = fill("accent1" if header else "accent6" if band else "bg1")
        edges = "".join(f'<a:{side} w="9525">{fill("bg2")}</a:{side}>' for side in ("lnT", "lnB"))
        return (f"<a:tc{attributes}>{text}"
                f'<a:tcPr marL="{emu(0.12)}" marR="{emu(0.12)}" anchor="ctr">{edges}{paint}</a:tcPr></a:tc>')


def cell_body(content, lang, colour, align, bold):
    """Not every program reads a cell's list style, so each run says how it looks."""
    dressed = []
    for paragraph in content if isinstance(content, list) else [content]:
        paragraph = paragraph if isinstance(paragraph, Paragraph) else Paragraph([paragraph])
        parts = [replace(part, bold=part.bold or bold, size=part.size or 15, colour=part.colour or colour)
                 if isinstance(part, Run) else part for part in runs(paragraph.parts) if part != Run("")]
        dressed.append(replace(paragraph, parts=parts, align=paragraph.align or align))
    return body("a:txBody", dressed, lang)


def numbered(markup, first):
    """Gives the shapes their ids, from FIRST on."""
    pieces = markup.split(ID_MARK)
    return pieces[0] + "".join(str(first + i) + piece for i, piece in enumerate(pieces[1:]))


def tree(shapes):
    return ('<p:cSld><p:spTree><p:nvGrpSpPr><p:cNvPr id="1" name=""/><p:cNvGrpSpPr/><p:nvPr/></p:nvGrpSpPr>'
            '<p:grpSpPr><a:xfrm><a:off x="0" y="0"/><a:ext cx="0" cy="0"/><a:chOff x="0" y="0"/>'
            f'<a:chExt cx="0" cy="0"/></a:xfrm></p:grpSpPr>{numbered("".join(shapes), 2)}</p:spTree>')
