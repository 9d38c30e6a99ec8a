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

}  // namespace width::bench
