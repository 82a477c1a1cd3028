// The colours of pictures, whatever draws them.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "host/graphs/picture.h"

namespace brenvolt {

struct Colour {
  std::uint32_t rgb = 0;  // 0xRRGGBB
  std::uint8_t alpha = 255;

  bool operator==(const Colour&) const = default;
};
// "#d55e00", without the alpha.
std::string ColourText(const Colour& colour);

struct Palette {
  Colour background;
  Colour text;
  Colour faintText;
  Colour grid;
  Colour bar;
  Colour barEdge;
  Colour negativeBar;
  Colour point;
  Colour reference;
  Colour region;
  Colour marker;
  std::array<Colour, 6> lines;  // which differ in pattern as well, so that they can be told apart in print
};

// Both keep to colours that the colour-blind tell apart (Okabe and Ito 2008, Color Universal Design).
const Palette& PaletteOf(PictureTheme theme);

}  // namespace brenvolt
