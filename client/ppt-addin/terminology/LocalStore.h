// Where a user's own glossaries and instructions lie: one ".json" file each, which the add-in reads
// and never writes. Any thread.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch::addin {

// The store's root, made where it is missing; empty when the system names no folder for it.
Wide StoreRoot();

// The two folders of files. Each call makes sure that they exist, as far as that can be had.
Wide GlossaryFolder();
Wide InstructionFolder();

// The folder of one kind below a root, and the folder that holds it. An empty root leaves them at
// the root of the drive, and no check stops that.
struct StoreFolder {
  Wide kind;
  Wide files;
};
StoreFolder FolderBelow(const Wide& root, WideView kind);

}  // namespace quillmarch::addin
