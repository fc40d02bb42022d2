"""A small deck that holds every kind of shape once, and the odd texts that come with them."""
from drawing import Break, Cell, Field, Paragraph, Pen, Raw, Run
from package import Slide, png

PEN = Pen("en-GB")
MATH = ('<a14:m xmlns:a14="http://schemas.microsoft.com/office/drawing/2010/main">'
        '<m:oMath xmlns:m="http://schemas.openxmlformats.org/officeDocument/2006/math">'
        "<m:r><m:t>E=m</m:t></m:r><m:sSup><m:e><m:r><m:t>c</m:t></m:r></m:e>"
        "<m:sup><m:r><m:t>2</m:t></m:r></m:sup></m:sSup></m:oMath></a14:m>")
TRIANGLE = ('<a:custGeom><a:avLst/><a:gdLst/><a:ahLst/><a:cxnLst/><a:rect l="0" t="0" r="r" b="b"/><a:pathLst>'
            '<a:path w="100" h="100"><a:moveTo><a:pt x="0" y="100"/></a:moveTo><a:lnTo><a:pt x="50" y="0"/></a:lnTo>'
            '<a:lnTo><a:pt x="100" y="100"/></a:lnTo><a:close/></a:path></a:pathLst></a:custGeom>')


def hills(x, y):
    return (27, 153, 139) if y > 60 - 25 * ((x // 40) % 2) - (x % 40) / 3 else (213, 222, 231)


def placeholders():
    return Slide("Content", [
        PEN.placeholder("title", [Paragraph(["Placeholders", Break(), "and their texts"])]),
        PEN.placeholder("", [
            Paragraph(["Plain, ", Run("bold", bold=True), ", ", Run("italic", italic=True), " and ",
                       Run("coloured", colour="accent4", size=28), " in one paragraph"]),
            Paragraph(["A second level"], 1),
            Paragraph([]),
            Paragraph(["Tea & <coffee> \"both\""]),
            Paragraph(["2025 – 100 %"]),
            Paragraph(["Page ", Field("slidenum", "1"), " of many"]),
        ], 1, inside='<a:normAutofit fontScale="92500" lnSpcReduction="10000"/>'),
        PEN.placeholder("ftr", "A footer", 11, name="Footer"),
        PEN.placeholder("sldNum", [Paragraph([Field("slidenum", "1")])], 12, name="Slide number"),
    ], notes=["First line of the notes", Paragraph(["Second line", Break(), "broken once"]), "1 2 3"],
        tags={"AUDIENCE": "Staff"})


def simple_shapes():
    return Slide("Title only", [
        PEN.placeholder("title", "Simple shapes"),
        PEN.shape("ellipse", 0.8, 1.9, 2.4, 1.6, "Ellipse", paint="accent2"),
        PEN.shape("rect", 3.6, 1.9, 2.4, 1.6, "Turned", paint="accent3", rotate=12),
        PEN.shape(TRIANGLE, 6.4, 1.9, 2.4, 1.6, "Drawn by hand", "Freeform", "accent4", anchor="b"),
        PEN.text(9.2, 1.9, 0.8, 2.6, "Upright", "Upright text", options=' vert="vert270"'),
        PEN.shape("rect", 10.3, 1.9, 2.2, 1.6, "", "Empty frame", "accent6", "bg2"),
        PEN.text(0.8, 3.9, 3.6, 0.6, "42", "Digits alone"),
        PEN.text(0.8, 4.6, 4.2, 1.2, ["Grows with its text"], "Growing", inside="<a:spAutoFit/>"),
        PEN.text(5.2, 4.6, 3.4, 1.2, ["Stays as it is"], "Fixed", inside="<a:noAutofit/>"),
        PEN.connector(3.2, 2.7, 0.4, 0.0),
        PEN.connector(4.0, 6.0, 2.0, 0.6, "Elbow", "bentConnector3", flip=True),
        PEN.picture("rIdPicture", 9.3, 4.7, 3.2, 1.9, "Hills", "Two green hills under a grey sky"),
        PEN.text(0.8, 6.0, 3.0, 0.6, [Paragraph([Run("A linked text", link="rIdLink")])], "Linked"),
    ], links={"rIdLink": "https://example.com/"}, pictures={"rIdPicture": png(160, 95, hills)})


def groups():
    inner = PEN.group(5.0, 3.0, 3.6, 2.4, [
        PEN.shape("rect", 5.0, 3.0, 1.7, 2.4, "Inside of inside", "Deep left", "accent2"),
        PEN.group(6.9, 3.0, 1.7, 2.4, [
            PEN.shape("rect", 6.9, 3.0, 1.7, 1.1, "Third", "Deepest one", "accent3"),
            PEN.shape("rect", 6.9, 4.3, 1.7, 1.1, "Depth", "Deepest two", "accent4"),
        ], "Third group"),
    ], "Second group")
    outer = PEN.group(0.8, 2.2, 7.9, 3.4, [
        PEN.shape("rect", 0.8, 2.2, 3.8, 3.4, ["Outside", "of the inner group"], "Outer shape", "accent1"),
        inner, PEN.connector(4.6, 4.2, 0.4, 0, "Between")], "First group")
    alone = PEN.group(9.2, 2.2, 3.2, 3.4, [PEN.shape("roundRect", 9.2, 2.2, 3.2, 3.4, "Alone in its group", "Only child",
                                                     "accent5")], "Group of one")
    return Slide("Title only", [PEN.placeholder("title", "Groups in groups"), outer, alone])


def tables():
    rows = [
        [Cell("Plan for the week", columns=3), Cell(covered="h"), Cell(covered="h")],
        ["Day", "Morning", "Afternoon"],
        [Cell("Monday", rows=2), "Meeting", Cell(["Two lines", "in one cell"])],
        [Cell(covered="v"), Cell(Paragraph(["First", Break(), "then"])), "9:30"],
        ["Tuesday", Cell("A long walk", columns=2), Cell(covered="h")],
        [Cell(Paragraph(["صباح الخير"], rtl=True, lang="ar-SA")), "", "End"],
    ]
    return Slide("Title only", [PEN.placeholder("title", "A table with merged cells"),
                                PEN.table(0.8, 1.9, [3.0, 4.2, 4.4], 0.7, rows, "Week")])


def equation():
    old = PEN.text(0.8, 2.2, 8.0, 0.8, "Energy and mass", "Equation", 24)
    with_math = PEN.text(0.8, 2.2, 8.0, 0.8, [Paragraph(["Energy and mass: ", Raw(MATH)])], "Equation", 24)
    both = ('<mc:AlternateContent xmlns:mc="http://schemas.openxmlformats.org/markup-compatibility/2006">'
            '<mc:Choice xmlns:a14="http://schemas.microsoft.com/office/drawing/2010/main" Requires="a14">'
            f"{with_math}</mc:Choice><mc:Fallback>{old}</mc:Fallback></mc:AlternateContent>")
    return Slide("Title only", [PEN.placeholder("title", "An equation in a text"), both,
                                PEN.text(0.8, 3.4, 8.0, 0.8, "A plain text under it", "Plain", 24)])


def series(number, name, values):
    def cache(texts, kind):
        points = "".join(f'<c:pt idx="{i}"><c:v>{t}</c:v></c:pt>' for i, t in enumerate(texts))
        form = "<c:formatCode>General</c:formatCode>" if kind == "num" else ""
        return f'<c:{kind}Lit>{form}<c:ptCount val="{len(texts)}"/>{points}</c:{kind}Lit>'
    return (f'<c:ser><c:idx val="{number}"/><c:order val="{number}"/><c:tx><c:v>{name}</c:v></c:tx>'
            f'<c:cat>{cache(["Spring", "Summer", "Autumn"], "str")}</c:cat><c:val>{cache(values, "num")}</c:val></c:ser>')


CHART = ('<c:chartSpace xmlns:c="http://schemas.openxmlformats.org/drawingml/2006/chart" '
         'xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main"><c:chart><c:title><c:tx><c:rich><a:bodyPr/>'
         '<a:p><a:r><a:rPr lang="en-GB"/><a:t>Visitors by season</a:t></a:r></a:p></c:rich></c:tx></c:title>'
         '<c:plotArea><c:layout/><c:barChart><c:barDir val="col"/><c:grouping val="clustered"/>'
         + series(0, "Adults", [12, 30, 18]) + series(1, "Children", [7, 21, 9]) +
         '<c:axId val="111"/><c:axId val="222"/></c:barChart><c:catAx><c:axId val="111"/><c:scaling>'
         '<c:orientation val="minMax"/></c:scaling><c:delete val="0"/><c:axPos val="b"/><c:crossAx val="222"/></c:catAx>'
         '<c:valAx><c:axId val="222"/><c:scaling><c:orientation val="minMax"/></c:scaling><c:delete val="0"/>'
         '<c:axPos val="l"/><c:crossAx val="111"/></c:valAx></c:plotArea><c:legend><c:legendPos val="b"/></c:legend>'
         '<c:plotVisOnly val="1"/></c:chart></c:chartSpace>')


def chart():
    uri = "http://schemas.openxmlformats.org/drawingml/2006/chart"
    frame = PEN.graphic(0.8, 1.8, 7.6, 4.8, uri, f'<c:chart xmlns:c="{uri}" r:id="rIdChart"/>', "Chart")
    return Slide("Title only", [PEN.placeholder("title", "A chart"), frame,
                                PEN.text(8.8, 2.4, 3.6, 2.0, "The summer brings most visitors", "Remark", 22)],
                 charts={"rIdChart": CHART})


def hidden():
    return Slide("Content", [PEN.placeholder("title", "A hidden slide"),
                             PEN.placeholder("", "Its text is translated like any other", 1)], hidden=True)


def every_shape():
    return [placeholders(), simple_shapes(), groups(), tables(), equation(), chart(), hidden()]
