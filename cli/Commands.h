// The four subcommands of linewidth, each over one image.
// Tested by: tests/e2e/LinewidthTest.cpp
#pragma once

#include <iosfwd>

#include "cli/Arguments.h"
#include "cli/Report.h"
#include "imageio/ImageIo.h"

namespace width {

/// Where results and mistakes go.
struct Console {
    std::ostream& out;
    std::ostream& err;

    /// One line about an image, then the status.
    int Fail(const std::string& image, const std::string& what, int nStatus) const;
};

/// A picture that was read, with the skeleton of its grey window where a command needs one.
struct Subject {
    std::string image;
    LoadedPicture picture;
    std::optional<DibView> dib;
    GreyWindow grey;
    SkeletonMap skeleton;
};

/// Reads an image; on failure says so and returns the status, else kDone.
int LoadSubject(const Console& console, const std::string& image, Subject& subject);

/// Settles the grey window and makes the skeleton. Returns as LoadSubject.
int MakeSubjectSkeleton(const Console& console, const Arguments& arguments, Subject& subject);

/// Detects the line under each click, in order. Returns kBadInput for a click outside the picture
/// and kNoResult, after all clicks, if one of them found no line.
int DetectLines(const Console& console, const Arguments& arguments, Subject& subject, LineStore& store,
                std::vector<ClickReport>& clicks);

/// Writes a picture; on failure says so and returns kBadInput.
int SaveResult(const Console& console, const std::string& file, std::span<const std::byte> block);

int RunMeasure(const Console& console, const Arguments& arguments, const std::string& image);

/// Runs a command over all its images; the worst status counts.
int RunCommand(const Console& console, const Arguments& arguments);

}  // namespace width
