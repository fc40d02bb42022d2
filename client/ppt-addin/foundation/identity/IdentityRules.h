// The rules behind the client's identity, with the system's answers passed in. Pure.
#pragma once

#include <cstdint>

#include "foundation/automation/HostId.h"
#include "foundation/system/SystemIdentity.h"
#include "foundation/text/Wide.h"

namespace quillmarch {

// The first of the two readers that answers gives the version; if neither does, the text ends
// after the machine word.
Wide DescribeOs(WideView system, WideView machine, bool (*real)(OsVersion&),
                bool (*shown)(OsVersion&));

// The GUID in lower case without braces; null: "local-" and the tick count.
Wide NewInstallId(const Guid* guid, std::uint64_t tick);

// `versionFile` is the text of version.json, empty when there is none.
Wide VersionOf(WideView versionFile);
Wide ContextJson(WideView installId, WideView os, const HostKind& host, WideView version);
Wide InfoJson(WideView versionFile, WideView os, WideView installId, const HostKind& host);

}  // namespace quillmarch
