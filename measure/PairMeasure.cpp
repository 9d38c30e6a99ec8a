// The four orders of picking two lines, and the choice among them.
// Tested by: tests/unit/measure/PairMeasureTest.cpp
#include "measure/PairMeasure.h"

#include <cmath>
#include <limits>
#include <utility>

#include "measure/Picking.h"

namespace width {

namespace {

// Any two different marks will do: the ends are handed to the picker and not looked for.
constexpr std::int32_t kFirstMark = 2;
constexpr std::int32_t kSecondMark = 3;

double FeetDistance(const LabelEntry& feet) noexcept {
    return std::hypot(static_cast<double>(feet.ptA.x) - feet.ptB.x, static_cast<double>(feet.ptA.y) - feet.ptB.y);
}

POINT BlockPoint(const PathPoint& pt) noexcept {
    return {pt.x, pt.y};
}

// One measurement in the order in which the ends of the lines stand.
PairMeasure MeasureInOrder(const DetectedLine& line1, const DetectedLine& line2, POINT ptPlace, const ViewGeometry& geometry) {
    LinePairPicker picker;
    std::vector<PickEvent> events;
    picker.PickEnd(kFirstMark, BlockPoint(line1.ptFirst), ptPlace, geometry, events);
    picker.PickEnd(kFirstMark, BlockPoint(line1.ptLast), ptPlace, geometry, events);
    picker.PickEnd(kSecondMark, BlockPoint(line2.ptFirst), ptPlace, geometry, events);
    const PickedEnds endsBlock{picker.m_ptPick[0], picker.m_ptPick[1], picker.m_ptPick[2], BlockPoint(line2.ptLast)};
    picker.PickEnd(kSecondMark, BlockPoint(line2.ptLast), ptPlace, geometry, events);
    PairMeasure measure;
    if (events.back().kind == PickEventKind::NotParallel) {
        return measure;
    }
    measure.outcome = PairOutcome::NoWidth;
    measure.fMeanDistance = PairWidth(endsBlock);
    if (picker.m_bLabelPending != 0) {
        LabelList labels;
        CommitLabel(ptPlace, picker.m_ptPick, geometry, labels);
        measure.outcome = PairOutcome::Measured;
        measure.starts = labels.m_Labels[0];
        measure.feet = labels.m_Labels[1];
    }
    return measure;
}

}  // namespace

PairMeasure MeasurePair(const DetectedLine& line1, const DetectedLine& line2, POINT ptPlace, std::int32_t nImageWidth,
                        std::int32_t nImageHeight) {
    const ViewGeometry geometry = UnitGeometry(nImageWidth, nImageHeight);
    const auto swapped = [](const DetectedLine& line) { return DetectedLine{line.ptLast, line.ptFirst}; };
    const DetectedLine orders[4][2] = {
        {line1, line2}, {line1, swapped(line2)}, {swapped(line1), line2}, {swapped(line1), swapped(line2)}};
    PairMeasure best;
    double nearest = std::numeric_limits<double>::infinity();
    for (const auto& [first, second] : orders) {
        const PairMeasure measure = MeasureInOrder(first, second, ptPlace, geometry);
        if (measure.outcome != PairOutcome::Measured) {
            return measure;  // parallel or not, and how far apart, does not depend on the order
        }
        const double difference = std::fabs(FeetDistance(measure.feet) - static_cast<double>(measure.fMeanDistance));
        if (difference < nearest) {
            nearest = difference;
            best = measure;
        }
    }
    return best;
}

}  // namespace width
