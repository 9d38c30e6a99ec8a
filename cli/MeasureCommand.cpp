// The whole chain: two clicks, two lines, one label.
// Tested by: tests/e2e/LinewidthTest.cpp
#include <cmath>
#include <ostream>

#include "cli/Commands.h"
#include "cli/Overlay.h"

namespace width {

namespace {

// Furthest that a label's whole pixels may lie from the mean distance without a word about it: the
// feet are truncated, and lines up to 5 degrees apart differ along their length.
bool Disagrees(std::int32_t nWidth, float fMeanDistance) {
    return std::fabs(static_cast<float>(nWidth) - fMeanDistance) > 3.0F + 0.1F * fMeanDistance;
}

struct Result {
    MeasureReport report;
    int nStatus = kDone;
};

Result MeasureLines(const Console& console, const Arguments& arguments, const Subject& subject, const LineStore& store,
                    const std::vector<ClickReport>& clicks) {
    Result result;
    if (!clicks[0].nId || !clicks[1].nId) {
        result.nStatus = console.Fail(subject.image, "a line has an end outside the picture and can't be picked", kNoResult);
        return result;
    }
    const DibFigures& figures = subject.dib->Figures();
    const PairMeasure measure =
        MeasurePair(store.m_Lines[0], store.m_Lines[1], arguments.ptPlace, figures.nWidth, figures.nHeight);
    result.report.bParallel = measure.outcome != PairOutcome::NotParallel;
    if (!*result.report.bParallel) {
        result.nStatus = console.Fail(subject.image, "the two lines are not parallel", kNoResult);
        return result;
    }
    result.report.fMeanDistance = measure.fMeanDistance;
    const std::int32_t nWidth = measure.outcome == PairOutcome::Measured ? LabelLength(measure.feet.ptA, measure.feet.ptB) : 0;
    if (nWidth <= 0) {
        result.nStatus = console.Fail(subject.image, "the width between the two lines is zero", kNoResult);
        return result;
    }
    result.report.feet = measure.feet;
    result.report.nWidth = nWidth;
    result.report.text = FormatLabelText(1, measure.feet.ptA, measure.feet.ptB, {figures.nXPelsPerMeter, figures.nYPelsPerMeter});
    if (Disagrees(nWidth, measure.fMeanDistance)) {
        console.err << "linewidth: " << subject.image << ": the label's " << nWidth
                    << " pixels do not agree with the mean distance of " << measure.fMeanDistance
                    << "; the lines lean to both sides of the vertical\n";
    }
    return result;
}

}  // namespace

int RunMeasure(const Console& console, const Arguments& arguments, const std::string& image) {
    Subject subject;
    if (int nStatus = LoadSubject(console, image, subject);
        nStatus != kDone || (nStatus = MakeSubjectSkeleton(console, arguments, subject)) != kDone) {
        return nStatus;
    }
    LineStore store;
    std::vector<ClickReport> clicks;
    Result result;
    result.nStatus = DetectLines(console, arguments, subject, store, clicks);
    if (result.nStatus == kBadInput) {
        return kBadInput;
    }
    if (result.nStatus == kDone) {
        result = MeasureLines(console, arguments, subject, store, clicks);
    }
    if (!arguments.outFile.empty()) {
        const LabelEntry* pFeet = result.report.nWidth ? &result.report.feet : nullptr;
        const std::vector<std::byte> picture = DrawOverlay(*subject.dib, subject.skeleton, store.m_Lines, pFeet);
        if (SaveResult(console, arguments.outFile, picture) != kDone) {
            return kBadInput;
        }
    }
    ReportMeasure(console.out, arguments.bJson, image, subject.grey, clicks, result.report);
    return result.nStatus;
}

}  // namespace width
