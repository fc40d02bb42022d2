"""An ordinary business deck: title, bullets, table, diagram of groups, cards, notes."""
from drawing import Break, Cell, Field, Paragraph, Pen, Run
from package import Slide

PEN = Pen("en-GB")
FOOTER = "Harbour and Field Logistics"


def small(number):
    return [PEN.placeholder("ftr", FOOTER, 11, name="Footer"),
            PEN.placeholder("sldNum", [Paragraph([Field("slidenum", str(number))])], 12, name="Slide number")]


def opening():
    return Slide("Opening", [
        PEN.placeholder("ctrTitle", "Quarterly review"),
        PEN.placeholder("subTitle", ["Results of the third quarter and plans for the winter",
                                     Paragraph([Run("Harbour and Field Logistics", italic=True)])], 1),
    ], notes=["Welcome everybody and thank the team for the work of the last three months.",
              "The meeting takes forty minutes. Keep ten minutes for questions."])


def achievements():
    return Slide("Content", [
        PEN.placeholder("title", "What we achieved"),
        PEN.placeholder("", [
            Paragraph([Run("Orders grew by 12 percent", bold=True), " compared with last year"]),
            Paragraph(["The new warehouse opened two weeks early"], 1),
            Paragraph(["Nine out of ten orders leave on the same day"], 1),
            Paragraph(["Customers wait less"]),
            Paragraph(["The average delivery takes 2.4 days"], 1),
            Paragraph(["Complaints are down by a third"], 1),
            Paragraph(["We spend less fuel for each parcel", Break(), "and plan to save more in winter"]),
        ], 1),
    ] + small(2), notes=["Mention that the warehouse was finished without extra cost.",
                         "If somebody asks: fuel fell from 0.42 to 0.37 litres for each parcel."])


def results():
    rows = [
        ["Region", "Orders", "Revenue", "Change", "Comment"],
        ["North", "18,420", "€ 2.1 m", "+9 %", "Strong demand from small shops"],
        ["South", "24,075", "€ 3.4 m", "+17 %", "New customers in the harbour towns"],
        ["East", "11,310", "€ 1.2 m", "−4 %", "Road works closed the main route"],
        ["West", "15,880", "€ 1.9 m", "+11 %", "Better prices for long contracts"],
        [Cell("All regions", bold=True), Cell("69,685", bold=True), Cell("€ 8.6 m", bold=True),
         Cell("+12 %", bold=True), Cell("Best quarter so far", bold=True)],
    ]
    return Slide("Title only", [
        PEN.placeholder("title", "Results by region"),
        PEN.table(0.8, 1.85, [2.2, 1.5, 1.6, 1.4, 5.0], 0.62, rows, "Results", (1, 2, 3)),
        PEN.text(0.8, 5.95, 11.7, 0.5, [Paragraph([Run("Orders and revenue of July, August and September.",
                                                    italic=True)])], "Source", 14, "accent5"),
    ] + small(3), notes=["The east is the only region that lost orders. The road opens again in November."])


def journey():
    steps = [("Order", "The customer chooses a time", "accent1"), ("Pack", "We collect the goods", "accent2"),
             ("Drive", "One van, one district", "accent3"), ("Deliver", "The neighbour may sign", "accent4")]
    chain = []
    for number, (name, caption, paint) in enumerate(steps):
        x = 0.8 + number * 2.97
        chain.append(PEN.group(x, 2.5, 2.85, 2.55, [
            PEN.shape("homePlate", x, 2.5, 2.85, 1.05, name, f"{name} arrow", paint, size=22, bold=True),
            PEN.text(x, 3.7, 2.7, 1.0, caption, f"{name} caption", 17, "tx1", "ctr"),
        ], f"{name} step"))
    return Slide("Title only", [
        PEN.placeholder("title", "How an order travels"),
        PEN.group(0.8, 2.5, 11.76, 2.55, chain, "Journey"),
        PEN.shape("roundRect", 3.3, 5.3, 6.7, 0.85, "Every step is visible to the customer", "Promise", "accent6",
                  "bg2", 20, "tx2"),
    ] + small(4), notes=["Tell the story of one parcel, from the first click to the door."])


def risks():
    cards = [("Winter weather", "Snow may close two mountain roads. We rent storage in the valley.", "accent1"),
             ("Energy prices", "Electricity is fixed until March. Fuel is not.", "accent3"),
             ("People", "We look for twelve drivers. Training starts in October.", "accent2")]
    shapes = [PEN.placeholder("title", "Risks and what we do about them")]
    for number, (name, text, paint) in enumerate(cards):
        x = 0.8 + number * 3.97
        shapes.append(PEN.group(x, 1.95, 3.75, 3.7, [
            PEN.shape("rect", x, 1.95, 3.75, 3.7, name=f"{name} card", paint="accent6", edge="bg2"),
            PEN.shape("rect", x, 1.95, 3.75, 0.75, name, f"{name} title", paint, size=20, bold=True),
            PEN.text(x + 0.1, 2.9, 3.55, 2.6, text, f"{name} text", 18),
        ], name))
    return Slide("Title only", shapes + small(5),
                 notes=["Nobody has to decide today. We come back to the roads in the next meeting."])


def next_steps():
    return Slide("Content", [
        PEN.placeholder("title", "Next steps"),
        PEN.placeholder("", [
            Paragraph(["Sign the contract for the new vans before the end of the month"], bullet="number"),
            Paragraph(["Start the training of the new drivers"], bullet="number"),
            Paragraph(["Test the evening delivery in the south"], bullet="number"),
            Paragraph(["Read more in ", Run("the full report", link="rIdReport"), "."], bullet="none"),
        ], 1, (0.7, 1.75, 7.4, 4.6)),
        PEN.shape("wedgeRoundRectCallout", 8.7, 2.2, 3.8, 2.0,
                  ["Thank you!", Paragraph([Run("Questions are welcome", size=18)])], "Thanks", "accent2", size=28,
                  bold=True),
    ] + small(6), notes=["End with the date of the next meeting: the 14th of January."],
        links={"rIdReport": "https://example.com/report"})


def quarterly_review():
    return [opening(), achievements(), results(), journey(), risks(), next_steps()]
