// Printing: the system's print dialog, what a print run tells its view, and the application object that keeps the printer's
// settings from one run to the next.
//
// A run is CView::OnFilePrint (see ScrollView.h). It calls the view's OnPreparePrinting, OnBeginPrinting, then OnPrepareDC and
// OnPrint once a page, and OnEndPrinting. Logical coordinates are the printer's dots, origin at the corner of the printable
// area. Tested by: tests/e2e/PrintTest.cpp, tests/win/PrintSetupTest.cpp
#pragma once

#include <string>

#include "classlib/Win.h"
// after windows.h
#include <cderr.h>
#include <commdlg.h>

// Controls of the box that stands there while a run prints; a template may leave out any of them.
constexpr int AFX_IDC_PRINT_DOCNAME = 201;
constexpr int AFX_IDC_PRINT_PRINTERNAME = 202;
constexpr int AFX_IDC_PRINT_PORTNAME = 203;
constexpr int AFX_IDC_PRINT_PAGENUM = 204;

/// The system's print or printer set-up dialog, and what was chosen in it. Owns the printer's context and, unless an
/// application object has them, the records of the chosen device.
class CPrintDialog {
public:
    PRINTDLGW m_pd{};
    bool m_bDeviceIsLent = false;  ///< hDevMode and hDevNames belong to somebody else
    std::wstring m_strNoPrinter;   ///< what the user is told when there is no printer; empty: the system finds words of its own

    /// dwFlags  PD_... The dialog for printing makes a context for the chosen printer; the one for set-up does not.
    explicit CPrintDialog(bool bPrintSetupOnly, DWORD dwFlags = PD_ALLPAGES | PD_USEDEVMODECOPIES | PD_NOPAGENUMS |
                                                                PD_HIDEPRINTTOFILE | PD_NOSELECTION);
    CPrintDialog(const CPrintDialog&) = delete;
    CPrintDialog& operator=(const CPrintDialog&) = delete;
    ~CPrintDialog();

    /// Shows the dialog over the thread's main window. IDOK, or IDCANCEL when the user or the system gave up, or when there is no
    /// printer, which the user is told.
    INT_PTR DoModal();
    /// Whether the last DoModal ended by a failure that nobody has been told of.
    bool HasFailed() const { return m_dwError != 0; }
    /// The system's code of that failure; 0: none.
    DWORD GetError() const { return m_dwError; }
    /// Takes the system's default printer without a dialog. False if there is none.
    bool GetDefaults();
    /// Makes m_pd.hDC for the chosen device if there is none yet. False on failure.
    bool CreatePrinterDC();

    /// Names of the chosen printer and of where its output goes; empty without one.
    std::wstring GetDeviceName() const;
    std::wstring GetPortName() const;

private:
    std::wstring NameAt(WORD DEVNAMES::*pOffset) const;
    void FreeDevice();

    DWORD m_dwError = 0;
};

/// What a print run or a preview tells its view. Pages count from 1.
struct CPrintInfo {
    CPrintDialog m_printDialog{false, PD_ALLPAGES | PD_USEDEVMODECOPIES | PD_NOSELECTION};
    CPrintDialog* m_pPD = &m_printDialog;
    bool m_bPreview = false;          ///< pages go to the screen
    bool m_bContinuePrinting = true;  ///< OnPrepareDC clears it to end the run before its last page
    UINT m_nCurPage = 1;
    RECT m_rectDraw{};           ///< the page in logical coordinates, valid in OnPrint
    UINT m_nIDStatusDialog = 0;  ///< template of the box that is shown while printing; its IDCANCEL ends the run; 0: none
    std::wstring m_strFailure;   ///< what the user is told when the run fails; empty: nothing

    CPrintInfo() {
        SetMinPage(1);
        SetMaxPage(0xFFFF);
    }
    CPrintInfo(const CPrintInfo&) = delete;
    CPrintInfo& operator=(const CPrintInfo&) = delete;

    void SetMinPage(WORD nPage) { m_pPD->m_pd.nMinPage = nPage; }
    void SetMaxPage(WORD nPage) { m_pPD->m_pd.nMaxPage = nPage; }
    WORD GetMinPage() const { return m_pPD->m_pd.nMinPage; }
    WORD GetMaxPage() const { return m_pPD->m_pd.nMaxPage; }
    WORD GetFromPage() const { return (m_pPD->m_pd.Flags & PD_PAGENUMS) != 0 ? m_pPD->m_pd.nFromPage : GetMinPage(); }
    WORD GetToPage() const { return (m_pPD->m_pd.Flags & PD_PAGENUMS) != 0 ? m_pPD->m_pd.nToPage : GetMaxPage(); }
};

/// The application object of a module, as far as printing goes: it remembers which printer was chosen and how it was set. At most
/// one exists; without one each dialog, run and preview starts with the system's defaults.
class CWinApp {
public:
    /// Becomes the object that AfxGetApp gives, until it goes.
    CWinApp();
    CWinApp(const CWinApp&) = delete;
    CWinApp& operator=(const CWinApp&) = delete;
    virtual ~CWinApp();

    /// Shows a print or set-up dialog that starts with the remembered printer, and remembers the one it ends with, whatever
    /// the answer. The result is the dialog's. Not to be called while another is open.
    virtual INT_PTR DoPrintDialog(CPrintDialog* pPD);
    bool IsDialogOpen() const { return m_bDialogOpen; }
    /// Lends the remembered printer, at first the system's default one, to a dialog that is not shown. False without a printer.
    bool GetPrinterDeviceDefaults(CPrintDialog* pPD);

private:
    void Lend(CPrintDialog* pPD) const;
    void TakeBack(CPrintDialog* pPD);

    HGLOBAL m_hDevMode = nullptr;  // owned, as the next
    HGLOBAL m_hDevNames = nullptr;
    bool m_bDialogOpen = false;
};

/// The application object, null if there is none.
CWinApp* AfxGetApp();
