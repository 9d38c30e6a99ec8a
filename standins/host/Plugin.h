// The plug-in as the host sees it: a DLL that is loaded while the program runs, and the jobs done in it.
// Tested by: tests/win/host/HostTest.cpp
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "api/PluginApi.h"
#include "core/Platform.h"

namespace width::host {

/// Posted to the host's window when the plug-in sends a picture. LPARAM is a ReceivedPicture that the receiver
/// deletes.
constexpr UINT WM_HOST_PICTURE = WM_APP + 1;

/// Posted to the host's window when the job has ended.
constexpr UINT WM_HOST_JOB_END = WM_APP + 2;

/// A copy of what came back; empty when it was no usable bitmap.
using ReceivedPicture = std::vector<std::byte>;

/// One job, from the call of pi_start until its thread is gone. Belongs to the window's thread, which may destroy it
/// only after WM_HOST_JOB_END; its callback runs on the job's thread.
class Job {
public:
    explicit Job(HWND hWnd) : m_hWnd(hWnd) {}
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;
    ~Job();

    /// Waits until the plug-in's code is no longer running for this job. To be called after WM_HOST_JOB_END, which is
    /// posted a moment before the thread ends. false when it does not end in time.
    bool WaitForThread() const;

    /// The function that the plug-in calls; its cookie is the Job.
    static void Callback(void* pCookie, std::int32_t nCode, void* pParam, void* pUnused);

private:
    void OnPicture(const void* pDib) const;
    void OnEnd();

    HWND m_hWnd;
    HANDLE m_hThread = nullptr;  // of the job, from code 4 on
};

/// The loaded DLL, or none.
class Plugin {
public:
    Plugin() = default;
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;
    ~Plugin() { Unload(); }

    /// Loads the DLL and gives it its language, unless it is loaded already.
    /// returns  an empty text, or what went wrong, in English; then nothing is loaded
    std::wstring Load(const std::wstring& path, WORD nLangId);
    bool IsLoaded() const noexcept { return m_hModule != nullptr; }

    /// Only while no job runs.
    void Unload();

    /// Leaves the DLL loaded until the process ends, because a job still runs in it.
    void Abandon() noexcept { m_hModule = nullptr; }

    /// Starts a job on a copy of a bitmap. Only while no other job runs.
    /// returns  false when there is no memory for the copy; then no job has started
    bool Start(std::span<const std::byte> block, Job& job) const;

    /// Shows the plug-in's own box; returns when it is closed.
    void About() const;

private:
    HMODULE m_hModule = nullptr;
    pi_table m_table{};
};

}  // namespace width::host
