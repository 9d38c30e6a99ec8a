// JPEG, by libjpeg. A picture that ends early, or whose coded data break off, is an error, although
// the library would fill the rest with grey; harmless oddities of the file are passed over. The
// number of passes over the data is limited, since a small file can ask for thousands.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include <cstdio>
// libjpeg's headers lean on those before them, so their order stays.
#include <jpeglib.h>
//
#include <jerror.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "imageio/Formats.h"
#include "imageio/JumpGuard.h"

namespace width {

namespace {

constexpr int kMaxScans = 100;                 // encoders make ten or so
constexpr std::uint64_t kPixelsPerByte = 512;  // a block of 8 x 8 takes a bit at least, but in arithmetic coding
constexpr int kQuality = 95;

enum DensityUnit : UINT8 { kNoUnit = 0, kPerInch = 1, kPerCentimeter = 2 };

JumpGuard& GuardOf(j_common_ptr codec) {
    return *static_cast<JumpGuard*>(codec->client_data);
}

[[noreturn]] void OnError(j_common_ptr codec) {
    std::array<char, JMSG_LENGTH_MAX> text{};
    codec->err->format_message(codec, text.data());
    GuardOf(codec).Raise(text.data());
}

// Whether a warning says that part of the picture is missing or wrong.
bool IsDamage(int nCode) {
    constexpr std::array kDamage{JWRN_JPEG_EOF, JWRN_HIT_MARKER, JWRN_HUFF_BAD_CODE, JWRN_MUST_RESYNC, JWRN_ARITH_BAD_CODE};
    return std::find(kDamage.begin(), kDamage.end(), nCode) != kDamage.end();
}

void OnMessage(j_common_ptr codec, int nLevel) {
    if (nLevel < 0 && IsDamage(codec->err->msg_code)) {
        OnError(codec);
    }
}

void OnOutput(j_common_ptr) {}  // nothing goes to standard error

void OnProgress(j_common_ptr codec) {
    if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > kMaxScans) {
        GuardOf(codec).Raise("too many scans");
    }
}

jpeg_error_mgr* QuietErrors(jpeg_error_mgr* pErrors) {
    jpeg_std_error(pErrors);
    pErrors->error_exit = OnError;
    pErrors->emit_message = OnMessage;
    pErrors->output_message = OnOutput;
    return pErrors;
}

class JpegReader {
public:
    explicit JpegReader(std::FILE* pFile) : m_pFile(pFile) {
        m_codec.err = QuietErrors(&m_errors);
        m_codec.client_data = &m_guard;
        m_progress.progress_monitor = OnProgress;
    }
    ~JpegReader() { jpeg_destroy_decompress(&m_codec); }
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    LoadedPicture Read();

private:
    void ReadHeader();
    std::string Allocate();
    void FillResolution();
    void ReadRows();
    void ReadRow();
    LoadedPicture Damaged() const { return Failed(WithDetail("the JPEG picture is damaged", m_guard.Text())); }

    std::FILE* m_pFile;
    jpeg_error_mgr m_errors{};
    jpeg_progress_mgr m_progress{};
    jpeg_decompress_struct m_codec{};
    JumpGuard m_guard;
    DibBuilder m_builder;
    std::vector<std::uint8_t> m_inkRow;  // cyan, magenta, yellow, black; empty for other pictures
};

void JpegReader::ReadHeader() {
    jpeg_create_decompress(&m_codec);
    m_codec.progress = &m_progress;
    m_codec.mem->max_memory_to_use = static_cast<decltype(m_codec.mem->max_memory_to_use)>(kMaxBlockBytes);
    jpeg_stdio_src(&m_codec, m_pFile);
    jpeg_read_header(&m_codec, TRUE);
    if (m_codec.num_components == 1) {
        m_codec.out_color_space = JCS_GRAYSCALE;
    } else {
        m_codec.out_color_space = m_codec.num_components == 4 ? JCS_CMYK : JCS_RGB;
    }
}

std::string JpegReader::Allocate() {
    const std::uint64_t nPixels = std::uint64_t{m_codec.image_width} * m_codec.image_height;
    if (m_codec.arith_code == FALSE && !CanUnpackTo(m_pFile, nPixels, kPixelsPerByte)) {
        return WithDetail("the JPEG picture is damaged", kEndsEarly);
    }
    const bool bGrey = m_codec.out_color_space == JCS_GRAYSCALE;
    std::string error = m_builder.Create(m_codec.image_width, m_codec.image_height, bGrey ? 8 : 24, 256);
    if (error.empty() && bGrey) {
        m_builder.SetGreyTable(8);
    }
    if (error.empty() && m_codec.out_color_space == JCS_CMYK) {
        m_inkRow.resize(std::size_t{4} * m_builder.Width());
    }
    return error;
}

void JpegReader::FillResolution() {
    if (m_codec.saw_JFIF_marker == FALSE || m_codec.density_unit == kNoUnit) {
        return;
    }
    const double fPerMeter = m_codec.density_unit == kPerInch ? kInchesPerMeter : kCentimetersPerMeter;
    m_builder.SetResolution(RoundedPelsPerMeter(m_codec.X_density * fPerMeter),
                            RoundedPelsPerMeter(m_codec.Y_density * fPerMeter));
}

// Inks over white paper. The maker of the Adobe marker stores them inverted: 255 is no ink.
void InkToBgr(const std::uint8_t* pInk, std::uint32_t nWidth, bool bInverted, std::uint8_t* pTarget) {
    const auto light = [bInverted](std::uint8_t ink) { return bInverted ? ink : static_cast<std::uint8_t>(255 - ink); };
    for (std::uint32_t x = 0; x < nWidth; ++x, pInk += 4, pTarget += 3) {
        const unsigned nBlack = light(pInk[3]);
        for (std::size_t i = 0; i < 3; ++i) {
            pTarget[2 - i] = static_cast<std::uint8_t>((light(pInk[i]) * nBlack + 127U) / 255U);
        }
    }
}

void JpegReader::ReadRow() {
    std::uint8_t* pTarget = m_builder.Row(m_codec.output_scanline);
    JSAMPROW pRow = m_inkRow.empty() ? pTarget : m_inkRow.data();
    if (jpeg_read_scanlines(&m_codec, &pRow, 1) != 1) {
        m_guard.Raise("a row is missing");
    }
    if (!m_inkRow.empty()) {
        InkToBgr(m_inkRow.data(), m_builder.Width(), m_codec.saw_Adobe_marker != FALSE, pTarget);
    } else if (m_codec.out_color_space == JCS_RGB) {
        SwapRedAndBlue(pTarget, m_builder.Width());
    }
}

void JpegReader::ReadRows() {
    jpeg_start_decompress(&m_codec);
    if (m_codec.output_width != m_builder.Width() || m_codec.output_height != m_builder.Height()) {
        m_guard.Raise("the size changes on the way");
    }
    while (m_codec.output_scanline < m_codec.output_height) {
        ReadRow();
    }
    jpeg_finish_decompress(&m_codec);
}

LoadedPicture JpegReader::Read() {
    if (!m_guard.Run([this] { ReadHeader(); })) {
        return Damaged();
    }
    if (std::string error = Allocate(); !error.empty()) {
        return Failed(std::move(error));
    }
    FillResolution();
    if (!m_guard.Run([this] { ReadRows(); })) {
        return Damaged();
    }
    return m_builder.Finish();
}

// Whole numbers per inch or per centimetre, whichever comes closer to what the block says.
struct Density {
    DensityUnit unit = kNoUnit;
    std::array<UINT16, 2> values{1, 1};
    double fError = 0.0;  // sum over the axes, in pixels per metre
};

Density DensityIn(DensityUnit unit, double fPerMeter, const std::array<std::int32_t, 2>& pelsPerMeter) {
    Density density{unit, {}, 0.0};
    for (std::size_t i = 0; i < 2; ++i) {
        const double fWanted = std::max(pelsPerMeter[i], 0);
        density.values[i] = static_cast<UINT16>(std::clamp(std::floor(fWanted / fPerMeter + 0.5), 0.0, 65535.0));
        density.fError += std::abs(fWanted - density.values[i] * fPerMeter);
    }
    return density;
}

Density CloserDensity(const DibFigures& figures) {
    const std::array pels{figures.nXPelsPerMeter, figures.nYPelsPerMeter};
    const Density perInch = DensityIn(kPerInch, kInchesPerMeter, pels);
    const Density perCentimeter = DensityIn(kPerCentimeter, kCentimetersPerMeter, pels);
    const Density& closer = perCentimeter.fError < perInch.fError ? perCentimeter : perInch;
    const bool bNone = closer.values[0] == 0 && closer.values[1] == 0;
    return bNone ? Density{} : closer;
}

// Where the library puts its bytes: a buffer, which goes out whenever it is full, and at the end.
class JpegTarget : public jpeg_destination_mgr {
public:
    explicit JpegTarget(NewFile& file) : jpeg_destination_mgr{}, m_file(file) {
        init_destination = [](j_compress_ptr codec) { TargetOf(codec).Clear(); };
        empty_output_buffer = [](j_compress_ptr codec) -> boolean {
            TargetOf(codec).Send(codec, kBytes);
            return TRUE;
        };
        term_destination = [](j_compress_ptr codec) { TargetOf(codec).Send(codec, kBytes - codec->dest->free_in_buffer); };
    }

private:
    static JpegTarget& TargetOf(j_compress_ptr codec) { return *static_cast<JpegTarget*>(codec->dest); }
    void Clear() {
        next_output_byte = m_buffer.data();
        free_in_buffer = kBytes;
    }
    void Send(j_compress_ptr codec, std::size_t nBytes) {
        if (!m_file.Write(m_buffer.data(), nBytes)) {
            GuardOf(reinterpret_cast<j_common_ptr>(codec)).Raise("the file takes no more");
        }
        Clear();
    }

    static constexpr std::size_t kBytes = 16384;
    NewFile& m_file;
    std::array<JOCTET, kBytes> m_buffer{};
};

class JpegWriter {
public:
    JpegWriter(NewFile& file, const DibView& view);
    ~JpegWriter() { jpeg_destroy_compress(&m_codec); }
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;

    std::string Write();

private:
    void WriteAll();
    void SetParameters();
    void FillRow(std::uint32_t y) noexcept;

    JpegTarget m_target;
    const DibView& m_view;
    std::array<Colour, 256> m_colours;
    bool m_bGrey;  // every colour of the table is a grey
    jpeg_error_mgr m_errors{};
    jpeg_compress_struct m_codec{};
    JumpGuard m_guard;
    std::vector<std::uint8_t> m_indices;
    std::vector<std::uint8_t> m_row;
};

JpegWriter::JpegWriter(NewFile& file, const DibView& view)
    : m_target(file), m_view(view), m_colours(view.Palette()), m_indices(static_cast<std::size_t>(view.Width())) {
    const auto isGrey = [](const Colour& c) { return c.red == c.green && c.green == c.blue; };
    m_bGrey = view.BitCount() <= 8 && std::all_of(m_colours.begin(), m_colours.end(), isGrey);
    m_row.resize(static_cast<std::size_t>(view.Width()) * (m_bGrey ? 1 : 3));
    m_codec.err = QuietErrors(&m_errors);
    m_codec.client_data = &m_guard;
}

void JpegWriter::SetParameters() {
    m_codec.image_width = static_cast<JDIMENSION>(m_view.Width());
    m_codec.image_height = static_cast<JDIMENSION>(m_view.Height());
    m_codec.input_components = m_bGrey ? 1 : 3;
    m_codec.in_color_space = m_bGrey ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&m_codec);
    jpeg_set_quality(&m_codec, kQuality, TRUE);
    m_codec.comp_info[0].h_samp_factor = 1;  // colour at full resolution: edges of lines are measured
    m_codec.comp_info[0].v_samp_factor = 1;
    const Density density = CloserDensity(m_view.Figures());
    m_codec.density_unit = density.unit;
    m_codec.X_density = density.values[0];
    m_codec.Y_density = density.values[1];
}

void JpegWriter::FillRow(std::uint32_t y) noexcept {
    if (m_view.BitCount() > 8) {
        CopyRgbRow(m_view, y, m_row.data());
        return;
    }
    CopyIndexRow(m_view, y, m_indices.data());
    std::uint8_t* pTarget = m_row.data();
    for (const std::uint8_t index : m_indices) {
        const Colour& colour = m_colours[index];
        *pTarget++ = colour.red;
        if (!m_bGrey) {
            *pTarget++ = colour.green;
            *pTarget++ = colour.blue;
        }
    }
}

void JpegWriter::WriteAll() {
    jpeg_create_compress(&m_codec);
    m_codec.dest = &m_target;
    SetParameters();
    jpeg_start_compress(&m_codec, TRUE);
    while (m_codec.next_scanline < m_codec.image_height) {
        FillRow(m_codec.next_scanline);
        JSAMPROW pRow = m_row.data();
        jpeg_write_scanlines(&m_codec, &pRow, 1);
    }
    jpeg_finish_compress(&m_codec);
}

std::string JpegWriter::Write() {
    const bool bDone = m_guard.Run([this] { WriteAll(); });
    return bDone ? std::string() : WithDetail("the JPEG picture cannot be written", m_guard.Text());
}

}  // namespace

LoadedPicture LoadJpeg(std::FILE* pFile) {
    return JpegReader(pFile).Read();
}

std::string SaveJpeg(NewFile& file, const SourceBlock& source) {
    return JpegWriter(file, source.view).Write();
}

}  // namespace width
