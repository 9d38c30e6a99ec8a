// What comes from the plug-in's thread arrives as a message, so everything here runs on the window's own thread.
// Tested by: tests/win/host/HostTest.cpp
#include "standins/host/HostWindow.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <bit>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

#include "standins/host/PictureTexts.h"
#include "standins/host/resource.h"

namespace width::host {

namespace {

constexpr const wchar_t* kClassName = L"WidthHost";
constexpr const wchar_t* kProgramName = L"Picture Host";

enum StatusPart { kStatePart, kSizePart, kDepthPart, kResolutionPart, kParts };

bool RegisterWindowClass(WNDPROC pfnProc) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = pfnProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hIcon = LoadIconW(windowClass.hInstance, MAKEINTRESOURCEW(IDR_HOST));
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszMenuName = MAKEINTRESOURCEW(IDR_HOST);
    windowClass.lpszClassName = kClassName;
    return RegisterClassExW(&windowClass) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

// A dialog closes as by its Cancel button; a question without one is left to the user.
BOOL CALLBACK PostCloseToDialog(HWND hWnd, LPARAM) {
    std::array<wchar_t, 8> name{};
    if (GetClassNameW(hWnd, name.data(), static_cast<int>(name.size())) > 0 && name.data() == std::wstring_view(L"#32770") &&
        IsWindowEnabled(hWnd) != FALSE) {
        PostMessageW(hWnd, WM_CLOSE, 0, 0);
    }
    return TRUE;
}

std::wstring LanguageName(WORD nLangId) {
    return nLangId == kChinese ? L"Chinese" : L"English";
}

}  // namespace

// A job that still runs calls into its Job until the process is gone, so that object is left to the process.
HostWindow::~HostWindow() {
    if (m_hWnd != nullptr) {
        DestroyWindow(m_hWnd);
    }
    if (IsJobRunning()) {
        (void)m_pJob.release();
        m_plugin.Abandon();
    }
}

bool HostWindow::Create(int nShow) {
    if (!RegisterWindowClass(WindowProc)) {
        return false;
    }
    const HWND hWnd = CreateWindowExW(WS_EX_ACCEPTFILES, kClassName, kProgramName, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
                                      CW_USEDEFAULT, CW_USEDEFAULT, 900, 700, nullptr, nullptr, GetModuleHandleW(nullptr), this);
    if (hWnd == nullptr) {
        return false;
    }
    ShowWindow(hWnd, nShow);
    UpdateWindow(hWnd);
    return true;
}

bool HostWindow::OnCreate() {
    m_hStatus = CreateWindowExW(0, STATUSCLASSNAMEW, nullptr, WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0, m_hWnd,
                                std::bit_cast<HMENU>(INT_PTR{IDC_STATUS}), GetModuleHandleW(nullptr), nullptr);
    if (m_hStatus == nullptr || !m_view.Create(m_hWnd, IDC_PICTURE)) {
        return false;
    }
    UpdateTitle();
    UpdateStatus();
    return true;
}

void HostWindow::OnSize() {
    SendMessageW(m_hStatus, WM_SIZE, 0, 0);
    RECT rcClient{};
    RECT rcStatus{};
    GetClientRect(m_hWnd, &rcClient);
    GetWindowRect(m_hStatus, &rcStatus);
    const int nHeight = std::max<int>(rcClient.bottom - (rcStatus.bottom - rcStatus.top), 0);
    MoveWindow(m_view.Window(), 0, 0, rcClient.right, nHeight, TRUE);
    constexpr std::array<int, kParts> kFromRight{430, 290, 150, 0};  // right edges; the last part runs to the end
    std::array<int, kParts> edges{};
    std::transform(kFromRight.begin(), kFromRight.end(), edges.begin(),
                   [&](int n) { return n == 0 ? -1 : std::max<int>(rcClient.right - n, 0); });
    SendMessageW(m_hStatus, SB_SETPARTS, edges.size(), std::bit_cast<LPARAM>(edges.data()));
}

int HostWindow::Say(const std::wstring& text, UINT nFlags) const {
    return MessageBoxW(m_hWnd, text.c_str(), kProgramName, nFlags);
}

void HostWindow::UpdateTitle() const {
    const std::wstring title = Picture().empty() ? kProgramName : (m_bUnsaved ? L"*" : L"") + m_name + L" - " + kProgramName;
    SetWindowTextW(m_hWnd, title.c_str());
}

void HostWindow::UpdateStatus() const {
    const PictureTexts texts = DescribePicture(Picture());
    std::wstring state = L"Ready";
    if (IsJobRunning()) {
        state = L"Plug-in is open (" + LanguageName(m_nLangId) + L")";
    } else if (m_bUnsaved) {
        state = L"Result from the plug-in, not saved yet";
    }
    const std::array<const std::wstring*, kParts> parts{&state, &texts.size, &texts.depth, &texts.resolution};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        SendMessageW(m_hStatus, SB_SETTEXTW, i, std::bit_cast<LPARAM>(parts[i]->c_str()));
    }
}

void HostWindow::SetPicture(Block pBlock, const std::wstring& name, bool bUnsaved) {
    m_pBlock = std::move(pBlock);
    m_name = name;
    m_bUnsaved = bUnsaved;
    const bool bShown = m_view.Show(Picture());
    UpdateTitle();
    UpdateStatus();
    if (!bShown) {
        Say(L"The picture is open, but it cannot be shown: the system has no memory for it or does not know its depth.",
            MB_OK | MB_ICONWARNING);
    }
}

void HostWindow::OnPictureReceived(std::unique_ptr<ReceivedPicture> pPicture) {
    if (pPicture->empty()) {
        Say(L"The plug-in sent a picture that cannot be used.", MB_OK | MB_ICONERROR);
        return;
    }
    SetPicture(std::make_shared<ReceivedPicture>(std::move(*pPicture)), m_jobName, true);
    FLASHWINFO flash{sizeof flash, m_hWnd, FLASHW_TRAY | FLASHW_TIMERNOFG, 3, 0};
    FlashWindowEx(&flash);
}

void HostWindow::OnJobEnd() {
    if (!IsJobRunning()) {
        return;
    }
    m_pJob->WaitForThread();
    m_pJob.reset();
    UpdateStatus();
}

void HostWindow::OnInitMenu(HMENU hMenu) const {
    for (const UINT nId : {IDM_SAVE, IDM_MEASURE, IDM_ENGLISH, IDM_CHINESE}) {
        EnableMenuItem(hMenu, nId, IsEnabled(static_cast<int>(nId)) ? MF_ENABLED : MF_GRAYED);
    }
    CheckMenuRadioItem(hMenu, IDM_FIT, IDM_ACTUAL, m_view.IsFit() ? IDM_FIT : IDM_ACTUAL, MF_BYCOMMAND);
    CheckMenuRadioItem(hMenu, IDM_ENGLISH, IDM_CHINESE, m_nLangId == kChinese ? IDM_CHINESE : IDM_ENGLISH, MF_BYCOMMAND);
}

// A dialog's own code runs on behind its loop and works with the dialog, which would go with its owner. So the window
// stays until everything that has shown a dialog is over, and dialogs are closed first.
void HostWindow::OnWorkDone() {
    if (--m_nWorks == 0) {
        m_bClosing = false;
        if (std::exchange(m_bCloseWanted, false)) {
            PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
        }
    }
}

// A file dialog whose own question has been answered waits for the user again, and tells its owner so.
void HostWindow::OnEnterIdle(HWND hDialog) const {
    if (m_bCloseWanted && GetDlgItem(hDialog, IDCANCEL) != nullptr) {
        PostMessageW(hDialog, WM_COMMAND, IDCANCEL, 0);
    }
}

// Ending the program ends the plug-in's window with everything in it, so that is asked first.
void HostWindow::OnClose() {
    if (IsBusy() && !m_bClosing) {
        m_bCloseWanted = true;
        EnumThreadWindows(GetCurrentThreadId(), PostCloseToDialog, 0);
    }
    if (IsBusy() || std::exchange(m_bClosing, true)) {
        return;
    }
    const std::wstring question =
        L"The plug-in's window is still open. What has not been saved or sent back there is lost.\n\nClose the program all the "
        L"same?";
    if (IsJobRunning() && Say(question, MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2) != IDYES) {
        return;
    }
    if (MayDiscardResult()) {
        DestroyWindow(m_hWnd);
    }
}

// Of several files the first one counts.
void HostWindow::OnDropFiles(HDROP hDrop) {
    const std::unique_ptr<std::remove_pointer_t<HDROP>, decltype(&DragFinish)> pDrop(hDrop, DragFinish);
    std::wstring path(DragQueryFileW(hDrop, 0, nullptr, 0), L'\0');
    DragQueryFileW(hDrop, 0, path.data(), static_cast<UINT>(path.size()) + 1);
    if (!path.empty() && !IsBusy()) {
        SetForegroundWindow(m_hWnd);
        OpenPicture(path);
    }
}

// A flat dispatch: one line a message.
LRESULT HostWindow::OnMessage(UINT nMessage, WPARAM wParam, LPARAM lParam) {
    switch (nMessage) {
        case WM_CREATE:
            return OnCreate() ? 0 : -1;
        case WM_SIZE:
            OnSize();
            return 0;
        case WM_SETFOCUS:
            SetFocus(m_view.Window());
            return 0;
        case WM_INITMENU:
            OnInitMenu(std::bit_cast<HMENU>(wParam));
            return 0;
        case WM_COMMAND:
            OnCommand(LOWORD(wParam));
            return 0;
        case WM_DROPFILES:
            OnDropFiles(std::bit_cast<HDROP>(wParam));
            return 0;
        case WM_HOST_PICTURE:
            OnPictureReceived(std::unique_ptr<ReceivedPicture>(std::bit_cast<ReceivedPicture*>(lParam)));
            return 0;
        case WM_HOST_JOB_END:
            OnJobEnd();
            return 0;
        case WM_CLOSE:
            OnClose();
            return 0;
        case WM_ENTERIDLE:
            OnEnterIdle(std::bit_cast<HWND>(lParam));
            return 0;
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcW(m_hWnd, nMessage, wParam, lParam);
    }
}

LRESULT CALLBACK HostWindow::WindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage == WM_NCCREATE) {
        auto* pWindow = static_cast<HostWindow*>(std::bit_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        pWindow->m_hWnd = hWnd;
        SetWindowLongPtrW(hWnd, GWLP_USERDATA, std::bit_cast<LONG_PTR>(pWindow));
    }
    auto* pWindow = std::bit_cast<HostWindow*>(GetWindowLongPtrW(hWnd, GWLP_USERDATA));
    if (pWindow == nullptr) {
        return DefWindowProcW(hWnd, nMessage, wParam, lParam);
    }
    LRESULT nResult = 0;
    const Work work(*pWindow);
    try {
        nResult = pWindow->OnMessage(nMessage, wParam, lParam);
    } catch (const std::exception&) {
        MessageBoxW(hWnd, L"There is not enough memory for this.", kProgramName, MB_OK | MB_ICONERROR);
    }
    if (nMessage == WM_NCDESTROY) {
        SetWindowLongPtrW(hWnd, GWLP_USERDATA, 0);
        pWindow->m_hWnd = nullptr;
    }
    return nResult;
}

}  // namespace width::host
