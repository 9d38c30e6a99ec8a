// Run by scripts/demo, and by ./test through it.
#include "standins/user/Screen.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "core/PackedDib.h"
#include "imageio/ImageIo.h"

namespace width::user {

namespace {

using Block = std::vector<std::byte>;

BITMAPINFOHEADER ColourHeader(int nWidth, int nHeight) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = nWidth;
    header.biHeight = nHeight;
    header.biPlanes = 1;
    header.biBitCount = 24;
    return header;
}

// A 24-bit picture that the system draws on: a section for the time of drawing, then a packed bitmap.
class Canvas {
public:
    Canvas(int nWidth, int nHeight) : m_header(ColourHeader(nWidth, nHeight)), m_hdc(CreateCompatibleDC(nullptr)) {
        m_hBitmap = CreateDIBSection(m_hdc, std::bit_cast<BITMAPINFO*>(&m_header), DIB_RGB_COLORS, &m_pBits, nullptr, 0);
        if (m_hBitmap == nullptr) {
            DeleteDC(m_hdc);
            throw std::runtime_error("no memory for a picture of the screen");
        }
        m_hOld = SelectObject(m_hdc, m_hBitmap);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    ~Canvas() {
        SelectObject(m_hdc, m_hOld);
        DeleteObject(m_hBitmap);
        DeleteDC(m_hdc);
    }

    HDC Dc() const { return m_hdc; }
    Block Packed() const {
        GdiFlush();
        const std::size_t nRows = std::size_t{DibStride(24, static_cast<std::uint32_t>(m_header.biWidth))} *
                                  static_cast<std::size_t>(m_header.biHeight);
        Block block(sizeof m_header + nRows);
        std::memcpy(block.data(), &m_header, sizeof m_header);
        std::memcpy(block.data() + sizeof m_header, m_pBits, nRows);
        return block;
    }

private:
    BITMAPINFOHEADER m_header;
    HDC m_hdc;
    void* m_pBits = nullptr;
    HBITMAP m_hBitmap = nullptr;
    HGDIOBJ m_hOld = nullptr;
};

void SaveBlock(const std::wstring& path, const Block& picture) {
    if (const std::string error = SavePicture(path, picture); !error.empty()) {
        throw std::runtime_error("a picture of the screen can't be saved: " + error);
    }
}

Block ReadScreen() {
    const int nWidth = GetSystemMetrics(SM_CXSCREEN);
    const int nHeight = GetSystemMetrics(SM_CYSCREEN);
    const Canvas canvas(nWidth, nHeight);
    const HDC hdcScreen = GetDC(nullptr);
    const bool bCopied = BitBlt(canvas.Dc(), 0, 0, nWidth, nHeight, hdcScreen, 0, 0, SRCCOPY) != FALSE;
    ReleaseDC(nullptr, hdcScreen);
    if (!bCopied) {
        throw std::runtime_error("the screen can't be read");
    }
    return canvas.Packed();
}

// A text alone on white, turned by tenths of a degree.
Block DrawText(const std::wstring& text, const wchar_t* face, int nHeight, COLORREF clr, int nTurn) {
    const int nSize = 2 * static_cast<int>(text.size()) * std::abs(nHeight);
    const Canvas canvas(nSize, nSize);
    const RECT all{0, 0, nSize, nSize};
    FillRect(canvas.Dc(), &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    const HFONT hFont = CreateFontW(nHeight, 0, nTurn, nTurn, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                    CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, face);
    const HGDIOBJ hOld = SelectObject(canvas.Dc(), hFont);
    SetTextColor(canvas.Dc(), clr);
    SetBkMode(canvas.Dc(), TRANSPARENT);
    SetTextAlign(canvas.Dc(), TA_BASELINE);
    TextOutW(canvas.Dc(), nSize / 2, nSize / 2, text.c_str(), static_cast<int>(text.size()));
    SelectObject(canvas.Dc(), hOld);
    DeleteObject(hFont);
    return canvas.Packed();
}

// Where pixels of a colour lie, one entry a pixel, bottom row first.
struct Mask {
    int nWidth = 0, nHeight = 0;
    std::vector<bool> set;
    bool At(int x, int y) const {
        return set[static_cast<std::size_t>(y) * static_cast<std::size_t>(nWidth) + static_cast<std::size_t>(x)];
    }
};

Mask MaskOf(const Block& block, COLORREF clr) {
    const std::optional<DibView> dib = DibView::Open(block);
    if (!dib) {
        return {};
    }
    const Colour colour{GetRValue(clr), GetGValue(clr), GetBValue(clr)};
    Mask mask{dib->Width(), dib->Height(), {}};
    for (int y = 0; y < mask.nHeight; ++y) {
        for (int x = 0; x < mask.nWidth; ++x) {
            mask.set.push_back(dib->PixelAt(x, y) == colour);
        }
    }
    return mask;
}

// The part of a mask that has anything in it.
Mask Trimmed(const Mask& mask) {
    int nLeft = mask.nWidth, nRight = 0, nBottom = mask.nHeight, nTop = 0;
    for (int y = 0; y < mask.nHeight; ++y) {
        for (int x = 0; x < mask.nWidth; ++x) {
            if (mask.At(x, y)) {
                nLeft = std::min(nLeft, x), nRight = std::max(nRight, x + 1);
                nBottom = std::min(nBottom, y), nTop = std::max(nTop, y + 1);
            }
        }
    }
    Mask part{std::max(nRight - nLeft, 0), std::max(nTop - nBottom, 0), {}};
    for (int y = 0; y < part.nHeight; ++y) {
        for (int x = 0; x < part.nWidth; ++x) {
            part.set.push_back(mask.At(nLeft + x, nBottom + y));
        }
    }
    return part;
}

bool IsAt(const Mask& whole, const Mask& part, int nLeft, int nBottom) {
    for (int y = 0; y < part.nHeight; ++y) {
        for (int x = 0; x < part.nWidth; ++x) {
            if (whole.At(nLeft + x, nBottom + y) != part.At(x, y)) {
                return false;
            }
        }
    }
    return true;
}

bool Contains(const Mask& whole, const Mask& part) {
    for (int y = 0; y + part.nHeight <= whole.nHeight; ++y) {
        for (int x = 0; x + part.nWidth <= whole.nWidth; ++x) {
            if (IsAt(whole, part, x, y)) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

void Until(const std::string& name, const std::function<bool()>& condition) {
    constexpr ULONGLONG kLongestMs = 30'000;
    const ULONGLONG nEnd = GetTickCount64() + kLongestMs;
    while (!condition()) {
        if (GetTickCount64() > nEnd) {
            throw std::runtime_error("waited in vain for " + name);
        }
        Sleep(10);
    }
}

std::string ToUtf8(const std::wstring& text) {
    const int nLength = static_cast<int>(text.size());
    std::string utf8(
        static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), nLength, nullptr, 0, nullptr, nullptr)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), nLength, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
    return utf8;
}

HWND FindTopWindow(DWORD nProcessId, const std::function<bool(HWND)>& test) {
    struct Search {
        DWORD nProcessId;
        const std::function<bool(HWND)>& test;
        HWND hFound;
    } search{nProcessId, test, nullptr};
    const auto look = [](HWND hWnd, LPARAM lParam) -> BOOL {
        auto& wanted = *std::bit_cast<Search*>(lParam);
        DWORD nProcess = 0;
        GetWindowThreadProcessId(hWnd, &nProcess);
        if (nProcess == wanted.nProcessId && IsWindowVisible(hWnd) != FALSE && wanted.test(hWnd)) {
            wanted.hFound = hWnd;
        }
        return wanted.hFound == nullptr ? TRUE : FALSE;
    };
    EnumWindows(look, std::bit_cast<LPARAM>(&search));
    return search.hFound;
}

bool IsOfClass(HWND hWnd, const wchar_t* name) {
    std::array<wchar_t, 64> szClass{};
    GetClassNameW(hWnd, szClass.data(), static_cast<int>(szClass.size()));
    return std::wstring(szClass.data()) == name;
}

std::wstring TitleOf(HWND hWnd) {
    std::array<wchar_t, 512> szTitle{};
    GetWindowTextW(hWnd, szTitle.data(), static_cast<int>(szTitle.size()));
    return szTitle.data();
}

std::wstring TextsIn(HWND hWnd) {
    std::wstring texts = TitleOf(hWnd);
    const auto add = [](HWND hChild, LPARAM lParam) -> BOOL {
        if (const std::wstring text = TitleOf(hChild); IsWindowVisible(hChild) != FALSE && !text.empty()) {
            *std::bit_cast<std::wstring*>(lParam) += L" | " + text;
        }
        return TRUE;
    };
    EnumChildWindows(hWnd, add, std::bit_cast<LPARAM>(&texts));
    return texts;
}

bool IsColourNear(POINT ptScreen, COLORREF clr, int nReach) {
    const HDC hdc = GetDC(nullptr);
    bool bFound = false;
    for (int y = -nReach; y <= nReach && !bFound; ++y) {
        for (int x = -nReach; x <= nReach && !bFound; ++x) {
            bFound = GetPixel(hdc, ptScreen.x + x, ptScreen.y + y) == clr;
        }
    }
    ReleaseDC(nullptr, hdc);
    return bFound;
}

void SaveScreenNow(const std::wstring& path) {
    SaveBlock(path, ReadScreen());
}

void SaveScreen(const std::wstring& path) {
    Block picture;
    Until("a screen that no longer changes", [&] {
        const Block last = std::exchange(picture, ReadScreen());
        return last == picture;
    });
    SaveBlock(path, picture);
}

bool CarriesText(const std::wstring& path, const std::wstring& text, const wchar_t* face, int nHeight, COLORREF clr) {
    const Mask picture = MaskOf(LoadPicture(path).block, clr);
    for (const int nTurn : {900, 2700}) {
        const Mask letters = Trimmed(MaskOf(DrawText(text, face, nHeight, clr, nTurn), clr));
        if (letters.nWidth > 0 && Contains(picture, letters)) {
            return true;
        }
    }
    return false;
}

}  // namespace width::user
