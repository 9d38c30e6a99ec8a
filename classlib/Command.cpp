// The search through command tables. Tested by: tests/win/ClasslibTest.cpp.
#include "classlib/Command.h"

void CCmdUI::DoUpdate(CCmdTarget& target, bool bDisableIfNoHandler) {
    m_bEnableChanged = false;
    const bool bHandled = target.OnCmdMsg(m_nID, CN_UPDATE_COMMAND_UI, this, nullptr);
    if (bHandled || m_bEnableChanged || !bDisableIfNoHandler) {
        return;
    }
    CCmdTarget* pHandler = nullptr;
    Enable(target.OnCmdMsg(m_nID, CN_COMMAND, nullptr, &pHandler));
}

bool CCmdTarget::OnCmdMsg(UINT nID, int nCode, CCmdUI* pCmdUI, CCmdTarget** ppHandler) {
    for (const CmdEntry& entry : Commands()) {
        if (nID < entry.nID || nID > entry.nLastID) {
            continue;
        }
        if (nCode == CN_UPDATE_COMMAND_UI && entry.pfnUpdate != nullptr) {
            entry.pfnUpdate(*this, pCmdUI);
            return true;
        }
        if (nCode == CN_COMMAND && entry.pfnRun != nullptr) {
            if (ppHandler != nullptr) {
                *ppHandler = this;
            } else {
                entry.pfnRun(*this);
            }
            return true;
        }
    }
    return false;
}
