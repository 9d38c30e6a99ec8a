#include "view/StatusText.h"

#include <gtest/gtest.h>

namespace width {
namespace {

TEST(StatusText, TellsSizeZoomDepthAndResolutionInBothLanguages) {
    DibFigures figures;
    figures.nWidth = 640;
    figures.nHeight = 480;
    figures.nBitCount = 24;
    figures.nXPelsPerMeter = -3;
    figures.nYPelsPerMeter = 23622;
    EXPECT_EQ(SizeText(figures), L"640 x 480");
    EXPECT_EQ(ZoomText({1, 3}, false), L"Zoom: 33%");
    EXPECT_EQ(ZoomText({50, 100}, true), L"\u7f29\u653e: 50%");
    EXPECT_EQ(DepthText(figures, false), L"BPP: 24, Resolution: -3 23622");
    EXPECT_EQ(DepthText(figures, true), L"BPP: 24, \u5206\u8fa8\u7387: -3 23622");
}

}  // namespace
}  // namespace width
