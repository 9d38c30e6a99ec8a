// Tested by: tests/e2e/LinewidthTest.cpp
#include "cli/Overlay.h"

#include <algorithm>
#include <cstdlib>

#include "core/TrueColour.h"

namespace width {

namespace {

constexpr Colour kSkeletonColour{0, 255, 0};
constexpr Colour kLineColour{255, 0, 0};
constexpr Colour kSegmentColour{0, 0, 255};

class Canvas {
public:
    explicit Canvas(const DibView& dib) : m_figures(dib.Figures()), m_block(ToTrueColour(dib)) {}

    void Plot(std::int32_t x, std::int32_t y, Colour colour) noexcept {
        if (x >= 0 && x < m_figures.nWidth && y >= 0 && y < m_figures.nHeight) {
            std::byte* p = TrueColourPixel(m_block, m_figures, x, y);
            p[0] = std::byte{colour.blue};
            p[1] = std::byte{colour.green};
            p[2] = std::byte{colour.red};
        }
    }

    /// A straight line one pixel wide, both ends included: a step a pixel along the longer axis.
    void Line(POINT from, POINT to, Colour colour) noexcept {
        const std::int64_t dx = std::int64_t{to.x} - from.x;
        const std::int64_t dy = std::int64_t{to.y} - from.y;
        const std::int64_t nSteps = std::max<std::int64_t>({std::abs(dx), std::abs(dy), 1});
        if (nSteps > 4 * (std::int64_t{m_figures.nWidth} + m_figures.nHeight)) {
            return;  // feet far outside the picture: nothing sensible to show
        }
        for (std::int64_t i = 0; i <= nSteps; ++i) {
            Plot(from.x + Rounded(dx * i, nSteps), from.y + Rounded(dy * i, nSteps), colour);
        }
    }

    std::vector<std::byte> Take() && { return std::move(m_block); }

private:
    static std::int32_t Rounded(std::int64_t n, std::int64_t nSteps) noexcept {
        return static_cast<std::int32_t>((2 * n + (n < 0 ? -nSteps : nSteps)) / (2 * nSteps));
    }

    DibFigures m_figures;
    std::vector<std::byte> m_block;
};

}  // namespace

std::vector<std::byte> DrawOverlay(const DibView& dib, const SkeletonMap& map, const std::vector<DetectedLine>& lines,
                                   const LabelEntry* pFeet) {
    Canvas canvas(dib);
    const std::int32_t nTop = dib.Height() - 1;
    for (std::int32_t s = 0; s < dib.Height(); ++s) {
        const std::uint8_t* pCells = map.Row(s + SkeletonMap::kBorder) + SkeletonMap::kBorder;
        for (std::int32_t x = 0; x < dib.Width(); ++x) {
            if (pCells[x] != 0) {
                canvas.Plot(x, nTop - s, kSkeletonColour);
            }
        }
    }
    for (const DetectedLine& line : lines) {
        canvas.Line({line.ptFirst.x, nTop - line.ptFirst.y}, {line.ptLast.x, nTop - line.ptLast.y}, kLineColour);
    }
    if (pFeet != nullptr) {
        canvas.Line(pFeet->ptA, pFeet->ptB, kSegmentColour);
    }
    return std::move(canvas).Take();
}

}  // namespace width
