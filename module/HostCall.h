// The way back to the host. Tested by: tests/e2e/ContextTest.cpp
#pragma once

#include "classlib/ActCtx.h"
#include "module/ModuleState.h"

namespace width {

/// Calls the host's callback, in the activation context that the host gave the job: windows that it creates meanwhile are of its
/// kind and not of ours. On the job's thread.
inline void CallHost(int32_t nCode, void* pParam) {
    const CActCtxScope host(g_hHostActCtx);
    g_pfnHostCallback(g_pHostCookie, nCode, pParam, nullptr);
}

}  // namespace width
