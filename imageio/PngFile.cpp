// PNG, by libpng. Rows of 1, 4 and 8 bits have the same layout in the file and in the block, so
// they are read in place; 24-bit rows are asked for as blue, green, red. Rows of two bits and rows
// with an alpha channel take a detour. Alpha is composited over white, by the sample values as they
// stand, whatever gamma the file speaks of. A tRNS chunk gives entries of a table an alpha, or names
// a colour to hide: where the block has a table that is done there, elsewhere the rows get an alpha channel.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include <png.h>

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "imageio/Formats.h"
#include "imageio/JumpGuard.h"

namespace width {

namespace {

constexpr png_uint_32 kMaxSide = 0x7fffffff;
constexpr std::uint64_t kDeflateRatio = 1032;  // no deflate stream unpacks to more of its size

[[noreturn]] void OnError(png_structp png, png_const_charp pText) {
    static_cast<JumpGuard*>(png_get_error_ptr(png))->Raise(pText);
}

void OnWarning(png_structp, png_const_charp) {}  // the picture is whole all the same

class PngReader {
public:
    explicit PngReader(std::FILE* pFile) : m_pFile(pFile) {}
    ~PngReader() { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    LoadedPicture Read();

private:
    void ReadHeader();
    void ReadHidden();
    void AskForTransforms();
    std::uint16_t BlockDepth() const noexcept;
    std::uint32_t SampleBits() const noexcept { return static_cast<std::uint32_t>(std::min(m_nFileDepth, 8)); }
    std::uint32_t TableEntries() const noexcept;
    std::string Allocate();
    bool HasAlpha() const noexcept { return (m_nColourType & PNG_COLOR_MASK_ALPHA) != 0 || m_bHiddenByRows; }
    bool IsDetour() const noexcept { return m_nFileDepth == 2 || HasAlpha(); }
    std::uint8_t* ReadTarget(std::uint32_t y) noexcept;
    void ReadRows();
    void PlaceRow(std::uint32_t y) noexcept;
    void FillTable();
    void FillColours();
    void FillResolution();
    LoadedPicture Damaged() const { return Failed(WithDetail("the PNG picture is damaged", m_guard.Text())); }

    std::FILE* m_pFile;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    JumpGuard m_guard;
    DibBuilder m_builder;
    std::vector<std::uint8_t> m_detour;  // one row of the file, or all rows when they come interlaced
    std::size_t m_nDetourStep = 0;       // bytes from row to row there, 0 when there is but one
    std::size_t m_nRowBytes = 0;         // of a row as the library hands it over
    int m_nColourType = 0;
    int m_nFileDepth = 0;
    int m_nPasses = 1;
    std::span<const png_byte> m_alphas;  // of the first entries of the table
    std::optional<png_uint_16> m_hiddenGrey;
    bool m_bHiddenByRows = false;  // a hidden colour that no entry of a table stands for
};

void PngReader::ReadHeader() {
    m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &m_guard, OnError, OnWarning);
    m_info = m_png != nullptr ? png_create_info_struct(m_png) : nullptr;
    if (m_info == nullptr) {
        m_guard.Raise("not enough memory");
    }
    png_set_user_limits(m_png, kMaxSide, kMaxSide);  // the block's own limits are the narrower ones
    png_init_io(m_png, m_pFile);
    png_read_info(m_png, m_info);
    m_nColourType = png_get_color_type(m_png, m_info);
    m_nFileDepth = png_get_bit_depth(m_png, m_info);
    ReadHidden();
}

void PngReader::ReadHidden() {
    png_bytep pAlphas = nullptr;
    png_color_16p pColour = nullptr;
    int nAlphas = 0;
    if (png_get_tRNS(m_png, m_info, &pAlphas, &nAlphas, &pColour) == 0) {
        return;
    }
    if (m_nColourType == PNG_COLOR_TYPE_PALETTE) {
        m_alphas = {pAlphas, static_cast<std::size_t>(nAlphas)};
    } else if (m_nColourType == PNG_COLOR_TYPE_GRAY && m_nFileDepth <= 8) {
        m_hiddenGrey = pColour->gray;
    } else {
        m_bHiddenByRows = true;
    }
}

void PngReader::AskForTransforms() {
    if (m_bHiddenByRows) {
        png_set_tRNS_to_alpha(m_png);
    }
    if (m_nFileDepth == 16) {
        png_set_strip_16(m_png);
    }
    if ((m_nColourType & PNG_COLOR_MASK_COLOR) != 0) {
        png_set_bgr(m_png);
    }
    m_nPasses = png_set_interlace_handling(m_png);
    png_read_update_info(m_png, m_info);
}

std::uint16_t PngReader::BlockDepth() const noexcept {
    if (m_nColourType == PNG_COLOR_TYPE_RGB || m_nColourType == PNG_COLOR_TYPE_RGB_ALPHA) {
        return 24;
    }
    return static_cast<std::uint16_t>(m_nFileDepth == 2 ? 4 : SampleBits());
}

std::uint32_t PngReader::TableEntries() const noexcept {
    if (m_nColourType != PNG_COLOR_TYPE_PALETTE) {
        return 1U << SampleBits();
    }
    png_colorp pColours = nullptr;
    int nColours = 0;
    png_get_PLTE(m_png, m_info, &pColours, &nColours);
    return static_cast<std::uint32_t>(nColours);
}

std::string PngReader::Allocate() {
    const std::uint64_t nWidth = png_get_image_width(m_png, m_info);
    const std::uint64_t nHeight = png_get_image_height(m_png, m_info);
    if (nWidth > kMaxBlockBytes / 8) {
        return "the picture is too wide";  // libpng holds rows of up to eight bytes a pixel
    }
    const std::uint64_t nFileRow = nWidth * png_get_channels(m_png, m_info) * static_cast<std::uint32_t>(m_nFileDepth) / 8 + 1;
    if (!CanUnpackTo(m_pFile, nFileRow * nHeight, kDeflateRatio)) {
        return WithDetail("the PNG picture is damaged", kEndsEarly);
    }
    std::string error = m_builder.Create(nWidth, nHeight, BlockDepth(), TableEntries());
    if (!error.empty()) {
        return error;
    }
    const std::uint64_t nChannels = BlockDepth() == 24 ? 3 : 1;
    m_nRowBytes = static_cast<std::size_t>(HasAlpha() ? (nChannels + 1) * nWidth : (nChannels * nWidth * SampleBits() + 7) / 8);
    const bool bInterlaced = png_get_interlace_type(m_png, m_info) != PNG_INTERLACE_NONE;
    const std::uint64_t nDetourBytes = m_nRowBytes * (bInterlaced ? nHeight : 1);
    if (IsDetour() && nDetourBytes > kMaxBlockBytes) {
        return "the picture is too large";
    }
    m_detour.resize(IsDetour() ? static_cast<std::size_t>(nDetourBytes) : 0);
    m_nDetourStep = bInterlaced ? m_nRowBytes : 0;
    return {};
}

std::uint8_t* PngReader::ReadTarget(std::uint32_t y) noexcept {
    return IsDetour() ? m_detour.data() + m_nDetourStep * y : m_builder.Row(y);
}

// Mixes nChannels samples and an alpha with white, a pixel after the other.
void PlaceOverWhite(const std::uint8_t* pSource, std::uint32_t nWidth, std::size_t nChannels, std::uint8_t* pTarget) {
    for (std::uint32_t x = 0; x < nWidth; ++x, pSource += nChannels + 1) {
        for (std::size_t i = 0; i < nChannels; ++i) {
            *pTarget++ = OverWhite(pSource[i], pSource[nChannels]);
        }
    }
}

void PngReader::PlaceRow(std::uint32_t y) noexcept {
    if (HasAlpha()) {
        PlaceOverWhite(ReadTarget(y), m_builder.Width(), BlockDepth() == 24 ? 3 : 1, m_builder.Row(y));
    } else if (m_nFileDepth == 2) {
        WidenTwoBitRow(ReadTarget(y), m_builder.Width(), m_builder.Row(y));
    }
}

// In the last pass of an interlaced picture every row is complete once it has been asked for.
void PngReader::ReadRows() {
    AskForTransforms();
    if (png_get_rowbytes(m_png, m_info) != m_nRowBytes) {
        m_guard.Raise("rows of an unexpected kind");
    }
    for (int nPass = 0; nPass < m_nPasses; ++nPass) {
        for (std::uint32_t y = 0; y < m_builder.Height(); ++y) {
            png_read_row(m_png, ReadTarget(y), nullptr);
            if (nPass == m_nPasses - 1) {
                PlaceRow(y);
            }
        }
    }
    png_read_end(m_png, nullptr);
}

void PngReader::FillTable() {
    if (m_nColourType == PNG_COLOR_TYPE_PALETTE) {
        FillColours();
        return;
    }
    m_builder.SetGreyTable(SampleBits());
    if (m_hiddenGrey.has_value()) {
        m_builder.SetColour(*m_hiddenGrey, 255, 255, 255);
    }
}

void PngReader::FillColours() {
    png_colorp pColours = nullptr;
    int nColours = 0;
    png_get_PLTE(m_png, m_info, &pColours, &nColours);
    for (std::size_t i = 0; i < static_cast<std::size_t>(nColours); ++i) {
        const png_color& colour = pColours[i];
        m_builder.SetColour(static_cast<std::uint32_t>(i), colour.red, colour.green, colour.blue,
                            i < m_alphas.size() ? m_alphas[i] : png_byte{255});
    }
}

void PngReader::FillResolution() {
    png_uint_32 nX = 0;
    png_uint_32 nY = 0;
    int nUnit = PNG_RESOLUTION_UNKNOWN;
    png_get_pHYs(m_png, m_info, &nX, &nY, &nUnit);
    if (nUnit == PNG_RESOLUTION_METER) {
        m_builder.SetResolution(RoundedPelsPerMeter(nX), RoundedPelsPerMeter(nY));
    }
}

LoadedPicture PngReader::Read() {
    if (!m_guard.Run([this] { ReadHeader(); })) {
        return Damaged();
    }
    if (std::string error = Allocate(); !error.empty()) {
        return Failed(std::move(error));
    }
    if (!m_builder.Table().empty()) {
        FillTable();
    }
    FillResolution();
    if (!m_guard.Run([this] { ReadRows(); })) {
        return Damaged();
    }
    return m_builder.Finish();
}

void WriteBytes(png_structp png, png_bytep pBytes, png_size_t nBytes) {
    if (!static_cast<NewFile*>(png_get_io_ptr(png))->Write(pBytes, nBytes)) {
        png_error(png, "the file takes no more");
    }
}

void Flush(png_structp) {}  // nothing is held back

class PngWriter {
public:
    PngWriter(NewFile& file, const DibView& view) : m_file(file), m_view(view) {}
    ~PngWriter() { png_destroy_write_struct(&m_png, &m_info); }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    std::string Write();

private:
    void WriteAll();
    int ColourType() const noexcept;
    void WriteTable();
    void WriteResolution();
    const std::uint8_t* FileRow(std::uint32_t y) noexcept;

    NewFile& m_file;
    const DibView& m_view;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    JumpGuard m_guard;
    std::vector<std::uint8_t> m_row;  // a row as the file holds it, for 24 bits and more
    std::uint32_t m_nTableEntries = 0;
};

int PngWriter::ColourType() const noexcept {
    if (m_view.BitCount() > 8) {
        return PNG_COLOR_TYPE_RGB;
    }
    return HasGreyTable(m_view, false) ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_PALETTE;
}

void PngWriter::WriteTable() {
    const std::array<Colour, 256> colours = m_view.Palette();
    std::array<png_color, 256> table{};
    for (std::uint32_t i = 0; i < m_nTableEntries; ++i) {
        table[i] = {colours[i].red, colours[i].green, colours[i].blue};
    }
    png_set_PLTE(m_png, m_info, table.data(), static_cast<int>(m_nTableEntries));
}

void PngWriter::WriteResolution() {
    const std::int32_t nX = std::max(m_view.Figures().nXPelsPerMeter, 0);
    const std::int32_t nY = std::max(m_view.Figures().nYPelsPerMeter, 0);
    if (nX > 0 || nY > 0) {
        png_set_pHYs(m_png, m_info, static_cast<png_uint_32>(nX), static_cast<png_uint_32>(nY), PNG_RESOLUTION_METER);
    }
}

const std::uint8_t* PngWriter::FileRow(std::uint32_t y) noexcept {
    if (m_row.empty()) {
        return PictureRow(m_view, y).data();
    }
    CopyRgbRow(m_view, y, m_row.data());
    return m_row.data();
}

void PngWriter::WriteAll() {
    m_png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &m_guard, OnError, OnWarning);
    m_info = m_png != nullptr ? png_create_info_struct(m_png) : nullptr;
    if (m_info == nullptr) {
        m_guard.Raise("not enough memory");
    }
    const auto nWidth = static_cast<png_uint_32>(m_view.Width());
    const auto nHeight = static_cast<png_uint_32>(m_view.Height());
    const int nColourType = ColourType();
    png_set_user_limits(m_png, kMaxSide, kMaxSide);
    png_set_write_fn(m_png, &m_file, WriteBytes, Flush);
    png_set_IHDR(m_png, m_info, nWidth, nHeight, std::min<int>(m_view.BitCount(), 8), nColourType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (nColourType == PNG_COLOR_TYPE_PALETTE) {
        WriteTable();
    }
    WriteResolution();
    png_write_info(m_png, m_info);
    for (std::uint32_t y = 0; y < nHeight; ++y) {
        png_write_row(m_png, FileRow(y));
    }
    png_write_end(m_png, m_info);
}

std::string PngWriter::Write() {
    if (m_view.BitCount() > 8) {
        m_row.resize(std::size_t{3} * static_cast<std::size_t>(m_view.Width()));
    } else {
        m_nTableEntries = EntriesInUse(m_view);
    }
    const bool bDone = m_guard.Run([this] { WriteAll(); });
    return bDone ? std::string() : WithDetail("the PNG picture cannot be written", m_guard.Text());
}

}  // namespace

LoadedPicture LoadPng(std::FILE* pFile) {
    return PngReader(pFile).Read();
}

std::string SavePng(NewFile& file, const SourceBlock& source) {
    return PngWriter(file, source.view).Write();
}

}  // namespace width
