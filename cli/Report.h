// What linewidth prints: lines for people, or one JSON object per image with fixed keys.
// Tested by: tests/e2e/LinewidthTest.cpp
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "analysis/LineStore.h"
#include "analysis/Skeleton.h"
#include "measure/PairMeasure.h"

namespace width {

/// What a click found; end points in image pixels from the top left.
struct ClickReport {
    POINT ptAt{};
    bool bFound = false;
    POINT ptFirst{};
    POINT ptLast{};
    std::int32_t nAxis = 0;
    std::optional<std::int32_t> nId;
};

/// A measurement as far as it came.
struct MeasureReport {
    std::optional<bool> bParallel;  ///< none: there was no pair to test
    std::optional<float> fMeanDistance;
    LabelEntry feet;
    std::optional<std::int32_t> nWidth;  ///< pixels; none: there is no label
    std::string text;                    ///< of the label
};

void ReportThreshold(std::ostream& out, bool bJson, const std::string& image, std::int32_t nThreshold);
void ReportSkeleton(std::ostream& out, bool bJson, const std::string& image, GreyWindow grey, std::int64_t nPixels);
void ReportDetect(std::ostream& out, bool bJson, const std::string& image, GreyWindow grey,
                  const std::vector<ClickReport>& clicks);
void ReportMeasure(std::ostream& out, bool bJson, const std::string& image, GreyWindow grey,
                   const std::vector<ClickReport>& clicks, const MeasureReport& measure);

}  // namespace width
