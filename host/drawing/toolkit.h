// The one application object that the toolkit needs in a process.
#pragma once

namespace brenvolt {

// Makes it where there is none. It draws without a screen.
void RequireToolkit();

}  // namespace brenvolt
