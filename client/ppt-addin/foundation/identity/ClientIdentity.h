// Who is asking: installation, operating system, host and add-in version, as the two JSON documents
// that go to the service and to the panel. Nothing is cached. Any thread; no function fails.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch {

Wide OsDescription();
Wide InstallId();
Wide ClientVersion();
// For a program without a version.json: its version, before the first request.
void ReplaceClientVersion(Wide version);
Wide ReadVersionFile(WideView directory);
Wide ReadUtf8File(WideView path);
Wide ClientContextJson();
Wide ClientInfoJson();
Wide ModuleDirectory();

}  // namespace quillmarch
