// The recording image library: see Recorder.h. Tested by: tests/e2e/SaveTest.cpp
#include "standins/recorder/Recorder.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr KestrixExtension kNoFormats[] = {{nullptr, 0}};

RecorderState g_state = [] {
    RecorderState state{};
    state.pTable = kNoFormats;
    state.bProbesZeroed = 1;
    return state;
}();

void Note(const std::string& call) {
    const std::size_t nUsed = std::strlen(g_state.szCalls);
    std::snprintf(g_state.szCalls + nUsed, sizeof g_state.szCalls - nUsed, "%s ", call.c_str());
}

std::string Numbered(const char* pszName, std::int32_t n) {
    return pszName + std::to_string(n);
}

bool IsFormat(std::int32_t n) {
    return n >= 0 && n < KESTRIX_FORMATS;
}

bool HasBit(std::uint32_t nBits, std::int32_t n) {
    return IsFormat(n) && (nBits >> static_cast<unsigned>(n) & 1U) != 0;
}

}  // namespace

extern "C" {

RecorderState* recorder_state(void);
RecorderState* recorder_state(void) {
    return &g_state;
}

int32_t Kestrix_Save(const char* pszPath, const void* pDib, SaveOptions* pOptions) {
    Note(Numbered("Save", static_cast<std::int32_t>(pOptions->nFormat)));
    g_state.saved = *pOptions;
    g_state.pDib = pDib;
    std::snprintf(g_state.szPath, sizeof g_state.szPath, "%s", pszPath);
    if (g_state.nSaved == 0) {
        std::copy(std::begin(g_state.szError), std::end(g_state.szError), pOptions->szError);
    }
    return g_state.nSaved;
}

int32_t Kestrix_CanSave(const void* pDib, const SaveOptions* pOptions) {
    const auto n = static_cast<std::int32_t>(pOptions->nFormat);
    Note(Numbered("CanSave", n));
    g_state.pDib = pDib;
    SaveOptions probe{};
    probe.nFormat = pOptions->nFormat;
    if (std::memcmp(&probe, pOptions, sizeof probe) != 0) {
        g_state.bProbesZeroed = 0;
    }
    return HasBit(g_state.nCanSave, n) ? 1 : 0;
}

const KestrixExtension* Kestrix_ExtFmt(void) {
    Note("ExtFmt");
    return g_state.pTable;
}

const KestrixFormatInfo* Kestrix_GetFmtInfo(int32_t nFormat) {
    static KestrixFormatInfo s_info;
    Note(Numbered("GetFmtInfo", nFormat));
    s_info = {};
    s_info.pszName = IsFormat(nFormat) ? g_state.pszNames[nFormat] : nullptr;
    return s_info.pszName != nullptr ? &s_info : nullptr;
}

int32_t iopt_bDlg(int32_t nFormat) {
    Note(Numbered("bDlg", nFormat));
    return HasBit(g_state.nHasDialog, nFormat) ? 1 : 0;
}

FormatOptions iopt_get_default(int32_t nFormat) {
    Note(Numbered("get_default", nFormat));
    return IsFormat(nFormat) ? g_state.defaults[nFormat] : FormatOptions{};
}

FormatOptions iopt_Dlg(int32_t bChinese, int32_t nFormat, void* hOwner) {
    Note(Numbered(bChinese != 0 ? "DlgZh" : "DlgEn", nFormat));
    g_state.hOwner = hOwner;
    return g_state.chosen;
}

}  // extern "C"
