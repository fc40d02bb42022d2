// A user's registry in memory, which can be told to refuse.
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "foundation/seams/UserRegistry.h"

namespace quillmarch::addin::test {

class FakeRegistry final : public UserRegistry {
 public:
  Code CreateKey(WideView key) override {
    if (const Code code = Note("create", key)) return code;
    for (std::size_t at = 0; at != WideView::npos;) {
      at = key.find(u'\\', at + 1);
      keys.try_emplace(Lower(key.substr(0, at)), Key{Wide(key.substr(0, at)), {}});
    }
    return kDone;
  }
  Code PutText(WideView key, WideView name, WideView text) override {
    return Put(key, name, "\"" + ToUtf8(text) + "\"");
  }
  Code PutNumber(WideView key, WideView name, std::uint32_t number) override {
    return Put(key, name, std::to_string(number));
  }
  Code DeleteValue(WideView key, WideView name) override {
    if (const Code code = Note("delete value", key, name)) return code;
    const auto found = keys.find(Lower(key));
    if (found == keys.end() || found->second.values.erase(ToUtf8(name)) == 0) return kNotFound;
    return kDone;
  }
  Code DeleteKey(WideView key) override {
    if (const Code code = Note("delete key", key)) return code;
    if (!Exists(key)) return kNotFound;
    if (HasKeysBelow(key)) return kAccessDenied;
    keys.erase(Lower(key));
    return kDone;
  }
  Code DeleteTree(WideView key) override {
    if (const Code code = Note("delete tree", key)) return code;
    if (!Exists(key)) return kNotFound;
    const Wide path = Lower(key);
    std::erase_if(keys, [&](const auto& entry) {
      return entry.first == path || entry.first.starts_with(path + u"\\");
    });
    return kDone;
  }
  bool Exists(WideView key) override { return keys.contains(Lower(key)); }
  bool IsEmpty(WideView key) override {
    const auto found = keys.find(Lower(key));
    return found != keys.end() && found->second.values.empty() && !HasKeysBelow(key);
  }

  // "KEY" for each key and "KEY : NAME = VALUE" for each value, in order.
  std::vector<std::string> Listing() const {
    std::vector<std::string> lines;
    for (const auto& [path, key] : keys) {
      lines.push_back(ToUtf8(key.name));
      for (const auto& [name, value] : key.values) {
        lines.push_back(ToUtf8(key.name) + " : " + name + " = " + value);
      }
    }
    return lines;
  }
  // A value as Listing shows it; empty when there is none.
  std::string Value(WideView key, const std::string& name) const {
    const auto found = keys.find(Lower(key));
    if (found == keys.end()) return {};
    const auto value = found->second.values.find(name);
    return value == found->second.values.end() ? std::string() : value->second;
  }

  struct Key {
    Wide name;
    std::map<std::string, std::string> values;
  };
  std::map<Wide, Key> keys;             // by path in lower case
  std::vector<std::string> calls;       // changes asked for, in order
  std::map<std::string, Code> refuses;  // by call

 private:
  static Wide Lower(WideView key) { return LowerAscii(key); }
  bool HasKeysBelow(WideView key) const {
    const Wide prefix = Lower(key) + u"\\";
    const auto next = keys.lower_bound(prefix);
    return next != keys.end() && next->first.starts_with(prefix);
  }
  Code Put(WideView key, WideView name, std::string value) {
    if (const Code code = Note("put", key, name)) return code;
    const auto found = keys.find(Lower(key));
    if (found == keys.end()) return kNotFound;
    found->second.values[ToUtf8(name)] = std::move(value);
    return kDone;
  }
  Code Note(const std::string& what, WideView key, WideView name = {}) {
    std::string call = what + " " + ToUtf8(key);
    if (!name.empty()) call += " : " + ToUtf8(name);
    calls.push_back(call);
    const auto refused = refuses.find(call);
    return refused == refuses.end() ? kDone : refused->second;
  }
};

}  // namespace quillmarch::addin::test
