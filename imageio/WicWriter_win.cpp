// Gives the component rows in the block's own depth where the format has it, else in 24 bits.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "imageio/FileStream_win.h"
#include "imageio/Wic_win.h"

namespace width {

namespace {

constexpr double kMetersPerInch = 0.0254;

enum class Rows { AsTheyStand, Indices, Levels, Colours };

// What the component is given for a block.
struct WritePlan {
    GUID format{};
    Rows rows = Rows::AsTheyStand;
    std::uint32_t nBits = 0;          // of a pixel as given
    std::uint32_t nTableEntries = 0;  // 0: no colour table
};

const GUID& TableFormat(std::uint32_t nBits) {
    return nBits == 1 ? GUID_WICPixelFormat1bppIndexed
                      : (nBits == 4 ? GUID_WICPixelFormat4bppIndexed : GUID_WICPixelFormat8bppIndexed);
}

const GUID& GreyFormat(std::uint32_t nBits) {
    return nBits == 1 ? GUID_WICPixelFormatBlackWhite : (nBits == 4 ? GUID_WICPixelFormat4bppGray : GUID_WICPixelFormat8bppGray);
}

bool HasGreysOnly(const DibView& view) {
    const std::array<Colour, 256> colours = view.Palette();
    return view.BitCount() <= 8 && std::all_of(colours.begin(), colours.end(), [](const Colour& colour) {
               return colour.red == colour.green && colour.green == colour.blue;
           });
}

WritePlan PlanFor(const DibView& view, WicFile kind) {
    const std::uint32_t nBits = view.BitCount();
    if (kind == WicFile::Jpeg && HasGreysOnly(view)) {
        return {GUID_WICPixelFormat8bppGray, Rows::Levels, 8, 0};
    }
    if (kind == WicFile::Jpeg || nBits > 8) {
        return {GUID_WICPixelFormat24bppBGR, Rows::Colours, 24, 0};
    }
    if (kind == WicFile::Gif) {
        return {GUID_WICPixelFormat8bppIndexed, Rows::Indices, 8, 1U << nBits};
    }
    if (HasGreyTable(view, false)) {
        return {GreyFormat(nBits), Rows::AsTheyStand, nBits, 0};
    }
    return {TableFormat(nBits), Rows::AsTheyStand, nBits, kind == WicFile::Png ? EntriesInUse(view) : 1U << nBits};
}

class WicWriter {
public:
    WicWriter(IWICImagingFactory& factory, const DibView& view, WicFile kind, const WicStyle& style)
        : m_factory(factory), m_view(view), m_file(kind), m_style(style), m_plan(PlanFor(view, kind)) {}

    HRESULT Write(NewFile& file);

private:
    /// Keeps the first failure.
    bool Ok(HRESULT nResult) {
        if (FAILED(nResult) && SUCCEEDED(m_nFailure)) {
            m_nFailure = nResult;
        }
        return SUCCEEDED(nResult);
    }
    bool Open(NewFile& file);
    bool SetOptions(IPropertyBag2& options);
    bool SetFigures();
    bool SetResolution();
    bool SetTable();
    bool WriteRows();
    const std::uint8_t* FileRow(std::uint32_t y, std::vector<std::uint8_t>& scratch) const;

    IWICImagingFactory& m_factory;
    const DibView& m_view;
    WicFile m_file;
    WicStyle m_style;
    WritePlan m_plan;
    std::array<Colour, 256> m_colours = m_view.Palette();
    Com<IStream> m_pStream;
    Com<IWICBitmapEncoder> m_pEncoder;
    Com<IWICBitmapFrameEncode> m_pFrame;
    HRESULT m_nFailure = S_OK;
};

const GUID& ContainerOf(WicFile kind) {
    switch (kind) {
        case WicFile::Png:
            return GUID_ContainerFormatPng;
        case WicFile::Jpeg:
            return GUID_ContainerFormatJpeg;
        case WicFile::Tiff:
            return GUID_ContainerFormatTiff;
        case WicFile::Gif:
            return GUID_ContainerFormatGif;
        default:
            return GUID_ContainerFormatBmp;
    }
}

bool WicWriter::Open(NewFile& file) {
    m_pStream = MakeFileStream(file);
    m_pEncoder = MakeCom<IWICBitmapEncoder>(
        [&](IWICBitmapEncoder** pp) { return m_factory.CreateEncoder(ContainerOf(m_file), nullptr, pp); });
    if (m_pEncoder == nullptr || !Ok(m_pEncoder->Initialize(m_pStream.get(), WICBitmapEncoderNoCache))) {
        return false;
    }
    Com<IPropertyBag2> pOptions;
    m_pFrame = MakeCom<IWICBitmapFrameEncode>([&](IWICBitmapFrameEncode** pp) {
        IPropertyBag2* pBag = nullptr;
        const HRESULT nResult = m_pEncoder->CreateNewFrame(pp, &pBag);
        pOptions.reset(pBag);
        return nResult;
    });
    return m_pFrame != nullptr && (pOptions == nullptr || SetOptions(*pOptions)) && Ok(m_pFrame->Initialize(pOptions.get()));
}

bool WicWriter::SetOptions(IPropertyBag2& options) {
    std::array<wchar_t, 32> name{};
    PROPBAG2 property{};
    property.pstrName = name.data();
    VARIANT value{};
    if (m_file == WicFile::Jpeg) {
        std::wstring(L"ImageQuality").copy(name.data(), name.size() - 1);
        value.vt = VT_R4;
        value.fltVal = static_cast<float>(m_style.nJpegQuality) / 100.0F;
    } else if (m_file == WicFile::Tiff) {
        std::wstring(L"TiffCompressionMethod").copy(name.data(), name.size() - 1);
        value.vt = VT_UI1;
        value.bVal = static_cast<BYTE>(m_style.nTiffCompression);
    } else if (m_file == WicFile::Png) {
        std::wstring(L"InterlaceOption").copy(name.data(), name.size() - 1);
        value.vt = VT_BOOL;
        value.boolVal = m_style.bPngInterlaced ? VARIANT_TRUE : VARIANT_FALSE;
    } else {
        return true;
    }
    return Ok(options.Write(1, &property, &value));
}

// Dots per inch; JPEG has whole numbers only, to which some versions of the component cut off instead of rounding.
double DotsPerInch(std::int32_t nPelsPerMeter, WicFile kind) {
    const double fDots = nPelsPerMeter * kMetersPerInch;
    return kind == WicFile::Jpeg ? std::floor(fDots + 0.5) : fDots;
}

// The component takes a resolution only as a pair.
bool WicWriter::SetResolution() {
    const DibFigures& figures = m_view.Figures();
    if (figures.nXPelsPerMeter <= 0 || figures.nYPelsPerMeter <= 0 || m_file == WicFile::Gif) {
        return true;
    }
    return SUCCEEDED(
        m_pFrame->SetResolution(DotsPerInch(figures.nXPelsPerMeter, m_file), DotsPerInch(figures.nYPelsPerMeter, m_file)));
}

bool WicWriter::SetFigures() {
    if (!Ok(m_pFrame->SetSize(static_cast<UINT>(m_view.Width()), static_cast<UINT>(m_view.Height()))) || !SetResolution()) {
        return false;
    }
    GUID format = m_plan.format;
    return SUCCEEDED(m_pFrame->SetPixelFormat(&format)) && format == m_plan.format;
}

bool WicWriter::SetTable() {
    if (m_plan.nTableEntries == 0) {
        return true;
    }
    constexpr WICColor kOpaque = 0xff000000;
    std::array<WICColor, 256> colours{};
    std::transform(m_colours.begin(), m_colours.end(), colours.begin(), [](const Colour& colour) {
        return kOpaque | std::uint32_t{colour.red} << 16 | std::uint32_t{colour.green} << 8 | colour.blue;
    });
    const auto pPalette = MakeCom<IWICPalette>([&](IWICPalette** pp) { return m_factory.CreatePalette(pp); });
    return pPalette != nullptr && SUCCEEDED(pPalette->InitializeCustom(colours.data(), m_plan.nTableEntries)) &&
           SUCCEEDED(m_pFrame->SetPalette(pPalette.get()));
}

// The picture's row y as the plan wants it; scratch has room for three bytes a pixel.
const std::uint8_t* WicWriter::FileRow(std::uint32_t y, std::vector<std::uint8_t>& scratch) const {
    if (m_plan.rows == Rows::AsTheyStand) {
        return PictureRow(m_view, y).data();
    }
    if (m_view.BitCount() > 8) {
        CopyRgbRow(m_view, y, scratch.data());
        SwapRedAndBlue(scratch.data(), static_cast<std::uint32_t>(m_view.Width()));
        return scratch.data();
    }
    CopyIndexRow(m_view, y, scratch.data());
    for (auto x = static_cast<std::size_t>(m_view.Width()); x-- > 0 && m_plan.rows != Rows::Indices;) {
        const Colour colour = m_colours[scratch[x]];
        if (m_plan.rows == Rows::Levels) {
            scratch[x] = colour.red;
        } else {  // from the row's end, so that no index is overwritten before it is read
            scratch[3 * x] = colour.blue;
            scratch[3 * x + 1] = colour.green;
            scratch[3 * x + 2] = colour.red;
        }
    }
    return scratch.data();
}

bool WicWriter::WriteRows() {
    const auto nWidth = static_cast<std::uint32_t>(m_view.Width());
    const auto nStride = static_cast<UINT>((std::uint64_t{nWidth} * m_plan.nBits + 7) / 8);
    std::vector<std::uint8_t> scratch(std::size_t{3} * nWidth);
    for (std::uint32_t y = 0; y < static_cast<std::uint32_t>(m_view.Height()); ++y) {
        auto* pRow = const_cast<BYTE*>(FileRow(y, scratch));  // only read
        if (!Ok(m_pFrame->WritePixels(1, nStride, nStride, pRow))) {
            return false;
        }
    }
    return true;
}

HRESULT WicWriter::Write(NewFile& file) {
    const bool bDone =
        Open(file) && SetFigures() && SetTable() && WriteRows() && Ok(m_pFrame->Commit()) && Ok(m_pEncoder->Commit());
    return bDone || FAILED(m_nFailure) ? m_nFailure : E_FAIL;
}

// Many rows a call, because a decoder may begin anew with every call; no picture written here has more than four bytes a pixel.
HRESULT ReadRows(IWICBitmapSource& picture, UINT nWidth, UINT nHeight) {
    constexpr std::uint64_t kBandBytes = std::uint64_t{64} << 20;
    const std::uint64_t nStride = std::uint64_t{4} * nWidth;
    const auto nBandRows = static_cast<UINT>(std::clamp<std::uint64_t>(kBandBytes / nStride, 1, nHeight));
    std::vector<BYTE> band(static_cast<std::size_t>(nStride * nBandRows));
    HRESULT nResult = S_OK;
    for (UINT nTop = 0; SUCCEEDED(nResult) && nTop < nHeight; nTop += nBandRows) {
        const UINT nRows = std::min(nBandRows, nHeight - nTop);
        const WICRect rc{0, static_cast<INT>(nTop), static_cast<INT>(nWidth), static_cast<INT>(nRows)};
        nResult = picture.CopyPixels(&rc, static_cast<UINT>(nStride), static_cast<UINT>(nStride * nRows), band.data());
    }
    return nResult;
}

}  // namespace

HRESULT SaveWic(NewFile& file, const SourceBlock& source, WicFile kind, const WicStyle& style) {
    const Com<IWICImagingFactory> pFactory = MakeWicFactory();
    return pFactory == nullptr ? REGDB_E_CLASSNOTREG : WicWriter(*pFactory, source.view, kind, style).Write(file);
}

HRESULT ReadBackWic(const std::filesystem::path& path, const DibView& view) {
    const Com<IWICImagingFactory> pFactory = MakeWicFactory();
    if (pFactory == nullptr) {
        return REGDB_E_CLASSNOTREG;
    }
    HRESULT nResult = S_OK;
    const auto pDecoder = MakeCom<IWICBitmapDecoder>([&](IWICBitmapDecoder** pp) {
        return nResult =
                   pFactory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand, pp);
    });
    const auto pFrame = MakeCom<IWICBitmapFrameDecode>(
        [&](IWICBitmapFrameDecode** pp) { return pDecoder != nullptr ? nResult = pDecoder->GetFrame(0, pp) : nResult; });
    UINT nWidth = 0;
    UINT nHeight = 0;
    if (pFrame == nullptr || FAILED(nResult = pFrame->GetSize(&nWidth, &nHeight))) {
        return nResult;
    }
    const bool bSameSize = nWidth == static_cast<UINT>(view.Width()) && nHeight == static_cast<UINT>(view.Height());
    return bSameSize ? ReadRows(*pFrame, nWidth, nHeight) : HRESULT_FROM_WIN32(ERROR_WRITE_FAULT);
}

}  // namespace width
