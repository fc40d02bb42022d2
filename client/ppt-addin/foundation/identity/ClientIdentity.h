// Who is asking: installation, operating system, host and add-in version, as the two JSON documents
// that go to the service and to the panel. Nothing is cached: each call reads the system, the
// registry or the file again. Any thread; no function fails.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch {

// Name, machine and version of the operating system; without the version when it cannot be read.
Wide OsDescription();

// The id of this installation, made and stored at the first call. Where nothing can be stored, each
// call gives a new one; never empty.
Wide InstallId();

// The add-in's version from version.json; the built-in default when it names none.
Wide ClientVersion();

// For a program without a version.json: its version, before the first request.
void ReplaceClientVersion(Wide version);

// The text of version.json in a module's directory; a 32-bit module in a subfolder "x86" shares the
// file above it. Empty when there is no such file.
Wide ReadVersionFile(WideView directory);

// A whole file as text, without its byte order mark. Empty when it cannot be read; bytes that are
// not UTF-8 become U+FFFD.
Wide ReadUtf8File(WideView path);

// The JSON object for the service, and the one for the panel.
Wide ClientContextJson();
Wide ClientInfoJson();

// The folder of the add-in's module; empty when the system does not say.
Wide ModuleDirectory();

}  // namespace quillmarch
