// What is measured on whole pictures: skeleton and threshold in every variant, and a copy of the picture as a yardstick.
// A list, since two programs measure it: width_bench, and ratios where there is no benchmark library.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench/Inputs.h"

namespace width::bench {

/// One variant of a stage on one picture.
struct PictureCase {
    std::string name;  ///< stage/input/size/variant, which scripts/bench-table takes apart
    Scene scene{};
    std::int32_t nSize = 0;
    std::uint16_t nBitCount = 0;
    std::function<void(const DibView&)> run;
    bool bLiteral = false;     ///< slow: a few runs will do
    bool bTwoThreads = false;  ///< two are at work: to be timed by the clock on the wall
};

/// Name of a case but for its variant, as in "skeleton 8 bit/line art/4096 x 4096".
std::string CaseName(const std::string& stage, Scene scene, std::int32_t nSize, std::uint16_t nBitCount);

/// The cases of all scenes in one size and depth, those of one picture together.
/// bAllSets  whether the skeleton is made by each instruction set of this processor; else by the best one
std::vector<PictureCase> PictureCases(std::int32_t nSize, std::uint16_t nBitCount, bool bAllSets);

}  // namespace width::bench
