// kestrix.dll: the image library's seven functions, over the system's imaging component.
// Tested by: tests/win/kestrix/KestrixTest.cpp
#include "api/Kestrix.h"

#include <array>
#include <optional>
#include <string>

#include "standins/kestrix/Formats.h"
#include "standins/kestrix/OptionsDialog.h"
#include "standins/kestrix/Texts.h"

namespace {

using namespace width;
using namespace width::kestrix;

constexpr KestrixExtension kExtensions[] = {
    {"bmp", FORMAT_BMP},  {"dib", FORMAT_BMP},   {"png", FORMAT_PNG}, {"jpg", FORMAT_JPEG}, {"jpeg", FORMAT_JPEG},
    {"tif", FORMAT_TIFF}, {"tiff", FORMAT_TIFF}, {"gif", FORMAT_GIF}, {nullptr, 0},
};

constexpr KestrixFormatInfo Named(const char* pszName) {
    return {{}, pszName};
}
constexpr std::array<KestrixFormatInfo, FORMAT_COUNT> kInfos{Named("Windows Bitmap"), Named("PNG"), Named("JPEG"), Named("TIFF"),
                                                             Named("GIF")};

/// What the user chose last for each format: a dialog that is cancelled gives it back.
std::array<FormatOptions, FORMAT_COUNT>& Chosen() {
    static std::array<FormatOptions, FORMAT_COUNT> s_chosen = [] {
        std::array<FormatOptions, FORMAT_COUNT> options{};
        for (std::int32_t n = 0; n < FORMAT_COUNT; ++n) {
            options[static_cast<std::size_t>(n)] = DefaultOptions(n);
        }
        return options;
    }();
    return s_chosen;
}

/// Empty when the path is not text of the code page.
std::wstring WidePath(const char* pszPath) {
    const int nLength = MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, pszPath, -1, nullptr, 0);
    std::wstring path(static_cast<std::size_t>(nLength > 0 ? nLength : 0), L'\0');
    MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, pszPath, -1, path.data(), nLength);
    return path.substr(0, path.find(L'\0'));
}

SaveResult Save(const char* pszPath, const void* pDib, const SaveOptions& options) {
    const auto nFormat = static_cast<std::int32_t>(options.nFormat);
    const std::optional<DibView> view = OpenBlock(pDib);
    if (!view.has_value()) {
        return {SaveFault::Bitmap, 0};
    }
    if (!CanHold(*view, nFormat)) {
        const SaveFault fault = IsFormat(nFormat) ? FaultOf(*view, FileOf(nFormat)) : SaveFault::Colours;
        return {fault == SaveFault::None ? SaveFault::Colours : fault, 0};
    }
    const std::wstring path = pszPath != nullptr ? WidePath(pszPath) : std::wstring();
    if (path.empty()) {
        return {SaveFault::System, ERROR_INVALID_NAME};
    }
    return SavePictureAs(path, {static_cast<const std::byte*>(pDib), view->Figures().nBytes}, FileOf(nFormat), StyleOf(options));
}

}  // namespace

int32_t Kestrix_Save(const char* pszPath, const void* pDib, SaveOptions* pOptions) {
    if (pOptions == nullptr) {
        return 0;
    }
    SaveResult result{SaveFault::Memory, 0};
    try {
        result = Save(pszPath, pDib, *pOptions);
    } catch (const std::exception&) {  // not enough memory for the path
    }
    if (result.fault == SaveFault::None) {
        return 1;
    }
    TellFault(result, *pOptions);
    return 0;
}

int32_t Kestrix_CanSave(const void* pDib, const SaveOptions* pOptions) {
    const std::optional<DibView> view = OpenBlock(pDib);
    return view.has_value() && pOptions != nullptr && CanHold(*view, static_cast<std::int32_t>(pOptions->nFormat)) ? 1 : 0;
}

const KestrixExtension* Kestrix_ExtFmt(void) {
    return kExtensions;
}

const KestrixFormatInfo* Kestrix_GetFmtInfo(int32_t nFormat) {
    return IsFormat(nFormat) ? &kInfos[static_cast<std::size_t>(nFormat)] : nullptr;
}

int32_t iopt_bDlg(int32_t nFormat) {
    return HasDialog(nFormat) ? 1 : 0;
}

FormatOptions iopt_get_default(int32_t nFormat) {
    if (!IsFormat(nFormat)) {
        return {};
    }
    return Chosen()[static_cast<std::size_t>(nFormat)] = DefaultOptions(nFormat);
}

FormatOptions iopt_Dlg(int32_t bChinese, int32_t nFormat, void* hOwner) {
    SetChinese(bChinese != 0);
    if (!IsFormat(nFormat)) {
        return {};
    }
    FormatOptions& chosen = Chosen()[static_cast<std::size_t>(nFormat)];
    return chosen = AskOptions(bChinese != 0, nFormat, static_cast<HWND>(hOwner), chosen);
}
