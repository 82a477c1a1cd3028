// What the process's standard streams are connected to.
#pragma once

namespace brenvolt {

bool IsStandardErrorTerminal();

}  // namespace brenvolt
