// Clicks: the walk and the search for the line, on pictures and on paths made by a formula; and the farthest pair of a ring.
#include "bench/Cases.h"
#include "bench/ClickCases.h"
#include "tests/support/LiteralSearch.h"

namespace width::bench {

namespace {

// The one made last is kept: a case is entered several times.
const ClickInput& InputOf(const ClickCase& click) {
    static std::string s_name;
    static ClickInput s_input;
    if (s_name != click.name) {
        s_input = {};
        s_input = click.make();
        s_name = click.name;
    }
    return s_input;
}

void AddClicks(const ClickCase& click) {
    const auto add = [&](const char* pEnding, auto search) {
        return AddCase("click/" + click.name + pEnding, [=](benchmark::State& state) {
            const ClickInput& input = InputOf(click);
            std::size_t nTraced = 0;
            for (auto _ : state) {
                nTraced = 0;
                for (const POINT pt : input.clicks) {
                    LineDetector detector(LineConditions{});
                    benchmark::DoNotOptimize(detector.TraceFromPoint(input.map, pt));
                    nTraced += detector.Path().size();
                    search(detector);
                }
            }
            state.counters["clicks"] = static_cast<double>(input.clicks.size());
            state.counters["pixels"] = static_cast<double>(nTraced);
        });
    };
    add("", [](LineDetector& detector) { benchmark::DoNotOptimize(detector.SearchLine()); });
    add("/literal",
        [](LineDetector& detector) {
            benchmark::DoNotOptimize(
                test::LiteralSearch(detector.Path(), detector.IsClosed(), detector.Seed(), LineConditions{}).bFound);
        })
        ->Iterations(1)
        ->Repetitions(1);  // some take seconds
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
        });
    };
    add("", LineDetector::FindFarthestPair);
    add("/literal", test::LiteralFarthestPair)->Iterations(1)->Repetitions(1);
}

const bool g_bAdded = [] {
    for (const auto& cases : {PictureClickCases(), PathClickCases()}) {
        for (const ClickCase& click : cases) {
            AddClicks(click);
        }
    }
    AddFarthestPair(20'000);
    AddFarthestPair(100'000);
    return true;
}();

}  // namespace

}  // namespace width::bench
