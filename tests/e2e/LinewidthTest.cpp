// linewidth as a user runs it: real files in, text or JSON and an exit status out.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "imageio/ImageIo.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using test::DibBuilder;

struct Result {
    int nStatus;
    std::string out;
    std::string err;
    Json Parsed() const { return Json::parse(out); }
};

class Linewidth : public testing::Test {
protected:
    void SetUp() override { fs::create_directories(m_dir); }
    void TearDown() override { fs::remove_all(m_dir); }

    std::string Path(const std::string& name) const { return (m_dir / name).string(); }

    Result Call(const std::string& arguments) const {
        const std::string errFile = Path("stderr");
        FILE* pipe = popen(("'" LINEWIDTH "' " + arguments + " 2>'" + errFile + "'").c_str(), "r");
        Result run{0, {}, {}};
        char buffer[4096];
        for (std::size_t n = 0; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
            run.out.append(buffer, n);
        }
        const int nStatus = pclose(pipe);
        run.nStatus = WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
        std::stringstream text;
        text << std::ifstream(errFile).rdbuf();
        run.err = text.str();
        return run;
    }

    // Two dark bars 5 pixels thick, 50 apart, sloping by 1 in nSlope; saved under a name.
    std::string Bars(const std::string& name, std::uint16_t nBits, std::int32_t nResolution = 0,
                     std::int32_t nSlope = 1000) const {
        DibBuilder builder(300, 200, nBits);
        builder.SetResolution(nResolution, nResolution);
        const auto dark = [&](std::int32_t x, std::int32_t s) {
            const std::int32_t d = s - x / nSlope;
            return x >= 20 && x < 280 && ((d >= 60 && d < 65) || (d >= 110 && d < 115));
        };
        if (nBits <= 8) {
            builder.GreyTable().Fill([&](std::int32_t x, std::int32_t s) { return dark(x, s) ? 0U : (1U << nBits) - 1U; });
        } else {
            for (std::int32_t i = 0; i < 300 * 200; ++i) {
                builder.SetPixel(i % 300, i / 300, dark(i % 300, i / 300) ? Colour{10, 20, 30} : Colour{240, 230, 220});
            }
        }
        EXPECT_EQ(SavePicture(Path(name), builder.Block()), "");
        return "'" + Path(name) + "'";
    }

    // A dark bar from left to right and one from its upper side to the top; saved under a name.
    std::string Cross(const std::string& name) const {
        DibBuilder builder(200, 200, 1);
        builder.GreyTable().Fill(
            [](std::int32_t x, std::int32_t s) { return (s > 48 && s < 52) || (x > 98 && x < 102 && s > 90) ? 0U : 1U; });
        EXPECT_EQ(SavePicture(Path(name), builder.Block()), "");
        return "'" + Path(name) + "'";
    }

    static constexpr const char* kClicks = " --at 150,137 --at 150,87 --place 150,110 ";

private:
    fs::path m_dir = fs::temp_directory_path() / ("linewidth-test-" + std::to_string(getpid()));
};

void ExpectOneLineOfError(const Result& run, int nStatus, const std::string& part) {
    EXPECT_EQ(run.nStatus, nStatus) << run.err;
    EXPECT_EQ(std::ranges::count(run.err, '\n'), 1) << run.err;
    EXPECT_NE(run.err.find(part), std::string::npos) << run.err;
}

TEST_F(Linewidth, MeasuresTheSameInEveryFormatAndDepth) {
    struct Case {
        const char* name;
        std::uint16_t nBits;
    };
    for (const auto& [name, nBits] : {Case{"a.bmp", 1},
                                      {"b.bmp", 4},
                                      {"c.bmp", 8},
                                      {"d.bmp", 24},
                                      {"e.bmp", 32},
                                      {"f.png", 1},
                                      {"g.png", 8},
                                      {"h.png", 24},
                                      {"i.tif", 1},
                                      {"j.tif", 8},
                                      {"k.tif", 24},
                                      {"l.gif", 8},
                                      {"m.jpg", 24}}) {
        const Result run = Call("measure " + Bars(name, nBits) + " --grey 0..127 --json" + kClicks);
        ASSERT_EQ(run.nStatus, 0) << name << run.err;
        const Json json = run.Parsed();
        EXPECT_EQ(json["text"], "1#: 50") << name;
        EXPECT_EQ(json["width_px"], 50);
        EXPECT_EQ(json["mean_distance"], 50.0);
        std::string keys;
        for (const auto& [key, value] : json.items()) {
            keys += key + ' ';
        }
        EXPECT_EQ(keys, "image grey lines parallel mean_distance feet width_px text ");
        EXPECT_EQ(json["lines"][1]["at"], Json::array({150, 87}));
        EXPECT_EQ(json["lines"][1]["id"], 3);
    }
}

TEST_F(Linewidth, AResolutionMakesCentimetres) {
    for (const char* name : {"a.bmp", "b.png", "c.tif"}) {
        const Result run = Call("measure " + Bars(name, 8, 500) + " --grey 0..127" + kClicks);
        EXPECT_NE(run.out.find("1#: 10.0000cm"), std::string::npos) << name << run.out << run.err;
    }
}

TEST_F(Linewidth, WritesTheMeasurementIntoACopy) {
    const std::string image = Bars("a.bmp", 8, 700);
    ASSERT_EQ(Call("measure " + image + " --grey 0..127 -o '" + Path("out.png") + "'" + kClicks).nStatus, 0);
    const LoadedPicture picture = LoadPicture(Path("out.png"));
    const DibView dib = *DibView::Open(picture.block);
    EXPECT_EQ(dib.BitCount(), 24);
    EXPECT_EQ(dib.Figures().nXPelsPerMeter, 700);
    EXPECT_EQ(dib.PixelAt(150, 90), (Colour{0, 0, 255})) << "the segment";
    EXPECT_EQ(dib.PixelAt(100, 62), (Colour{255, 0, 0})) << "a line over its skeleton";
    EXPECT_EQ(dib.PixelAt(20, 64), (Colour{0, 255, 0})) << "a corner of the skeleton";
    EXPECT_EQ(dib.PixelAt(5, 5), (Colour{255, 255, 255}));
}

TEST_F(Linewidth, SkeletonIsAGreyPicture) {
    const Result run = Call("skeleton " + Bars("a.png", 1, 300) + " --grey 0..100 --json -o '" + Path("s.bmp") + "'");
    ASSERT_EQ(run.nStatus, 0) << run.err;
    const LoadedPicture picture = LoadPicture(Path("s.bmp"));
    const DibView dib = *DibView::Open(picture.block);
    EXPECT_EQ(dib.BitCount(), 8);
    EXPECT_EQ(dib.Figures().nXPelsPerMeter, 300);
    std::int64_t nWhite = 0;
    for (std::int32_t s = 0; s < 200; ++s) {
        nWhite += std::ranges::count(dib.Row(s), std::uint8_t{255});
        EXPECT_EQ(std::ranges::count_if(dib.Row(s), [](std::uint8_t v) { return v != 0 && v != 255; }), 0);
    }
    EXPECT_EQ(run.Parsed()["pixels"], nWhite);
    EXPECT_GT(nWhite, 500);
}

TEST_F(Linewidth, DetectTellsEachClick) {
    const Result run = Call("detect " + Bars("a.bmp", 8) + " --grey 0..127 --json --at 150,137 --at 150,5 --at 150,87");
    EXPECT_EQ(run.nStatus, 1);
    const Json lines = run.Parsed()["lines"];
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0]["found"], true);
    EXPECT_EQ(lines[1].dump(), R"({"at":[150,5],"found":false})");
    EXPECT_EQ(lines[2]["id"], 3) << "a click without a line takes no id";
    EXPECT_EQ(lines[0]["first"], Json::array({277, 137}));
    EXPECT_EQ(lines[0]["axis"], 0);
}

TEST_F(Linewidth, ChainsWithoutAWidthSayWhichStep) {
    const std::string image = Bars("a.bmp", 8);
    ExpectOneLineOfError(Call("measure " + image + " --grey 0..127 --at 150,137 --at 150,20 --place 1,1"), 1,
                         "no line found at 150,20");
    ExpectOneLineOfError(Call("measure " + image + " --grey 0..127 --at 150,137 --at 100,137 --place 1,1"), 1, "zero");
    ExpectOneLineOfError(Call("measure " + Cross("x.bmp") + " --grey 0..9 --at 60,149 --at 100,60 --place 9,9"), 1,
                         "not parallel");
    ASSERT_EQ(SavePicture(Path("black.bmp"), DibBuilder(9, 9, 8).Block()), "");
    ExpectOneLineOfError(Call("detect '" + Path("black.bmp") + "' --grey auto --at 1,1"), 1, "0..0");
}

TEST_F(Linewidth, JsonTellsAPairThatIsNotParallelFromOneThatWasNotTested) {
    const auto parallel = [&](const std::string& image, const std::string& clicks) {
        const Result run = Call("measure " + image + " --grey 0..127 --json --place 150,110" + clicks);
        EXPECT_EQ(run.nStatus, 1) << run.err;
        return run.Parsed()["parallel"];
    };
    const std::string bars = Bars("a.bmp", 8);
    EXPECT_EQ(parallel(bars, " --at 150,137 --at 150,20"), nullptr) << "one line only";
    EXPECT_EQ(parallel(bars, " --at 150,137 --at 100,137"), true) << "one line twice";
    EXPECT_EQ(parallel(Cross("x.bmp"), " --at 60,149 --at 100,60"), false);
}

TEST_F(Linewidth, BadInputIsOneLineAndStatus2) {
    const std::string image = Bars("a.bmp", 8);
    std::ofstream(Path("text.png")) << "no picture at all";
    ExpectOneLineOfError(Call("threshold '" + Path("none.bmp") + "'"), 2, "none.bmp");
    ExpectOneLineOfError(Call("threshold '" + Path("text.png") + "'"), 2, "text.png");
    ExpectOneLineOfError(Call("threshold '" + Path("") + "'"), 2, "");
    ExpectOneLineOfError(Call("detect " + image + " --grey 0..127 --at 300,5"), 2, "outside");
    ExpectOneLineOfError(Call("measure " + image + " --grey 0..127 --at 150,137 --at 150,87 --place 0,200"), 2, "outside");
    ExpectOneLineOfError(Call("skeleton " + image + " --grey 0..127 -o '" + Path("no/such/dir.png") + "'"), 2, "dir.png");
    ExpectOneLineOfError(Call("skeleton " + image + " --grey 0..127 -o '" + Path("x.doc") + "'"), 2, "x.doc");
    for (const char* arguments :
         {"", "frobnicate", "detect --grey 0..9 --at 1,1", "--grey 9..3 --at 1,1", "--grey 0..256 --at 1,1",
          "--grey dark --at 1,1", "--grey 0..9 --at 1:1", "--grey 0..9 --at 1,1x", "--grey 0..9 --at 99999999999,1",
          "--grey 0..9 --at 1,1 --min-length -1", "--grey 0..9 --at 1,1 --rect-width nan", "--grey 0..9", "--at 1,1",
          "--grey 0..9 --at 1,1 --bogus"}) {
        const std::string text = arguments;
        ExpectOneLineOfError(Call(text.starts_with("--") ? "detect " + image + " " + text : text), 2, "linewidth: ");
    }
    ExpectOneLineOfError(Call("measure " + image + " --grey 0..127 --at 150,137 --place 9,9"), 2, "two points");
}

TEST_F(Linewidth, ManyImagesGoOnAfterABadOne) {
    const Result run = Call("threshold --json " + Bars("a.bmp", 8) + " '" + Path("none.png") + "' " + Bars("b.tif", 24));
    EXPECT_EQ(run.nStatus, 2);
    EXPECT_EQ(std::ranges::count(run.out, '\n'), 2);
    EXPECT_EQ(std::ranges::count(run.err, '\n'), 1);
}

TEST_F(Linewidth, HelpAndVersion) {
    for (const char* arguments :
         {"--help", "threshold --help", "skeleton --help", "detect --help", "measure --help", "--version"}) {
        const Result run = Call(arguments);
        EXPECT_EQ(run.nStatus, 0);
        EXPECT_EQ(run.err, "");
        EXPECT_NE(run.out.find("linewidth"), std::string::npos);
    }
}

}  // namespace
}  // namespace width
