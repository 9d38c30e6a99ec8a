// The host's main window: menu, picture and status bar, and the account of picture, plug-in and job.
// Tested by: tests/win/host/HostTest.cpp
#pragma once

#include "core/Platform.h"
// after core/Platform.h, which brings the platform in
#include <shellapi.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "standins/host/CommandLine.h"
#include "standins/host/PictureView.h"
#include "standins/host/Plugin.h"

namespace width::host {

class HostWindow {
public:
    /// nLangId       language that the plug-in is loaded with at first
    /// pluginPath    full path of the plug-in, which is looked for when it is first asked for
    HostWindow(WORD nLangId, std::wstring pluginPath) : m_nLangId(nLangId), m_pluginPath(std::move(pluginPath)) {}
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;
    ~HostWindow();

    /// Creates and shows the window. The object must outlive it; its destruction ends the thread's message loop.
    bool Create(int nShow);
    HWND Window() const noexcept { return m_hWnd; }

    /// Reads a picture file and shows it. On failure a box says why, and the picture before stays. Asks first when the
    /// picture before is a result that is not saved.
    void OpenPicture(const std::wstring& path);

    /// Gives the picture to the plug-in, which is loaded if need be; a box says why when that fails.
    void Measure();

    /// The picture that is shown, a packed bitmap; empty: none.
    std::span<const std::byte> Picture() const noexcept { return m_block; }
    bool IsJobRunning() const noexcept { return m_pJob != nullptr; }
    const PictureView& View() const noexcept { return m_view; }

private:
    static LRESULT CALLBACK WindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    LRESULT OnMessage(UINT nMessage, WPARAM wParam, LPARAM lParam);
    bool OnCreate();
    void OnSize();
    void OnClose();
    void OnDropFiles(HDROP hDrop);
    void OnInitMenu(HMENU hMenu) const;
    void OnCommand(int nId);
    void OnPictureReceived(std::unique_ptr<ReceivedPicture> pPicture);
    void OnJobEnd();

    void Open();
    bool SaveAs();
    void About();
    void SetLanguage(WORD nLangId);
    bool LoadPlugin();
    bool MayDiscardResult();
    void SetPicture(std::vector<std::byte> block, const std::wstring& name, bool bUnsaved);
    bool IsEnabled(int nId) const noexcept;
    void UpdateTitle() const;
    void UpdateStatus() const;
    int Say(const std::wstring& text, UINT nFlags) const;

    HWND m_hWnd = nullptr;
    HWND m_hStatus = nullptr;
    PictureView m_view;
    WORD m_nLangId;
    std::wstring m_pluginPath;
    Plugin m_plugin;
    std::unique_ptr<Job> m_pJob;     // while a job runs
    std::vector<std::byte> m_block;  // the picture, empty: none
    std::wstring m_name;             // of the picture's file, without folders
    bool m_bUnsaved = false;         // the picture came from the plug-in and is in no file
};

}  // namespace width::host
