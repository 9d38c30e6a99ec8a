// Tested by: tests/win/DibPaletteTest.cpp
#include "view/DibPalette_win.h"

#include <algorithm>

namespace width {

HPALETTE MakePalette(const DibView& dib) {
    struct {
        WORD palVersion = 0x300;
        WORD palNumEntries = 0;
        PALETTEENTRY palPalEntry[256]{};
    } palette;
    static_assert(offsetof(LOGPALETTE, palPalEntry) == 4);
    const std::uint32_t nEntries = std::min<std::uint32_t>(dib.Figures().nPalEntries, 256);
    if (nEntries == 0) {
        return nullptr;
    }
    palette.palNumEntries = static_cast<WORD>(nEntries);
    std::ranges::transform(dib.Palette(), palette.palPalEntry, [](Colour colour) {
        return PALETTEENTRY{colour.red, colour.green, colour.blue, 0};
    });
    return ::CreatePalette(reinterpret_cast<const LOGPALETTE*>(&palette));
}

}  // namespace width
