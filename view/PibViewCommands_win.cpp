// The view's commands: one table, each command's action and when it is enabled and marked.
// Tested by: tests/e2e/PluginTest.cpp
#include <string>

#include "analysis/GreyLevels.h"
#include "classlib/Thread.h"
#include "module/ModuleState.h"
#include "res/resource.h"
#include "view/PibView_win.h"
#include "view/StatusText.h"

namespace width {

std::span<const CmdEntry> CPibView::Commands() const {
    static constexpr CmdEntry kTable[] = {
        // tools
        Cmd<&CPibView::OnTrack, &CPibView::OnUpdateTrack>(ID_TOOL_TRACK),
        Cmd<&CPibView::OnZoomTool, &CPibView::OnUpdateZoomTool>(ID_TOOL_ZOOM),
        Cmd<&CPibView::OnLineDetect, &CPibView::OnUpdateLineDetect>(ID_TOOL_LINE_DETECT),
        Cmd<&CPibView::OnWidthLabel, &CPibView::OnUpdateWidthLabel>(ID_TOOL_WIDTH_LABEL),
        // zoom
        Cmd<&CPibView::OnBestFit, &CPibView::OnUpdateNeedsImage>(ID_VIEW_BEST_FIT),
        Cmd<&CPibView::OnActualSize, &CPibView::OnUpdateActualSize>(ID_VIEW_ACTUAL_SIZE),
        // measuring
        Cmd<&CPibView::OnSkeletonize, &CPibView::OnUpdateSkeletonize>(ID_SKELETONIZE),
        Cmd<&CPibView::OnWriteToBitmap>(ID_WRITE_TO_BITMAP),
        Cmd<&CPibView::OnEditUndo, &CPibView::OnUpdateEditUndo>(ID_EDIT_UNDO),
        Cmd<&CPibView::OnEditRedo, &CPibView::OnUpdateEditRedo>(ID_EDIT_REDO),
        // file and hand-over
        Cmd<&CPibView::OnFileSave, &CPibView::OnUpdateFileSave>(ID_FILE_SAVE),
        Cmd<&CPibView::OnFileSaveAs, &CPibView::OnUpdateNeedsImage>(ID_FILE_SAVE_AS_PICTURE),
        Cmd<&CPibView::OnFilePrint>(ID_FILE_PRINT),
        Cmd<&CPibView::OnFilePrintPreview>(ID_FILE_PRINT_PREVIEW),
        Cmd<&CPibView::OnSendImage, &CPibView::OnUpdateNeedsImage>(ID_SEND_IMAGE),
        // settings
        Cmd<&CPibView::OnBinarySetting>(ID_BINARY_SETTING),
        Cmd<&CPibView::OnLabelSetting>(ID_LABEL_SETTING),
        Cmd<&CPibView::OnLineSetting>(ID_LINE_SETTING),
        // status panes
        CmdUpdate<&CPibView::OnUpdateStatusPane>(ID_PANE_PATH, ID_PANE_DEPTH),
    };
    return kTable;
}

void CPibView::OnTrack() {
    RepaintView();
    if (HasImage()) {
        g_nToolMode = TOOL_TRACK;
    }
}

void CPibView::OnZoomTool() {
    RepaintView();
    if (HasImage()) {
        g_nToolMode = TOOL_ZOOM;
    }
}

void CPibView::OnLineDetect() {
    g_nToolMode = TOOL_LINE_DETECT;
    RepaintView();
}

void CPibView::OnWidthLabel() {
    g_nToolMode = TOOL_WIDTH_LABEL;
    RepaintView();
}

// A failed run leaves the flag at 0. The map before is given up first, so that two are never needed at once.
void CPibView::OnSkeletonize() {
    m_bSkeletonReady = 0;
    if (!IsGreyWindowValid(m_greyWindow)) {
        AfxMessageBox(g_bChinese != 0 ? L"请先求取骨架" : L"Please get the skeleton of the image first!");
        return;
    }
    if (!HasImage()) {
        return;
    }
    m_skeleton.reset();
    m_skeleton = MakeSkeleton(*m_dib, m_greyWindow);
    m_bSkeletonReady = m_skeleton ? 1 : 0;
    InvalidateView();
}

void CPibView::OnEditUndo() {
    if (m_labelList.CanUndo()) {
        m_labelList.Undo();
        InvalidateView();
    }
}

void CPibView::OnEditRedo() {
    if (m_labelList.CanRedo()) {
        m_labelList.Redo();
        InvalidateView();
    }
}

void CPibView::ChooseTool(int nMode, CCmdUI* pCmdUI) const {
    pCmdUI->Enable(HasImage());
    pCmdUI->SetCheck(g_nToolMode == nMode ? 1 : 0);
}

void CPibView::OnUpdateTrack(CCmdUI* pCmdUI) {
    ChooseTool(TOOL_TRACK, pCmdUI);
}
void CPibView::OnUpdateZoomTool(CCmdUI* pCmdUI) {
    ChooseTool(TOOL_ZOOM, pCmdUI);
}
void CPibView::OnUpdateLineDetect(CCmdUI* pCmdUI) {
    ChooseTool(TOOL_LINE_DETECT, pCmdUI);
}
void CPibView::OnUpdateWidthLabel(CCmdUI* pCmdUI) {
    ChooseTool(TOOL_WIDTH_LABEL, pCmdUI);
}
void CPibView::OnUpdateNeedsImage(CCmdUI* pCmdUI) {
    pCmdUI->Enable(HasImage());
}
void CPibView::OnUpdateActualSize(CCmdUI* pCmdUI) {
    pCmdUI->Enable(HasImage() && m_nZoomNum != m_nZoomDen);
}
void CPibView::OnUpdateSkeletonize(CCmdUI* pCmdUI) {
    pCmdUI->Enable(m_bSkeletonReady == 0);
}
void CPibView::OnUpdateEditUndo(CCmdUI* pCmdUI) {
    pCmdUI->Enable(m_labelList.CanUndo());
}
void CPibView::OnUpdateEditRedo(CCmdUI* pCmdUI) {
    pCmdUI->Enable(m_labelList.CanRedo());
}

void CPibView::OnUpdateStatusPane(CCmdUI* pCmdUI) {
    if (!m_dib) {
        pCmdUI->SetText(L"");
        return;
    }
    const bool bChinese = g_bChinese != 0;
    switch (pCmdUI->m_nID) {
        case ID_PANE_PATH:
            return pCmdUI->SetText(Widen(m_szFilePath).c_str());
        case ID_PANE_SIZE:
            return pCmdUI->SetText(SizeText(m_dib->Figures()).c_str());
        case ID_PANE_ZOOM:
            return pCmdUI->SetText(ZoomText({m_nZoomNum, m_nZoomDen}, bChinese).c_str());
        default:
            return pCmdUI->SetText(DepthText(m_dib->Figures(), bChinese).c_str());
    }
}

}  // namespace width
