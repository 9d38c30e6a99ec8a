// A plug-in for tests of the host's side of the contract. It writes a line for every call into the file that the
// environment variable WIDTH_FAKE_LOG names. A job inverts the picture's rows, sends it back, and ends when the event
// WIDTH_FAKE_GO, named after the process, is set.
// Tested by: tests/win/host/HostTest.cpp
#include <malloc.h>
#include <windows.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "api/PluginApi.h"

namespace {

std::atomic<bool> g_bRunning{false};

void Log(const std::string& line) {
    std::array<wchar_t, 1024> path{};
    GetEnvironmentVariableW(L"WIDTH_FAKE_LOG", path.data(), static_cast<DWORD>(path.size()));
    if (std::FILE* pFile = _wfopen(path.data(), L"ab"); pFile != nullptr) {
        std::fputs((line + "\n").c_str(), pFile);
        std::fclose(pFile);
    }
}

BITMAPINFOHEADER HeaderOf(const void* pDib) {
    BITMAPINFOHEADER header{};
    std::memcpy(&header, pDib, sizeof header);
    return header;
}

void InvertRows(void* pDib) {
    const BITMAPINFOHEADER header = HeaderOf(pDib);
    const std::size_t nEntries = header.biBitCount > 8 ? 0 : (header.biClrUsed != 0 ? header.biClrUsed : 1U << header.biBitCount);
    auto* pBytes = static_cast<unsigned char*>(pDib);
    for (std::size_t i = sizeof header + 4 * nEntries; i < _msize(pDib); ++i) {
        pBytes[i] = static_cast<unsigned char>(~pBytes[i]);
    }
}

void WaitForGo() {
    const std::wstring name = L"WIDTH_FAKE_GO" + std::to_wstring(GetCurrentProcessId());
    const HANDLE hGo = CreateEventW(nullptr, FALSE, FALSE, name.c_str());
    WaitForSingleObject(hGo, 30000);
    CloseHandle(hGo);
}

void RunJob(void* pDib, HostCallback pfn, void* pCookie) {
    InvertRows(pDib);
    pfn(pCookie, PI_CODE_IMAGE, pDib, nullptr);
    std::memset(pDib, 0, _msize(pDib));  // what the host shows must be a copy
    Log("image sent");
    WaitForGo();
    std::free(pDib);
    pfn(pCookie, PI_CODE_END, nullptr, nullptr);
    Log("end sent");
    Sleep(50);  // as a real thread does, this one has things to do behind the callback
    g_bRunning = false;
}

void Start(void* pDib, void* /*pUnused*/, HostCallback pfn, void* pCookie) {
    if (g_bRunning.exchange(true)) {
        Log("start refused");
        std::free(pDib);
        return;
    }
    const BITMAPINFOHEADER header = HeaderOf(pDib);
    Log("start " + std::to_string(header.biWidth) + " " + std::to_string(header.biHeight) + " " +
        std::to_string(header.biBitCount));
    std::thread(RunJob, pDib, pfn, pCookie).detach();
}

void About() {
    Log("about");
}

}  // namespace

extern "C" std::int32_t pi_init(pi_table* pTable, std::uint16_t nLangId) {
    Log("init " + std::to_string(nLangId));
    pTable->nHead = 1;
    pTable->pfnStart = Start;
    pTable->pfnAbout = About;
    return 1;
}
