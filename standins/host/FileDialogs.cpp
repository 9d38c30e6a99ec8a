// The lists of file types run in the order of preference: lossless formats that keep the resolution first.
// Tested by: tests/win/host/HostTest.cpp
#include "standins/host/FileDialogs.h"

#include <commdlg.h>

#include <algorithm>
#include <array>

namespace width::host {

namespace {

constexpr const wchar_t* kOpenTypes =
    L"Pictures (BMP, PNG, JPEG, TIFF, GIF)\0*.bmp;*.dib;*.png;*.jpg;*.jpeg;*.tif;*.tiff;*.gif\0All files\0*.*\0";
constexpr const wchar_t* kSaveTypes =
    L"Bitmap (*.bmp)\0*.bmp\0PNG (*.png)\0*.png\0TIFF (*.tif)\0*.tif;*.tiff\0JPEG (*.jpg)\0*.jpg;*.jpeg\0GIF (*.gif)\0*.gif\0";
constexpr std::array<const wchar_t*, 5> kSaveEndings{L".bmp", L".png", L".tif", L".jpg", L".gif"};  // in the order of kSaveTypes

using NameBuffer = std::array<wchar_t, 4096>;

OPENFILENAMEW Request(HWND hParent, NameBuffer& buffer, const wchar_t* pTypes, DWORD nFlags) {
    OPENFILENAMEW request{};
    request.lStructSize = sizeof request;
    request.hwndOwner = hParent;
    request.lpstrFilter = pTypes;
    request.nFilterIndex = 1;
    request.lpstrFile = buffer.data();
    request.nMaxFile = static_cast<DWORD>(buffer.size());
    request.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_NOCHANGEDIR | nFlags;
    return request;
}

bool HasEnding(const std::wstring& path) {
    const std::size_t nDot = path.find_last_of(L"./\\");
    return nDot != std::wstring::npos && path[nDot] == L'.';
}

// The box asks about an existing file by the name as typed; a name completed afterwards is asked about here.
bool MayReplace(HWND hParent, const std::wstring& path) {
    if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
        return true;
    }
    const std::wstring question = path + L"\nis already there. Replace it?";
    return MessageBoxW(hParent, question.c_str(), L"Save result as", MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2) == IDYES;
}

}  // namespace

std::wstring AskOpenName(HWND hParent) {
    NameBuffer buffer{};
    OPENFILENAMEW request = Request(hParent, buffer, kOpenTypes, OFN_FILEMUSTEXIST);
    request.lpstrTitle = L"Open a picture";
    return GetOpenFileNameW(&request) != FALSE ? buffer.data() : std::wstring();
}

std::wstring AskSaveName(HWND hParent, const std::wstring& name) {
    NameBuffer buffer{};
    name.copy(buffer.data(), buffer.size() - 1);
    OPENFILENAMEW request = Request(hParent, buffer, kSaveTypes, OFN_OVERWRITEPROMPT);
    request.lpstrTitle = L"Save result as";
    const auto pType = std::find_if(kSaveEndings.begin(), kSaveEndings.end(), [&](const auto* p) { return name.ends_with(p); });
    if (pType != kSaveEndings.end()) {
        request.nFilterIndex = static_cast<DWORD>(pType - kSaveEndings.begin()) + 1;
    }
    if (GetSaveFileNameW(&request) == FALSE) {
        return {};
    }
    std::wstring path = buffer.data();
    if (HasEnding(path)) {
        return path;
    }
    path += kSaveEndings[std::clamp<std::size_t>(request.nFilterIndex, 1, kSaveEndings.size()) - 1];
    return MayReplace(hParent, path) ? path : std::wstring();
}

}  // namespace width::host
