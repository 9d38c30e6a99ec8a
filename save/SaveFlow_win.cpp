// Tested by: tests/e2e/SaveTest.cpp
#include "save/SaveFlow_win.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include "classlib/Thread.h"
#include "core/Platform.h"
#include "module/ModuleState.h"
#include "save/SaveDlg_win.h"

namespace width {

namespace {

/// The types that can hold the image, as the library names and orders them.
std::vector<FileType> TypesFor(const void* pDib) {
    std::vector<FileType> types;
    for (std::int32_t n = 0; n < KESTRIX_FORMATS; ++n) {
        SaveOptions probe{};
        probe.nFormat = static_cast<std::uint32_t>(n);
        if (Kestrix_CanSave(pDib, &probe) == 0) {
            continue;
        }
        const FormatTable table = LibraryFormats();
        const KestrixFormatInfo* const pInfo = Kestrix_GetFmtInfo(n);
        if (pInfo == nullptr) {
            continue;
        }
        const std::wstring patterns = PatternsOf(table, n);
        types.push_back({DisplayOf(pInfo->pszName != nullptr ? Widen(pInfo->pszName) : std::wstring(), patterns), patterns});
    }
    return types;
}

void CopyOptions(const FormatOptions& from, SaveOptions& to) {
    to.nOption0 = from.nOption0;
    to.bOption1 = from.bOption1;
    to.bOption2 = from.bOption2;
    to.bOption3 = from.bOption3;
    to.bOption4 = from.bOption4;
    to.bOption5 = from.bOption5;
    to.bOption6 = from.bOption6;
}

/// The entries of a colour table whose header leaves the number open; 0 for depths without one.
std::uint32_t FullColourTable(std::uint16_t nBitCount) {
    return nBitCount == 1 || nBitCount == 4 || nBitCount == 8 ? 1U << nBitCount : 0;
}

void FillInColoursUsed(void* pDib) {
    BITMAPINFOHEADER header;
    std::memcpy(&header, pDib, sizeof header);
    if (header.biClrUsed == 0) {
        header.biClrUsed = FullColourTable(header.biBitCount);
        std::memcpy(pDib, &header, sizeof header);
    }
}

/// The library's words; it may have left out the ending zero.
std::wstring WordsOf(const SaveOptions& options) {
    return Widen(std::string(std::begin(options.szError), std::find(std::begin(options.szError), std::end(options.szError), '\0'))
                     .c_str());
}

}  // namespace

std::wstring Widen(const char* pszText) {
    const int nLength = ::MultiByteToWideChar(CP_ACP, 0, pszText, -1, nullptr, 0);
    if (nLength <= 0) {
        return {};
    }
    std::wstring text(static_cast<std::size_t>(nLength), L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, pszText, -1, text.data(), nLength);
    text.pop_back();
    return text;
}

std::string NarrowPath(const std::wstring& path) {
    std::array<char, kPathBytes> narrow{};
    BOOL bReplaced = FALSE;
    const bool bUtf8 = ::GetACP() == CP_UTF8;  // holds everything, and may not be asked about replacements
    const int nBytes = ::WideCharToMultiByte(CP_ACP, bUtf8 ? 0 : WC_NO_BEST_FIT_CHARS, path.c_str(), -1, narrow.data(),
                                             static_cast<int>(narrow.size()), nullptr, bUtf8 ? nullptr : &bReplaced);
    return nBytes > 0 && bReplaced == FALSE ? std::string(narrow.data()) : std::string();
}

void TellSaveFailed(const std::wstring& path, const std::wstring& why) {
    std::wstring text = g_bChinese != 0 ? L"保存文件 “" + path + L"” 出错。" : L"Failed to save file \"" + path + L"\".";
    if (!why.empty()) {
        text += L'\n' + why;
    }
    AfxMessageBox(text.c_str(), MB_ICONEXCLAMATION);
}

int RunSaveDialog(const void* pDib, char (&szPath)[kPathBytes], SaveOptions& options) {
    options = {};
    const std::wstring initialName = InitialFileName(Widen(szPath));
    CSaveDlg dlg(initialName.empty() ? nullptr : initialName.c_str());
    dlg.SetTypes(TypesFor(pDib), initialName.c_str());
    std::array<wchar_t, kPathBytes> folder{};
    ::GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data());
    dlg.m_ofn.lpstrInitialDir = folder.data();
    if (dlg.DoModal() != IDOK) {
        return 0;
    }
    const std::string path = NarrowPath(dlg.GetPathName());
    if (path.empty()) {
        return 0;
    }
    options.nFormat = dlg.m_nFormat;
    CopyOptions(dlg.m_options, options);
    std::ranges::fill(szPath, '\0');
    std::ranges::copy(path, std::begin(szPath));
    return 1;
}

int SaveToFile(const char* pszPath, void* pDib, SaveOptions& options) {
    FillInColoursUsed(pDib);
    if (std::strchr(pszPath, '.') == nullptr) {
        return 0;
    }
    if (Kestrix_Save(pszPath, pDib, &options) != 0) {
        return 1;
    }
    TellSaveFailed(Widen(pszPath), WordsOf(options));
    return 0;
}

}  // namespace width
