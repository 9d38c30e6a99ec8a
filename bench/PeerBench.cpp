// Well-known code beside ours, where it is installed: OpenCV's city-block distance transform in bytes, its fastest form and
// less than a skeleton, and its thinning, which iterates. In one thread, on the pictures of the skeleton at 8 bits, with the
// foreground made beforehand.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>

#include "bench/Cases.h"
#include "bench/PictureCases.h"
#ifdef WIDTH_HAS_THINNING
#include <opencv2/ximgproc.hpp>
#endif

namespace width::bench {

namespace {

cv::Mat Foreground(Scene scene, std::int32_t nSize) {
    const std::optional<DibView> dib = DibView::Open(Picture(scene, nSize, 8));
    cv::Mat foreground(nSize, nSize, CV_8U);
    for (std::int32_t s = 0; s < nSize; ++s) {
        std::ranges::transform(dib->Row(s), foreground.ptr<std::uint8_t>(s),
                               [](std::uint8_t level) { return level <= kDark.nMaxGrey ? std::uint8_t{255} : std::uint8_t{0}; });
    }
    return foreground;
}

template <class Work>
benchmark::internal::Benchmark* AddPeer(const std::string& stage, Scene scene, std::int32_t nSize, Work work) {
    return AddCase(CaseName(stage, scene, nSize, 8), [=](benchmark::State& state) {
        cv::setNumThreads(1);
        const cv::Mat foreground = Foreground(scene, nSize);
        cv::Mat result;
        for (auto _ : state) {
            work(foreground, result);
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(state.iterations() * nSize * nSize);
    });
}

const bool g_bAdded = [] {
    benchmark::AddCustomContext("opencv", CV_VERSION);
    for (const Scene scene : {Scene::LineArt, Scene::LineSpace, Scene::DeepAreas}) {
        AddPeer("peer distance", scene, 4096, [](const cv::Mat& foreground, cv::Mat& result) {
            cv::distanceTransform(foreground, result, cv::DIST_L1, 3, CV_8U);
        });
#ifdef WIDTH_HAS_THINNING
        AddPeer("peer thinning", scene, 2048,
                [](const cv::Mat& foreground, cv::Mat& result) {
                    cv::ximgproc::thinning(foreground, result, cv::ximgproc::THINNING_ZHANGSUEN);
                })
            ->Iterations(1)
            ->Repetitions(1);  // seconds, and minutes for a larger picture
#endif
    }
    return true;
}();

}  // namespace

}  // namespace width::bench
