// Tested by: tests/e2e/PluginTest.cpp
#include "shell/Plugin_win.h"

#include <cstdlib>
#include <memory>
#include <new>

#include "classlib/ActCtx.h"
#include "dialogs/DllDlg.h"
#include "module/ModuleState.h"
#include "shell/PibThread_win.h"

namespace width {

namespace {

bool IsChinese(std::uint16_t nLangId) {
    return nLangId == PI_LANG_CHINESE || nLangId == PI_LANG_CHINESE_PRC || nLangId == PI_LANG_CHINESE_SINGAPORE;
}

// Creates the job's thread suspended: everything that it reads is stored before it runs.
bool StartThread() {
    std::unique_ptr<CPibThread> pThread(new (std::nothrow) CPibThread);
    if (!pThread || !pThread->CreateThread(CREATE_SUSPENDED)) {
        return false;
    }
    g_pThread = pThread.release();  // deletes itself
    g_pThread->ResumeThread();
    return true;
}

void pi_start(void* pDib, void* /*pUnused*/, HostCallback pfn, void* pCookie) {
    if (pDib == nullptr || pfn == nullptr || pCookie == nullptr) {
        return;
    }
    if (g_pThread != nullptr) {
        free(pDib);
        return;
    }
    g_pPendingDib = pDib;
    g_pfnHostCallback = pfn;
    g_pHostCookie = pCookie;
    if (!StartThread()) {
        free(pDib);
        g_pPendingDib = nullptr;
    }
}

void pi_about() {
    const CActCtxScope context(g_hModule, ISOLATIONAWARE_MANIFEST_RESOURCE_ID);
    CAboutDlg(nullptr).DoModal();
}

}  // namespace

std::int32_t InitPlugin(pi_table* pTable, std::uint16_t nLangId) noexcept {
    g_nLangId = nLangId;
    if (IsChinese(nLangId)) {
        g_bChinese = 1;  // never back to 0
    }
    pTable->nHead = 1;
    pTable->pfnStart = pi_start;
    pTable->pfnAbout = pi_about;
    return 1;
}

}  // namespace width
