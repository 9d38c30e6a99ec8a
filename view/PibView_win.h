// CPibView: the view of a job, and the one object that holds its state.
//
// It is a member of the frame and lives as long. It owns the bitmap from OnSetDib on, the skeleton, the lines and
// the labels; nothing else shows, measures or changes the picture. Fields carry the job's state as plain values;
// handlers gather what a portable function needs, call it, store what comes back, and invalidate.
// Files: PibView_win.cpp life and state, PibViewPaint_win.cpp, PibViewTools_win.cpp mouse, zoom and cursors,
// PibViewMeasure_win.cpp picking and labels, PibViewPrint_win.cpp, PibViewSave_win.cpp, PibViewCommands_win.cpp the command
// table. Tested by: tests/e2e/PluginTest.cpp
#pragma once

#include <optional>

#include "analysis/LineStore.h"
#include "analysis/Skeleton.h"
#include "classlib/ScrollView.h"
#include "core/PackedDib.h"
#include "core/ViewGeometry.h"
#include "measure/Composition_win.h"
#include "measure/Picking.h"
#include "save/SaveFlow_win.h"
#include "view/Zoom.h"

struct CPrintPreviewState;

namespace width {

/// Frame to view: a bitmap arrives. Word parameter: the block.
constexpr UINT WM_PIB_SETDIB = 32868;

/// Bit of m_nFlags: the image has changes that are not saved.
constexpr std::uint32_t kImageChanged = 0x10000000;

class CPibView : public CScrollView {
public:
    /// Loads the tools' cursors if no view before has.
    CPibView();
    ~CPibView() override;

    std::span<const CmdEntry> Commands() const override;
    void OnInitialUpdate() override;
    void OnDraw(CDC* pDC) override;
    bool OnPreparePrinting(CPrintInfo* pInfo) override;
    void OnBeginPrinting(CDC* pDC, CPrintInfo* pInfo) override;
    void OnPrint(CDC* pDC, CPrintInfo* pInfo) override;
    void OnEndPrinting(CDC* pDC, CPrintInfo* pInfo) override;
    void OnEndPrintPreview(CDC* pDC, CPrintInfo* pInfo, CPreviewView* pView) override;

    /// Where client points lie on the image now. Without an image the image is 0 x 0.
    ViewGeometry Geometry() const;

    /// Where the zoomed image lies, content coordinates; empty without an image.
    RECT GetImageRect() const { return width::GetImageRect(Geometry()); }

    /// Whether a printer's dialog, a print run or the start of a preview is under way. All of them let posted commands through;
    /// another one of them then does nothing.
    bool IsPrinting() const;

    // The state of the job. Everybody may read it; it is written by the view's handlers only.
    char m_szFilePath[kPathBytes] = {};  ///< where the image was last saved; empty until then
    SaveOptions m_saveOptions{};         ///< how; not read before m_szFilePath is set
    std::int32_t m_nZoomNum = 1;
    std::int32_t m_nZoomDen = 1;
    std::uint32_t m_nFlags = 0;  ///< kImageChanged
    COLORREF m_clrLabel = 0x00FF0000;
    COLORREF m_clrSkeleton = 0x0000FF00;
    COLORREF m_clrLine = 0x000000FF;
    LineStore m_lineStore;  ///< detected lines and the next id
    LabelList m_labelList;  ///< labels and how many are in force
    LinePairPicker m_picker;
    std::int32_t m_nThresholdMode = 1;  ///< 1 automatic, 0 self set
    GreyWindow m_greyWindow;            ///< 0..0 until the user has chosen one
    std::int32_t m_bSkeletonReady = 0;  ///< the skeleton belongs to the grey window
    std::optional<SkeletonMap> m_skeleton;
    std::int32_t m_bWriteSkeleton = 0;  ///< Write to Bitmap includes the skeleton
    std::int32_t m_bWriteLines = 1;     ///< Write to Bitmap includes the lines
    RECT m_rcMark{};                    ///< search square at the mouse, client coordinates; empty: none
    RECT m_rcMarkOld{};                 ///< the one before, still on the screen; empty: none
    std::int32_t m_bMarkHidden = 0;     ///< the square has been wiped for a pending label

protected:
    void OnScrolled() override;
    bool PreCreateWindow(CREATESTRUCTW& cs) override;
    void PostNcDestroy() override {}  // a member of the frame
    bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) override;

private:
    class CHandTracker;

    LRESULT OnSetDib(WPARAM wParam, LPARAM lParam);
    bool OnEraseBkgnd(CDC* pDC);
    void OnLButtonDown(UINT nFlags, POINT point);
    void OnRButtonDown(UINT nFlags, POINT point);
    void OnMouseMove(UINT nFlags, POINT point);
    void OnKillFocus(HWND hNewWnd);
    bool OnSetCursor(HWND hWnd, UINT nHitTest, UINT message);

    void OnTrack();
    void OnZoomTool();
    void OnLineDetect();
    void OnWidthLabel();
    void OnBestFit();
    void OnActualSize();
    void OnSendImage();
    void OnSkeletonize();
    void OnWriteToBitmap();
    void OnEditUndo();
    void OnEditRedo();
    void OnFileSave();
    void OnFileSaveAs();
    void OnFilePrint();
    void OnFilePrintPreview();
    void OnBinarySetting();
    void OnLabelSetting();
    void OnLineSetting();
    void OnUpdateTrack(CCmdUI* pCmdUI);
    void OnUpdateZoomTool(CCmdUI* pCmdUI);
    void OnUpdateLineDetect(CCmdUI* pCmdUI);
    void OnUpdateWidthLabel(CCmdUI* pCmdUI);
    void OnUpdateActualSize(CCmdUI* pCmdUI);
    void OnUpdateNeedsImage(CCmdUI* pCmdUI);
    void OnUpdateSkeletonize(CCmdUI* pCmdUI);
    void OnUpdateEditUndo(CCmdUI* pCmdUI);
    void OnUpdateEditRedo(CCmdUI* pCmdUI);
    void OnUpdateFileSave(CCmdUI* pCmdUI);
    void OnUpdateStatusPane(CCmdUI* pCmdUI);

    bool HasImage() const { return m_dib.has_value(); }
    Overlays CurrentOverlays() const;
    bool PaintVisiblePart(CDC& dc, const RECT& rcImage) const;
    void PaintWithoutOverlays(CDC& dc, const RECT& rcImage) const;
    bool DoPrintPreview(UINT nIDResource, CPrintPreviewState* pState);
    void UpdateScrollSizes();
    void InvalidateView();  ///< what the view shows has changed
    void RepaintView();     ///< only what is drawn on the window beside it has
    void SetZoom(std::int32_t nNum, std::int32_t nDen);
    void StepZoom(std::optional<Zoom> zoom);
    void Pan(POINT point);
    bool PickAt(POINT point);
    bool ShowPick(const PickEvent& event);
    void MoveSearchSquare(CDC& dc, POINT point);
    void MoveRubberLabel(CDC& dc, POINT point);
    void ForgetSquares();
    void WriteLabelsToBitmap();
    void ChooseTool(int nMode, CCmdUI* pCmdUI) const;
    static LineConditions CurrentConditions();

    void* m_pDib = nullptr;        // the image, from malloc, owned
    std::optional<DibView> m_dib;  // set exactly while m_pDib is
    CComposition m_composition;
    CFont m_font;                    // of the labels: Times New Roman, 10 points
    bool m_bInsidePrinting = false;  // a print run or the start of a preview is under way
};

}  // namespace width
