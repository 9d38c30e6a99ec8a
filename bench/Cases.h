// How a case is registered. A name is stage/input/size, with a variant behind it where there are several, as /literal for
// the slow literal version; scripts/bench-table puts the variants side by side.
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

}  // namespace width::bench
