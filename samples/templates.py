"""What all decks here share: theme, master, layouts, notes master, document properties."""
from xml.sax.saxutils import escape

from drawing import Field, Paragraph, Pen, fill, frame_xml, tree

NAMESPACES = ('xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main" '
              'xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships" '
              'xmlns:p="http://schemas.openxmlformats.org/presentationml/2006/main"')

COLOURS = {"dk1": "1F2933", "lt1": "FFFFFF", "dk2": "12355B", "lt2": "D5DEE7", "accent1": "12355B",
           "accent2": "1B998B", "accent3": "E3A72F", "accent4": "C8553D", "accent5": "6C7A89",
           "accent6": "EEF3F7", "hlink": "1B74B8", "folHlink": "6C4A86"}


def theme():
    colours = "".join(f'<a:{slot}><a:srgbClr val="{value}"/></a:{slot}>' for slot, value in COLOURS.items())
    plain = '<a:solidFill><a:schemeClr val="phClr"/></a:solidFill>'
    fonts = "".join(f'<a:{kind}Font><a:latin typeface="Calibri"/><a:ea typeface=""/><a:cs typeface=""/>'
                    f"</a:{kind}Font>" for kind in ("major", "minor"))
    return ('<a:theme xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main" name="Harbour"><a:themeElements>'
            f'<a:clrScheme name="Harbour">{colours}</a:clrScheme><a:fontScheme name="Harbour">{fonts}</a:fontScheme>'
            f'<a:fmtScheme name="Harbour"><a:fillStyleLst>{plain * 3}</a:fillStyleLst><a:lnStyleLst>'
            + f'<a:ln w="9525">{plain}</a:ln>' * 3 +
            "</a:lnStyleLst><a:effectStyleLst>" + "<a:effectStyle><a:effectLst/></a:effectStyle>" * 3 +
            f"</a:effectStyleLst><a:bgFillStyleLst>{plain * 3}</a:bgFillStyleLst></a:fmtScheme></a:themeElements></a:theme>")


def level(number, size, colour, margin=0.0, indent=0.0, bullet="", before=0, bold=False):
    mark = f'<a:buFont typeface="Arial"/><a:buChar char="{bullet}"/>' if bullet else "<a:buNone/>"
    return (f'<a:lvl{number}pPr marL="{round(margin * 914400)}" indent="{round(indent * 914400)}" algn="l">'
            f'<a:spcBef><a:spcPts val="{before * 100}"/></a:spcBef>{mark}'
            f'<a:defRPr sz="{size * 100}" b="{int(bold)}">{fill(colour)}<a:latin typeface="+mn-lt"/>'
            f'<a:ea typeface="+mn-ea"/><a:cs typeface="+mn-cs"/></a:defRPr></a:lvl{number}pPr>')


def default_text_style(lang):
    return (f'<a:defPPr><a:defRPr lang="{lang}"/></a:defPPr>'
            + "".join(level(n, 18, "tx1", 0.5 * (n - 1)) for n in range(1, 10)))


BULLETS = (level(1, 24, "tx1", 0.3, -0.3, "•", 10) + level(2, 20, "tx1", 0.7, -0.28, "–", 5)
           + level(3, 18, "accent5", 1.1, -0.25, "•", 4))


def small_places(footer="", number=True):
    """Footer and slide number, as the master and each layout carry them."""
    pen = Pen()
    style = '<a:lvl1pPr{}><a:defRPr sz="1200">' + fill("accent5") + '<a:latin typeface="+mn-lt"/></a:defRPr></a:lvl1pPr>'
    places = [pen.placeholder("ftr", footer or [], 11, (0.7, 6.95, 7.0, 0.35), name="Footer")]
    if number:
        places.append(pen.placeholder("sldNum", [Paragraph([Field("slidenum", "‹#›")])], 12,
                                      (11.63, 6.95, 1.0, 0.35), name="Slide number"))
    sides = (' algn="l"', ' algn="r"')
    return [p.replace("<a:lstStyle></a:lstStyle>", f"<a:lstStyle>{style.format(side)}</a:lstStyle>")
            for p, side in zip(places, sides)]


def picture_frame(shapes, background="", tail=""):
    inner = tree(shapes)
    if background:
        inner = inner.replace("<p:cSld>", f"<p:cSld><p:bg><p:bgPr>{fill(background)}<a:effectLst/></p:bgPr></p:bg>", 1)
    return inner + "</p:cSld>" + tail


def master(layouts):
    pen = Pen()
    shapes = [
        pen.shape("rect", 0, 0, 0.22, 7.5, name="Edge", paint="accent1"),
        pen.placeholder("title", "Click to edit the title", 0, (0.7, 0.45, 11.93, 0.95)),
        pen.placeholder("body", [Paragraph(["First level"]), Paragraph(["Second level"], 1),
                                 Paragraph(["Third level"], 2)], 1, (0.7, 1.75, 11.93, 4.95)),
    ] + small_places()
    lists = "".join(f'<p:sldLayoutId id="{2147483649 + i}" r:id="rId{i + 1}"/>' for i in range(layouts))
    return (f"<p:sldMaster {NAMESPACES}>" + picture_frame(shapes, "bg1") +
            '<p:clrMap bg1="lt1" tx1="dk1" bg2="lt2" tx2="dk2" accent1="accent1" accent2="accent2" '
            'accent3="accent3" accent4="accent4" accent5="accent5" accent6="accent6" hlink="hlink" folHlink="folHlink"/>'
            f"<p:sldLayoutIdLst>{lists}</p:sldLayoutIdLst><p:txStyles>"
            f"<p:titleStyle>{level(1, 36, 'tx2', bold=True)}</p:titleStyle><p:bodyStyle>{BULLETS}</p:bodyStyle>"
            f"<p:otherStyle>{level(1, 18, 'tx1')}</p:otherStyle></p:txStyles></p:sldMaster>")


def opening():
    pen = Pen()
    title = pen.placeholder("ctrTitle", "Click to edit the title", 0, (1.1, 2.1, 10.6, 1.6))
    subtitle = pen.placeholder("subTitle", "Click to edit the subtitle", 1, (1.1, 4.05, 10.6, 1.2))
    return [
        pen.shape("rect", 0.22, 0, 0.12, 7.5, name="Second edge", paint="accent2"),
        title.replace("<a:lstStyle></a:lstStyle>", f"<a:lstStyle>{level(1, 50, 'bg1', bold=True)}</a:lstStyle>")
             .replace("<a:bodyPr>", '<a:bodyPr anchor="b">'),
        pen.shape("rect", 1.2, 3.85, 2.2, 0.07, name="Rule", paint="accent3"),
        subtitle.replace("<a:lstStyle></a:lstStyle>", f"<a:lstStyle>{level(1, 22, 'bg2')}</a:lstStyle>"),
    ]


def content():
    pen = Pen()
    return [pen.placeholder("title", "Click to edit the title"),
            pen.placeholder("", [Paragraph(["First level"]), Paragraph(["Second level"], 1)], 1),
            ] + small_places()


def title_only():
    return [Pen().placeholder("title", "Click to edit the title")] + small_places()


# name: (the layout's kind, its shapes, its background)
LAYOUTS = {"Opening": ("title", opening, "accent1"), "Content": ("obj", content, ""),
           "Title only": ("titleOnly", title_only, "")}


def layout(name):
    kind, shapes, background = LAYOUTS[name]
    inner = picture_frame(shapes(), background).replace("<p:cSld>", f'<p:cSld name="{name}">', 1)
    return (f'<p:sldLayout {NAMESPACES} type="{kind}" preserve="1">{inner}'
            "<p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sldLayout>")


def slide_picture(at=None):
    place = frame_xml(*at) if at else ""
    form = '<a:prstGeom prst="rect"><a:avLst/></a:prstGeom>' if at else ""
    return ('<p:sp><p:nvSpPr><p:cNvPr id="@id@" name="Slide picture"/><p:cNvSpPr><a:spLocks noGrp="1" noRot="1" '
            'noChangeAspect="1"/></p:cNvSpPr><p:nvPr><p:ph type="sldImg"/></p:nvPr></p:nvSpPr>'
            f"<p:spPr>{place}{form}</p:spPr></p:sp>")


def notes_master():
    shapes = [slide_picture((0.75, 0.75, 6.0, 3.4)),
              Pen().placeholder("body", "Click to edit the notes", 1, (0.75, 4.6, 6.0, 4.5), name="Notes")]
    return (f"<p:notesMaster {NAMESPACES}>" + picture_frame(shapes, "bg1") +
            '<p:clrMap bg1="lt1" tx1="dk1" bg2="lt2" tx2="dk2" accent1="accent1" accent2="accent2" '
            'accent3="accent3" accent4="accent4" accent5="accent5" accent6="accent6" hlink="hlink" folHlink="folHlink"/>'
            f"<p:notesStyle>{level(1, 12, 'tx1')}</p:notesStyle></p:notesMaster>")


def notes_shapes(notes, lang):
    return [slide_picture(), Pen(lang).placeholder("body", notes, 1, name="Notes")]


def core_properties(title, lang):
    return ('<cp:coreProperties xmlns:cp="http://schemas.openxmlformats.org/package/2006/metadata/core-properties" '
            'xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:dcterms="http://purl.org/dc/terms/" '
            'xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">'
            '<dcterms:created xsi:type="dcterms:W3CDTF">2025-10-01T09:00:00Z</dcterms:created>'
            f"<dc:creator>Quillmarch</dc:creator><dc:language>{lang}</dc:language><dc:title>{escape(title)}</dc:title>"
            "</cp:coreProperties>")


APP_PROPERTIES = ('<Properties xmlns="http://schemas.openxmlformats.org/officeDocument/2006/extended-properties">'
                  "<Application>Quillmarch samples</Application></Properties>")
