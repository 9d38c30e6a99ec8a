// Times the cases of whole pictures where there is no benchmark library: on Windows. Prints them in that library's format,
// as far as scripts/bench-table reads it; all times are by the clock on the wall.
#include <algorithm>
#include <chrono>
#include <cstdio>

#include "bench/PictureCases.h"

namespace width::bench {

namespace {

double MillisecondsOf(const PictureCase& picture, const DibView& dib) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    picture.run(dib);
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

// The best of many runs, since two threads are quick only while nobody else wants either processor; the first one, which
// finds memory and code cold, counts only if it is the best.
double BestMilliseconds(const PictureCase& picture, const DibView& dib) {
    double fBest = MillisecondsOf(picture, dib);
    for (int nRuns = picture.bLiteral ? 1 : 30; nRuns > 0; --nRuns) {
        fBest = std::min(fBest, MillisecondsOf(picture, dib));
    }
    return fBest;
}

void MeasureAll() {
    const char* pBefore = R"({"benchmarks": [)";
    for (const std::uint16_t nBitCount : {std::uint16_t{8}, std::uint16_t{24}}) {
        for (const PictureCase& picture : PictureCases(4096, nBitCount, true)) {
            const std::optional<DibView> dib = DibView::Open(Picture(picture.scene, picture.nSize, picture.nBitCount));
            const double fTime = BestMilliseconds(picture, *dib);
            std::printf(R"(%s
{"run_name": "%s", "run_type": "iteration", "real_time": %.4f, "cpu_time": %.4f})",
                        pBefore, picture.name.c_str(), fTime, fTime);
            std::fflush(stdout);
            pBefore = ",";
        }
    }
    std::printf("\n]}\n");
}

}  // namespace

}  // namespace width::bench

int main() {
    width::bench::MeasureAll();
    return 0;
}
