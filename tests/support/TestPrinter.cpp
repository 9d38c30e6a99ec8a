#include "tests/support/TestPrinter.h"

// after windows.h
#include <winspool.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "classlib/Gdi.h"
#include "tests/support/WinDriver.h"

namespace width::test {

namespace {

wchar_t g_szName[] = L"Width test";
wchar_t g_szEnvironment[] = L"Windows x64";
wchar_t g_szDriver[] = L"wineps.drv";
wchar_t g_szRaw[] = L"RAW";
wchar_t g_szProcessor[] = L"winprint";

constexpr char kDescription[] =
    "*PPD-Adobe: \"4.3\"\n*NickName: \"Width test\"\n*LanguageLevel: \"3\"\n*ColorDevice: True\n*TTRasterizer: Type42\n"
    "*DefaultResolution: 300dpi\n*OpenUI *PageSize: PickOne\n*DefaultPageSize: Letter\n"
    "*PageSize Letter: \"<</PageSize[612 792]>>setpagedevice\"\n*CloseUI: *PageSize\n*ImageableArea Letter: \"18 36 594 756\"\n"
    "*PaperDimension Letter: \"612 792\"\n*DefaultFont: Courier\n*Font Courier: Standard \"(1.05)\" Standard ROM\n";

std::wstring DescriptionPath() {
    wchar_t szFolder[MAX_PATH]{};
    DWORD nNeeded = 0;
    ::GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(szFolder), sizeof szFolder, &nNeeded);
    ::CreateDirectoryW(szFolder, nullptr);
    return std::wstring(szFolder) + L"\\width-test.ppd";
}

bool AddDriver() {
    std::wstring path = DescriptionPath();
    std::FILE* const pFile = ::_wfopen(path.c_str(), L"wb");
    if (pFile == nullptr || std::fputs(kDescription, pFile) < 0 || std::fclose(pFile) != 0) {
        return false;
    }
    DRIVER_INFO_3W driver{};
    driver.cVersion = 3;
    driver.pName = g_szName;
    driver.pEnvironment = g_szEnvironment;
    driver.pDriverPath = driver.pConfigFile = g_szDriver;
    driver.pDataFile = path.data();
    driver.pDefaultDataType = g_szRaw;
    return ::AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&driver), APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY) !=
           FALSE;
}

bool AddThePrinter(std::wstring port) {
    PRINTER_INFO_2W printer{};
    printer.pPrinterName = g_szName;
    printer.pPortName = port.data();
    printer.pDriverName = g_szName;
    printer.pPrintProcessor = g_szProcessor;
    printer.pDatatype = g_szRaw;
    const HANDLE hPrinter = ::AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer));
    if (hPrinter == nullptr) {
        return false;
    }
    ::ClosePrinter(hPrinter);
    return ::SetDefaultPrinterW(g_szName) != FALSE;
}

/// The name that a program of the system below knows a file by.
std::string UnixName(const std::wstring& path) {
    using NameFunction = char*(CDECL*)(LPCWSTR);
    const auto pfnName = reinterpret_cast<NameFunction>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name")));
    char* const pszName = pfnName != nullptr ? pfnName(path.c_str()) : nullptr;
    const std::string name = pszName != nullptr ? pszName : "";
    ::HeapFree(::GetProcessHeap(), 0, pszName);
    return name;
}

/// Starts a shell command of the system below. Its end can't be waited for: it has to leave a sign.
bool StartCommand(const std::string& command) {
    std::string line = "/bin/sh -c \"" + command + "\"";
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (::CreateProcessA("/bin/sh", line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process) == FALSE) {
        return false;
    }
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return true;
}

std::string ReadFileWhole(const std::wstring& path) {
    std::FILE* const pFile = ::_wfopen(path.c_str(), L"rb");
    if (pFile == nullptr) {
        return {};
    }
    std::string content;
    char buffer[65536];
    for (std::size_t n = 0; (n = std::fread(buffer, 1, sizeof buffer, pFile)) > 0;) {
        content.append(buffer, n);
    }
    std::fclose(pFile);
    return content;
}

/// A binary portable pixmap of 8 bits.
std::optional<Raster> ReadPixmap(const std::string& content) {
    std::istringstream head(content);
    std::string kind;
    std::string line;
    Raster raster;
    int nMost = 0;
    head >> kind >> std::ws;
    while (head.peek() == '#') {
        std::getline(head, line);
    }
    head >> raster.nWidth >> raster.nHeight >> nMost;
    const auto nPixels = static_cast<std::size_t>(raster.nWidth) * static_cast<std::size_t>(raster.nHeight);
    const auto nStart = static_cast<std::size_t>(head.tellg()) + 1;
    if (!head || kind != "P6" || nMost != 255 || content.size() != nStart + 3 * nPixels) {
        return std::nullopt;
    }
    raster.pixels.resize(nPixels);
    const auto byteAt = [&](std::size_t n) { return static_cast<BYTE>(content[nStart + n]); };
    for (std::size_t i = 0; i < nPixels; ++i) {
        raster.pixels[i] = RGB(byteAt(3 * i), byteAt(3 * i + 1), byteAt(3 * i + 2));
    }
    return raster;
}

}  // namespace

RECT Raster::Box(const std::function<bool(COLORREF)>& condition) const {
    RECT rc{nWidth, nHeight, 0, 0};
    for (int y = 0; y < nHeight; ++y) {
        for (int x = 0; x < nWidth; ++x) {
            if (condition(At(x, y))) {
                rc.left = std::min<LONG>(rc.left, x);
                rc.top = std::min<LONG>(rc.top, y);
                rc.right = std::max<LONG>(rc.right, x + 1);
                rc.bottom = std::max<LONG>(rc.bottom, y + 1);
            }
        }
    }
    return rc.left < rc.right ? rc : RECT{};
}

TestPrinter::TestPrinter(const wchar_t* pszPort) : m_port(pszPort) {
    Remove();
    DeleteOutput();
    m_bReady = AddDriver() && AddThePrinter(m_port);
}

TestPrinter::~TestPrinter() {
    Remove();
    DeleteOutput();
}

void TestPrinter::Remove() {
    HANDLE hPrinter = nullptr;
    PRINTER_DEFAULTSW access{nullptr, nullptr, PRINTER_ALL_ACCESS};
    if (::OpenPrinterW(g_szName, &hPrinter, &access) != FALSE) {
        ::DeletePrinter(hPrinter);
        ::ClosePrinter(hPrinter);
    }
    ::DeletePrinterDriverExW(nullptr, g_szEnvironment, g_szName, 0, 0);
    ::DeleteFileW(DescriptionPath().c_str());
}

void TestPrinter::DeleteOutput() const {
    ::DeleteFileW(m_port.c_str());
}

std::string TestPrinter::Output() const {
    return ReadFileWhole(m_port);
}

bool TestPrinter::WaitForDocument() const {
    return WaitFor([&] { return Output().find("%%EOF") != std::string::npos; }, 60'000);
}

std::optional<Raster> TestPrinter::RenderPage() const {
    const std::wstring page = m_port + L".ppm";
    const std::string source = UnixName(m_port);
    const std::string target = UnixName(page);
    ::DeleteFileW(page.c_str());
    // The page has its name only when it is whole.
    if (!StartCommand("gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=ppmraw -r" + std::to_string(kDpi) + " '-sOutputFile=" + target +
                      ".part' '" + source + "' </dev/null >/dev/null 2>&1; mv '" + target + ".part' '" + target + "'")) {
        return std::nullopt;
    }
    WaitFor([&] { return ::GetFileAttributesW(page.c_str()) != INVALID_FILE_ATTRIBUTES; }, 60'000);
    std::optional<Raster> raster = ReadPixmap(ReadFileWhole(page));
    ::DeleteFileW(page.c_str());
    return raster;
}

Raster ClientRaster(HWND hWnd) {
    RECT rc{};
    ::GetClientRect(hWnd, &rc);
    Raster raster{rc.right, rc.bottom, {}};
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), raster.nWidth, -raster.nHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* pBits = nullptr;
    CDC dc;
    CBitmap picture;
    dc.CreateCompatibleDC(nullptr);
    picture.CreateDIBSection(&info, &pBits);
    const CSelectGuard selected(dc, picture);
    const HDC hdcWindow = ::GetDC(hWnd);
    dc.BitBlt(rc, hdcWindow, {0, 0});
    ::ReleaseDC(hWnd, hdcWindow);
    ::GdiFlush();
    const auto* const pPixels = static_cast<const DWORD*>(pBits);
    const auto nPixels = static_cast<std::size_t>(raster.nWidth) * static_cast<std::size_t>(raster.nHeight);
    raster.pixels.resize(nPixels);
    std::transform(pPixels, pPixels + nPixels, raster.pixels.begin(),
                   [](DWORD n) { return RGB(static_cast<BYTE>(n >> 16), static_cast<BYTE>(n >> 8), static_cast<BYTE>(n)); });
    return raster;
}

}  // namespace width::test
