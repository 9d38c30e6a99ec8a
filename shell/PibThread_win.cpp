// Tested by: tests/e2e/PluginTest.cpp
#include "shell/PibThread_win.h"

#include <cstdlib>
#include <utility>

#include "module/HostCall.h"
#include "module/ModuleState.h"
#include "res/resource.h"
#include "shell/MainFrame_win.h"

namespace width {

CPibThread::~CPibThread() {
    g_pThread = nullptr;
}

bool CPibThread::InitInstance() {
    g_hHostActCtx = AfxGetActCtx();
    m_context.emplace(g_hModule, ISOLATIONAWARE_MANIFEST_RESOURCE_ID);
    auto* pFrame = new CMainFrame;
    g_pMainFrame = pFrame;
    m_pMainWnd = pFrame;
    const HINSTANCE hOldResources = AfxGetResourceHandle();
    AfxSetResourceHandle(g_hModule);
    const bool bLoaded = pFrame->LoadFrame(g_bChinese != 0 ? IDR_MAINFRAME_ZH : IDR_MAINFRAME_EN, WS_OVERLAPPEDWINDOW);
    AfxSetResourceHandle(hOldResources);
    if (!bLoaded) {
        return false;
    }
    // Only posted, so that the view gets the bitmap when the window has its maximised size.
    pFrame->PostMessage(WM_PIB_SETDIB, reinterpret_cast<WPARAM>(g_pPendingDib));
    pFrame->ShowWindow(SW_SHOWMAXIMIZED);
    return true;
}

int CPibThread::ExitInstance() {
    // A bitmap that never reached the view: the frame could not be made, or was closed before.
    free(std::exchange(g_pPendingDib, nullptr));
    m_context.reset();
    CallHost(PI_CODE_END, nullptr);
    AfxReleaseActCtx(std::exchange(g_hHostActCtx, nullptr));
    return CWinThread::ExitInstance();
}

}  // namespace width
