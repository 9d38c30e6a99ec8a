// The generators.
#include "bench/Inputs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "tests/support/Pictures.h"

namespace width::bench {

namespace {

constexpr std::uint8_t kInk = 30;
constexpr std::uint8_t kPaper = 220;

// Grey levels of a square picture, row by row.
struct Plane {
    explicit Plane(std::int32_t nSide, std::uint8_t level)
        : nSize(nSide), cells(static_cast<std::size_t>(nSide) * static_cast<std::size_t>(nSide), level) {}
    std::uint8_t& At(std::int32_t x, std::int32_t s) {
        return cells[static_cast<std::size_t>(s) * static_cast<std::size_t>(nSize) + static_cast<std::size_t>(x)];
    }
    std::int32_t nSize;
    std::vector<std::uint8_t> cells;
};

// Draws a square pen of nPen pixels along a straight way; returns the pixels that became ink.
std::int64_t DrawStroke(Plane& plane, POINT from, POINT step, std::int32_t nLength, std::int32_t nPen) {
    std::int64_t nNew = 0;
    for (std::int32_t i = 0; i < nLength; ++i) {
        const std::int32_t x0 = std::max<std::int32_t>(from.x + i * step.x, 0);
        const std::int32_t s0 = std::max<std::int32_t>(from.y + i * step.y, 0);
        for (std::int32_t s = s0; s < std::min(s0 + nPen, plane.nSize); ++s) {
            for (std::int32_t x = x0; x < std::min(x0 + nPen, plane.nSize); ++x) {
                std::uint8_t& level = plane.At(x, s);
                nNew += level != kInk ? 1 : 0;
                level = kInk;
            }
        }
    }
    return nNew;
}

void DrawLineArt(Plane& plane, std::mt19937& random) {
    static constexpr POINT kSteps[] = {{1, 0}, {0, 1}, {1, 1}, {-1, 1}};
    const std::int64_t nWanted = static_cast<std::int64_t>(plane.cells.size()) * 15 / 100;
    for (std::int64_t nInk = 0; nInk < nWanted;) {
        const POINT from{test::Below(random, plane.nSize), test::Below(random, plane.nSize)};
        const POINT step = kSteps[test::Below(random, 4)];
        const std::int32_t nLength = 20 + test::Below(random, plane.nSize / 4);
        nInk += DrawStroke(plane, from, step, nLength, 3 + test::Below(random, 18));
    }
}

void DrawLineSpace(Plane& plane, std::mt19937& random) {
    for (std::int32_t s = 0; s < plane.nSize; ++s) {
        for (std::int32_t x = 0; x < plane.nSize; ++x) {
            // Sixteenths of a pixel across the lines; an edge is three pixels wide.
            const std::int32_t nAcross = (16 * s + x) % (24 * 16);
            const std::int32_t nFromMiddle = std::abs(nAcross - 12 * 16);
            const std::int32_t nLevel = 125 + std::clamp(nFromMiddle - 6 * 16, -24, 24) * 4;
            plane.At(x, s) = static_cast<std::uint8_t>(nLevel + test::Below(random, 41) - 20);
        }
    }
}

void DrawDeepAreas(Plane& plane, std::mt19937& random) {
    constexpr std::int32_t kArea = 1000;
    constexpr std::int32_t kGap = 12;
    for (std::int32_t s = 0; s < plane.nSize; ++s) {
        for (std::int32_t x = 0; x < plane.nSize; ++x) {
            plane.At(x, s) = s % kArea < kGap || x % kArea < kGap ? kPaper : kInk;
        }
    }
    for (std::size_t i = 0; i < plane.cells.size() / 100'000; ++i) {
        plane.At(test::Below(random, plane.nSize), test::Below(random, plane.nSize)) = kPaper;
    }
}

Plane Draw(Scene scene, std::int32_t nSize) {
    std::mt19937 random(20'240'601);
    Plane plane(nSize, kPaper);
    switch (scene) {
        case Scene::LineArt:
            DrawLineArt(plane, random);
            break;
        case Scene::LineSpace:
            DrawLineSpace(plane, random);
            break;
        case Scene::DeepAreas:
            DrawDeepAreas(plane, random);
            break;
    }
    return plane;
}

// Ink and paper get a slight tint in true colour, so that no shortcut for equal parts helps.
std::vector<std::byte> Pack(Plane& plane, std::uint16_t nBitCount) {
    test::DibBuilder builder(plane.nSize, plane.nSize, nBitCount);
    if (nBitCount <= 8) {
        builder.GreyTable();
    }
    for (std::int32_t s = 0; s < plane.nSize; ++s) {
        for (std::int32_t x = 0; x < plane.nSize; ++x) {
            const std::uint8_t level = plane.At(x, s);
            if (nBitCount <= 8) {
                builder.SetIndex(x, s, static_cast<std::uint32_t>(level) >> (8 - nBitCount));
            } else {
                builder.SetPixel(x, s, {static_cast<std::uint8_t>(level ^ 1U), level, static_cast<std::uint8_t>(level ^ 2U)});
            }
        }
    }
    return builder.Block();
}

void Mark(SkeletonMap& map, std::int32_t x, std::int32_t s) {
    map.Set({s + SkeletonMap::kBorder, x + SkeletonMap::kBorder}, 1);
}

POINT ToImagePoint(const SkeletonMap& map, std::int32_t x, std::int32_t s) {
    return {x, map.Height() - 1 - s};
}

struct Step {
    std::int32_t dx;
    std::int32_t dy;
};

// The map of a path, clicked a fifth of the way behind its head or a little farther on, where the click meets a plain pixel.
PathMap Drawn(const std::vector<POINT>& path) {
    constexpr std::int32_t kMargin = 4;
    const auto [left, right] = std::ranges::minmax_element(path, {}, &POINT::x);
    const auto [bottom, top] = std::ranges::minmax_element(path, {}, &POINT::y);
    const POINT ptOrigin{left->x - kMargin, bottom->y - kMargin};
    SkeletonMap map(top->y - ptOrigin.y + 1 + kMargin, right->x - ptOrigin.x + 1 + kMargin);
    for (const POINT pt : path) {
        Mark(map, pt.x - ptOrigin.x, pt.y - ptOrigin.y);
    }
    for (std::size_t i = path.size() / 5;; ++i) {
        const POINT ptClick = ToImagePoint(map, path[i].x - ptOrigin.x, path[i].y - ptOrigin.y);
        LineDetector detector(LineConditions{});
        if (i + 1 == path.size() || detector.TraceFromPoint(map, ptClick) != 0) {
            return {std::move(map), ptClick};
        }
    }
}

// A path that takes step(i) behind its pixel i.
template <class StepAt>
PathMap Walk(std::int32_t nPixels, StepAt step) {
    std::vector<POINT> path;
    POINT pt{0, 0};
    for (std::int32_t i = 0; i < nPixels; ++i) {
        path.push_back(pt);
        const Step s = step(i);
        pt = {pt.x + s.dx, pt.y + s.dy};
    }
    return Drawn(path);
}

}  // namespace

const char* SceneName(Scene scene) noexcept {
    switch (scene) {
        case Scene::LineArt:
            return "line art";
        case Scene::LineSpace:
            return "noisy lines";
        case Scene::DeepAreas:
            break;
    }
    return "deep areas";
}

const std::vector<std::byte>& Picture(Scene scene, std::int32_t nSize, std::uint16_t nBitCount) {
    static std::vector<std::byte> s_block;
    static Scene s_scene{};
    static std::int32_t s_nSize = 0;
    static std::uint16_t s_nBitCount = 0;
    if (s_scene != scene || s_nSize != nSize || s_nBitCount != nBitCount) {
        Plane plane = Draw(scene, nSize);
        s_block = Pack(plane, nBitCount);
        s_scene = scene;
        s_nSize = nSize;
        s_nBitCount = nBitCount;
    }
    return s_block;
}

PathMap Serpentine(std::int32_t nPixels) {
    const auto nLength = static_cast<std::int32_t>(std::sqrt(3.0 * nPixels));  // as long as the rows are high together
    const std::int32_t nRows = nPixels / nLength;
    SkeletonMap map(3 * nRows, nLength + 4);
    for (std::int32_t i = 0; i < nRows; ++i) {
        for (std::int32_t x = 2; x < nLength + 2; ++x) {
            Mark(map, x, 3 * i);
        }
        if (i + 1 < nRows) {  // the turn bulges out, so that no pixel has a third neighbour
            const std::int32_t nTurn = i % 2 == 0 ? nLength + 2 : 1;
            Mark(map, nTurn, 3 * i + 1);
            Mark(map, nTurn, 3 * i + 2);
        }
    }
    const POINT ptClick = ToImagePoint(map, nLength / 2, 3 * (nRows / 2));
    return {std::move(map), ptClick};
}

// Columns two apart, joined above and below in turn; the outer two go down to a row that joins them.
PathMap CombRing(std::int32_t nPixels) {
    constexpr std::int32_t kBack = 2;  // the row below
    constexpr std::int32_t kFoot = kBack + 3;
    const std::int32_t nColumns = 2 * static_cast<std::int32_t>(std::sqrt(nPixels / 8.0));
    const std::int32_t nTop = kFoot + nPixels / nColumns;
    const std::int32_t nRight = 2 * nColumns;
    SkeletonMap map(nTop + 4, nRight + 4);
    for (std::int32_t x = 2; x <= nRight; x += 2) {
        const bool bOuter = x == 2 || x == nRight;
        for (std::int32_t s = bOuter ? kBack + 1 : kFoot; s < nTop; ++s) {
            Mark(map, x, s);
        }
        if (x < nRight) {
            Mark(map, x + 1, x % 4 == 2 ? nTop : kFoot - 1);
        }
    }
    for (std::int32_t x = 3; x < nRight; ++x) {
        Mark(map, x, kBack);
    }
    const POINT ptClick = ToImagePoint(map, nRight / 2, kBack);
    return {std::move(map), ptClick};
}

PathMap CircleRing(std::int32_t nPixels) {
    std::vector<POINT> ring;
    for (const PathPoint& pt : CirclePath(nPixels)) {
        ring.push_back({pt.x, pt.y});
    }
    return Drawn(ring);
}

PathMap LevelWaves(std::int32_t nPixels) {
    return Walk(nPixels, [](std::int32_t i) { return Step{1, i / 3 % 2 == 0 ? 1 : -1}; });
}

PathMap SlantingWaves(std::int32_t nPixels) {
    return Walk(nPixels, [](std::int32_t i) { return Step{1, i % 20 == 19 ? 1 : i / 3 % 2 == 0 ? 1 : -1}; });
}

PathMap Stairs(std::int32_t nPixels) {
    return Walk(nPixels, [](std::int32_t i) { return i / 6 % 2 == 0 ? Step{0, 1} : Step{1, 0}; });
}

PathMap LeaningTeeth(std::int32_t nPixels) {
    return Walk(nPixels, [](std::int32_t i) {
        constexpr std::array<Step, 4> kSide = {{{0, 1}, {-1, 1}, {-1, 1}, {0, 1}}};
        constexpr std::int32_t kHalf = 12;
        const std::int32_t nInHalf = i % kHalf;
        if (nInHalf >= std::ssize(kSide)) {
            return Step{1, 0};
        }
        const Step step = kSide[static_cast<std::size_t>(nInHalf)];
        return i / kHalf % 2 == 0 ? step : Step{step.dx, -step.dy};
    });
}

PathMap UnevenWaves(std::int32_t nPixels) {
    return Walk(nPixels, [](std::int32_t i) { return Step{-1, i % 9 < 5 ? 1 : -1}; });
}

PathMap SlantingComb(std::int32_t nPixels) {
    constexpr std::int32_t kTooth = 24;
    constexpr std::int32_t kRow = 2 * kTooth + 5;
    return Walk(nPixels, [=](std::int32_t i) {
        const std::int32_t nInRow = (nPixels - 2 - i + kTooth) % kRow;  // ends on a top
        if (nInRow == kRow - 1) {
            return Step{1, 1};
        }
        return nInRow % (kTooth + 2) >= kTooth ? Step{1, 0} : Step{0, nInRow < kTooth ? 1 : -1};
    });
}

std::vector<PathPoint> CirclePath(std::int32_t nPixels) {
    constexpr double kPixelsPerRadius = 5.656854249492381;  // of a circle in eight-connected pixels: 4 times the root of 2
    const double fRadius = nPixels / kPixelsPerRadius;
    std::vector<PathPoint> path;
    const std::int32_t nSteps = 2 * nPixels;
    for (std::int32_t i = 0; i < nSteps; ++i) {
        const double fAngle = 6.283185307179586 * i / nSteps;
        const PathPoint pt{static_cast<std::int32_t>(path.size()),
                           static_cast<std::int32_t>(std::lround(fRadius * (1.0 + std::cos(fAngle)))),
                           static_cast<std::int32_t>(std::lround(fRadius * (1.0 + std::sin(fAngle))))};
        if (path.empty() || path.back().x != pt.x || path.back().y != pt.y) {
            path.push_back(pt);
        }
    }
    return path;
}

}  // namespace width::bench
