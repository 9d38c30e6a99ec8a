// Every way of making the skeleton against the literal one: each instruction set, one thread and two.
#include "analysis/fast/SkeletonRun.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

#include "analysis/fast/ThreadPair.h"
#include "tests/support/LiteralSkeleton.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using fast::InstructionSet;
using test::DibBuilder;

constexpr GreyWindow kDark{0, 127};

std::vector<InstructionSet> Sets() {
    std::vector<InstructionSet> sets = {InstructionSet::Sse2};
    if (fast::BestInstructionSet() == InstructionSet::Avx2) {
        sets.push_back(InstructionSet::Avx2);
    }
    return sets;
}

// One thread, two that share the rows as they get there, and two with a seam in the middle, with as few rows on one side of it
// as can be, and in a place of each picture's own.
std::vector<fast::Bands> WaysToShare(const DibView& dib, int nMostThreads) {
    constexpr std::int32_t kFewest = fast::Bands::kFewestRows;
    std::vector<fast::Bands> ways = {fast::BandsFor(dib, 1)};
    if (nMostThreads > 1 && dib.Height() >= 2 * kFewest) {
        ways.push_back(fast::BandsFor(dib, 2));
        std::vector<std::int32_t> seams = {dib.Height() / 2,
                                           kFewest + (7 * dib.Width() + dib.Height()) % (dib.Height() - 2 * kFewest + 1)};
        if (dib.Height() < 100) {
            seams.insert(seams.end(), {kFewest, dib.Height() - kFewest});
        }
        for (const std::int32_t nSeam : seams) {
            ways.push_back({nSeam, dib.Height() - nSeam});
        }
    }
    return ways;
}

// The result is compared and the picture must be as it was.
void ExpectLiteral(const std::vector<std::byte>& block, int nMostThreads, GreyWindow window = kDark) {
    static const std::vector<InstructionSet> s_sets = Sets();
    const std::vector<std::byte> before = block;
    const DibView dib = *DibView::Open(block);
    const SkeletonMap literal = test::LiteralSkeleton(dib, window);
    for (const InstructionSet set : s_sets) {
        for (const fast::Bands bands : WaysToShare(dib, nMostThreads)) {
            const SkeletonMap map = fast::MakeSkeleton(dib, window, set, bands);
            ASSERT_EQ(map == literal, true) << dib.Width() << " x " << dib.Height() << " bits " << dib.BitCount() << " set "
                                            << static_cast<int>(set) << " bands " << bands.nLowerRows << ' ' << bands.nUpperRows
                                            << (dib.Width() < 70 ? test::Drawing(map) + test::Drawing(literal) : "");
        }
    }
    ASSERT_EQ(block, before);
}

// Black where inside(x, s) holds.
template <class Inside>
std::vector<std::byte> Shape(std::int32_t w, std::int32_t h, Inside inside) {
    return DibBuilder(w, h, 8).GreyTable().Fill([&](std::int32_t x, std::int32_t s) { return inside(x, s) ? 0U : 255U; }).Block();
}

std::uint16_t AnyDepth(std::mt19937& random) {
    return std::array<std::uint16_t, 5>{1, 4, 8, 24, 32}[random() % 5];
}

// Every picture of 4 x 4 and smaller, and 1 x n strips: all rules meet the picture's edge here.
TEST(SkeletonRun, AllSmallMaps) {
    struct Size {
        std::int32_t w, h;
    };
    for (const auto [w, h] : {Size{4, 4}, Size{5, 3}, Size{2, 6}, Size{6, 2}, Size{1, 12}, Size{12, 1}}) {
        std::vector<std::byte> block = DibBuilder(w, h, 8, 2).SetColour(1, {255, 255, 255}).Block();
        const DibFigures figures = DibView::Open(block)->Figures();
        for (std::uint32_t nBits = 0; nBits < 1U << (w * h); ++nBits) {
            for (std::int32_t i = 0; i < w * h; ++i) {
                const std::size_t nByte = static_cast<std::size_t>(i / w) * figures.nStride + static_cast<std::size_t>(i % w);
                block[figures.nBitsOffset + nByte] = static_cast<std::byte>(nBits >> i & 1U);
            }
            ExpectLiteral(block, 1);
            ASSERT_FALSE(testing::Test::HasFatalFailure());
        }
    }
}

TEST(SkeletonRun, RandomPicturesOfEveryDepth) {
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        const auto w = 1 + test::Below(random, i % 8 == 0 ? 150 : 40);
        const auto h = 1 + test::Below(random, 45);
        ExpectLiteral(test::RandomDib(random, w, h, AnyDepth(random), static_cast<test::Texture>(random() % 4)),
                      i % 3 == 0 ? 2 : 1);
        ASSERT_FALSE(testing::Test::HasFatalFailure()) << i;
    }
}

TEST(SkeletonRun, EveryWidthRoundTheVectorsAndEveryHeightRoundTheSeam) {
    std::mt19937 random(9);
    for (std::int32_t w = 1; w <= 200; w += w % 16 >= 2 && w % 16 < 14 ? 4 : 1) {
        for (const std::uint16_t nBits : std::array<std::uint16_t, 5>{1, 4, 8, 24, 32}) {
            ExpectLiteral(test::RandomDib(random, w, 13, nBits, static_cast<test::Texture>(random() % 4)), 1);
        }
        ASSERT_FALSE(testing::Test::HasFatalFailure()) << w;
    }
    for (std::int32_t h = 1; h <= 40; ++h) {
        ExpectLiteral(test::RandomDib(random, 70, h, 8, static_cast<test::Texture>(h % 4)), 2);
        ASSERT_FALSE(testing::Test::HasFatalFailure()) << h;
    }
}

// Indices inside the window that do not follow each other, and a table that is shorter than the depth allows.
TEST(SkeletonRun, ColourTablesInAnyOrder) {
    std::mt19937 random(10);
    for (int i = 0; i < 60; ++i) {
        const std::uint16_t nBits = std::array<std::uint16_t, 3>{1, 4, 8}[static_cast<std::size_t>(i) % 3];
        const std::uint32_t nColours = 1 + static_cast<std::uint32_t>(random()) % (1U << nBits);
        DibBuilder builder(67, 9, nBits, nColours);
        for (std::uint32_t n = 0; n < nColours; ++n) {
            const auto level = static_cast<std::uint8_t>(random());
            builder.SetColour(n, {level, level, static_cast<std::uint8_t>(random())});
        }
        builder.Fill([&](std::int32_t, std::int32_t) { return static_cast<std::uint32_t>(random()) % (1U << nBits); });
        ExpectLiteral(builder.Block(), 1, {test::Below(random, 100), 100 + test::Below(random, 156)});
        ASSERT_FALSE(testing::Test::HasFatalFailure()) << i;
    }
}

// Where a one-sided distance reaches 256 it wraps: squares, the triangles that one pass alone sees as deep, and diamonds,
// of the sizes at which that begins and of twice that. The seam of two threads lies at different heights in them.
TEST(SkeletonRun, ShapesAboutAsDeepAsAByteCanCount) {
    for (const std::int32_t n : {254, 255, 256, 257, 258, 530}) {
        const std::int32_t m = n / 2;
        for (int nShape = 0; nShape < 6; ++nShape) {
            const auto inside = [&](std::int32_t x, std::int32_t s) {
                const std::int32_t a = nShape % 2 == 0 ? x : n - 1 - x;
                const std::int32_t b = nShape % 4 < 2 ? s : n - 1 - s;
                if (a < 0 || b < 0 || a >= n || b >= n) {
                    return false;
                }
                return nShape == 4 || (nShape == 5 ? std::abs(a - m) + std::abs(b - m) <= m : a + b < n);
            };
            const std::int32_t nBelow = 3 + 40 * nShape;
            ExpectLiteral(Shape(n + 5, n + nBelow + 9, [&](std::int32_t x, std::int32_t s) { return inside(x - 2, s - nBelow); }),
                          2);
            ASSERT_FALSE(testing::Test::HasFatalFailure()) << n << " shape " << nShape;
        }
    }
}

TEST(SkeletonRun, RandomPicturesThatWrap) {
    std::mt19937 random(8);
    for (const std::int32_t n : {509, 511, 512, 513, 600}) {
        ExpectLiteral(test::RandomDib(random, n, n + 3, AnyDepth(random), test::Texture::DeepBlocks), 2);
        ExpectLiteral(test::RandomDib(random, 700, n, 8, test::Texture::DeepBlocks), 2);
    }
    // Whole planes with pinholes: several wrapped cells in a row, and rows with and without.
    for (int i = 0; i < 6; ++i) {
        DibBuilder builder(900 + 61 * i, 640, 8);
        for (int nHole = 0; nHole < 4 * i; ++nHole) {
            builder.SetIndex(test::Below(random, 900), test::Below(random, 640), 1);
        }
        ExpectLiteral(builder.SetColour(1, {255, 255, 255}).Block(), 2);
    }
}

TEST(SkeletonRun, AnUnreadableDepthGivesAnEmptyMap) {
    const std::vector<std::byte> block = DibBuilder(19, 19, 16).Block();
    const DibView dib = *DibView::Open(block);
    for (const InstructionSet set : Sets()) {
        EXPECT_EQ(fast::MakeSkeleton(dib, kDark, set, fast::BandsFor(dib, 2)), SkeletonMap(19, 19));
    }
}

struct NoThread {
    NoThread() = default;
    template <class F>
    explicit NoThread(F) {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
    static bool joinable() { return false; }
    static void join() {}
};

TEST(ThreadPair, DoesBothWithAndWithoutASecondThread) {
    int nFirst = 0;
    int nSecond = 0;
    const auto runTwice = [&](auto pair) {
        for (int i = 0; i < 2; ++i) {
            pair->RunBoth([&] { ++nFirst; }, [&] { ++nSecond; });
        }
    };
    runTwice(std::make_unique<fast::ThreadPair<>>(true));
    runTwice(std::make_unique<fast::ThreadPair<>>(false));
    runTwice(std::make_unique<fast::ThreadPair<NoThread>>(true));
    EXPECT_EQ(nFirst, 6);
    EXPECT_EQ(nSecond, 6);
}

// Either thread waits, in its sleep or before it, where the other is not as far.
TEST(ThreadPair, WorkOfDifferentLengthIsWaitedFor) {
    fast::ThreadPair<std::thread, 0> sleepy(true);
    fast::ThreadPair<> wakeful(true);
    for (int i = 0; i < 40; ++i) {
        int nDone = 0;
        std::atomic<int> nDoneBySecond = 0;
        const auto rest = [](bool bLong) { std::this_thread::sleep_for(std::chrono::milliseconds(bLong ? 2 : 0)); };
        const auto work = [&](auto& pair) {
            pair.RunBoth(
                [&] {
                    rest(i % 2 == 0);
                    ++nDoneBySecond;
                },
                [&] {
                    rest(i % 2 != 0);
                    ++nDone;
                });
        };
        work(sleepy);
        work(wakeful);
        ASSERT_TRUE(nDone == 2 && nDoneBySecond == 2) << i;
        rest(i % 3 == 0);
    }
}

}  // namespace
}  // namespace width
