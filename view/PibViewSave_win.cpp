// The two ways out of a job: a file, and the host.
// Tested by: tests/e2e/SaveTest.cpp
#include <algorithm>
#include <iterator>

#include "module/HostCall.h"
#include "save/SaveFlow_win.h"
#include "view/PibView_win.h"

namespace width {

// The record is a copy: what the library writes into it must not come back with the next save.
void CPibView::OnFileSave() {
    if (!HasImage()) {
        return;
    }
    if (m_szFilePath[0] == '\0') {
        OnFileSaveAs();
        return;
    }
    SaveOptions options = m_saveOptions;
    options.szError[0] = '\0';
    if (SaveToFile(m_szFilePath, m_pDib, options) != 0) {
        m_nFlags &= ~kImageChanged;
    }
}

// Path and options change together, and only when the file has been written.
void CPibView::OnFileSaveAs() {
    if (!HasImage()) {
        return;
    }
    char szPath[kPathBytes];
    std::ranges::copy(m_szFilePath, std::begin(szPath));
    SaveOptions options;
    if (RunSaveDialog(m_pDib, szPath, options) == 0 || SaveToFile(szPath, m_pDib, options) == 0) {
        return;
    }
    std::ranges::copy(szPath, std::begin(m_szFilePath));
    m_saveOptions = options;
    m_nFlags &= ~kImageChanged;
}

// The host sees the block itself, as often as the user likes. Nothing here changes by it.
void CPibView::OnSendImage() {
    if (HasImage()) {
        CallHost(PI_CODE_IMAGE, m_pDib);
    }
}

void CPibView::OnUpdateFileSave(CCmdUI* pCmdUI) {
    pCmdUI->Enable((m_nFlags & kImageChanged) != 0);
}

}  // namespace width
