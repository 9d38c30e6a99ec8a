// A click on a long path: the walk with the search for the line, and the farthest pair of a ring with
// the comparison of all pairs beside it.
#include "analysis/PathLine.h"
#include "bench/Cases.h"

namespace width::bench {

namespace {

// Every pixel with every later one, a strictly greater distance winning.
std::int32_t LiteralFarthestPair(std::span<const PathPoint> path, std::int32_t& i, std::int32_t& j) {
    float fLargest = 0.0F;
    for (std::size_t a = 0; a < path.size(); ++a) {
        for (std::size_t b = a + 1; b < path.size(); ++b) {
            const float fLength = EdgeLength(path[a], path[b]);
            if (fLength > fLargest) {
                fLargest = fLength;
                i = static_cast<std::int32_t>(a);
                j = static_cast<std::int32_t>(b);
            }
        }
    }
    return path.empty() ? 0 : 1;
}

void AddTrace(const std::string& what, PathMap (*make)(std::int32_t), std::int32_t nPixels, bool bRing) {
    AddCase("click/" + what + "/" + std::to_string(nPixels) + " px", [=](benchmark::State& state) {
        const PathMap path = make(nPixels);
        std::size_t nTraced = 0;
        for (auto _ : state) {
            LineDetector detector(LineConditions{});
            if (detector.TraceFromPoint(path.map, path.ptClick) == 0 || detector.IsClosed() != bRing) {
                state.SkipWithError("the path is not as it was meant");
                break;
            }
            nTraced += detector.Path().size();
            benchmark::DoNotOptimize(detector.SearchLine());
        }
        state.SetItemsProcessed(static_cast<std::int64_t>(nTraced));
    });
}

benchmark::internal::Benchmark* AddFarthestPair(std::int32_t nPixels, const char* pEnding, decltype(&LiteralFarthestPair) find) {
    return AddCase("farthest pair/circle/" + std::to_string(nPixels) + " px" + pEnding, [=](benchmark::State& state) {
        const std::vector<PathPoint> path = CirclePath(nPixels);
        std::int32_t i = 0;
        std::int32_t j = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(find(path, i, j));
            benchmark::DoNotOptimize(i + j);
        }
        state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(path.size()));
    });
}

const bool g_bAdded = [] {
    for (const std::int32_t nPixels : {20'000, 100'000}) {
        AddTrace("serpentine", Serpentine, nPixels, false);
        AddTrace("comb ring", CombRing, nPixels, true);
    }
    for (const std::int32_t nPixels : {20'000, 100'000}) {
        AddFarthestPair(nPixels, "", LineDetector::FindFarthestPair);
        AddFarthestPair(nPixels, "/literal", LiteralFarthestPair)->Iterations(1)->Repetitions(1);  // seconds, not to be repeated
    }
    return true;
}();

}  // namespace

}  // namespace width::bench
