// The options of the four subcommands.
// Tested by: tests/e2e/LinewidthTest.cpp
#include "cli/Arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <ostream>

namespace width {

namespace {

constexpr const char* kAbout =
    "Measures the width between lines in pictures: choose a grey window, reduce what lies in it to a skeleton,\n"
    "detect the straight line under a click, and measure the distance between two lines.\n"
    "Points are image pixels X,Y from the top left. Exit status: 0 done, 1 no result, 2 bad input.";

// A whole text as one integer.
std::optional<std::int32_t> ParseInt(std::string_view text) {
    std::int32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

// Two integers with a separator between them.
std::optional<std::pair<std::int32_t, std::int32_t>> ParsePair(std::string_view text, std::string_view separator) {
    const std::size_t n = text.find(separator);
    if (n == std::string_view::npos) {
        return std::nullopt;
    }
    const auto first = ParseInt(text.substr(0, n));
    const auto second = ParseInt(text.substr(n + separator.size()));
    return first && second ? std::optional(std::pair(*first, *second)) : std::nullopt;
}

POINT ParsePoint(const std::string& option, const std::string& text) {
    const auto pair = ParsePair(text, ",");
    if (!pair) {
        throw CLI::ValidationError(option, "'" + text + "' is not a point X,Y");
    }
    return {pair->first, pair->second};
}

std::optional<GreyWindow> ParseGrey(const std::string& text) {
    if (text == "auto") {
        return std::nullopt;
    }
    const auto pair = ParsePair(text, "..");
    if (!pair) {
        throw CLI::ValidationError("--grey", "'" + text + "' is neither MIN..MAX nor auto");
    }
    const GreyWindow window{pair->first, pair->second};
    if (!IsGreyWindowValid(window)) {
        throw CLI::ValidationError("--grey",
                                   "'" + text + "' is not a window: MIN must be 0 or more, MAX above MIN and at most 255");
    }
    return window;
}

// Texts of options that are turned into values once everything is there.
struct RawArguments {
    std::string grey;
    std::vector<std::string> at;
    std::string place;
    float fRectWidth = 3.0F;
    bool bNoRect = false;
};

void AddGrey(CLI::App& command, RawArguments& raw) {
    command.add_option("--grey", raw.grey, "grey window MIN..MAX of what is measured, or auto for the darker half")
        ->required()
        ->type_name("MIN..MAX|auto");
}

void AddImage(CLI::App& command, Arguments& arguments, int nMost) {
    command.add_option("image", arguments.images, "picture: BMP, PNG, JPEG, TIFF or GIF")
        ->required()
        ->expected(1, nMost)
        ->type_name("IMAGE");
    command.add_flag("--json", arguments.bJson, "one JSON object per image on a line of its own");
}

void AddClicks(CLI::App& command, RawArguments& raw, const char* help) {
    command.add_option("--at", raw.at, help)->required()->type_name("X,Y")->expected(1)->take_all();
}

void AddConditions(CLI::App& command, Arguments& arguments, RawArguments& raw) {
    command.add_option("--min-length", arguments.conditions.nMinLineLength, "shortest accepted line, pixels (default 30)")
        ->check(CLI::Range(0, 1000))
        ->type_name("N");
    command.add_flag("--no-rect", raw.bNoRect, "no line is fitted to curved stretches");
    command
        .add_option("--rect-width", raw.fRectWidth, "widest strip that counts as a line when one is fitted, pixels (default 3)")
        ->check(CLI::Range(0.0, 1000.0))
        ->type_name("W");
}

void AddOut(CLI::App& command, Arguments& arguments, const char* help) {
    command.add_option("-o,--out", arguments.outFile, help)->type_name("FILE");
}

// Texts to values. Throws CLI::Error for what can't be used.
void Convert(const RawArguments& raw, Arguments& arguments) {
    if (arguments.command != Arguments::Command::Threshold) {
        arguments.grey = ParseGrey(raw.grey);
    }
    for (const std::string& text : raw.at) {
        arguments.clicks.push_back(ParsePoint("--at", text));
    }
    if (arguments.command == Arguments::Command::Measure) {
        if (arguments.clicks.size() != 2) {
            throw CLI::ValidationError("--at", "two points are needed, one on each line");
        }
        arguments.ptPlace = ParsePoint("--place", raw.place);
    }
    arguments.conditions.bRectAlgorithm = raw.bNoRect ? 0 : 1;
    if (!std::isfinite(raw.fRectWidth)) {
        throw CLI::ValidationError("--rect-width", "is not a number");
    }
    arguments.conditions.fRectWidth = raw.fRectWidth;
}

std::string OneLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

}  // namespace

ParsedArguments ParseArguments(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
    Arguments arguments;
    RawArguments raw;
    CLI::App app(kAbout, "linewidth");
    app.set_version_flag("--version", "linewidth " WIDTH_VERSION);
    app.require_subcommand(1);

    CLI::App* pThreshold = app.add_subcommand("threshold", "Propose the grey level that splits a picture into two halves.");
    AddImage(*pThreshold, arguments, std::numeric_limits<std::int16_t>::max());

    CLI::App* pSkeleton =
        app.add_subcommand("skeleton", "Write the skeleton of a grey window as a picture: 255 skeleton, 0 elsewhere.");
    AddImage(*pSkeleton, arguments, 1);
    AddGrey(*pSkeleton, raw);
    AddOut(*pSkeleton, arguments, "file to write; its ending says the format");
    pSkeleton->get_option("--out")->required();

    CLI::App* pDetect = app.add_subcommand("detect", "Detect the straight line under each click.");
    AddImage(*pDetect, arguments, 1);
    AddGrey(*pDetect, raw);
    AddClicks(*pDetect, raw, "a click on the skeleton; may be given several times, clicks act one after another");
    AddConditions(*pDetect, arguments, raw);

    CLI::App* pMeasure = app.add_subcommand("measure", "Measure the distance between the lines under two clicks.");
    AddImage(*pMeasure, arguments, 1);
    AddGrey(*pMeasure, raw);
    AddClicks(*pMeasure, raw, "a click on a line's skeleton; to be given twice, once for each line");
    pMeasure->add_option("--place", raw.place, "where the label goes")->required()->type_name("X,Y");
    AddConditions(*pMeasure, arguments, raw);
    AddOut(*pMeasure, arguments, "picture to write with skeleton, lines and the measured segment; its ending says the format");

    try {
        app.parse(argc, argv);
        using Command = Arguments::Command;
        arguments.command = *pThreshold  ? Command::Threshold
                            : *pSkeleton ? Command::Skeleton
                            : *pDetect   ? Command::Detect
                                         : Command::Measure;
        Convert(raw, arguments);
        return {arguments, kDone};
    } catch (const CLI::Success& success) {
        app.exit(success, out, err);
        return {std::nullopt, kDone};
    } catch (const CLI::Error& error) {
        err << "linewidth: " << OneLine(error.what()) << " (linewidth --help tells more)\n";
        return {std::nullopt, kBadInput};
    }
}

}  // namespace width
