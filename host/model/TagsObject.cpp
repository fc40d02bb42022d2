#include "foundation/automation/HostMembers.h"
#include "host/model/Objects.h"

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

ResultCode TagsObject::Count(Args, Variant& out) {
  out = Variant::I4(static_cast<std::int32_t>(deck::ReadTags(deck(), owner_).size()));
  return kOk;
}

ResultCode TagsObject::Item(Args args, Variant& out) {
  if (args.Count() != 1) return kBadParamCount;
  if (args[0].type() != VariantType::kText) return kTypeMismatch;
  const Wide wanted = UpperName(args[0].text());
  // An unknown name is no failure: it reads as the empty text.
  Wide value;
  for (deck::Tag& tag : deck::ReadTags(deck(), owner_)) {
    if (UpperName(tag.name) == wanted) {
      value = std::move(tag.value);
      break;
    }
  }
  out = Variant::Text(std::move(value));
  return kOk;
}

ResultCode TagsObject::Add(Args args, Variant&) {
  if (args.Count() != 2) return kBadParamCount;
  if (args[0].type() != VariantType::kText || args[1].type() != VariantType::kText) {
    return kTypeMismatch;
  }
  return deck::PutTag(deck(), owner_, args[0].text(), args[1].text()) ? kOk : kHostException;
}

ResultCode TagsObject::Name(Args args, Variant& out) {
  const std::vector<deck::Tag> tags = deck::ReadTags(deck(), owner_);
  const deck::Tag* const tag = TagAt(tags, args);
  if (tag == nullptr) return kHostException;
  out = Variant::Text(UpperName(tag->name));
  return kOk;
}

ResultCode TagsObject::Value(Args args, Variant& out) {
  const std::vector<deck::Tag> tags = deck::ReadTags(deck(), owner_);
  const deck::Tag* const tag = TagAt(tags, args);
  if (tag == nullptr) return kHostException;
  out = Variant::Text(tag->value);
  return kOk;
}

const MemberTable& TagsObject::Table() const {
  using Self = TagsObject;
  static const MemberTable table({ppt::kTags}, {{u"Item", 0, Getter<&Self::Item>::Call},
                                                {u"Count", 11, Getter<&Self::Count>::Call},
                                                {u"Add", 2003, Getter<&Self::Add>::Call},
                                                {u"Name", 2007, Getter<&Self::Name>::Call},
                                                {u"Value", 2008, Getter<&Self::Value>::Call}});
  return table;
}

}  // namespace quillmarch::host::model
