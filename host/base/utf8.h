// Checks of text from outside.
#pragma once

#include <string_view>

namespace brenvolt {

// True when the bytes are well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates) without NUL characters.
bool IsText(std::string_view bytes);

}  // namespace brenvolt
