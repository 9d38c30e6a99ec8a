// A measurement without a mouse: two detected lines and a place for the label, at zoom 1/1.
// Tested by: tests/unit/measure/PairMeasureTest.cpp
#pragma once

#include <cstdint>

#include "analysis/LineStore.h"
#include "measure/Width.h"

namespace width {

/// How far a measurement came.
enum class PairOutcome {
    Measured,     ///< a label was placed; all fields mean something
    NotParallel,  ///< only this field means something
    NoWidth,      ///< parallel, but the two lines are one: no distance between them
};

struct PairMeasure {
    PairOutcome outcome = PairOutcome::NotParallel;
    float fMeanDistance = 0.0F;  ///< mean cross distance, image pixels
    LabelEntry starts;           ///< starts of the extension lines, image coordinates
    LabelEntry feet;             ///< feet on the first and second line, image coordinates
};

/// Picks the four ends of two lines as clicks in the window would, each end by itself, and places
/// the label. Of the orders in which the two ends of each line can be picked, the one whose feet
/// agree best with the mean distance is taken, the first of equal ones: where one line is exactly
/// vertical the feet depend on the order, and no fixed order is right for all pairs. A pair that
/// leans to both sides of the vertical counts as horizontal in every order; its feet then do not
/// agree with the mean distance.
/// ptPlace  where the label goes, image coordinates
PairMeasure MeasurePair(const DetectedLine& line1, const DetectedLine& line2, POINT ptPlace, std::int32_t nImageWidth,
                        std::int32_t nImageHeight);

}  // namespace width
