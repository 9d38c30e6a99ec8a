// The sizes are judged by the same door that later accepts the block: a header alone is "Truncated"
// when nothing is wrong but the missing table and rows.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include "imageio/DibBuilder.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "core/PackedDib.h"

namespace width {

namespace {

constexpr const char* kTooLarge = "the picture is too large";

std::uint32_t TableEntries(const BITMAPINFOHEADER& header) noexcept {
    if (header.biBitCount > 8) {
        return 0;
    }
    return header.biClrUsed != 0 ? header.biClrUsed : 1U << header.biBitCount;
}

}  // namespace

std::int32_t RoundedPelsPerMeter(double fPelsPerMeter) noexcept {
    const double fRounded = std::floor(fPelsPerMeter + 0.5);
    const bool bInRange = fRounded >= 1.0 && fRounded <= std::numeric_limits<std::int32_t>::max();
    return bInRange ? static_cast<std::int32_t>(fRounded) : 0;
}

LoadedPicture Failed(std::string text) {
    return {{}, std::move(text)};
}

std::string DibBuilder::Create(const BITMAPINFOHEADER& header) {
    const DibStatus status = CheckPackedDib(std::as_bytes(std::span(&header, 1))).status;
    if (status != DibStatus::Truncated) {
        return status == DibStatus::TooLarge ? kTooLarge : DibStatusText(status);
    }
    m_nWidth = static_cast<std::uint32_t>(header.biWidth);
    m_nHeight = static_cast<std::uint32_t>(header.biHeight);
    m_nStride = DibStride(header.biBitCount, m_nWidth);
    m_nEntries = TableEntries(header);
    const std::uint64_t nOffset = sizeof header + std::uint64_t{4} * m_nEntries;
    const std::uint64_t nBytes = nOffset + std::uint64_t{m_nStride} * m_nHeight;
    if (nBytes > kMaxBlockBytes) {
        return kTooLarge;
    }
    m_nBitsOffset = static_cast<std::size_t>(nOffset);
    m_block.assign(static_cast<std::size_t>(nBytes), std::byte{0});
    std::memcpy(m_block.data(), &header, sizeof header);
    return {};
}

std::string DibBuilder::Create(std::uint64_t nWidth, std::uint64_t nHeight, std::uint16_t nBitCount, std::uint32_t nEntries) {
    constexpr std::uint64_t kMaxSide = std::numeric_limits<std::int32_t>::max();
    if (nWidth > kMaxSide || nHeight > kMaxSide) {
        return kTooLarge;
    }
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = static_cast<std::int32_t>(nWidth);
    header.biHeight = static_cast<std::int32_t>(nHeight);
    header.biPlanes = 1;
    header.biBitCount = nBitCount;
    if (nBitCount <= 8 && nEntries < (1U << nBitCount)) {
        header.biClrUsed = nEntries;
    }
    return Create(header);
}

void DibBuilder::SetColour(std::uint32_t i, std::uint8_t red, std::uint8_t green, std::uint8_t blue,
                           std::uint8_t alpha) noexcept {
    if (i < m_nEntries) {
        const std::array<std::uint8_t, 4> entry{OverWhite(blue, alpha), OverWhite(green, alpha), OverWhite(red, alpha), 0};
        std::memcpy(Table().data() + std::size_t{4} * i, entry.data(), entry.size());
    }
}

void DibBuilder::SetGreyTable(std::uint32_t nBitCount, bool bInverted) noexcept {
    const std::uint32_t nLast = (1U << nBitCount) - 1U;
    for (std::uint32_t i = 0; i <= nLast; ++i) {
        const std::uint8_t level = GreyLevel(bInverted ? nLast - i : i, nBitCount);
        SetColour(i, level, level, level);
    }
}

void DibBuilder::SetResolution(std::int32_t nX, std::int32_t nY) noexcept {
    std::memcpy(m_block.data() + offsetof(BITMAPINFOHEADER, biXPelsPerMeter), &nX, sizeof nX);
    std::memcpy(m_block.data() + offsetof(BITMAPINFOHEADER, biYPelsPerMeter), &nY, sizeof nY);
}

std::span<std::byte> DibBuilder::Table() noexcept {
    return std::span(m_block).subspan(sizeof(BITMAPINFOHEADER), std::size_t{4} * m_nEntries);
}

std::span<std::byte> DibBuilder::Bits() noexcept {
    return std::span(m_block).subspan(m_nBitsOffset);
}

std::uint8_t* DibBuilder::Row(std::uint32_t y) noexcept {
    std::byte* pRow = Bits().data() + std::size_t{m_nStride} * (m_nHeight - 1 - y);
    return reinterpret_cast<std::uint8_t*>(pRow);
}

LoadedPicture DibBuilder::Finish() {
    const DibStatus status = CheckPackedDib(m_block).status;
    if (status != DibStatus::Ok) {
        return Failed(DibStatusText(status));
    }
    return {std::move(m_block), {}};
}

}  // namespace width
