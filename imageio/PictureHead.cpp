// Walks the chunks of a PNG file, the segments of a JPEG file, the first directory of a TIFF file.
// Tested by: tests/unit/imageio/PictureHeadTest.cpp
#include "imageio/PictureHead.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string_view>

#include "imageio/DibBuilder.h"

namespace width {

namespace {

constexpr double kInchesPerMeter = 1.0 / 0.0254;
constexpr double kCentimetersPerMeter = 100.0;

// Numbers of a file, of either byte order. Reading beyond the end gives 0; callers look at Size() where it matters.
class FileNumbers {
public:
    FileNumbers(std::span<const std::byte> bytes, bool bBigEndian) : m_bytes(bytes), m_bBigEndian(bBigEndian) {}

    std::size_t Size() const noexcept { return m_bytes.size(); }
    bool Has(std::uint64_t nOffset, std::uint64_t nBytes) const noexcept {
        return nOffset <= m_bytes.size() && nBytes <= m_bytes.size() - nOffset;
    }
    std::uint8_t Byte(std::uint64_t nOffset) const noexcept { return static_cast<std::uint8_t>(Number(nOffset, 1)); }
    std::uint16_t Short(std::uint64_t nOffset) const noexcept { return static_cast<std::uint16_t>(Number(nOffset, 2)); }
    std::uint32_t Word(std::uint64_t nOffset) const noexcept { return Number(nOffset, 4); }
    bool Matches(std::uint64_t nOffset, std::string_view text) const noexcept {
        return Has(nOffset, text.size()) && std::memcmp(m_bytes.data() + nOffset, text.data(), text.size()) == 0;
    }

private:
    std::uint32_t Number(std::uint64_t nOffset, std::uint32_t nBytes) const noexcept {
        std::uint32_t nValue = 0;
        for (std::uint32_t i = 0; i < nBytes && Has(nOffset, nBytes); ++i) {
            const std::uint64_t nPlace = m_bBigEndian ? nOffset + i : nOffset + nBytes - 1 - i;
            nValue = nValue << 8 | std::to_integer<std::uint32_t>(m_bytes[static_cast<std::size_t>(nPlace)]);
        }
        return nValue;
    }

    std::span<const std::byte> m_bytes;
    bool m_bBigEndian;
};

// One entry of a TIFF directory: a number, as its type has it.
struct TiffField {
    const FileNumbers& file;
    std::uint64_t nEntry;  // where the 12 bytes of the entry begin

    static constexpr std::uint16_t kShort = 3;
    static constexpr std::uint16_t kLong = 4;

    std::uint16_t Type() const noexcept { return file.Short(nEntry + 2); }
    std::uint16_t Short() const noexcept { return Type() == kShort ? file.Short(nEntry + 8) : std::uint16_t{0}; }
    std::uint32_t Count() const noexcept { return file.Word(nEntry + 4); }
    std::uint64_t NumberBytes() const noexcept { return Type() == kShort ? 2 : 4; }
    // A few stand in the entry itself, more elsewhere in the file.
    std::uint64_t NumbersOffset() const noexcept { return NumberBytes() * Count() <= 4 ? nEntry + 8 : file.Word(nEntry + 8); }
    bool HasNumbers() const noexcept {
        return (Type() == kShort || Type() == kLong) && Count() != 0 && file.Has(NumbersOffset(), NumberBytes() * Count());
    }
    std::uint32_t Number(std::uint32_t i) const noexcept {
        const std::uint64_t nOffset = NumbersOffset() + NumberBytes() * i;
        return Type() == kShort ? file.Short(nOffset) : file.Word(nOffset);
    }
    double Rational() const noexcept {
        constexpr std::uint16_t kRational = 5;
        const std::uint64_t nValue = file.Word(nEntry + 8);
        const std::uint32_t nDenominator = file.Word(nValue + 4);
        return Type() != kRational || nDenominator == 0 ? 0.0 : double{1.0} * file.Word(nValue) / nDenominator;
    }
};

std::optional<TiffField> FindField(const FileNumbers& file, std::uint16_t nTag) noexcept {
    const std::uint64_t nDirectory = file.Word(4);
    const std::uint32_t nEntries = file.Short(nDirectory);
    for (std::uint32_t i = 0; i < nEntries; ++i) {
        const std::uint64_t nEntry = nDirectory + 2 + std::uint64_t{12} * i;
        if (file.Short(nEntry) == nTag && file.Has(nEntry, 12)) {
            return TiffField{file, nEntry};
        }
    }
    return std::nullopt;
}

// Whether all strips or tiles lie in the file. Lengths may be missing; each of them then counts as 0.
bool HasTiffRows(const FileNumbers& file) noexcept {
    constexpr std::array<std::uint16_t, 2> kOffsets{273, 324};  // of strips, of tiles
    constexpr std::array<std::uint16_t, 2> kLengths{279, 325};
    const auto find = [&](const std::array<std::uint16_t, 2>& tags) {
        const auto field = FindField(file, tags[0]);
        return field.has_value() ? field : FindField(file, tags[1]);
    };
    const auto offsets = find(kOffsets);
    const auto lengths = find(kLengths);
    if (!offsets.has_value() || !offsets->HasNumbers()) {
        return false;
    }
    if (lengths.has_value() && (!lengths->HasNumbers() || lengths->Count() < offsets->Count())) {
        return false;
    }
    for (std::uint32_t i = 0; i < offsets->Count(); ++i) {
        if (!file.Has(offsets->Number(i), lengths.has_value() ? lengths->Number(i) : 0)) {
            return false;
        }
    }
    return true;
}

bool HasCommonTiffPacking(const FileNumbers& file) noexcept {
    constexpr std::uint16_t kCompression = 259;
    constexpr std::array<std::uint16_t, 7> kCommon{1, 2, 3, 4, 5, 8, 32773};  // none, facsimile, LZW, deflate, run lengths
    const auto packing = FindField(file, kCompression);
    return !packing.has_value() || std::find(kCommon.begin(), kCommon.end(), packing->Short()) != kCommon.end();
}

// Metres hold so many units, or 0 for a picture whose units are of no known length.
double TiffUnitsPerMeter(const FileNumbers& file) noexcept {
    constexpr std::uint16_t kResolutionUnit = 296;
    const auto unit = FindField(file, kResolutionUnit);
    switch (unit.has_value() ? unit->Short() : 2) {
        case 2:
            return kInchesPerMeter;
        case 3:
            return kCentimetersPerMeter;
        default:
            return 0.0;
    }
}

bool IsSegmentWithoutLength(std::uint8_t nMarker) noexcept {
    return nMarker == 0x01 || (nMarker >= 0xd0 && nMarker <= 0xd8);
}

// The density of a JFIF segment whose two-byte length stands at nOffset.
void ReadJfif(const FileNumbers& file, std::uint64_t nOffset, PictureHead& head) noexcept {
    const std::uint8_t nUnit = file.Byte(nOffset + 9);
    if (file.Short(nOffset) < 14 || (nUnit != 1 && nUnit != 2)) {
        return;
    }
    const double fPerMeter = nUnit == 1 ? kInchesPerMeter : kCentimetersPerMeter;
    head.nXPelsPerMeter = RoundedPelsPerMeter(file.Short(nOffset + 10) * fPerMeter);
    head.nYPelsPerMeter = RoundedPelsPerMeter(file.Short(nOffset + 12) * fPerMeter);
}

// Behind the first scan only markers matter, and none of them can be mistaken: coded data has no such byte pair.
bool HasJpegEnd(std::span<const std::byte> scans) noexcept {
    constexpr std::array kEnd{std::byte{0xff}, std::byte{0xd9}};
    return std::search(scans.begin(), scans.end(), kEnd.begin(), kEnd.end()) != scans.end();
}

}  // namespace

PictureHead ReadPngHead(std::span<const std::byte> bytes) noexcept {
    constexpr std::uint64_t kFirstChunk = 8;
    const FileNumbers file(bytes, true);
    const std::uint8_t nColourType = file.Byte(kFirstChunk + 17);
    PictureHead head;
    head.bGrey = (nColourType & 2U) == 0 && nColourType != 3;
    head.bWhole = false;
    for (std::uint64_t nChunk = kFirstChunk; file.Has(nChunk, 12); nChunk += std::uint64_t{12} + file.Word(nChunk)) {
        const bool bPerMeter = file.Word(nChunk) == 9 && file.Byte(nChunk + 16) == 1;
        if (file.Matches(nChunk + 4, "pHYs") && bPerMeter) {
            head.nXPelsPerMeter = RoundedPelsPerMeter(file.Word(nChunk + 8));
            head.nYPelsPerMeter = RoundedPelsPerMeter(file.Word(nChunk + 12));
        }
        if (file.Matches(nChunk + 4, "IEND")) {
            head.bWhole = true;
            break;
        }
    }
    return head;
}

PictureHead ReadJpegHead(std::span<const std::byte> bytes) noexcept {
    constexpr std::uint8_t kStartOfScan = 0xda;
    constexpr std::uint8_t kApp0 = 0xe0;
    const FileNumbers file(bytes, true);
    PictureHead head;
    head.bWhole = false;
    std::uint64_t nOffset = 2;
    while (file.Has(nOffset, 4) && file.Byte(nOffset) == 0xff) {
        const std::uint8_t nMarker = file.Byte(nOffset + 1);
        if (nMarker == kStartOfScan) {
            head.bWhole = HasJpegEnd(bytes.subspan(static_cast<std::size_t>(nOffset)));
            break;
        }
        if (nMarker == kApp0 && file.Matches(nOffset + 4, std::string_view("JFIF\0", 5))) {
            ReadJfif(file, nOffset + 2, head);
        }
        const bool bFill = nMarker == 0xff;  // any number of these may stand before a marker
        nOffset += bFill ? 1 : (IsSegmentWithoutLength(nMarker) ? 2 : 2 + std::uint64_t{file.Short(nOffset + 2)});
    }
    return head;
}

TiffTable FindTiffTable(std::span<const std::byte> bytes) noexcept {
    constexpr std::uint16_t kColourMap = 320;
    constexpr std::uint16_t kShort = 3;
    const FileNumbers file(bytes, !bytes.empty() && bytes.front() == std::byte{'M'});
    const auto map = FindField(file, kColourMap);
    if (!map.has_value() || map->Type() != kShort) {
        return {};
    }
    const std::uint32_t nNumbers = file.Word(map->nEntry + 4);
    const std::uint32_t nOffset = file.Word(map->nEntry + 8);
    return file.Has(nOffset, std::uint64_t{2} * nNumbers) ? TiffTable{nOffset, nNumbers / 3} : TiffTable{};
}

PictureHead ReadTiffHead(std::span<const std::byte> bytes) noexcept {
    constexpr std::uint16_t kXResolution = 282;
    constexpr std::uint16_t kYResolution = 283;
    const FileNumbers file(bytes, !bytes.empty() && bytes.front() == std::byte{'M'});
    const double fPerMeter = TiffUnitsPerMeter(file);
    const auto resolution = [&](std::uint16_t nTag) {
        const auto field = FindField(file, nTag);
        return field.has_value() ? RoundedPelsPerMeter(field->Rational() * fPerMeter) : 0;
    };
    PictureHead head;
    head.nXPelsPerMeter = resolution(kXResolution);
    head.nYPelsPerMeter = resolution(kYResolution);
    const bool bLargeKind = file.Short(2) == 43;  // with numbers of 64 bits, which nobody here reads
    head.bWhole = bLargeKind || HasTiffRows(file);
    head.bCommonPacking = HasCommonTiffPacking(file);
    return head;
}

}  // namespace width
