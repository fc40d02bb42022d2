#include "run/document/ShapePath.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "foundation/log/Log.h"

namespace quillmarch::addin {

namespace {

std::span<const std::int32_t> UsedSlots(const ShapePath& path) {
  const std::int32_t depth = std::clamp(path.depth, std::int32_t{0}, kMaxPathDepth);
  return {path.slots.data(), static_cast<std::size_t>(depth)};
}

Wide TextOf(std::span<const std::int32_t> indexes) {
  Wide text = u"shapes";
  for (const std::int32_t index : indexes) {
    text += u'[';
    text += Decimal(index);
    text += u']';
  }
  return text;
}

bool EndsIn(const ShapePath& path, const ShapePath& parent, std::int32_t index) {
  return path.depth == parent.depth + 1 && path.depth >= 1 && path.depth <= kMaxPathDepth &&
         path.slots[static_cast<std::size_t>(path.depth - 1)] == index;
}

void Rebuild(ShapePath& path, const ShapePath& parent, std::int32_t index) {
  path = parent;
  AppendIndex(path, index);
}

}  // namespace

void AppendIndex(ShapePath& path, std::int32_t index) {
  if (path.depth < 0 || path.depth >= kMaxPathDepth) return;
  path.slots[static_cast<std::size_t>(path.depth)] = index;
  ++path.depth;
}

ShapePath ChildPath(const ShapePath& parent, std::int32_t index) {
  ShapePath path = parent;
  AppendIndex(path, index);
  // Guards the fixed array; a sound walk never gets in here.
  if (!EndsIn(path, parent, index)) {
    Rebuild(path, parent, index);
    LogLine(u"PptCtrl shape path rebuilt index=" + Decimal(index) + u" depth=" +
            Decimal(path.depth));
  }
  return path;
}

void CheckLeafPath(ShapePath& path, const ShapePath& parent, std::int32_t index) {
  // The group test may have run in between, so the array is looked at again.
  if (EndsIn(path, parent, index)) return;
  Rebuild(path, parent, index);
  LogLine(u"PptCtrl shape path rebuilt before leaf index=" + Decimal(index));
}

Wide PathText(const ShapePath& path) {
  return TextOf(UsedSlots(path));
}
Wide PathText(const StoredPath& path) {
  return TextOf(path);
}

StoredPath Stored(const ShapePath& path) {
  const auto used = UsedSlots(path);
  return StoredPath(used.begin(), used.end());
}

}  // namespace quillmarch::addin
