// The automatic threshold.
#include "analysis/GreyLevels.h"
#include "bench/Cases.h"
#include "tests/support/LiteralThreshold.h"

namespace width::bench {

namespace {

const bool g_bAdded = AddPictureCases(
    "threshold", [](const DibView& dib) { return CalcAutoThreshold(&dib); },
    [](const DibView& dib) { return test::LiteralThreshold(dib); });

}  // namespace

}  // namespace width::bench
