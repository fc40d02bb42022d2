// Every pane of the process that is alive.
#pragma once

#include <memory>
#include <vector>

#include "foundation/text/Wide.h"

namespace quillmarch::addin {

class CPptPane;

// Any thread. A pane that is listed already is not listed twice.
void EnterLivePane(CPptPane* pane, std::weak_ptr<CPptPane> owner);
void LeaveLivePane(const CPptPane* pane);

// The panes as they are now, in the order of entering. Nothing is held while they are used.
std::vector<std::shared_ptr<CPptPane>> LivePanes();

// Tells every page which language the add-in speaks now. `lang` is a normalised tag. Host thread.
void BroadcastUiLangChanged(const Wide& lang);

}  // namespace quillmarch::addin
