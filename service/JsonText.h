// JSON as the service writes it: for readers that search the text for a key instead of parsing it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillmarch::service {

// Appends `text` as a JSON string with its quotes. Non-ASCII stays raw UTF-8. Control characters
// other than tab, line feed and carriage return go out as \u00xx and never as \b or \f: the
// add-in's reader takes those for plain letters.
void AppendJsonString(std::string& out, std::string_view text);

void AppendJsonStrings(std::string& out, const std::vector<std::string>& texts);

// {"code":...,"message":...}, and "cause" where there is one.
std::string ErrorJson(std::string_view code, std::string_view message, std::string_view cause = {});

}  // namespace quillmarch::service
