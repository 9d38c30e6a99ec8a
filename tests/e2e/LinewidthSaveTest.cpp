// What stands in the way of a save on Linux: a disk without room, for every format and depth, and the end of the process at
// any moment. Run by tests/support/full-disk.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <random>

#include "imageio/ImageIo.h"
#include "tests/support/Pictures.h"
#include "tests/support/SmallDisk.h"

namespace width {
namespace {

namespace fs = std::filesystem;
using Block = std::vector<std::byte>;

const std::string kEndings[] = {".bmp", ".png", ".jpg", ".tif", ".gif"};

// Noise, so that no format makes it small.
Block Noise(std::int32_t nWidth, std::int32_t nHeight, std::uint16_t nBits, std::uint32_t nSeed = 1) {
    test::DibBuilder builder(nWidth, nHeight, nBits);
    if (nBits <= 8) {
        builder.GreyTable();
    }
    Block block = builder.Block();
    std::mt19937 random(nSeed);
    const std::size_t nRows = CheckPackedDib(block).figures.nBitsOffset;
    std::generate(block.begin() + static_cast<std::ptrdiff_t>(nRows), block.end(), [&] { return std::byte(random() % 256); });
    return block;
}

class FullDisk : public testing::Test {
protected:
    const test::SmallDisk disk;
};

TEST_F(FullDisk, EveryFormatAndDepthSaysSo) {
    for (const auto nBits : std::initializer_list<std::uint16_t>{1, 4, 8, 24, 32}) {
        const Block block = Noise(301, 203, nBits);
        for (const std::string& ending : kEndings) {
            const fs::path path = disk / ("a" + ending);
            if (!SavePicture(path, block).empty()) {
                EXPECT_TRUE(ending == ".gif" && nBits > 8);
                continue;
            }
            disk.ExpectFullDisk(path, fs::file_size(path), [&](bool bReally) {
                EXPECT_EQ(SavePicture(path, block),
                          bReally ? "the disk is full (No space left on device)" : "the disk is full (File too large)");
            });
        }
    }
}

TEST_F(FullDisk, LinewidthSaysSoAndEndsWithStatus2) {
    test::DibBuilder bars(301, 203, 8);
    bars.GreyTable().Fill([](std::int32_t x, std::int32_t s) {
        const bool bBar = x >= 20 && x < 280 && ((s >= 60 && s < 65) || (s >= 110 && s < 115));
        return bBar ? 0U : static_cast<std::uint32_t>(200 + (x * 7 + s * 13) % 50);
    });
    const std::string image = (disk / "bars.bmp").string();
    ASSERT_EQ(SavePicture(image, bars.Block()), "");
    const std::string clicks = " --at 150,140 --at 150,90 --place 150,115 ";
    for (const std::string& command :
         {"skeleton '" + image + "' --grey 0..127", "measure '" + image + "' --grey 0..127" + clicks}) {
        for (const std::string ending : {".bmp", ".png", ".jpg", ".tif", ".gif"}) {
            const fs::path path = disk / ("a" + ending);
            const std::string line = "'" LINEWIDTH "' " + command + " -o '" + path.string() + "' 2>&1 >/dev/null";
            const auto run = [&](std::string& said) {
                std::array<char, 1000> text{};
                FILE* const pPipe = popen(line.c_str(), "r");
                said.assign(text.data(), std::fread(text.data(), 1, text.size(), pPipe));
                return WEXITSTATUS(pclose(pPipe));
            };
            std::string said;
            if (run(said) != 0) {
                EXPECT_TRUE(ending == ".gif" && command.starts_with("measure")) << said;
                continue;
            }
            disk.ExpectFullDisk(path, fs::file_size(path), [&](bool) {
                EXPECT_EQ(run(said), 2);
                EXPECT_TRUE(said.starts_with("linewidth: " + path.string() + ": the disk is full (")) << said;
                EXPECT_EQ(std::ranges::count(said, '\n'), 1) << said;
            });
        }
    }
}

// In a process of its own.
pid_t StartSaving(const fs::path& path, const Block& block) {
    const pid_t nChild = fork();
    if (nChild == 0) {
        _exit(SavePicture(path, block).empty() ? 0 : 1);
    }
    return nChild;
}

// The moments lie about the end of a save: each kill that comes too late brings the next ones forward, and the other way round.
TEST_F(FullDisk, AProcessThatIsKilledLeavesAnOldFileOrANewOne) {
    constexpr int kKills = 50;
    std::mt19937 random(7);
    for (const std::string& ending : kEndings) {
        const fs::path path = disk / ("killed" + ending);
        const std::array<Block, 2> blocks{Noise(200, 150, 8, 1), Noise(200, 150, 8, 2)};
        std::array<std::string, 2> whole;
        for (std::size_t i = 0; i < 2; ++i) {
            ASSERT_EQ(SavePicture(path, blocks[i]), "");
            whole[i] = test::Contents(path);
        }
        std::size_t nIs = 1;
        int nNew = 0;
        double fLast = 5000;  // microseconds
        for (int i = 0; i < kKills; ++i) {
            const pid_t nChild = StartSaving(path, blocks[1 - nIs]);
            usleep(static_cast<useconds_t>(random() % static_cast<std::uint32_t>(fLast + 1)));
            kill(nChild, SIGKILL);
            waitpid(nChild, nullptr, 0);
            const std::string now = test::Contents(path);
            EXPECT_TRUE(now == whole[0] || now == whole[1]) << ending << ", kill " << i << ": " << now.size() << " bytes";
            const bool bNew = now == whole[1 - nIs];
            nIs = bNew ? 1 - nIs : nIs;
            nNew += bNew ? 1 : 0;
            fLast *= bNew ? 0.8 : 1.25;
        }
        EXPECT_GT(nNew, 0) << ending << ": no save was quick enough";
        EXPECT_LT(nNew, kKills) << ending << ": no kill came in time";
        for (const fs::path& name : test::NamesIn(path.parent_path())) {
            fs::remove(path.parent_path() / name);  // what the killed could not take away
        }
    }
}

}  // namespace
}  // namespace width
