// From a path back to the shape. There is no fallback by name or id: a shape that is not at its
// path is not found. Host thread only; kFail for every failure.
#pragma once

#include "foundation/automation/Automation.h"
#include "run/document/ShapePath.h"

namespace quillmarch::addin {

ResultCode ResolveShape(AutomationObject* slides, std::int32_t slideIndex, const StoredPath& path,
                        ObjectRef& shape);
// The same on the slide's notes page.
ResultCode ResolveNotesShape(AutomationObject* slides, std::int32_t slideIndex,
                             const StoredPath& path, ObjectRef& shape);

}  // namespace quillmarch::addin
