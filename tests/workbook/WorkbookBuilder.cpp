#include "workbook/WorkbookBuilder.h"

#include "package/zip/ZipBuilder.h"

namespace quillmarch::host::workbook {
namespace {

const std::string kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n";
const std::string kContent = "application/vnd.openxmlformats-officedocument.spreadsheetml.";

BuiltEntry Entry(std::string name, std::string content) {
  return {.name = std::move(name), .content = std::move(content)};
}

}  // namespace

std::string BuiltWorkbook::Bytes() const {
  const std::string space = strict ? "http://purl.oclc.org/ooxml/spreadsheetml/main"
                                   : "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
  const std::string links =
      strict ? "http://purl.oclc.org/ooxml/officeDocument/relationships"
             : "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
  const std::string spaces = " xmlns=\"" + space + "\" xmlns:r=\"" + links + "\"";
  const std::string package =
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
  const auto link = [&](const std::string& id, const std::string& kind, const std::string& target) {
    return "<Relationship Id=\"" + id + "\" Type=\"" + links + "/" + kind + "\" Target=\"" +
           target + "\"/>";
  };
  const auto over = [&](const std::string& part, const std::string& kind) {
    return "<Override PartName=\"/" + part + "\" ContentType=\"" + kind + "\"/>";
  };

  std::string types =
      "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
      "<Default Extension=\"rels\" "
      "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
      "<Default Extension=\"xml\" ContentType=\"application/xml\"/>" +
      over("xl/workbook.xml", type) + over("xl/styles.xml", kContent + "styles+xml") +
      over("xl/sharedStrings.xml", kContent + "sharedStrings+xml");
  std::string list;
  std::string relationships =
      link("s", "styles", "styles.xml") + link("t", "sharedStrings", "sharedStrings.xml");
  std::vector<BuiltEntry> parts;
  int table = 0;
  for (std::size_t i = 0; i < sheets.size(); ++i) {
    const BuiltSheet& sheet = sheets[i];
    const std::string number = std::to_string(i + 1);
    const std::string part = "xl/worksheets/sheet" + number + ".xml";
    list += "<sheet name=\"" + sheet.name + "\" sheetId=\"" + number + "\" " + sheet.attributes +
            " r:id=\"rId" + number + "\"/>";
    relationships += link("rId" + number, "worksheet", "worksheets/sheet" + number + ".xml");
    types += over(part, kContent + "worksheet+xml");
    std::string tableParts;
    std::string tableLinks;
    for (const std::string& content : sheet.tables) {
      const std::string name = "table" + std::to_string(++table) + ".xml";
      tableParts += "<tablePart r:id=\"" + name + "\"/>";
      tableLinks += link(name, "table", "../tables/" + name);
      types += over("xl/tables/" + name, kContent + "table+xml");
      parts.push_back(Entry("xl/tables/" + name, content));
    }
    if (!sheet.tables.empty()) {
      tableParts = "<tableParts count=\"" + std::to_string(sheet.tables.size()) + "\">" +
                   tableParts + "</tableParts>";
      parts.push_back(Entry("xl/worksheets/_rels/sheet" + number + ".xml.rels",
                            kHead + package + tableLinks + "</Relationships>"));
    }
    parts.push_back(Entry(part, kHead + "<worksheet" + spaces + ">" + sheet.before + "<sheetData>" +
                                    sheet.rows + "</sheetData>" + sheet.after + tableParts +
                                    "</worksheet>"));
  }
  const std::string nameList = names.empty() ? names : "<definedNames>" + names + "</definedNames>";
  parts.insert(
      parts.begin(),
      {Entry("[Content_Types].xml", kHead + types + "</Types>"),
       Entry("_rels/.rels",
             kHead + package + link("w", "officeDocument", "xl/workbook.xml") + "</Relationships>"),
       Entry("xl/workbook.xml", kHead + "<workbook" + spaces + "><workbookPr " + properties +
                                    "/><sheets>" + list + "</sheets>" + nameList + "</workbook>"),
       Entry("xl/_rels/workbook.xml.rels", kHead + package + relationships + "</Relationships>"),
       Entry("xl/sharedStrings.xml", kHead + "<sst" + spaces + ">" + sharedStrings + "</sst>"),
       Entry("xl/styles.xml",
             kHead + "<styleSheet" + spaces + "><numFmts>" + numberFormats +
                 "</numFmts><fonts count=\"1\"><font/></fonts><fills count=\"1\"><fill/></fills>"
                 "<borders count=\"1\"><border/></borders><cellStyleXfs count=\"1\"><xf "
                 "numFmtId=\"9\"/></cellStyleXfs>"
                 "<cellXfs><xf numFmtId=\"0\"/>" +
                 cellFormats + "</cellXfs></styleSheet>")});
  for (const auto& [name, content] : more) parts.push_back(Entry(name, content));
  return BuildZip(parts);
}

BuiltWorkbook OneSheet(std::string rows) {
  BuiltWorkbook built;
  built.sheets.push_back({"Sheet1", std::move(rows)});
  return built;
}

std::string TextCell(const std::string& place, const std::string& text) {
  return "<c r=\"" + place + "\" t=\"inlineStr\"><is><t>" + text + "</t></is></c>";
}

std::string NumberCell(const std::string& place, const std::string& number, int style) {
  return "<c r=\"" + place + "\" s=\"" + std::to_string(style) + "\"><v>" + number + "</v></c>";
}

}  // namespace quillmarch::host::workbook
