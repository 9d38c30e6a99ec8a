// A click on a long path: the walk with the search for the line; the search alone on paths that make it narrow or trim as
// often as it can, and the farthest pair of a ring, each with its literal version beside it.
#include "bench/Cases.h"
#include "tests/support/LiteralSearch.h"

namespace width::bench {

namespace {

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

// The literal search of the longer paths takes seconds, and is not to be repeated.
void AddSearch(const std::string& what, PathMap (*make)(std::int32_t), std::int32_t nPixels) {
    const std::string name = "search/" + what + "/" + std::to_string(nPixels) + " px";
    const auto add = [&](const char* pEnding, auto search) {
        return AddCase(name + pEnding, [=](benchmark::State& state) {
            const PathMap path = make(nPixels);
            LineDetector traced(LineConditions{});
            if (traced.TraceFromPoint(path.map, path.ptClick) == 0) {
                state.SkipWithError("the path is not as it was meant");
            }
            for (auto _ : state) {
                search(traced);
            }
            state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(traced.Path().size()));
        });
    };
    add("", [](const LineDetector& traced) {
        LineDetector detector = traced;
        benchmark::DoNotOptimize(detector.SearchLine());
    });
    add("/literal",
        [](const LineDetector& traced) {
            benchmark::DoNotOptimize(
                test::LiteralSearch(traced.Path(), traced.IsClosed(), traced.Seed(), LineConditions{}).bFound);
        })
        ->Iterations(1)
        ->Repetitions(1);
}

void AddFarthestPair(std::int32_t nPixels) {
    const std::string name = "farthest pair/circle/" + std::to_string(nPixels) + " px";
    const auto add = [&](const char* pEnding, auto find) {
        return AddCase(name + pEnding, [=](benchmark::State& state) {
            const std::vector<PathPoint> path = CirclePath(nPixels);
            std::int32_t i = 0;
            std::int32_t j = 0;
            for (auto _ : state) {
                benchmark::DoNotOptimize(find(path, i, j));
                benchmark::DoNotOptimize(i + j);
            }
            state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(path.size()));
        });
    };
    add("", LineDetector::FindFarthestPair);
    add("/literal", test::LiteralFarthestPair)->Iterations(1)->Repetitions(1);  // seconds, not to be repeated
}

const bool g_bAdded = [] {
    for (const std::int32_t nPixels : {20'000, 100'000}) {
        AddTrace("serpentine", Serpentine, nPixels, false);
        AddTrace("comb ring", CombRing, nPixels, true);
        AddTrace("circle", CircleRing, nPixels, true);
    }
    AddSearch("level waves", LevelWaves, 100'000);
    AddSearch("slanting waves", SlantingWaves, 100'000);
    AddSearch("stairs", Stairs, 40'000);  // as many as a map of 400 MB holds
    AddSearch("uneven waves", UnevenWaves, 60'000);
    AddSearch("leaning teeth", LeaningTeeth, 100'000);
    AddSearch("slanting comb", SlantingComb, 96'090);
    AddFarthestPair(20'000);
    AddFarthestPair(100'000);
    return true;
}();

}  // namespace

}  // namespace width::bench
