// The skeleton, from the picture to the map.
#include "analysis/Skeleton.h"
#include "bench/Cases.h"
#include "tests/support/LiteralSkeleton.h"

namespace width::bench {

namespace {

const bool g_bAdded = AddPictureCases(
    "skeleton", [](const DibView& dib) { return MakeSkeleton(dib, kDark); },
    [](const DibView& dib) { return test::LiteralSkeleton(dib, kDark); });

}  // namespace

}  // namespace width::bench
