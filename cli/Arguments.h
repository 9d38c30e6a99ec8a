// What the command line of linewidth asks for.
// Tested by: tests/e2e/LinewidthTest.cpp
#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "analysis/LineConditions.h"
#include "analysis/Skeleton.h"
#include "core/Platform.h"

namespace width {

/// Exit statuses. Of several images the worst counts.
enum ExitStatus : int {
    kDone = 0,
    kNoResult = 1,  ///< the chain ended without a result: no line, not parallel, no width
    kBadInput = 2,  ///< a file, an option or a click that can't be used
};

struct Arguments {
    enum class Command { Threshold, Skeleton, Detect, Measure };

    Command command = Command::Threshold;
    std::vector<std::string> images;
    std::optional<GreyWindow> grey;  ///< none: automatic
    std::vector<POINT> clicks;       ///< image pixels from the top left
    POINT ptPlace{};
    LineConditions conditions;
    std::string outFile;  ///< empty: none
    bool bJson = false;
};

/// Either arguments to run, or the status to end with: everything that had to be said has been.
struct ParsedArguments {
    std::optional<Arguments> arguments;
    int nStatus = kDone;
};

/// Parses a command line. Help and version go to out, a mistake as one line to err.
ParsedArguments ParseArguments(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

}  // namespace width
