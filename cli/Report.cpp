// Texts and JSON. JSON keys stand in a fixed order; a file name that is not UTF-8 gets replacement
// characters there instead of breaking the output.
// Tested by: tests/e2e/LinewidthTest.cpp
#include "cli/Report.h"

#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

namespace width {

namespace {

using Json = nlohmann::ordered_json;

Json PointJson(POINT pt) {
    return Json::array({std::int32_t{pt.x}, std::int32_t{pt.y}});
}
Json GreyJson(GreyWindow grey) {
    return Json::array({grey.nMinGrey, grey.nMaxGrey});
}

template <typename T>
Json OrNull(const std::optional<T>& value) {
    return value ? Json(*value) : Json(nullptr);
}

Json LinesJson(const std::vector<ClickReport>& clicks) {
    Json lines = Json::array();
    for (const ClickReport& click : clicks) {
        Json line = {{"at", PointJson(click.ptAt)}, {"found", click.bFound}};
        if (click.bFound) {
            line["first"] = PointJson(click.ptFirst);
            line["last"] = PointJson(click.ptLast);
            line["axis"] = click.nAxis;
            line["id"] = OrNull(click.nId);
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

void Print(std::ostream& out, const Json& json) {
    out << json.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

std::string PointText(POINT pt) {
    return std::to_string(pt.x) + "," + std::to_string(pt.y);
}

void PrintClicks(std::ostream& out, const std::vector<ClickReport>& clicks) {
    for (const ClickReport& click : clicks) {
        out << "  at " << PointText(click.ptAt) << ": ";
        if (!click.bFound) {
            out << "no line\n";
            continue;
        }
        out << "line from " << PointText(click.ptFirst) << " to " << PointText(click.ptLast)
            << (click.nAxis == 0 ? "" : ", fitted") << (click.nId ? "" : ", an end outside the picture") << '\n';
    }
}

void PrintGrey(std::ostream& out, GreyWindow grey) {
    out << "grey " << grey.nMinGrey << ".." << grey.nMaxGrey;
}

}  // namespace

void ReportThreshold(std::ostream& out, bool bJson, const std::string& image, std::int32_t nThreshold) {
    if (bJson) {
        Print(out, {{"image", image}, {"threshold", nThreshold}});
    } else {
        out << image << ": threshold " << nThreshold << '\n';
    }
}

void ReportSkeleton(std::ostream& out, bool bJson, const std::string& image, GreyWindow grey, std::int64_t nPixels) {
    if (bJson) {
        Print(out, {{"image", image}, {"grey", GreyJson(grey)}, {"pixels", nPixels}});
        return;
    }
    out << image << ": ";
    PrintGrey(out, grey);
    out << ", " << nPixels << " skeleton pixels\n";
}

void ReportDetect(std::ostream& out, bool bJson, const std::string& image, GreyWindow grey,
                  const std::vector<ClickReport>& clicks) {
    if (bJson) {
        Print(out, {{"image", image}, {"grey", GreyJson(grey)}, {"lines", LinesJson(clicks)}});
        return;
    }
    out << image << ": ";
    PrintGrey(out, grey);
    out << '\n';
    PrintClicks(out, clicks);
}

void ReportMeasure(std::ostream& out, bool bJson, const std::string& image, GreyWindow grey,
                   const std::vector<ClickReport>& clicks, const MeasureReport& measure) {
    if (bJson) {
        const bool bLabel = measure.nWidth.has_value();
        Print(out, {{"image", image},
                    {"grey", GreyJson(grey)},
                    {"lines", LinesJson(clicks)},
                    {"parallel", OrNull(measure.bParallel)},
                    {"mean_distance", OrNull(measure.fMeanDistance)},
                    {"feet", bLabel ? Json::array({PointJson(measure.feet.ptA), PointJson(measure.feet.ptB)}) : Json(nullptr)},
                    {"width_px", OrNull(measure.nWidth)},
                    {"text", bLabel ? Json(measure.text) : Json(nullptr)}});
        return;
    }
    out << image << ": ";
    if (measure.nWidth) {
        out << measure.text << '\n' << "  ";
    }
    PrintGrey(out, grey);
    out << '\n';
    PrintClicks(out, clicks);
    if (measure.nWidth) {
        out << "  from " << PointText(measure.feet.ptA) << " to " << PointText(measure.feet.ptB) << ", mean distance "
            << std::fixed << std::setprecision(2) << *measure.fMeanDistance << " pixels\n";
    }
}

}  // namespace width
