// The image library as the plug-in sees it: the DLL of the build, by its seven names; and pictures for it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "api/Kestrix.h"
#include "core/PackedDib.h"

namespace width::test {

struct Library {
    decltype(&Kestrix_Save) Save;
    decltype(&Kestrix_CanSave) CanSave;
    decltype(&Kestrix_ExtFmt) ExtFmt;
    decltype(&Kestrix_GetFmtInfo) GetFmtInfo;
    decltype(&iopt_bDlg) HasDialog;
    decltype(&iopt_get_default) Defaults;
    decltype(&iopt_Dlg) Dialog;
};

/// Loaded once. Ends the program when a name is missing.
const Library& TheLibrary();

/// A picture with all colours that its depth allows, or greys; 300 and 150 pixels per inch in x and y.
std::vector<std::byte> TestPicture(std::int32_t nWidth, std::int32_t nHeight, std::uint16_t nBits, bool bGrey);

/// Saves with the format's defaults or other options. The path is given in the process's code page.
bool SaveTo(const std::filesystem::path& path, const std::vector<std::byte>& block, std::int32_t nFormat,
            SaveOptions* pOptions = nullptr);

}  // namespace width::test
