// The object that a remote program meets first: it opens decks in headless hosts, one host after
// the other, saves them and says what the hosts were asked. Host thread only.
//
//   Open(path, personality)   a new host with the deck; gives its application, or null: see Error
//   OpenToo(path)             one more deck in that host, in the active window; true when it opened
//   Error                     the sentence of the last failure
//   Save(path)                true when the deck was saved
//   Close                     releases the host; objects handed out stay valid
//   ShowSlide(index)          shows a slide in the active window
//   SelectShape(slide, index) selects a shape of a slide; both count from 1
//   Edited                    whether the deck was changed
//   Invokes, NameLookups      calls of all hosts so far
//   Jumps                     of the invokes, those that brought a slide to view
//   LiveReferences            what the remote program holds, this object's own reference included
//   FailCall(number, code[, more])
//                             of the calls from now on, the one of that number fails, and as many
//                             more after it
//   Refuse(names, types)      no name is found; no published interface is answered to
#pragma once

#include "foundation/automation/AutomationObject.h"
#include "host/remote/ObjectServer.h"

namespace quillmarch::host {

// `server` outlives the object.
ObjectRef MakeRemoteControl(ObjectServer& server);

}  // namespace quillmarch::host
