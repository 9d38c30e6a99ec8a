// Rows and texts in the shapes that several format sources need.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include "imageio/Formats.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace width {

std::string WithDetail(const char* pSentence, const std::string& detail) {
    constexpr std::size_t kMaxDetail = 160;
    std::string text = pSentence;
    if (!detail.empty()) {
        text += ": ";
    }
    for (const char c : detail.substr(0, kMaxDetail)) {
        text += c >= ' ' && c <= '~' ? c : '?';
    }
    return text;
}

std::uint64_t FileBytes(std::FILE* pFile) noexcept {
    struct stat status {};
    return fstat(fileno(pFile), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

bool CanUnpackTo(std::FILE* pFile, std::uint64_t nUnits, std::uint64_t nPerByte) noexcept {
    return nUnits / nPerByte <= FileBytes(pFile);
}

std::span<const std::uint8_t> PictureRow(const DibView& view, std::uint32_t y) noexcept {
    return view.Row(view.Height() - 1 - static_cast<std::int32_t>(y));
}

void CopyRgbRow(const DibView& view, std::uint32_t y, std::uint8_t* pTarget) noexcept {
    const std::uint8_t* pPixel = PictureRow(view, y).data();
    const std::size_t nStep = view.BitCount() / 8U;
    for (std::int32_t x = 0; x < view.Width(); ++x, pPixel += nStep, pTarget += 3) {
        pTarget[0] = pPixel[2];
        pTarget[1] = pPixel[1];
        pTarget[2] = pPixel[0];
    }
}

void CopyIndexRow(const DibView& view, std::uint32_t y, std::uint8_t* pTarget) noexcept {
    const std::uint8_t* pRow = PictureRow(view, y).data();
    const std::uint32_t nBits = view.BitCount();
    const std::uint32_t nPerByte = 8 / nBits;
    const std::uint32_t nMask = (1U << nBits) - 1U;
    const auto nWidth = static_cast<std::uint32_t>(view.Width());
    for (std::uint32_t x = 0; x < nWidth; ++x) {
        const std::uint32_t nShift = nBits * (nPerByte - 1 - x % nPerByte);
        pTarget[x] = static_cast<std::uint8_t>((std::uint32_t{pRow[x / nPerByte]} >> nShift) & nMask);
    }
}

void WidenTwoBitRow(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) noexcept {
    const auto index = [&](std::uint32_t x) { return x < nWidth ? (pSource[x / 4] >> (6 - 2 * (x % 4))) & 3 : 0; };
    for (std::uint32_t x = 0; x < nWidth; x += 2) {
        pTarget[x / 2] = static_cast<std::uint8_t>((index(x) << 4) | index(x + 1));
    }
}

void SwapRedAndBlue(std::uint8_t* pRow, std::uint32_t nWidth) noexcept {
    for (std::uint32_t x = 0; x < nWidth; ++x, pRow += 3) {
        std::swap(pRow[0], pRow[2]);
    }
}

bool HasGreyTable(const DibView& view, bool bInverted) noexcept {
    const std::uint32_t nBits = view.BitCount();
    if (nBits > 8 || view.Figures().nPalEntries < (1U << nBits)) {
        return false;
    }
    const std::array<Colour, 256> colours = view.Palette();
    const std::uint32_t nLast = (1U << nBits) - 1U;
    for (std::uint32_t i = 0; i <= nLast; ++i) {
        const std::uint8_t level = GreyLevel(bInverted ? nLast - i : i, nBits);
        if (colours[i] != Colour{level, level, level}) {
            return false;
        }
    }
    return true;
}

std::uint32_t EntriesInUse(const DibView& view) {
    const std::uint32_t nAll = 1U << view.BitCount();
    const std::uint32_t nEntries = std::min(view.Figures().nPalEntries, nAll);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(view.Width()));
    for (std::uint32_t y = 0; nEntries < nAll && y < static_cast<std::uint32_t>(view.Height()); ++y) {
        CopyIndexRow(view, y, row.data());
        if (*std::max_element(row.begin(), row.end()) >= nEntries) {
            return nAll;
        }
    }
    return nEntries;
}

}  // namespace width
