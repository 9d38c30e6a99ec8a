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
    std::span<const std::byte> Picture() const noexcept { return *m_pBlock; }
    bool IsJobRunning() const noexcept { return m_pJob != nullptr; }
    const PictureView& View() const noexcept { return m_view; }

private:
    using Block = std::shared_ptr<const std::vector<std::byte>>;

    // Lives as long as something is being done here. That may have shown a dialog, whose loop dispatches what comes
    // meanwhile: nothing else is begun then, and the window stays until it is over.
    class Work {
    public:
        explicit Work(HostWindow& window) : m_window(window) { ++m_window.m_nWorks; }
        ~Work() { m_window.OnWorkDone(); }
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;

    private:
        HostWindow& m_window;
    };
    // Whether something is being done beside the caller, which has a Work of its own.
    bool IsBusy() const noexcept { return m_nWorks > 1; }
    void OnWorkDone();

    static LRESULT CALLBACK WindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    LRESULT OnMessage(UINT nMessage, WPARAM wParam, LPARAM lParam);
    bool OnCreate();
    void OnSize();
    void OnClose();
    void OnEnterIdle(HWND hDialog) const;
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
    void SetPicture(Block pBlock, const std::wstring& name, bool bUnsaved);
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
    std::unique_ptr<Job> m_pJob;                                  // while a job runs
    std::wstring m_jobName;                                       // of the picture that the job was given
    Block m_pBlock = std::make_shared<std::vector<std::byte>>();  // the picture, empty: none
    std::wstring m_name;                                          // of the picture's file, without folders
    bool m_bUnsaved = false;                                      // the picture came from the plug-in and is in no file
    int m_nWorks = 0;                                             // being done, one within the other
    bool m_bClosing = false;                                      // the user is being asked about it
    bool m_bCloseWanted = false;                                  // as soon as nothing is being done
};

}  // namespace width::host
