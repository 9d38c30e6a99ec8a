// Tested by: tests/win/host/HostTest.cpp
#include "standins/host/PictureTexts.h"

#include <cstdint>
#include <filesystem>

#include "core/PackedDib.h"

namespace width::host {

namespace {

constexpr std::int64_t kPerMeter = 10000;  // of 254ths of an inch

std::int64_t DotsPerInch(std::int32_t nPelsPerMeter) {
    return (std::int64_t{nPelsPerMeter} * 254 + kPerMeter / 2) / kPerMeter;
}

// The plug-in, too, takes a resolution for known when it is positive.
std::wstring ResolutionText(const DibFigures& figures) {
    if (figures.nXPelsPerMeter <= 0 || figures.nYPelsPerMeter <= 0) {
        return L"no resolution";
    }
    std::wstring text = std::to_wstring(DotsPerInch(figures.nXPelsPerMeter));
    if (figures.nXPelsPerMeter != figures.nYPelsPerMeter) {
        text += L" x " + std::to_wstring(DotsPerInch(figures.nYPelsPerMeter));
    }
    return text + L" dpi";
}

}  // namespace

PictureTexts DescribePicture(std::span<const std::byte> block) {
    const DibCheck check = CheckPackedDib(block);
    if (check.status != DibStatus::Ok) {
        return {};
    }
    const DibFigures& figures = check.figures;
    const std::wstring size = std::to_wstring(figures.nWidth) + L" x " + std::to_wstring(figures.nHeight) + L" pixels";
    const std::wstring depth = std::to_wstring(figures.nBitCount) + (figures.nBitCount == 1 ? L" bit" : L" bits") + L" per pixel";
    return {size, depth, ResolutionText(figures)};
}

std::wstring FileTitle(const std::wstring& path) {
    return std::filesystem::path(path).filename().wstring();
}

}  // namespace width::host
