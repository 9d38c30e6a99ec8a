// The three settings dialogs: what they start with, and what an OK changes.
// Tested by: tests/e2e/DialogTest.cpp, tests/e2e/SettingsTest.cpp
#include "analysis/GreyLevels.h"
#include "core/Arithmetic.h"
#include "dialogs/BinaryDlg.h"
#include "dialogs/LabelDlg.h"
#include "dialogs/LineSTDDlg.h"
#include "module/ModuleState.h"
#include "view/PibView_win.h"

namespace width {

// Every OK gives up skeleton and lines, also when the limits have not changed; labels stay.
void CPibView::OnBinarySetting() {
    CBinaryDlg dlg;
    g_nAutoMaxGrey = CalcAutoThreshold(m_dib ? &*m_dib : nullptr);
    g_nAutoMinGrey = 0;
    g_nSelfMaxGrey = 255;
    g_nSelfMinGrey = 155;
    if (dlg.DoModal() != IDOK) {
        return;
    }
    m_nThresholdMode = dlg.m_bAutoMode;
    m_greyWindow =
        m_nThresholdMode != 0 ? GreyWindow{g_nAutoMinGrey, g_nAutoMaxGrey} : GreyWindow{g_nSelfMinGrey, g_nSelfMaxGrey};
    m_bSkeletonReady = 0;
    m_lineStore.m_Lines.clear();
    InvalidateView();
}

// New conditions hold from the next detection on.
void CPibView::OnLineSetting() {
    CLineSTDDlg dlg;
    dlg.m_fAngle = g_fMaxLineAngle;
    dlg.m_nLength = g_nMinLineLength;
    dlg.m_nRectWidth = TruncateToInt32(g_fRectWidth);
    dlg.m_bRect = g_bRectAlgorithm;
    if (dlg.DoModal() != IDOK) {
        return;
    }
    g_fMaxLineAngle = dlg.m_fAngle;
    g_nMinLineLength = dlg.m_nLength;
    g_fRectWidth = static_cast<float>(dlg.m_nRectWidth);
    g_bRectAlgorithm = dlg.m_bRect;
}

// Labels that are there already change with the pattern.
void CPibView::OnLabelSetting() {
    CLabelDlg dlg;
    dlg.m_clrLabelEdit = m_clrLabel;
    dlg.m_clrSkeletonEdit = m_clrSkeleton;
    dlg.m_clrLineEdit = m_clrLine;
    dlg.m_bSaveLine = m_bWriteLines;
    dlg.m_bSaveSkeleton = m_bWriteSkeleton;
    m_font.GetLogFont(&dlg.m_logFont);
    if (dlg.DoModal() == IDOK) {
        m_clrLabel = dlg.m_clrLabelEdit;
        m_clrSkeleton = dlg.m_clrSkeletonEdit;
        m_clrLine = dlg.m_clrLineEdit;
        m_bWriteLines = dlg.m_bSaveLine;
        m_bWriteSkeleton = dlg.m_bSaveSkeleton;
        m_font.CreateFontIndirect(dlg.m_logFont);
    }
    InvalidateView();
}

}  // namespace width
