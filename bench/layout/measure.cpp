// Measures the frames that frames.py writes, one JSON object a line from standard input to
// standard output: lines, height and width of the text; of each line its first unit and its left
// end, base line and width; and the font names that nothing installed stands for.
#include <iostream>
#include <set>
#include <string>

#include "bench/layout/RecordText.h"
#include "host/layout/LayoutEngine.h"

int main() {
  using namespace quillmarch::host;
  layout::LayoutEngine layout;
  std::string text;
  while (std::getline(std::cin, text)) {
    nlohmann::json record = nlohmann::json::parse(text);
    layout::LayoutFrame frame = FrameOf(record);
    layout::LayoutResult laid = layout.LayOut(frame);
    nlohmann::json answer;
    answer["id"] = record["id"];
    answer["lines"] = laid.lines.size();
    answer["height"] = laid.height;
    answer["width"] = laid.width;
    answer["starts"] = nlohmann::json::array();
    answer["places"] = nlohmann::json::array();
    for (const layout::LaidLine& line : laid.lines) {
      answer["starts"].push_back(line.start);
      answer["places"].push_back({line.left, line.top + line.ascent, line.width});
    }
    std::set<std::string> missing;
    for (const nlohmann::json& font : record["fonts"]) {
      if (!layout.HasFont(font)) missing.insert(font.get<std::string>());
    }
    answer["missing"] = missing;
    std::cout << answer.dump() << "\n";
  }
  return 0;
}
