// Activation contexts: which version of the common controls a thread gets when it creates a window.
//
// The system looks a window class up in the context that is active on the thread, at first that of the program. A DLL whose
// manifest asks for another version makes its own context active while it creates windows, and only then: code of the program
// that is called meanwhile must find its own. Without a context nothing here does anything.
// Tested by: tests/e2e/ContextTest.cpp
#pragma once

#include "classlib/Win.h"

/// The context that is active on the calling thread, which has to be released; null for the program's own.
HANDLE AfxGetActCtx();
void AfxReleaseActCtx(HANDLE hActCtx);

/// Has a context active on the thread that makes the object, as long as it lives. To be destroyed on the same thread, in reverse
/// order.
class CActCtxScope {
public:
    /// Activates a context, null for the program's own.
    explicit CActCtxScope(HANDLE hActCtx);
    /// Activates what a manifest resource of a module asks for.
    CActCtxScope(HMODULE hModule, LPCWSTR lpszManifest);
    CActCtxScope(const CActCtxScope&) = delete;
    CActCtxScope& operator=(const CActCtxScope&) = delete;
    ~CActCtxScope();

private:
    void Activate(HANDLE hActCtx);

    HANDLE m_hOwn = nullptr;  // made here
    ULONG_PTR m_nCookie = 0;
    bool m_bActive = false;
};
