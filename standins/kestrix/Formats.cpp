// Tested by: tests/win/kestrix/KestrixTest.cpp
#include "standins/kestrix/Formats.h"

#include <algorithm>
#include <limits>

namespace width::kestrix {

namespace {

bool HasGreysOnly(const DibView& view) noexcept {
    return std::ranges::all_of(view.Palette(),
                               [](const Colour& colour) { return colour.red == colour.green && colour.green == colour.blue; });
}

}  // namespace

std::optional<DibView> OpenBlock(const void* pDib) noexcept {
    if (pDib == nullptr) {
        return std::nullopt;
    }
    constexpr std::size_t kUnknown = std::numeric_limits<std::int32_t>::max();
    const auto* const pBytes = static_cast<const std::byte*>(pDib);
    const DibCheck check = CheckPackedDib({pBytes, kUnknown});
    return check.status == DibStatus::Ok ? DibView::Open({pBytes, check.figures.nBytes}) : std::nullopt;
}

WicFile FileOf(std::int32_t nFormat) noexcept {
    switch (nFormat) {
        case FORMAT_PNG:
            return WicFile::Png;
        case FORMAT_JPEG:
            return WicFile::Jpeg;
        case FORMAT_TIFF:
            return WicFile::Tiff;
        case FORMAT_GIF:
            return WicFile::Gif;
        default:
            return WicFile::Bmp;
    }
}

bool CanHold(const DibView& view, std::int32_t nFormat) noexcept {
    if (!IsFormat(nFormat) || FaultOf(view, FileOf(nFormat)) != SaveFault::None) {
        return false;
    }
    return nFormat != FORMAT_JPEG || view.BitCount() > 8 || (view.BitCount() == 8 && HasGreysOnly(view));
}

FormatOptions DefaultOptions(std::int32_t nFormat) noexcept {
    FormatOptions options{};
    if (nFormat == FORMAT_JPEG) {
        options.nOption0 = kDefaultQuality;
    }
    return options;
}

WicStyle StyleOf(const SaveOptions& options) noexcept {
    WicStyle style;
    const auto nFormat = static_cast<std::int32_t>(options.nFormat);
    if (nFormat == FORMAT_JPEG) {
        const bool bGiven = options.nOption0 >= 1 && options.nOption0 <= kMaxQuality;
        style.nJpegQuality = static_cast<std::int32_t>(bGiven ? options.nOption0 : kDefaultQuality);
    } else if (nFormat == FORMAT_TIFF && options.nOption0 == TIFF_PACK_NONE) {
        style.nTiffCompression = WICTiffCompressionNone;
    } else if (nFormat == FORMAT_TIFF && options.nOption0 == TIFF_PACK_ZIP) {
        style.nTiffCompression = WICTiffCompressionZIP;
    } else if (nFormat == FORMAT_PNG) {
        style.bPngInterlaced = options.bOption2 != 0;
    }
    return style;
}

}  // namespace width::kestrix
