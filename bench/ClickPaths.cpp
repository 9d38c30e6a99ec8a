// Clicks on one path each, made by a formula.
#include <algorithm>
#include <array>
#include <cmath>

#include "bench/ClickCases.h"

namespace width::bench {

namespace {

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
ClickInput Drawn(const std::vector<POINT>& path) {
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
            return {std::move(map), {ptClick}};
        }
    }
}

// A path that takes step(i) behind its pixel i.
ClickInput Walk(std::int32_t nPixels, const std::function<Step(std::int32_t)>& step) {
    std::vector<POINT> path;
    POINT pt{0, 0};
    for (std::int32_t i = 0; i < nPixels; ++i) {
        path.push_back(pt);
        const Step s = step(i);
        pt = {pt.x + s.dx, pt.y + s.dy};
    }
    return Drawn(path);
}

ClickInput Serpentine(std::int32_t nPixels) {
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
    return {std::move(map), {ptClick}};
}

// Columns two apart, joined above and below in turn; the outer two go down to a row that joins them.
ClickInput CombRing(std::int32_t nPixels) {
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
    return {std::move(map), {ptClick}};
}

ClickInput CircleRing(std::int32_t nPixels) {
    std::vector<POINT> ring;
    for (const PathPoint& pt : CirclePath(nPixels)) {
        ring.push_back({pt.x, pt.y});
    }
    return Drawn(ring);
}

// To the right, with teeth that lean back over the gap before them.
Step LeaningTeeth(std::int32_t i) {
    constexpr std::array<Step, 4> kSide = {{{0, 1}, {-1, 1}, {-1, 1}, {0, 1}}};
    constexpr std::int32_t kHalf = 12;
    const std::int32_t nInHalf = i % kHalf;
    if (nInHalf >= std::ssize(kSide)) {
        return {1, 0};
    }
    const Step step = kSide[static_cast<std::size_t>(nInHalf)];
    return i / kHalf % 2 == 0 ? step : Step{step.dx, -step.dy};
}

// Upright teeth, two pixels wide and each a little higher than the one before, whose tops are equally far from what is trimmed.
Step SlantingComb(std::int32_t i) {
    constexpr std::int32_t kTooth = 24;
    constexpr std::int32_t kRow = 2 * kTooth + 5;
    const std::int32_t nInRow = (i + 1) % kRow;  // ends on a top
    if (nInRow == kRow - 1) {
        return {-1, -1};
    }
    return nInRow % (kTooth + 2) >= kTooth ? Step{-1, 0} : Step{0, nInRow < kTooth ? -1 : 1};
}

}  // namespace

std::vector<ClickCase> PathClickCases() {
    std::vector<ClickCase> cases;
    const auto add = [&](const char* pWhat, ClickInput (*make)(std::int32_t), std::int32_t nPixels) {
        cases.push_back({std::string(pWhat) + "/" + std::to_string(nPixels) + " px", [=] { return make(nPixels); }});
    };
    for (const std::int32_t nPixels : {20'000, 100'000}) {
        add("serpentine", Serpentine, nPixels);
        add("comb ring", CombRing, nPixels);
        add("circle", CircleRing, nPixels);
    }
    const auto addWalk = [&](const char* pWhat, std::int32_t nPixels, const std::function<Step(std::int32_t)>& step) {
        cases.push_back({std::string(pWhat) + "/" + std::to_string(nPixels) + " px", [=] { return Walk(nPixels, step); }});
    };
    addWalk("level waves", 100'000, [](std::int32_t i) { return Step{1, i / 3 % 2 == 0 ? 1 : -1}; });
    addWalk("slanting waves", 100'000, [](std::int32_t i) { return Step{1, i % 20 == 19 || i / 3 % 2 == 0 ? 1 : -1}; });
    addWalk("stairs", 40'000, [](std::int32_t i) { return i / 6 % 2 == 0 ? Step{0, 1} : Step{1, 0}; });
    addWalk("uneven waves", 60'000, [](std::int32_t i) { return Step{-1, i % 9 < 5 ? 1 : -1}; });
    addWalk("leaning teeth", 100'000, LeaningTeeth);
    addWalk("slanting comb", 96'090, SlantingComb);
    return cases;
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
