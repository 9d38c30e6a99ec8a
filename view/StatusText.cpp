// Tested by: tests/unit/view/StatusTextTest.cpp
#include "view/StatusText.h"

namespace width {

std::wstring SizeText(const DibFigures& figures) {
    return std::to_wstring(figures.nWidth) + L" x " + std::to_wstring(figures.nHeight);
}

std::wstring ZoomText(Zoom zoom, bool bChinese) {
    return (bChinese ? L"缩放: " : L"Zoom: ") + std::to_wstring(ZoomPercent(zoom)) + L"%";
}

std::wstring DepthText(const DibFigures& figures, bool bChinese) {
    return L"BPP: " + std::to_wstring(figures.nBitCount) + (bChinese ? L", 分辨率: " : L", Resolution: ") +
           std::to_wstring(figures.nXPelsPerMeter) + L" " + std::to_wstring(figures.nYPelsPerMeter);
}

}  // namespace width
