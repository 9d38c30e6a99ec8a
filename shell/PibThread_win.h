// CPibThread: the user-interface thread of a job.
// Tested by: tests/e2e/PluginTest.cpp
#pragma once

#include <optional>

#include "classlib/ActCtx.h"
#include "classlib/Thread.h"

namespace width {

/// Made by pi_start, deletes itself when it ends. g_pThread is non-null exactly as long as the object lives.
class CPibThread : public CWinThread {
public:
    ~CPibThread() override;

    /// Makes and shows the frame, and posts it the pending bitmap. False ends the thread. From here to the end of the job the
    /// thread's activation context is that of the plug-in's manifest.
    bool InitInstance() override;

    /// Tells the host that the job has ended, however it did: frame, view and bitmap are gone by then.
    int ExitInstance() override;

private:
    std::optional<CActCtxScope> m_context;  // active on the job's thread
};

}  // namespace width
