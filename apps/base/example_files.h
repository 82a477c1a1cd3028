// The data that the examples of the help read.
#pragma once

#include <string>

namespace brenvolt {

// Where the data are installed, the paths in the text name them there, so that an example runs in any folder. In a tree
// that was built but not installed the text stays as it is.
std::string WithInstalledExamples(std::string text);

}  // namespace brenvolt
