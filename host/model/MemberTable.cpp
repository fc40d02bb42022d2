#include "host/model/MemberTable.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <limits>

namespace quillmarch::host::model {
namespace {

constexpr std::size_t kLongestName = 32;

char16_t Lower(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

}  // namespace

bool RealOf(const Variant& value, double& out) {
  switch (value.type()) {
    case VariantType::kI2:
    case VariantType::kI4:
    case VariantType::kBool:
      out = value.whole();
      return true;
    case VariantType::kR4:
      out = static_cast<double>(value.single());
      return true;
    case VariantType::kR8:
      out = value.real();
      return true;
    default:
      return false;
  }
}

bool WholeOf(const Variant& value, std::int32_t& out) {
  double real = 0;
  if (!RealOf(value, real) || !(std::fabs(real) <= std::numeric_limits<std::int32_t>::max())) {
    return false;
  }
  out = static_cast<std::int32_t>(std::lrint(real));
  return true;
}

Variant TriState(bool value) {
  return Variant::I4(value ? -1 : 0);
}

Variant CountOf(std::size_t count) {
  return Variant::I4(static_cast<std::int32_t>(count));
}

Variant SingleOf(double value) {
  return Variant::R4(static_cast<float>(value));
}

bool Args::Whole(std::size_t index, std::int32_t otherwise, std::int32_t& out) const {
  out = otherwise;
  // A caller leaves an optional argument out, or hands an error value in its place.
  if (index >= Count() || (*this)[index].type() == VariantType::kError) return true;
  return WholeOf((*this)[index], out);
}

MemberTable::MemberTable(std::initializer_list<InterfaceId> interfaces, std::vector<Member> members)
    : interfaces_(interfaces) {
  std::vector<std::pair<Wide, Member>> sorted;
  for (const Member& member : members) {
    sorted.emplace_back(LowerAscii(member.name), member);
    assert(member.name.size() <= kLongestName);
  }
  std::sort(sorted.begin(), sorted.end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
  for (auto& [name, member] : sorted) {
    byId_.emplace_back(member.id, byName_.size());
    names_.push_back(std::move(name));
    byName_.push_back(member);
  }
  std::sort(byId_.begin(), byId_.end());
}

const Member* MemberTable::ByName(WideView name) const {
  if (name.size() > kLongestName) return nullptr;
  std::array<char16_t, kLongestName> buffer;
  std::transform(name.begin(), name.end(), buffer.begin(), Lower);
  const WideView wanted(buffer.data(), name.size());
  const auto found = std::lower_bound(names_.begin(), names_.end(), wanted);
  if (found == names_.end() || *found != wanted) return nullptr;
  return &byName_[static_cast<std::size_t>(found - names_.begin())];
}

const Member* MemberTable::ById(DispId id) const {
  const auto found = std::lower_bound(byId_.begin(), byId_.end(), std::pair(id, std::size_t{0}));
  return found == byId_.end() || found->first != id ? nullptr : &byName_[found->second];
}

bool MemberTable::AnswersTo(const InterfaceId& iid) const {
  return std::find(interfaces_.begin(), interfaces_.end(), iid) != interfaces_.end();
}

}  // namespace quillmarch::host::model
