// The callback only copies and posts: it runs on the plug-in's thread, and the plug-in's window stands still meanwhile.
// Tested by: tests/win/host/HostTest.cpp
#include "standins/host/Plugin.h"

#include <malloc.h>

#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>

#include "core/PackedDib.h"

namespace width::host {

namespace {

constexpr DWORD kEndOfThreadMs = 5000;

std::wstring SystemText(DWORD nError) {
    std::array<wchar_t, 300> text{};
    DWORD nLength = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, nError, 0, text.data(),
                                   static_cast<DWORD>(text.size()), nullptr);
    while (nLength > 0 && text[nLength - 1] <= L' ') {
        --nLength;
    }
    return std::wstring(text.data(), nLength) + L" (error " + std::to_wstring(nError) + L")";
}

// A module that is missing and one that lacks a module of its own give the same error.
std::wstring LoadError(const std::wstring& path, DWORD nError) {
    if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
        return L"The plug-in is not there:\n" + path;
    }
    if (nError == ERROR_MOD_NOT_FOUND) {
        return L"The plug-in is there, but a library that it needs is missing:\n" + path;
    }
    return L"The plug-in cannot be loaded:\n" + path + L"\n\n" + SystemText(nError);
}

// Loading must not open boxes of the system's own.
HMODULE LoadQuietly(const std::wstring& path, DWORD& nError) {
    const UINT nOldMode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    const HMODULE hModule = LoadLibraryW(path.c_str());
    nError = GetLastError();
    SetErrorMode(nOldMode);
    return hModule;
}

}  // namespace

Job::~Job() {
    if (m_hThread != nullptr) {
        CloseHandle(m_hThread);
    }
}

bool Job::WaitForThread() const {
    return m_hThread == nullptr || WaitForSingleObject(m_hThread, kEndOfThreadMs) == WAIT_OBJECT_0;
}

void Job::Callback(void* pCookie, std::int32_t nCode, void* pParam, void* /*pUnused*/) {
    auto* pJob = static_cast<Job*>(pCookie);
    if (nCode == PI_CODE_IMAGE) {
        pJob->OnPicture(pParam);
    } else if (nCode == PI_CODE_END) {
        pJob->OnEnd();
    }
}

void Job::OnPicture(const void* pDib) const {
    auto pCopy = std::unique_ptr<ReceivedPicture>(new (std::nothrow) ReceivedPicture);
    if (pCopy == nullptr) {
        return;
    }
    try {
        const std::size_t nBytes = pDib != nullptr ? _msize(const_cast<void*>(pDib)) : 0;
        const std::span block(static_cast<const std::byte*>(pDib), nBytes);
        const DibCheck check = CheckPackedDib(block);
        if (check.status == DibStatus::Ok) {
            pCopy->assign(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(check.figures.nBytes));
        }
    } catch (const std::bad_alloc&) {
        pCopy->clear();
    }
    if (PostMessageW(m_hWnd, WM_HOST_PICTURE, 0, std::bit_cast<LPARAM>(pCopy.get())) != FALSE) {
        (void)pCopy.release();
    }
}

// After the message is posted the job may be gone at any moment.
void Job::OnEnd() {
    m_hThread = OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId());
    PostMessageW(m_hWnd, WM_HOST_JOB_END, 0, 0);
}

std::wstring Plugin::Load(const std::wstring& path, WORD nLangId) {
    if (IsLoaded()) {
        return {};
    }
    DWORD nError = 0;
    m_hModule = LoadQuietly(path, nError);
    if (m_hModule == nullptr) {
        return LoadError(path, nError);
    }
    const FARPROC pfnFound = GetProcAddress(m_hModule, PI_INIT_NAME);
    m_table = {};
    if (pfnFound != nullptr) {
        std::bit_cast<pi_init_fn>(pfnFound)(&m_table, nLangId);
    }
    if (m_table.pfnStart == nullptr || m_table.pfnAbout == nullptr) {
        Unload();
        return L"This library is not a plug-in for this program:\n" + path;
    }
    return {};
}

void Plugin::Unload() {
    if (m_hModule != nullptr) {
        FreeLibrary(m_hModule);
        m_hModule = nullptr;
        m_table = {};
    }
}

bool Plugin::Start(std::span<const std::byte> block, Job& job) const {
    void* pCopy = std::malloc(block.size());
    if (pCopy == nullptr) {
        return false;
    }
    std::memcpy(pCopy, block.data(), block.size());
    m_table.pfnStart(pCopy, nullptr, Job::Callback, &job);
    return true;
}

void Plugin::About() const {
    m_table.pfnAbout();
}

}  // namespace width::host
