// Takes the pixels in the form in which the component decodes them, as far as a block can hold it, and turns the others
// into 24 bits by rules of our own, so that no two versions of the component give different levels.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

#include "imageio/Wic_win.h"

namespace width {

namespace {

// Turns nWidth decoded pixels into a block's row of as many bits as the kind says.
using RowFunction = void (*)(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget);

enum class Colours { Table, Grey, True };

struct PixelKind {
    const GUID* pFormat;
    std::uint32_t nSourceBits;
    std::uint16_t nBlockBits;
    Colours colours;
    RowFunction place;
};

// Bits behind the last pixel are whatever the decoder left there, and become 0.
template <std::uint32_t kBits>
void CopyRow(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) {
    const std::size_t nBytes = (std::size_t{nWidth} * kBits + 7) / 8;
    const std::uint32_t nSpare = static_cast<std::uint32_t>(8 * nBytes - std::size_t{nWidth} * kBits);
    std::memcpy(pTarget, pSource, nBytes);
    pTarget[nBytes - 1] = static_cast<std::uint8_t>(pTarget[nBytes - 1] >> nSpare << nSpare);
}

void CopySwapped(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) {
    CopyRow<24>(pSource, nWidth, pTarget);
    SwapRedAndBlue(pTarget, nWidth);
}

void CopyHighBytes(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) {
    for (std::size_t i = 0; i < nWidth; ++i) {
        pTarget[i] = pSource[2 * i + 1];
    }
}

// 48 bits: red, green, blue.
void CopyDeepColours(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) {
    CopyHighBytes(pSource, 3 * nWidth, pTarget);
    SwapRedAndBlue(pTarget, nWidth);
}

void DropFourth(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) {
    for (std::uint32_t x = 0; x < nWidth; ++x, pSource += 4, pTarget += 3) {
        std::copy_n(pSource, 3, pTarget);
    }
}

std::uint8_t Level(std::uint32_t nValue, std::uint32_t nMax) {
    return static_cast<std::uint8_t>((nValue * 255U + nMax / 2) / nMax);
}

// 16 bits: from the lowest, five of blue, kGreenBits of green, five of red.
template <std::uint32_t kGreenBits>
void PlaceShortPixels(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) {
    constexpr std::uint32_t kGreenMax = (1U << kGreenBits) - 1U;
    for (std::uint32_t x = 0; x < nWidth; ++x, pSource += 2, pTarget += 3) {
        const std::uint32_t nPixel = pSource[0] | std::uint32_t{pSource[1]} << 8;
        pTarget[0] = Level(nPixel & 31U, 31);
        pTarget[1] = Level(nPixel >> 5 & kGreenMax, kGreenMax);
        pTarget[2] = Level(nPixel >> (5 + kGreenBits) & 31U, 31);
    }
}

// Over white. kStep is the bytes of a sample, of which the last is the high one; kRed and kBlue are places of samples.
template <std::size_t kStep, std::size_t kRed, std::size_t kBlue>
void PlaceOverWhite(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) {
    for (std::uint32_t x = 0; x < nWidth; ++x, pSource += 4 * kStep, pTarget += 3) {
        const auto sample = [pSource](std::size_t i) { return std::uint32_t{pSource[i * kStep + kStep - 1]}; };
        const std::array<std::uint32_t, 3> colour{sample(kBlue), sample(1), sample(kRed)};
        for (std::size_t i = 0; i < 3; ++i) {
            pTarget[i] = OverWhite(colour[i], sample(3));
        }
    }
}

// Colours that come multiplied by their alpha.
template <std::size_t kStep, std::size_t kRed, std::size_t kBlue>
void AddWhite(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) {
    for (std::uint32_t x = 0; x < nWidth; ++x, pSource += 4 * kStep, pTarget += 3) {
        const auto sample = [pSource](std::size_t i) { return std::uint32_t{pSource[i * kStep + kStep - 1]}; };
        const std::uint32_t nWhite = 255U - sample(3);
        const std::array<std::uint32_t, 3> colour{sample(kBlue), sample(1), sample(kRed)};
        for (std::size_t i = 0; i < 3; ++i) {
            pTarget[i] = static_cast<std::uint8_t>(std::min(colour[i] + nWhite, 255U));
        }
    }
}

// Inks in the order cyan, magenta, yellow, black; 255 is full ink.
void PlaceInks(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) {
    for (std::uint32_t x = 0; x < nWidth; ++x, pSource += 4, pTarget += 3) {
        const std::uint32_t nLight = 255U - pSource[3];
        for (std::size_t i = 0; i < 3; ++i) {
            pTarget[2 - i] = static_cast<std::uint8_t>(((255U - pSource[i]) * nLight + 127U) / 255U);
        }
    }
}

constexpr std::array kKinds{
    PixelKind{&GUID_WICPixelFormat1bppIndexed, 1, 1, Colours::Table, CopyRow<1>},
    PixelKind{&GUID_WICPixelFormat2bppIndexed, 2, 4, Colours::Table, WidenTwoBitRow},
    PixelKind{&GUID_WICPixelFormat4bppIndexed, 4, 4, Colours::Table, CopyRow<4>},
    PixelKind{&GUID_WICPixelFormat8bppIndexed, 8, 8, Colours::Table, CopyRow<8>},
    PixelKind{&GUID_WICPixelFormatBlackWhite, 1, 1, Colours::Grey, CopyRow<1>},
    PixelKind{&GUID_WICPixelFormat2bppGray, 2, 4, Colours::Grey, WidenTwoBitRow},
    PixelKind{&GUID_WICPixelFormat4bppGray, 4, 4, Colours::Grey, CopyRow<4>},
    PixelKind{&GUID_WICPixelFormat8bppGray, 8, 8, Colours::Grey, CopyRow<8>},
    PixelKind{&GUID_WICPixelFormat16bppGray, 16, 8, Colours::Grey, CopyHighBytes},
    PixelKind{&GUID_WICPixelFormat16bppBGR555, 16, 24, Colours::True, PlaceShortPixels<5>},
    PixelKind{&GUID_WICPixelFormat16bppBGR565, 16, 24, Colours::True, PlaceShortPixels<6>},
    PixelKind{&GUID_WICPixelFormat24bppBGR, 24, 24, Colours::True, CopyRow<24>},
    PixelKind{&GUID_WICPixelFormat24bppRGB, 24, 24, Colours::True, CopySwapped},
    PixelKind{&GUID_WICPixelFormat48bppRGB, 48, 24, Colours::True, CopyDeepColours},
    PixelKind{&GUID_WICPixelFormat32bppBGR, 32, 24, Colours::True, DropFourth},
    PixelKind{&GUID_WICPixelFormat32bppCMYK, 32, 24, Colours::True, PlaceInks},
    PixelKind{&GUID_WICPixelFormat32bppBGRA, 32, 24, Colours::True, PlaceOverWhite<1, 2, 0>},
    PixelKind{&GUID_WICPixelFormat32bppRGBA, 32, 24, Colours::True, PlaceOverWhite<1, 0, 2>},
    PixelKind{&GUID_WICPixelFormat64bppRGBA, 64, 24, Colours::True, PlaceOverWhite<2, 0, 2>},
    PixelKind{&GUID_WICPixelFormat32bppPBGRA, 32, 24, Colours::True, AddWhite<1, 2, 0>},
    PixelKind{&GUID_WICPixelFormat32bppPRGBA, 32, 24, Colours::True, AddWhite<1, 0, 2>},
    PixelKind{&GUID_WICPixelFormat64bppPRGBA, 64, 24, Colours::True, AddWhite<2, 0, 2>},
};

// Bitmap files whose pixels have 32 bits and keep them: the fourth byte has no meaning in a block and stays 0.
void ClearFourth(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) {
    for (std::uint32_t x = 0; x < nWidth; ++x, pSource += 4, pTarget += 4) {
        std::copy_n(pSource, 3, pTarget);
    }
}

constexpr std::array kBitmapKinds{
    PixelKind{&GUID_WICPixelFormat32bppBGR, 32, 32, Colours::True, ClearFourth},
    PixelKind{&GUID_WICPixelFormat32bppBGRA, 32, 32, Colours::True, ClearFourth},
};

template <class Kinds>
const PixelKind* FindIn(const Kinds& kinds, const GUID& format) {
    const auto pFound = std::find_if(kinds.begin(), kinds.end(), [&](const auto& kind) { return *kind.pFormat == format; });
    return pFound != kinds.end() ? &*pFound : nullptr;
}

const PixelKind* KindOf(const GUID& format, WicFile kind, const PictureHead& head) {
    const PixelKind* pKind = kind == WicFile::Bmp && head.nFileBits == 32 ? FindIn(kBitmapKinds, format) : nullptr;
    return pKind != nullptr ? pKind : FindIn(kKinds, format);
}

class WicPicture {
public:
    WicPicture(IWICImagingFactory& factory, WicFile file, const PictureHead& head)
        : m_factory(factory), m_file(file), m_head(head) {}

    LoadedPicture Read(std::span<const std::byte> file);

private:
    bool OpenSource(std::span<const std::byte> file);
    bool ChooseKind();
    bool ReadTable();
    LoadedPicture ReadPixels();
    bool CanUnpackTo(std::uint64_t nPixels) const;
    bool ReadRows(DibBuilder& builder) const;
    void PlaceRow(const std::uint8_t* pSource, std::vector<std::uint8_t>& scratch, DibBuilder& builder, std::uint32_t y) const;
    void FillTable(DibBuilder& builder) const;
    std::uint16_t BlockBits() const;
    bool IsGreyOfColours() const;
    std::uint32_t GreyBits() const;
    LoadedPicture OfOtherKind() const {
        return m_file == WicFile::Tiff ? Failed("the TIFF picture is of a kind that can't be read here") : Damaged();
    }
    LoadedPicture Damaged() const { return Failed(std::string("the ") + WicFileName(m_file) + " picture is damaged"); }

    IWICImagingFactory& m_factory;
    WicFile m_file;
    const PictureHead& m_head;
    Com<IWICStream> m_pStream;
    Com<IWICBitmapFrameDecode> m_pFrame;
    Com<IWICBitmapSource> m_pOther;         // what is read instead of the frame, converted
    IWICBitmapSource* m_pSource = nullptr;  // one of the two
    const PixelKind* m_pKind = nullptr;     // of m_pSource's pixels
    std::uint64_t m_nFileBytes = 0;
    std::vector<WICColor> m_table;  // 0xAARRGGBB; for Colours::Table
};

bool WicPicture::OpenSource(std::span<const std::byte> file) {
    m_pStream = MakeCom<IWICStream>([&](IWICStream** pp) { return m_factory.CreateStream(pp); });
    auto* pBytes = reinterpret_cast<BYTE*>(const_cast<std::byte*>(file.data()));  // the stream is only read
    if (m_pStream == nullptr || FAILED(m_pStream->InitializeFromMemory(pBytes, static_cast<DWORD>(file.size())))) {
        return false;
    }
    const auto pDecoder = MakeCom<IWICBitmapDecoder>([&](IWICBitmapDecoder** pp) {
        return m_factory.CreateDecoderFromStream(m_pStream.get(), nullptr, WICDecodeMetadataCacheOnDemand, pp);
    });
    if (pDecoder != nullptr) {
        m_pFrame = MakeCom<IWICBitmapFrameDecode>([&](IWICBitmapFrameDecode** pp) { return pDecoder->GetFrame(0, pp); });
    }
    m_pSource = m_pFrame.get();
    return m_pSource != nullptr;
}

// Kinds without a row function of their own are converted by the component.
bool WicPicture::ChooseKind() {
    GUID format{};
    if (FAILED(m_pSource->GetPixelFormat(&format))) {
        return false;
    }
    m_pKind = KindOf(format, m_file, m_head);
    if (m_pKind != nullptr) {
        return true;
    }
    auto pConverter = MakeCom<IWICFormatConverter>([&](IWICFormatConverter** pp) { return m_factory.CreateFormatConverter(pp); });
    if (pConverter == nullptr || FAILED(pConverter->Initialize(m_pSource, GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone,
                                                               nullptr, 0.0, WICBitmapPaletteTypeCustom))) {
        return false;
    }
    m_pOther = std::move(pConverter);
    m_pSource = m_pOther.get();
    m_pKind = KindOf(GUID_WICPixelFormat32bppBGRA, m_file, m_head);
    return true;
}

bool WicPicture::ReadTable() {
    if (m_pKind->colours != Colours::Table) {
        return true;
    }
    const auto pPalette = MakeCom<IWICPalette>([&](IWICPalette** pp) { return m_factory.CreatePalette(pp); });
    UINT nColours = 0;
    if (pPalette == nullptr || FAILED(m_pFrame->CopyPalette(pPalette.get())) || FAILED(pPalette->GetColorCount(&nColours))) {
        return false;
    }
    m_table.resize(nColours);
    return nColours != 0 && SUCCEEDED(pPalette->GetColors(nColours, m_table.data(), &nColours));
}

// Hidden entries of a table are laid on white; in other formats the fourth byte has no meaning.
void WicPicture::FillTable(DibBuilder& builder) const {
    if (m_pKind->colours == Colours::Grey || IsGreyOfColours()) {
        builder.SetGreyTable(GreyBits());
    }
    const bool bAlpha = m_file == WicFile::Png || m_file == WicFile::Gif;
    for (std::uint32_t i = 0; i < m_table.size(); ++i) {
        const WICColor colour = m_table[i];
        builder.SetColour(i, static_cast<std::uint8_t>(colour >> 16), static_cast<std::uint8_t>(colour >> 8),
                          static_cast<std::uint8_t>(colour), static_cast<std::uint8_t>(bAlpha ? colour >> 24 : 255));
    }
}

// The component has colours for a grey PNG picture with alpha or a hidden level.
bool WicPicture::IsGreyOfColours() const {
    return m_file == WicFile::Png && m_head.bGrey && m_pKind->colours == Colours::True;
}

// Bits of a grey level that count.
std::uint32_t WicPicture::GreyBits() const {
    return IsGreyOfColours() ? 8 : std::min<std::uint32_t>(m_pKind->nSourceBits, 8);
}

// The component has eight bits for every GIF picture, whose table tells how many it needs.
std::uint16_t WicPicture::BlockBits() const {
    if (m_file == WicFile::Gif && m_pKind->nSourceBits == 8) {
        return static_cast<std::uint16_t>(m_table.size() > 16 ? 8 : (m_table.size() > 2 ? 4 : 1));
    }
    return IsGreyOfColours() ? std::uint16_t{8} : m_pKind->nBlockBits;
}

void WicPicture::PlaceRow(const std::uint8_t* pSource, std::vector<std::uint8_t>& scratch, DibBuilder& builder,
                          std::uint32_t y) const {
    if (IsGreyOfColours()) {
        m_pKind->place(pSource, builder.Width(), scratch.data());
        for (std::size_t x = 0; x < builder.Width(); ++x) {
            builder.Row(y)[x] = scratch[3 * x];
        }
    } else if (BlockBits() != m_pKind->nBlockBits) {
        PackIndexRow(pSource, builder.Width(), BlockBits(), builder.Row(y));
    } else {
        m_pKind->place(pSource, builder.Width(), builder.Row(y));
    }
}

// Many rows a call, because a decoder may begin anew with every call.
bool WicPicture::ReadRows(DibBuilder& builder) const {
    constexpr std::uint64_t kBandBytes = std::uint64_t{64} << 20;
    const std::uint64_t nStride = (std::uint64_t{builder.Width()} * m_pKind->nSourceBits + 7) / 8;
    const auto nBandRows = static_cast<std::uint32_t>(std::clamp<std::uint64_t>(kBandBytes / nStride, 1, builder.Height()));
    std::vector<std::uint8_t> band(static_cast<std::size_t>(nStride * nBandRows));
    std::vector<std::uint8_t> scratch(IsGreyOfColours() ? std::size_t{3} * builder.Width() : 0);
    for (std::uint32_t nTop = 0; nTop < builder.Height(); nTop += nBandRows) {
        const std::uint32_t nRows = std::min(nBandRows, builder.Height() - nTop);
        const WICRect rc{0, static_cast<INT>(nTop), static_cast<INT>(builder.Width()), static_cast<INT>(nRows)};
        if (FAILED(m_pSource->CopyPixels(&rc, static_cast<UINT>(nStride), static_cast<UINT>(nStride * nRows), band.data()))) {
            return false;
        }
        for (std::uint32_t y = 0; y < nRows; ++y) {
            PlaceRow(band.data() + static_cast<std::size_t>(nStride) * y, scratch, builder, nTop + y);
        }
    }
    return true;
}

// A byte of a file gives so many pixels at most, so that a tiny file cannot ask for a huge picture.
bool WicPicture::CanUnpackTo(std::uint64_t nPixels) const {
    switch (m_file) {
        case WicFile::Png:
            return nPixels / (8 * 1032) <= m_nFileBytes;  // bytes of one-bit pixels, packed as far as deflate can
        case WicFile::Jpeg:
            return nPixels / 512 <= m_nFileBytes;  // a block of 8 x 8 pixels takes a bit at least
        case WicFile::Gif:
            return nPixels / 4096 <= m_nFileBytes;  // a code of 12 bits stands for 4096 pixels at most
        default:
            return true;
    }
}

LoadedPicture WicPicture::ReadPixels() {
    UINT nWidth = 0;
    UINT nHeight = 0;
    if (FAILED(m_pSource->GetSize(&nWidth, &nHeight)) || !CanUnpackTo(std::uint64_t{nWidth} * nHeight)) {
        return Damaged();
    }
    const std::uint32_t nEntries = m_table.empty() ? 1U << GreyBits() : static_cast<std::uint32_t>(m_table.size());
    DibBuilder builder;
    if (std::string error = builder.Create(nWidth, nHeight, BlockBits(), nEntries); !error.empty()) {
        return Failed(std::move(error));
    }
    FillTable(builder);
    builder.SetResolution(m_head.nXPelsPerMeter, m_head.nYPelsPerMeter);
    if (!ReadRows(builder)) {
        return m_head.bCommonPacking ? Damaged() : OfOtherKind();
    }
    return builder.Finish();
}

LoadedPicture WicPicture::Read(std::span<const std::byte> file) {
    m_nFileBytes = file.size();
    if (!m_head.bWhole) {
        return Damaged();
    }
    return OpenSource(file) && ChooseKind() && ReadTable() ? ReadPixels() : OfOtherKind();
}

}  // namespace

const char* WicFileName(WicFile kind) noexcept {
    static constexpr std::array<const char*, 5> kNames{"BMP", "PNG", "JPEG", "TIFF", "GIF"};
    return kNames[static_cast<std::size_t>(kind)];
}

Com<IWICImagingFactory> MakeWicFactory() {
    return MakeCom<IWICImagingFactory>([](IWICImagingFactory** pp) {
        return CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(pp));
    });
}

LoadedPicture LoadWic(std::span<const std::byte> file, WicFile kind, const PictureHead& head) {
    const Com<IWICImagingFactory> pFactory = MakeWicFactory();
    return pFactory != nullptr ? WicPicture(*pFactory, kind, head).Read(file)
                               : Failed("the system's imaging component is missing");
}

}  // namespace width
