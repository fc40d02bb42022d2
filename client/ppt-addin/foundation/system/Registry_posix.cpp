#include <vector>

#include "foundation/system/Files.h"
#include "foundation/system/KnownFolders.h"
#include "foundation/system/Registry.h"

namespace quillmarch {

// The file holds one value a line, in UTF-8: key, name, type and data, separated by tabs. Key and
// name compare without regard to the case of ASCII letters, as registry names do.

namespace {

constexpr WideView kFileName = u"registry.txt";
constexpr WideView kTextType = u"text";
constexpr WideView kNumberType = u"number";

struct Value {
  Wide key;
  Wide name;
  Wide type;
  Wide data;
};

// A tab or a line end inside a field would part it.
Wide EscapeField(WideView field) {
  Wide out;
  for (const char16_t unit : field) {
    if (unit == u'\\') {
      out += u"\\\\";
    } else if (unit == u'\t') {
      out += u"\\t";
    } else if (unit == u'\n') {
      out += u"\\n";
    } else {
      out += unit;
    }
  }
  return out;
}

Wide UnescapeField(WideView field) {
  Wide out;
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] != u'\\' || i + 1 == field.size()) {
      out += field[i];
      continue;
    }
    ++i;
    out += field[i] == u't' ? u'\t' : field[i] == u'n' ? u'\n' : field[i];
  }
  return out;
}

bool ParseLine(WideView line, Value& value) {
  Wide* const fields[] = {&value.key, &value.name, &value.type, &value.data};
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t end = i < 3 ? line.find(u'\t') : line.size();
    if (end == WideView::npos) return false;
    *fields[i] = UnescapeField(line.substr(0, end));
    line.remove_prefix(i < 3 ? end + 1 : end);
  }
  return true;
}

Wide RegistryPath() {
  const Wide folder = GetUserDataDir();
  return folder.empty() ? Wide() : JoinPath(folder, kFileName);
}

std::vector<Value> ReadValues(const Wide& path) {
  std::vector<Value> values;
  std::string bytes;
  if (path.empty() || !ReadWholeFile(path, bytes)) return values;
  const Wide text = ToWide(bytes);
  WideView rest = text;
  while (!rest.empty()) {
    const std::size_t end = rest.find(u'\n');
    Value value;
    if (ParseLine(rest.substr(0, end), value)) values.push_back(std::move(value));
    rest.remove_prefix(end == WideView::npos ? rest.size() : end + 1);
  }
  return values;
}

bool IsNamed(const Value& value, WideView key, WideView name) {
  return LowerAscii(value.key) == LowerAscii(key) && LowerAscii(value.name) == LowerAscii(name);
}

bool WriteValue(Value value) {
  const Wide path = RegistryPath();
  if (path.empty() || !CreateFolder(ParentPath(path))) return false;
  std::vector<Value> values = ReadValues(path);
  std::erase_if(values, [&](const Value& old) { return IsNamed(old, value.key, value.name); });
  values.push_back(std::move(value));
  Wide text;
  for (const Value& v : values) {
    text += EscapeField(v.key) + u'\t' + EscapeField(v.name) + u'\t' + EscapeField(v.type) + u'\t' +
            EscapeField(v.data) + u'\n';
  }
  return ReplaceWholeFile(path, ToUtf8(text));
}

}  // namespace

bool ReadUserText(WideView key, WideView name, std::size_t maxBytes, Wide& text) {
  text.clear();
  for (Value& value : ReadValues(RegistryPath())) {
    if (!IsNamed(value, key, name)) continue;
    if (value.type != kTextType) return false;
    if ((value.data.size() + 1) * sizeof(char16_t) > maxBytes) return false;
    text = std::move(value.data);
    return true;
  }
  return false;
}

bool WriteUserText(WideView key, WideView name, WideView text) {
  return WriteValue({Wide(key), Wide(name), Wide(kTextType), Wide(text)});
}

bool WriteUserNumber(WideView key, WideView name, std::uint32_t number) {
  return WriteValue({Wide(key), Wide(name), Wide(kNumberType), DecimalUnsigned(number)});
}

}  // namespace quillmarch
