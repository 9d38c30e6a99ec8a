// The cases that a stage over whole pictures is measured on, and their names. A name is
// stage/what/size, with /literal behind it for the slow literal version of the same;
// scripts/bench-table puts the two side by side.
#pragma once

#include <benchmark/benchmark.h>

#include <string>

#include "bench/Inputs.h"

namespace width::bench {

/// Registers a case. Time is that of all the program's threads together, which other programs on the
/// machine disturb least; pixels a second are per second of it.
template <class Function>
benchmark::internal::Benchmark* AddCase(const std::string& name, Function function) {
    return benchmark::RegisterBenchmark(name.c_str(), function)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
}

/// Registers a stage twice for every picture: fast(dib) and literal(dib).
template <class Fast, class Literal>
bool AddPictureCases(const std::string& stage, Fast fast, Literal literal) {
    const auto add = [](const std::string& name, Scene scene, std::int32_t nSize, std::uint16_t nBitCount, auto run) {
        AddCase(name, [=](benchmark::State& state) {
            const std::optional<DibView> dib = DibView::Open(Picture(scene, nSize, nBitCount));
            for (auto _ : state) {
                benchmark::DoNotOptimize(run(*dib));
            }
            state.SetItemsProcessed(state.iterations() * nSize * nSize);
        });
    };
    for (const std::uint16_t nBitCount : {std::uint16_t{8}, std::uint16_t{24}}) {
        for (const std::int32_t nSize : {512, 2048, 4096}) {
            for (const Scene scene : {Scene::LineArt, Scene::LineSpace, Scene::DeepAreas}) {
                const std::string name = stage + " " + std::to_string(nBitCount) + " bit/" + SceneName(scene) + "/" +
                                         std::to_string(nSize) + " x " + std::to_string(nSize);
                add(name, scene, nSize, nBitCount, fast);
                add(name + "/literal", scene, nSize, nBitCount, literal);
            }
        }
    }
    return true;
}

}  // namespace width::bench
