#include "tests/win/kestrix/Library.h"

#include <cstdio>
#include <cstdlib>
#include <random>

#include "tests/support/Pictures.h"

namespace width::test {

namespace {

template <class Function>
Function NameOf(HMODULE hLibrary, const char* pszName) {
    const auto pfn = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(hLibrary, pszName)));
    if (pfn == nullptr) {
        std::fprintf(stderr, "no %s in %ls\n", pszName, KESTRIX_PATH);
        std::exit(1);
    }
    return pfn;
}

std::string Narrow(const std::wstring& text) {
    char narrow[400] = {};
    WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, narrow, sizeof narrow, nullptr, nullptr);
    return narrow;
}

}  // namespace

const Library& TheLibrary() {
    static const Library s_library = [] {
        const HMODULE h = LoadLibraryW(KESTRIX_PATH);
        return Library{NameOf<decltype(&Kestrix_Save)>(h, "Kestrix_Save"),
                       NameOf<decltype(&Kestrix_CanSave)>(h, "Kestrix_CanSave"),
                       NameOf<decltype(&Kestrix_ExtFmt)>(h, "Kestrix_ExtFmt"),
                       NameOf<decltype(&Kestrix_GetFmtInfo)>(h, "Kestrix_GetFmtInfo"),
                       NameOf<decltype(&iopt_bDlg)>(h, "iopt_bDlg"),
                       NameOf<decltype(&iopt_get_default)>(h, "iopt_get_default"),
                       NameOf<decltype(&iopt_Dlg)>(h, "iopt_Dlg")};
    }();
    return s_library;
}

std::vector<std::byte> TestPicture(std::int32_t nWidth, std::int32_t nHeight, std::uint16_t nBits, bool bGrey) {
    constexpr std::int32_t kPerInch300 = 11811, kPerInch150 = 5906;
    std::mt19937 random(nBits);
    DibBuilder builder(nWidth, nHeight, nBits);
    builder.SetResolution(kPerInch300, kPerInch150);
    const auto any = [&random] { return static_cast<std::uint8_t>(Below(random, 256)); };
    if (nBits <= 8) {
        builder.GreyTable();
        for (std::size_t i = 0; !bGrey && i < std::size_t{1} << nBits; ++i) {
            builder.SetColour(i, {any(), any(), any()});
        }
        builder.Fill([&](std::int32_t, std::int32_t) { return static_cast<std::uint32_t>(Below(random, 1 << nBits)); });
        return builder.Block();
    }
    for (std::int32_t i = 0; i < nWidth * nHeight; ++i) {
        const std::uint8_t nLevel = static_cast<std::uint8_t>(i % nWidth * 255 / nWidth);
        builder.SetPixel(i % nWidth, i / nWidth, bGrey ? Colour{nLevel, nLevel, nLevel} : Colour{any(), any(), any()});
    }
    return builder.Block();
}

bool SaveTo(const std::filesystem::path& path, const std::vector<std::byte>& block, std::int32_t nFormat, SaveOptions* pOptions) {
    SaveOptions options{};
    const FormatOptions defaults = TheLibrary().Defaults(nFormat);
    options.nOption0 = defaults.nOption0;
    options.bOption2 = defaults.bOption2;
    if (pOptions == nullptr) {
        pOptions = &options;
    }
    pOptions->nFormat = static_cast<std::uint32_t>(nFormat);
    return TheLibrary().Save(Narrow(path.wstring()).c_str(), block.data(), pOptions) != 0;
}

}  // namespace width::test
