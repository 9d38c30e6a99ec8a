// Tested by: tests/e2e/ContextTest.cpp
#include "classlib/ActCtx.h"

HANDLE AfxGetActCtx() {
    HANDLE hActCtx = nullptr;
    return ::GetCurrentActCtx(&hActCtx) != FALSE ? hActCtx : nullptr;
}

void AfxReleaseActCtx(HANDLE hActCtx) {
    if (hActCtx != nullptr) {
        ::ReleaseActCtx(hActCtx);
    }
}

CActCtxScope::CActCtxScope(HANDLE hActCtx) {
    Activate(hActCtx);
}

CActCtxScope::CActCtxScope(HMODULE hModule, LPCWSTR lpszManifest) {
    ACTCTXW context{};
    context.cbSize = sizeof context;
    context.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
    context.lpResourceName = lpszManifest;
    context.hModule = hModule;
    const HANDLE hActCtx = ::CreateActCtxW(&context);
    if (hActCtx != INVALID_HANDLE_VALUE) {
        m_hOwn = hActCtx;
        Activate(hActCtx);
    }
}

// A context that somebody has activated since, and left active, goes too.
CActCtxScope::~CActCtxScope() {
    if (m_bActive) {
        ::DeactivateActCtx(DEACTIVATE_ACTCTX_FLAG_FORCE_EARLY_DEACTIVATION, m_nCookie);
    }
    AfxReleaseActCtx(m_hOwn);
}

void CActCtxScope::Activate(HANDLE hActCtx) {
    m_bActive = ::ActivateActCtx(hActCtx, &m_nCookie) != FALSE;
}
