"""One slide for each script, right-to-left ones among them."""
from drawing import Cell, Paragraph, Pen, Run
from package import Slide

# language tag, its name in English, heading, bullets, right to left
SCRIPTS = [
    ("zh-CN", "Chinese", "城市的早晨", ["河边的市场六点开门。", "新鲜的水果来自附近的村庄。", "面包店里有热茶。"], False),
    ("ja-JP", "Japanese", "町の朝", ["市場は六時に開きます。", "果物は近くの村から届きます。", "パン屋さんでお茶が飲めます。"], False),
    ("ko-KR", "Korean", "도시의 아침", ["시장은 여섯 시에 문을 엽니다.", "과일은 가까운 마을에서 옵니다.", "빵집에서 차를 마십니다."], False),
    ("ar-SA", "Arabic", "صباح المدينة", ["يفتح السوق عند الساعة السادسة.", "تأتي الفواكه من القرى القريبة.", "في المخبز شاي ساخن."], True),
    ("he-IL", "Hebrew", "בוקר בעיר", ["השוק נפתח בשעה שש.", "הפירות מגיעים מהכפרים הסמוכים.", "במאפייה יש תה חם."], True),
    ("hi-IN", "Hindi", "शहर की सुबह", ["बाज़ार छह बजे खुलता है।", "फल पास के गाँवों से आते हैं।", "बेकरी में गरम चाय मिलती है।"], False),
    ("th-TH", "Thai", "เช้าในเมือง", ["ตลาดเปิดหกโมงเช้า", "ผลไม้มาจากหมู่บ้านใกล้เคียง", "ร้านขนมปังมีชาร้อน"], False),
    ("ru-RU", "Cyrillic", "Утро в городе", ["Рынок открывается в шесть часов.", "Фрукты привозят из соседних деревень.", "В пекарне есть горячий чай."], False),
    ("el-GR", "Greek", "Πρωί στην πόλη", ["Η αγορά ανοίγει στις έξι.", "Τα φρούτα έρχονται από τα κοντινά χωριά.", "Ο φούρνος έχει ζεστό τσάι."], False),
]
WELCOME = [("Chinese", "欢迎", "zh-CN"), ("Japanese", "ようこそ", "ja-JP"), ("Korean", "환영합니다", "ko-KR"),
           ("Arabic", "أهلا وسهلا", "ar-SA"), ("Hebrew", "ברוכים הבאים", "he-IL"), ("Hindi", "स्वागत है", "hi-IN"),
           ("Thai", "ยินดีต้อนรับ", "th-TH"), ("Russian", "Добро пожаловать", "ru-RU"), ("Greek", "Καλώς ήρθατε", "el-GR")]


def script_slide(tag, name, heading, bullets, rtl):
    pen = Pen(tag)
    align = "r" if rtl else ""
    title = Paragraph([heading], align=align, rtl=rtl)
    lines = [Paragraph([text], align=align, rtl=rtl) for text in bullets]
    label = PEN.shape("roundRect", 0.7 if rtl else 10.2, 5.6, 2.4, 0.7, name, "Label", "accent2", size=18)
    return Slide("Content", [pen.placeholder("title", [title]), pen.placeholder("", lines, 1), label],
                 notes=[Paragraph([bullets[0]], align=align, rtl=rtl, lang=tag), f"Read this slide aloud in {name}."])


PEN = Pen("en-GB")


def headings():
    """Headings broken by hand over short lines, as designers of Chinese decks do."""
    chinese = Pen("zh-CN")
    columns = [["年度", "报告"], ["市场", "与", "客户"], ["２０２５", "年"], ["第一，", "开始"]]
    shapes = [PEN.placeholder("title", "Headings on several lines")]
    for number, lines in enumerate(columns):
        shapes.append(chinese.shape("ellipse", 0.8 + 3.0 * number, 2.3, 2.6, 2.6, lines, f"Heading {number + 1}",
                                    ("accent1", "accent2", "accent4", "accent5")[number], size=28, bold=True))
    return Slide("Title only", shapes)


def greetings():
    rows = [["Language", "Greeting", "Language", "Greeting"]]
    entries = [[name, Cell(Paragraph([text], lang=tag, rtl=tag in ("ar-SA", "he-IL")))] for name, text, tag in WELCOME]
    entries.append(["Mixed", Cell(Paragraph(["Hello ", Run("世界", bold=True), " and ", Run("мир", italic=True)]))])
    for left, right in zip(entries[:5], entries[5:]):
        rows.append(left + right)
    return Slide("Title only", [PEN.placeholder("title", "Welcome in many languages"),
                                PEN.table(0.8, 1.9, [2.2, 3.6, 2.2, 3.6], 0.65, rows, "Greetings")])


def many_scripts():
    opening = Slide("Opening", [PEN.placeholder("ctrTitle", "Many scripts"),
                                PEN.placeholder("subTitle", "One morning in nine ways of writing", 1)])
    return [opening] + [script_slide(*script) for script in SCRIPTS] + [headings(), greetings()]
