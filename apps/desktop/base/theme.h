// The colours of the window.
#pragma once

namespace brenvolt::desktop {

enum class ThemeChoice { kSystem, kLight, kDark };

// Gives the application the colours of a theme.
void ApplyTheme(ThemeChoice theme);

}  // namespace brenvolt::desktop
