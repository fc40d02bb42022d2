// Which host the add-in runs in.
#pragma once

#include "foundation/automation/AutomationObject.h"
#include "foundation/text/Wide.h"

namespace quillmarch {

// Process-wide; written once on the host thread at connection, read from any thread after that.
struct HostKind {
  Wide word = u"word";  // "ppt" or "wps" once DetectHost has run
  Wide name;            // Application.Name
  Wide version;         // Application.Version
};

const Wide& HostWord();
const Wide& HostName();
const Wide& HostVersion();

// Reads name and version late-bound. Cannot fail.
void DetectHost(AutomationObject* application);
bool IsWpsHost();
// The one test for every difference between WPS and PowerPoint in the shell.
bool IsWpsProcess();

// ---- The rules themselves, pure --------------------------------------------------------------

// Whether a process image's file name is one of the WPS programs, in any case.
bool IsWpsImage(WideView imageName);
// What DetectHost stores for an application of this name and version in a process of this image.
// `startWord` is the word of a host that is not WPS.
HostKind IdentifyHost(WideView startWord, Wide name, Wide version, WideView imageName);

}  // namespace quillmarch
