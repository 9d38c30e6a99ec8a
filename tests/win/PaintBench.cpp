// What a frame costs: paint_bench [WIDTH HEIGHT]. Prints, for a job with skeleton and lines on a large picture, the time
// of a full repaint of the maximised window at every zoom, of a frame after a change of overlays, and, beside them in
// the same run, of one paint as if nothing were kept: a private copy, a cleared scratch area, a bitmap of the picture's
// size, a system call for every skeleton cell, one stretch. Then the time from pi_start to the first painted frame
// beside that of an empty job and of one copy of the block. Last, Write to Bitmap from the command to its message, beside
// storing the same pixels with a system call each.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "analysis/GreyLevels.h"
#include "analysis/Skeleton.h"
#include "measure/Composition_win.h"
#include "res/resource.h"
#include "tests/e2e/PluginJob.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using Clock = std::chrono::steady_clock;

double MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Best of several runs.
template <class Work>
double Best(int nRuns, Work work) {
    double best = 1e9;
    for (int i = 0; i < nRuns; ++i) {
        const auto start = Clock::now();
        work();
        best = std::min(best, MillisecondsSince(start));
    }
    return best;
}

// Line art: dark bars five pixels thick, one in seven rows of bars inside.
std::vector<std::byte> LineArt(std::int32_t nWidth, std::int32_t nHeight) {
    test::DibBuilder builder(nWidth, nHeight, 8);
    std::vector<std::byte> block = builder.GreyTable().Block();
    const std::size_t nStride = DibStride(8, static_cast<std::uint32_t>(nWidth));
    for (std::int32_t s = 0; s < nHeight; ++s) {
        std::memset(block.data() + 40 + 1024 + nStride * static_cast<std::size_t>(s), s % 35 < 5 ? 10 : 240, nStride);
    }
    return block;
}

// A wait that sees the moment as it comes; in vain, an ordinary one, which tells what stands in the way.
bool SpinUntil(const std::function<bool()>& condition) {
    const auto start = Clock::now();
    while (!condition() && MillisecondsSince(start) < test::kLongestWaitMs) {
        ::SwitchToThread();
    }
    return test::WaitFor(condition, 0);
}

void Repaint(HWND hView) {
    ::RedrawWindow(hView, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    ::GdiFlush();
}

double PaintThatKeepsNothing(const std::vector<std::byte>& block, const SkeletonMap& skeleton) {
    const HDC hdcScreen = ::GetDC(nullptr);
    const double ms = Best(1, [&] {
        const std::vector<std::byte> copy = block;
        const DibView dib = *DibView::Open(copy);
        const std::int32_t nWidth = dib.Width();
        const std::int32_t nHeight = dib.Height();
        const std::vector<std::byte> scratch(std::size_t{DibStride(24, static_cast<std::uint32_t>(nWidth))} *
                                             static_cast<std::size_t>(nHeight));
        const DrawingInfo info = DrawingInfoOf(dib);
        CDC dc;
        dc.CreateCompatibleDC(hdcScreen);
        CBitmap bitmap;
        bitmap.CreateCompatibleBitmap(hdcScreen, nWidth, nHeight);
        const CSelectGuard selected(dc, bitmap);
        ::StretchDIBits(dc, 0, 0, nWidth, nHeight, 0, 0, nWidth, nHeight, copy.data() + dib.Figures().nBitsOffset, info.Get(),
                        DIB_RGB_COLORS, SRCCOPY);
        for (std::int32_t s = 0; s < nHeight; ++s) {
            for (std::int32_t x = 0; x < nWidth; ++x) {
                if (skeleton.At({s + 2, x + 2}) != 0) {
                    dc.SetPixel(x, nHeight - 1 - s, RGB(0, 255, 0));
                }
            }
        }
        ::SetStretchBltMode(hdcScreen, COLORONCOLOR);
        ::StretchBlt(hdcScreen, 0, 0, 1000, 700, dc, 0, 0, nWidth, nHeight, SRCCOPY);
        ::GdiFlush();
    });
    ::ReleaseDC(nullptr, hdcScreen);
    return ms;
}

// What can't be measured is no figure: the wait has told why.
void Must(bool bHappened) {
    if (!bHappened) {
        std::fflush(stdout);
        std::_Exit(2);  // the job is still running: nothing is torn down under it
    }
}

// Answers the box or dialog that opens, and goes on when the view has taken over what it chose.
void AnswerNextBox(const test::PluginJob& job) {
    const HWND hBox = test::WaitForWindow(0, L"#32770");
    Must(hBox != nullptr);
    test::PostCommand(hBox, IDOK);
    Must(test::WaitUntilClosed(hBox) && job.WaitUntilIdle());
}

// What the pane of the size says once the picture is there; before, it bears a text of its own.
std::wstring SizePane(const std::vector<std::byte>& block) {
    const DibView dib = *DibView::Open(block);
    return std::to_wstring(dib.Width()) + L" x " + std::to_wstring(dib.Height());
}

// A job with its picture in the window.
void StartJob(test::PluginJob& job, const std::vector<std::byte>& block) {
    Must(job.Start(block) != nullptr && job.WaitForPane(1, SizePane(block)));
}

void ChooseGreyWindow(const test::PluginJob& job) {
    ::PostMessageW(job.Frame(), WM_COMMAND, ID_BINARY_SETTING, 0);
    AnswerNextBox(job);
}

// Detects forty lines of the line art.
void DetectLines(const test::PluginJob& job) {
    Must(job.Command(ID_TOOL_LINE_DETECT));
    for (int i = 0; i < 40; ++i) {
        Must(job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(500, 40 + 15 * i)));
    }
}

void TimeFrames(const std::vector<std::byte>& block) {
    test::PluginJob job(0x0409);
    StartJob(job, block);
    const double bare = Best(20, [&] { Repaint(job.View()); });
    std::printf("frame at 1/1 without overlays, straight from the block: %.2f ms\n", bare);
    ChooseGreyWindow(job);
    Must(job.Command(ID_SKELETONIZE));
    const auto first = Clock::now();
    Repaint(job.View());
    std::printf("first frame with overlays, fresh memory: %.1f ms\n", MillisecondsSince(first));
    DetectLines(job);
    Repaint(job.View());
    const double change = Best(5, [&] {
        Must(job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(500, 40)));  // a line more throws the composition away
        Repaint(job.View());
    });
    std::printf("frame after a change of overlays: %.1f ms\n", change);
    Must(job.Command(ID_TOOL_ZOOM));
    while (job.Pane(2) != L"Zoom: 5%") {
        const std::wstring before = job.Pane(2);
        Must(job.Send(job.View(), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(9, 9)));
        Must(test::WaitFor([&] { return job.Pane(2) != before; }));
    }
    double worst = 0;
    std::printf("kept frame at each zoom, ms:");
    for (std::wstring pane;;) {
        pane = job.Pane(2);
        Repaint(job.View());
        const double ms = Best(10, [&] { Repaint(job.View()); });
        worst = std::max(worst, ms);
        std::printf(" %ls %.2f", pane.substr(6).c_str(), ms);
        if (pane == L"Zoom: 1600%")
            break;
        Must(job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(9, 9)));
        Must(test::WaitFor([&] { return job.Pane(2) != pane; }));
    }
    std::printf("\nworst kept frame: %.2f ms\n", worst);
}

// From the command to the message that all is written.
double TimeWrite(const std::vector<std::byte>& block) {
    test::PluginJob job(0x0409);
    StartJob(job, block);
    ChooseGreyWindow(job);
    Must(job.Command(ID_SKELETONIZE));
    DetectLines(job);
    job.Paint();
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        const auto start = Clock::now();
        ::PostMessageW(job.Frame(), WM_COMMAND, ID_WRITE_TO_BITMAP, 0);
        Must(SpinUntil([] { return test::FindTopWindow(0, L"#32770") != nullptr; }));
        best = std::min(best, MillisecondsSince(start));
        AnswerNextBox(job);
    }
    return best;
}

// The palette search alone, a call for every pixel: of every twentieth row, since all would take minutes.
double TimeCallPerPixel(const DibView& dib) {
    std::vector<std::uint32_t> words(257);
    words[0] = 256U << 16 | 0x300;  // a logical palette: version and count
    const std::array<Colour, 256> colours = dib.Palette();
    for (std::size_t i = 0; i < colours.size(); ++i) {
        words[i + 1] = RGB(colours[i].red, colours[i].green, colours[i].blue);
    }
    const HPALETTE hPalette = ::CreatePalette(reinterpret_cast<const LOGPALETTE*>(words.data()));
    constexpr std::int32_t kEach = 20;
    unsigned nSum = 0;
    const double ms = Best(1, [&] {
        for (std::int32_t s = 0; s < dib.Height(); s += kEach) {
            for (const std::uint8_t nIndex : dib.Row(s).first(static_cast<std::size_t>(dib.Width()))) {
                nSum += ::GetNearestPaletteIndex(hPalette, words[1 + nIndex]);
            }
        }
    });
    ::DeleteObject(hPalette);
    asm volatile("" : : "r"(nSum));
    return ms * kEach;
}

// From pi_start to a frame whose view has nothing left to paint. Making the block and ending the job are not counted.
double TimeToFirstFrame(const std::vector<std::byte>& block) {
    const std::wstring size = SizePane(block);
    double best = 1e9;
    for (int i = 0; i < 30; ++i) {
        test::PluginJob job(0x0409);
        void* pDib = malloc(block.size());
        std::memcpy(pDib, block.data(), block.size());
        const auto start = Clock::now();
        Must(job.StartWith(pDib) != nullptr);
        Must(SpinUntil([&] { return job.Pane(1) == size && ::GetUpdateRect(job.View(), nullptr, FALSE) == FALSE; }));
        best = std::min(best, MillisecondsSince(start));
    }
    return best;
}

}  // namespace
}  // namespace width

int main(int argc, char** argv) {
    using namespace width;
    const std::int32_t nWidth = argc > 2 ? std::atoi(argv[1]) : 6000;
    const std::int32_t nHeight = argc > 2 ? std::atoi(argv[2]) : 4000;
    const std::vector<std::byte> block = LineArt(nWidth, nHeight);
    const DibView dib = *DibView::Open(block);
    std::printf("picture %d x %d, 8 bits\n", nWidth, nHeight);
    TimeFrames(block);
    std::printf("one paint that keeps nothing: %.0f ms\n",
                PaintThatKeepsNothing(block, *MakeSkeleton(dib, {0, CalcAutoThreshold(&dib)})));
    const double msCopy = Best(5, [&] {
        void* pCopy = malloc(block.size());
        std::memcpy(pCopy, block.data(), block.size());
        asm volatile("" : : "r"(pCopy) : "memory");  // or the compiler would leave out a copy that nobody reads
        free(pCopy);
    });
    std::vector<std::byte> warm(block.size());
    const double msWarmCopy = Best(5, [&] { std::memcpy(warm.data(), block.data(), block.size()); });
    const double msEmpty = TimeToFirstFrame(LineArt(8, 8));
    const double msSmall = TimeToFirstFrame(LineArt(1100, 800));
    std::printf(
        "pi_start to first frame: %.1f ms; with a picture of 8 x 8: %.1f ms, of 1100 x 800, which has scroll bars too: %.1f ms\n",
        TimeToFirstFrame(block), msEmpty, msSmall);
    std::printf("one copy of the block: %.1f ms, into memory in use before: %.1f ms\n", msCopy, msWarmCopy);
    std::printf("Write to Bitmap up to its message: %.0f ms", TimeWrite(block));
    std::printf("; a system call for every pixel: %.0f ms, measured on every twentieth row\n", TimeCallPerPixel(dib));
    return 0;
}
