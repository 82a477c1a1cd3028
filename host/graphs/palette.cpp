#include "host/graphs/palette.h"

namespace brenvolt {
namespace {

constexpr Palette kLight{.background = {0xFFFFFF},
                         .text = {0x222222},
                         .faintText = {0x666666},
                         .grid = {0xE4E4E4},
                         .bar = {0xBFD7EA},
                         .barEdge = {0x6F9BBF},
                         .negativeBar = {0xE8C088},
                         .point = {0x0072B2, 130},
                         .reference = {0x777777},
                         .region = {0xD55E00, 38},
                         .marker = {0xA03000},
                         .lines = {{{0xD55E00}, {0x0072B2}, {0x009E73}, {0xA8558A}, {0x8A6D00}, {0x222222}}}};

constexpr Palette kDark{.background = {0x1B1E23},
                        .text = {0xE8E8E8},
                        .faintText = {0xA8ADB5},
                        .grid = {0x343A43},
                        .bar = {0x3E5F7C},
                        .barEdge = {0x6F9BBF},
                        .negativeBar = {0x8A6536},
                        .point = {0x56B4E9, 150},
                        .reference = {0xA8ADB5},
                        .region = {0xF08030, 50},
                        .marker = {0xFF9A5C},
                        .lines = {{{0xFF8C42}, {0x56B4E9}, {0x35C79A}, {0xE39CC9}, {0xF0E442}, {0xE8E8E8}}}};

}  // namespace

std::string ColourText(const Colour& colour) {
  constexpr char kDigits[] = "0123456789abcdef";
  constexpr int kDigitBits = 4;
  std::string text = "#";
  for (int shift = 20; shift >= 0; shift -= kDigitBits) text += kDigits[(colour.rgb >> shift) & 0xF];
  return text;
}

const Palette& PaletteOf(PictureTheme theme) {
  return theme == PictureTheme::kDark ? kDark : kLight;
}

}  // namespace brenvolt
