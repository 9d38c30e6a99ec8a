// Threshold, skeleton and detect, and the steps that they share with measure.
// Tested by: tests/e2e/LinewidthTest.cpp
#include "cli/Commands.h"

#include <algorithm>
#include <ostream>

#include "analysis/GreyLevels.h"
#include "imageio/DibBuilder.h"

namespace width {

namespace {

std::string WindowText(GreyWindow grey) {
    return std::to_string(grey.nMinGrey) + ".." + std::to_string(grey.nMaxGrey);
}

bool LiesOutside(POINT pt, const DibView& dib) {
    return pt.x < 0 || pt.x >= dib.Width() || pt.y < 0 || pt.y >= dib.Height();
}

// An 8-bit grey picture of a map: 255 for skeleton, 0 elsewhere, resolution as the original's.
LoadedPicture SkeletonPicture(const SkeletonMap& map, const DibFigures& figures) {
    DibBuilder builder;
    const auto nWidth = static_cast<std::uint32_t>(map.Width());
    if (std::string error = builder.Create(nWidth, static_cast<std::uint32_t>(map.Height()), 8, 256); !error.empty()) {
        return Failed(std::move(error));
    }
    builder.SetGreyTable(8);
    builder.SetResolution(figures.nXPelsPerMeter, figures.nYPelsPerMeter);
    for (std::uint32_t y = 0; y < builder.Height(); ++y) {
        const std::uint8_t* pCells = map.Row(map.Height() + 1 - static_cast<std::int32_t>(y)) + SkeletonMap::kBorder;
        std::transform(pCells, pCells + nWidth, builder.Row(y),
                       [](std::uint8_t cell) { return static_cast<std::uint8_t>(cell != 0 ? 255 : 0); });
    }
    return builder.Finish();
}

int RunThreshold(const Console& console, const Arguments& arguments, const std::string& image) {
    Subject subject;
    if (const int nStatus = LoadSubject(console, image, subject); nStatus != kDone) {
        return nStatus;
    }
    ReportThreshold(console.out, arguments.bJson, image, CalcAutoThreshold(&*subject.dib));
    return kDone;
}

int RunSkeleton(const Console& console, const Arguments& arguments, const std::string& image) {
    Subject subject;
    if (int nStatus = LoadSubject(console, image, subject);
        nStatus != kDone || (nStatus = MakeSubjectSkeleton(console, arguments, subject)) != kDone) {
        return nStatus;
    }
    std::int64_t nPixels = 0;
    for (std::int32_t r = 0; r < subject.skeleton.Rows(); ++r) {
        nPixels += std::count_if(subject.skeleton.Row(r), subject.skeleton.Row(r) + subject.skeleton.Columns(),
                                 [](std::uint8_t cell) { return cell != 0; });
    }
    const LoadedPicture picture = SkeletonPicture(subject.skeleton, subject.dib->Figures());
    if (!picture.error.empty()) {
        return console.Fail(arguments.outFile, picture.error, kBadInput);
    }
    if (const int nStatus = SaveResult(console, arguments.outFile, picture.block); nStatus != kDone) {
        return nStatus;
    }
    ReportSkeleton(console.out, arguments.bJson, image, subject.grey, nPixels);
    return kDone;
}

int RunDetect(const Console& console, const Arguments& arguments, const std::string& image) {
    Subject subject;
    LineStore store;
    std::vector<ClickReport> clicks;
    if (int nStatus = LoadSubject(console, image, subject);
        nStatus != kDone || (nStatus = MakeSubjectSkeleton(console, arguments, subject)) != kDone) {
        return nStatus;
    }
    const int nStatus = DetectLines(console, arguments, subject, store, clicks);
    if (nStatus != kBadInput) {
        ReportDetect(console.out, arguments.bJson, image, subject.grey, clicks);
    }
    return nStatus;
}

}  // namespace

int Console::Fail(const std::string& image, const std::string& what, int nStatus) const {
    err << "linewidth: " << image << ": " << what << '\n';
    return nStatus;
}

int LoadSubject(const Console& console, const std::string& image, Subject& subject) {
    subject.image = image;
    subject.picture = LoadPicture(image);
    if (!subject.picture.error.empty()) {
        return console.Fail(image, subject.picture.error, kBadInput);
    }
    subject.dib = DibView::Open(subject.picture.block);
    return subject.dib ? kDone : console.Fail(image, DibStatusText(CheckPackedDib(subject.picture.block).status), kBadInput);
}

int MakeSubjectSkeleton(const Console& console, const Arguments& arguments, Subject& subject) {
    subject.grey = arguments.grey.value_or(GreyWindow{0, arguments.grey ? 0 : CalcAutoThreshold(&*subject.dib)});
    if (!IsGreyWindowValid(subject.grey)) {
        return console.Fail(subject.image,
                            "the automatic grey window " + WindowText(subject.grey) + " is empty; give one with --grey",
                            kNoResult);
    }
    std::optional<SkeletonMap> skeleton = MakeSkeleton(*subject.dib, subject.grey);
    if (!skeleton) {
        return console.Fail(subject.image, "not enough memory for the skeleton", kBadInput);
    }
    subject.skeleton = std::move(*skeleton);
    return kDone;
}

int DetectLines(const Console& console, const Arguments& arguments, Subject& subject, LineStore& store,
                std::vector<ClickReport>& clicks) {
    const auto pointText = [](POINT pt) { return std::to_string(pt.x) + "," + std::to_string(pt.y); };
    std::vector<POINT> points = arguments.clicks;
    if (arguments.command == Arguments::Command::Measure) {
        points.push_back(arguments.ptPlace);
    }
    for (const POINT pt : points) {
        if (LiesOutside(pt, *subject.dib)) {
            return console.Fail(subject.image,
                                "the point " + pointText(pt) + " lies outside the picture of " +
                                    std::to_string(subject.dib->Width()) + " x " + std::to_string(subject.dib->Height()) +
                                    " pixels",
                                kBadInput);
        }
    }
    int nStatus = kDone;
    const std::int32_t nTop = subject.dib->Height() - 1;
    for (const POINT pt : arguments.clicks) {
        const Detection found = DetectLine(subject.skeleton, pt, arguments.conditions, store);
        clicks.push_back({pt,
                          found.bStored,
                          {found.line.ptFirst.x, nTop - found.line.ptFirst.y},
                          {found.line.ptLast.x, nTop - found.line.ptLast.y},
                          static_cast<std::int32_t>(found.nFitAxis),
                          found.nId});
        if (!found.bStored) {
            nStatus = console.Fail(subject.image, "no line found at " + pointText(pt), kNoResult);
        }
    }
    return nStatus;
}

int SaveResult(const Console& console, const std::string& file, std::span<const std::byte> block) {
    const std::string error = SavePicture(file, block);
    return error.empty() ? static_cast<int>(kDone) : console.Fail(file, error, kBadInput);
}

int RunCommand(const Console& console, const Arguments& arguments) {
    int nWorst = kDone;
    for (const std::string& image : arguments.images) {
        int nStatus = kDone;
        switch (arguments.command) {
            case Arguments::Command::Threshold:
                nStatus = RunThreshold(console, arguments, image);
                break;
            case Arguments::Command::Skeleton:
                nStatus = RunSkeleton(console, arguments, image);
                break;
            case Arguments::Command::Detect:
                nStatus = RunDetect(console, arguments, image);
                break;
            case Arguments::Command::Measure:
                nStatus = RunMeasure(console, arguments, image);
                break;
        }
        nWorst = std::max(nWorst, nStatus);
    }
    return nWorst;
}

}  // namespace width
