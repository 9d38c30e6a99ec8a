// CPibThread: the user-interface thread of a job.
// Tested by: tests/e2e/PluginTest.cpp
#pragma once

#include "classlib/Thread.h"

namespace width {

/// Made by pi_start, deletes itself when it ends. g_pThread is non-null exactly as long as the object lives.
class CPibThread : public CWinThread {
public:
    ~CPibThread() override;

    /// Makes and shows the frame, and posts it the pending bitmap. False ends the thread.
    bool InitInstance() override;

    /// Tells the host that the job has ended, however it did: frame, view and bitmap are gone by then.
    int ExitInstance() override;
};

}  // namespace width
