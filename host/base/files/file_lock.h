// A lock on an open file, by which processes agree on who owns the file.
#pragma once

namespace brenvolt {

// Locks the file of a descriptor for whoever opened it. False if another one, also of this process, has locked it. The
// lock ends when the descriptor is closed, also by the end of the process, however that comes about. File systems
// without locks lock nothing and answer true.
bool LockOpenFile(int descriptor);

}  // namespace brenvolt
