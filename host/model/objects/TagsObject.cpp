#include "host/model/objects/TagsObject.h"

#include <vector>

#include "foundation/automation/HostMembers.h"

namespace quillmarch::host::model {
namespace {

// Hosts keep the names of tags in upper case and compare them so.
Wide UpperName(WideView name) {
  Wide upper(name);
  for (char16_t& unit : upper) {
    if (unit >= u'a' && unit <= u'z') unit = static_cast<char16_t>(unit - u'a' + u'A');
  }
  return upper;
}

// The 1-based tag that the one argument names; null when there is none.
const deck::Tag* TagAt(const std::vector<deck::Tag>& tags, Args args) {
  std::int32_t index = 0;
  if (args.Count() != 1 || !args.Whole(0, 0, index)) return nullptr;
  if (index < 1 || static_cast<std::size_t>(index) > tags.size()) return nullptr;
  return &tags[static_cast<std::size_t>(index) - 1];
}

}  // namespace

Answer TagsObject::Item(Args args) const {
  if (args.Count() != 1) return kBadParamCount;
  if (args[0].type() != VariantType::kText) return kTypeMismatch;
  const Wide wanted = UpperName(args[0].text());
  // An unknown name is not a failure: it reads as the empty text.
  Wide value;
  for (deck::Tag& tag : deck::ReadTags(deck(), owner_)) {
    if (UpperName(tag.name) == wanted) {
      value = std::move(tag.value);
      break;
    }
  }
  return value;
}

ResultCode TagsObject::Add(Args args) const {
  if (args.Count() != 2) return kBadParamCount;
  if (args[0].type() != VariantType::kText || args[1].type() != VariantType::kText) {
    return kTypeMismatch;
  }
  return deck::PutTag(deck(), owner_, args[0].text(), args[1].text()) ? kOk : kHostException;
}

Answer TagsObject::Name(Args args) const {
  const std::vector<deck::Tag> tags = deck::ReadTags(deck(), owner_);
  const deck::Tag* const tag = TagAt(tags, args);
  if (tag == nullptr) return kHostException;
  return UpperName(tag->name);
}

Answer TagsObject::Value(Args args) const {
  const std::vector<deck::Tag> tags = deck::ReadTags(deck(), owner_);
  const deck::Tag* const tag = TagAt(tags, args);
  if (tag == nullptr) return kHostException;
  return tag->value;
}

const MemberTable& TagsObject::Table() const {
  using Self = TagsObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kTags},
      {{u"Item", 0, [](Self& self, Args args) { return self.Item(args); }},
       {u"Count", 11,
        [](Self& self) { return CountOf(deck::ReadTags(self.deck(), self.owner_).size()); }},
       {u"Add", 2003, [](Self& self, Args args) { return self.Add(args); }},
       {u"Name", 2007, [](Self& self, Args args) { return self.Name(args); }},
       {u"Value", 2008, [](Self& self, Args args) { return self.Value(args); }}});
  return table;
}

}  // namespace quillmarch::host::model
