// A printer for tests: the system's PostScript driver with a description of our own, whose output is a file, and the page that
// another program makes of that file. Under Wine only.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "classlib/Win.h"

namespace width::test {

/// Pixels in rows from the top.
struct Raster {
    int nWidth = 0;
    int nHeight = 0;
    std::vector<COLORREF> pixels;

    COLORREF At(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(nWidth) + static_cast<std::size_t>(x)];
    }
    /// The smallest rectangle round all pixels of which the condition holds; empty if there is none.
    RECT Box(const std::function<bool(COLORREF)>& condition) const;
};

/// The only printer there is, and the default one, for as long as the object lives. Letter paper, 300 dots per inch, 2550 x 3300;
/// the printable area is 2400 x 3000 from (75, 150) on.
class TestPrinter {
public:
    static constexpr int kDpi = 300;
    static constexpr SIZE kPaper{2550, 3300};
    static constexpr RECT kPrintable{75, 150, 2475, 3150};

    /// Where the output goes: a file of drive C by default.
    explicit TestPrinter(const wchar_t* pszPort = L"C:\\width-test-page.ps");
    TestPrinter(const TestPrinter&) = delete;
    TestPrinter& operator=(const TestPrinter&) = delete;
    ~TestPrinter();

    bool IsReady() const { return m_bReady; }
    /// What has been printed so far; empty without a file.
    std::string Output() const;
    /// Waits until a whole document has been printed.
    bool WaitForDocument() const;
    /// The document as Ghostscript renders it, all of the paper at the printer's resolution. Nothing on failure.
    std::optional<Raster> RenderPage() const;
    void DeleteOutput() const;

    /// Takes away what an earlier run that was cut off left behind.
    static void Remove();

private:
    std::wstring m_port;
    bool m_bReady = false;
};

/// A window's client area as it is on the screen.
Raster ClientRaster(HWND hWnd);

}  // namespace width::test
