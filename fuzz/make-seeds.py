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


SHEET = """<worksheet xmlns="X" xmlns:r="R"><cols><col min="3" max="4" hidden="1"/></cols><sheetData>
<row r="1"><c r="A1" t="s"><v>0</v></c><c r="B1" t="inlineStr"><is><r><t>Su</t></r><r><t>m</t></r></is></c></row>
<row r="2" hidden="1"><c r="A2" s="1"><v>37261.5</v></c><c t="str"><f>T[[#This Row],[Region]]</f><v>x</v></c><c/></row>
<row><c t="e"><v>#N/A</v></c><c t="b"><v>1</v></c><c><f t="array" ref="C3:C4">1</f><v>1</v></c></row></sheetData>
<mergeCells><mergeCell ref="A3:B4"/></mergeCells><tableParts><tablePart r:id="table"/></tableParts></worksheet>"""
STRINGS = '<sst xmlns="X"><si><t>Region</t></si><si><r><t>a_x000D_</t></r><rPh><t>b</t></rPh></si></sst>'
TABLE = """<table xmlns="X" displayName="T" ref="A1:B4" totalsRowCount="1"><tableColumns><tableColumn name="Region"/>
<tableColumn name="Sum" totalsRowLabel="All"><calculatedColumnFormula>T[Region]</calculatedColumnFormula></tableColumn>
</tableColumns></table>"""
FORMATS = ["m/d/yyyy h:mm", "[h]:mm:ss.00", "#,##0.00_);[Red](#,##0.00);&quot;-&quot;;@", "# ??/??", "##0.0E+0",
           "[&gt;=1000]0,&quot;K&quot;;0%", "[$€-407] 0"]


CHART = """<c:chartSpace xmlns:c="C" xmlns:a="A" xmlns:r="R"><c:chart><c:title><c:tx><c:rich><a:bodyPr/><a:p><a:r>
<a:rPr b="1"/><a:t>Sales</a:t></a:r></a:p></c:rich></c:tx></c:title><c:plotArea><c:barChart><c:ser><c:idx val="0"/>
<c:order val="0"/><c:tx><c:strRef><c:f>S!B1</c:f><c:strCache><c:ptCount val="1"/><c:pt idx="0"><c:v>n</c:v></c:pt>
</c:strCache></c:strRef></c:tx><c:dLbls><c:dLbl><c:idx val="1"/><c:layout/><c:tx><c:rich><a:p><a:fld><a:t>[VALUE]</a:t>
</a:fld></a:p></c:rich></c:tx><c:showVal val="0"/></c:dLbl><c:showVal val="1"/></c:dLbls><c:cat><c:multiLvlStrRef>
<c:f>S!A2:B3</c:f><c:multiLvlStrCache><c:ptCount val="2"/><c:lvl><c:pt idx="0"><c:v>i</c:v></c:pt></c:lvl><c:lvl>
<c:pt idx="1"><c:v>o</c:v></c:pt></c:lvl></c:multiLvlStrCache></c:multiLvlStrRef></c:cat><c:val><c:numRef><c:f>S!C2:C3
</c:f><c:numCache><c:formatCode>0%</c:formatCode><c:ptCount val="2"/><c:pt idx="0"><c:v>1</c:v></c:pt></c:numCache>
</c:numRef></c:val></c:ser><c:axId val="1"/><c:axId val="2"/></c:barChart><c:catAx><c:axId val="1"/><c:title/></c:catAx>
<c:valAx><c:axId val="2"/><c:axPos val="l"/><c:dispUnits><c:builtInUnit val="millions"/><c:dispUnitsLbl/></c:dispUnits>
</c:valAx></c:plotArea></c:chart><c:externalData r:id="r"/></c:chartSpace>"""


def chart():
    drawing = "http://schemas.openxmlformats.org/drawingml/2006/"
    return CHART.replace('"C"', f'"{drawing}chart"').replace('"A"', f'"{drawing}main"').encode()


def workbooks():
    """The parts of one workbook, with each of the formats, as the target takes them apart."""
    sheets = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
    links = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
    for code in FORMATS:
        styles = (f'<styleSheet xmlns="X"><numFmts><numFmt numFmtId="164" formatCode="{code}"/></numFmts>'
                  '<cellXfs><xf numFmtId="0"/><xf numFmtId="164"/></cellXfs></styleSheet>')
        parts = "\0".join([SHEET, STRINGS, styles, TABLE])
        yield b"P" + parts.replace('"X"', f'"{sheets}"').replace('"R"', f'"{links}"').encode()


BODIES = ['{"texts":["one","two"],"unitIds":["u1","u2"],"sourceLang":"en","targetLang":"es","glossary":'
          '[{"source":"a","target":"b","note":"n"}],"trace":{"clientTraceId":"t","runId":"1"}}',
          '{"events":[{"event":"addin:loaded","outcome":"ok","context":{"os":"x"},"props":{"a":"b"}}]}']
REQUESTS = BODIES + [
    f"POST /v1/translate HTTP/1.1\r\nHost: x\r\nAuthorization: Bearer t\r\nContent-Length: {len(text)}\r\n\r\n{text}"
    for text in BODIES] + [
    f"POST /v1/translate HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n{len(text):x}\r\n{text}\r\n0\r\n\r\n"
    for text in BODIES] + ["GET /v1/health?a%20b HTTP/1.1\r\nExpect: 100-continue\r\n\r\n"]
MESSAGES = ['{"1":"uno","2":"dos [[QM_A_1]]"}', 'Here:\n```\n{"translations":[{"id":1,"text":"uno"},'
            '{"id":"2","text":"dos [[QM_A_1]]"}]}\n```', '{"1":"uno"}']
MODEL = [json.dumps({"choices": [{"message": {"role": "assistant", "content": text}}]}) for text in MESSAGES] + [
    '{"error":{"message":"No such model."}}', '{"error":"gone"}']
TEXTS = ["The Plan of the house", "KEY POINTS\vand the rest", "see [[QM_A_1]] at https://example.com/a",
         "a  b \\ ^x$ [y] {z} ~ \u2028 é", "x" * 300]


def main():
    root, out = map(pathlib.Path, sys.argv[1:3])
    decks = [file for file in sorted((root / "samples").glob("*.pptx")) if file.stem.count(".") == 0]
    slides = []
    charts = [chart()]
    for deck in decks:
        with zipfile.ZipFile(deck) as package:
            slides += [package.read(name) for name in package.namelist() if name.startswith("ppt/slides/slide")]
            charts += [package.read(name) for name in package.namelist() if name.startswith("ppt/charts/chart")]
    told = list(messages(root))
    seeds = {
        "JsonTextFuzz": told, "PageMessageFuzz": told, "ServiceAnswerFuzz": [text.encode() for text in ANSWERS],
        "SlideXmlFuzz": slides, "ChartXmlFuzz": charts, "WorkbookFuzz": list(workbooks()),
        "ServiceRequestFuzz": [text.encode() for text in REQUESTS],
        "ModelAnswerFuzz": [text.encode() for text in MODEL],
        "ApertiumStreamFuzz": [text.encode() for text in TEXTS],
        "PackageFuzz": [b"Z" + deck.read_bytes() for deck in decks] + [b"X" + slide for slide in slides]}
    for target, texts in seeds.items():
        folder = out / target
        folder.mkdir(parents=True, exist_ok=True)
        for number, text in enumerate(texts):
            (folder / f"{number:03}").write_bytes(text)


if __name__ == "__main__":
    main()
