// The address of a shape: 1-based indexes in z-order, the first into the slide's or the notes
// page's Shapes, each further one into the GroupItems of the shape reached so far. It outlives the
// host's objects, which do not survive from collection to writeback. Plain data; any thread.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "foundation/text/Wide.h"

namespace quillmarch::addin {

inline constexpr std::int32_t kMaxPathDepth = 32;

// The form while walking.
struct ShapePath {
  std::array<std::int32_t, kMaxPathDepth> slots{};
  std::int32_t depth = 0;
};

// The form kept in a locator, at most kMaxPathDepth long.
using StoredPath = std::vector<std::int32_t>;

// Appends; at kMaxPathDepth nothing changes.
void AppendIndex(ShapePath& path, std::int32_t index);

// The parent's path with `index` behind it, checked after it was made.
ShapePath ChildPath(const ShapePath& parent, std::int32_t index);
// The check of a child's path once more, before its shape is handed on as a leaf.
void CheckLeafPath(ShapePath& path, const ShapePath& parent, std::int32_t index);

// "shapes" and each index in square brackets; a depth out of range is clamped.
Wide PathText(const ShapePath& path);
Wide PathText(const StoredPath& path);

StoredPath Stored(const ShapePath& path);

}  // namespace quillmarch::addin
