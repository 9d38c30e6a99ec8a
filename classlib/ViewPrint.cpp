// The print run. Tested by: tests/e2e/PrintTest.cpp
#include <algorithm>

#include "classlib/Print.h"
#include "classlib/ScrollView.h"
#include "classlib/Thread.h"

namespace {

/// The run that is under way on the calling thread, as its box and the system's abort procedure see it.
struct RunState {
    HWND hBox = nullptr;
    bool bAborted = false;
};
thread_local RunState t_run;

/// What the box says from the start.
struct BoxTexts {
    std::wstring document;
    std::wstring printer;
    std::wstring port;
};

INT_PTR CALLBACK BoxProc(HWND hBox, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        const auto& texts = *reinterpret_cast<const BoxTexts*>(lParam);
        ::SetDlgItemTextW(hBox, AFX_IDC_PRINT_DOCNAME, texts.document.c_str());  // nothing happens without such an item
        ::SetDlgItemTextW(hBox, AFX_IDC_PRINT_PRINTERNAME, texts.printer.c_str());
        ::SetDlgItemTextW(hBox, AFX_IDC_PRINT_PORTNAME, texts.port.c_str());
        return TRUE;
    }
    if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) {
        t_run.bAborted = true;
        return TRUE;
    }
    return FALSE;
}

// Lets the user press the box's button. A quit message ends the run, and goes back for the loop that it is meant for.
BOOL CALLBACK AbortProc(HDC, int) {
    MSG msg;
    while (!t_run.bAborted && ::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        if (msg.message == WM_QUIT) {
            ::PostQuitMessage(static_cast<int>(msg.wParam));
            t_run.bAborted = true;
        } else if (t_run.hBox == nullptr || !::IsDialogMessageW(t_run.hBox, &msg)) {
            ::TranslateMessage(&msg);
            ::DispatchMessageW(&msg);
        }
    }
    return t_run.bAborted ? FALSE : TRUE;
}

/// The main window disabled and the box in front of it, for as long as the object lives.
class CPrintingBox {
public:
    CPrintingBox(const CPrintInfo& info, const std::wstring& title) {
        const CWnd* const pMain = AfxGetMainWnd();
        m_hMain = pMain != nullptr ? pMain->m_hWnd : nullptr;
        t_run = {};
        Enable(false);
        if (info.m_nIDStatusDialog != 0) {
            const BoxTexts texts{title, info.m_pPD->GetDeviceName(), info.m_pPD->GetPortName()};
            t_run.hBox = ::CreateDialogParamW(AfxGetResourceHandle(), MAKEINTRESOURCEW(info.m_nIDStatusDialog), m_hMain, BoxProc,
                                              reinterpret_cast<LPARAM>(&texts));
        }
        if (t_run.hBox != nullptr) {
            ::ShowWindow(t_run.hBox, SW_SHOW);
            ::UpdateWindow(t_run.hBox);
        }
    }
    CPrintingBox(const CPrintingBox&) = delete;
    CPrintingBox& operator=(const CPrintingBox&) = delete;
    // The main window first, so that it becomes the active one again when the box goes.
    ~CPrintingBox() {
        Enable(true);
        if (t_run.hBox != nullptr) {
            ::DestroyWindow(t_run.hBox);
        }
        t_run = {};
    }
    static void ShowPage(UINT nPage) { ::SetDlgItemTextW(t_run.hBox, AFX_IDC_PRINT_PAGENUM, std::to_wstring(nPage).c_str()); }

private:
    void Enable(bool bEnable) const {
        if (m_hMain != nullptr) {
            ::EnableWindow(m_hMain, bEnable ? TRUE : FALSE);
        }
    }

    HWND m_hMain = nullptr;
};

/// A printer's context in the middle of a run; not owned.
class CPrinterDC : public CDC {
public:
    explicit CPrinterDC(HDC hdc) {
        Attach(hdc);
        m_bPrinting = true;
    }
    ~CPrinterDC() override { Detach(); }
};

bool StartDocument(const CDC& dc, const CPrintInfo& info, const std::wstring& title) {
    DOCINFOW document{};
    document.cbSize = sizeof document;
    document.lpszDocName = title.c_str();
    // With this name the system asks for the file.
    document.lpszOutput = (info.m_pPD->m_pd.Flags & PD_PRINTTOFILE) != 0 ? L"FILE:" : nullptr;
    return ::StartDocW(dc, &document) > 0;
}

bool PrintPage(CView& view, CDC& dc, CPrintInfo& info) {
    info.m_rectDraw = {0, 0, dc.GetDeviceCaps(HORZRES), dc.GetDeviceCaps(VERTRES)};
    if (::StartPage(dc) <= 0) {
        return false;
    }
    view.OnPrepareDC(&dc, &info);  // the start of a page sets the context's attributes back
    view.OnPrint(&dc, &info);
    return ::EndPage(dc) > 0 && AbortProc(dc, 0) != FALSE;
}

bool PrintPages(CView& view, CDC& dc, CPrintInfo& info) {
    const int nFirst = std::clamp(info.GetFromPage(), info.GetMinPage(), info.GetMaxPage());
    const int nLast = std::clamp(info.GetToPage(), info.GetMinPage(), info.GetMaxPage());
    const int nStep = nFirst <= nLast ? 1 : -1;
    for (int nPage = nFirst; nPage != nLast + nStep; nPage += nStep) {
        info.m_nCurPage = static_cast<UINT>(nPage);
        view.OnPrepareDC(&dc, &info);
        if (!info.m_bContinuePrinting) {
            break;
        }
        CPrintingBox::ShowPage(info.m_nCurPage);
        if (AbortProc(dc, 0) == FALSE || !PrintPage(view, dc, info)) {
            return false;
        }
    }
    return true;
}

/// Prints the document; false on a failure. A run that the user ended is none.
bool PrintDocument(CView& view, CDC& dc, CPrintInfo& info, const std::wstring& title) {
    const CPrintingBox box(info, title);
    ::SetAbortProc(dc, AbortProc);
    if (!StartDocument(dc, info, title)) {
        const DWORD dwError = ::GetLastError();  // the system may have asked for a file
        return t_run.bAborted || dwError == ERROR_CANCELLED || dwError == ERROR_PRINT_CANCELLED;
    }
    if (PrintPages(view, dc, info)) {
        return ::EndDoc(dc) > 0 || t_run.bAborted;
    }
    ::AbortDoc(dc);
    return t_run.bAborted;
}

void TellFailure(const CPrintInfo& info) {
    if (!info.m_strFailure.empty()) {
        AfxMessageBox(info.m_strFailure.c_str(), MB_OK | MB_ICONEXCLAMATION);
    }
}

/// The run behind the dialog.
bool RunPrinting(CView& view, CPrintInfo& info) {
    const CWnd* const pMain = AfxGetMainWnd();
    const std::wstring title = pMain != nullptr ? pMain->GetWindowText() : std::wstring();
    CPrinterDC dc(info.m_pPD->m_pd.hDC);
    view.OnBeginPrinting(&dc, &info);
    const bool bPrinted = PrintDocument(view, dc, info, title);
    view.OnEndPrinting(&dc, &info);
    return bPrinted;
}

}  // namespace

void CView::OnPrint(CDC* pDC, CPrintInfo*) {
    OnDraw(pDC);
}

bool CView::DoPreparePrinting(CPrintInfo* pInfo) {
    CPrintDialog& dialog = *pInfo->m_pPD;
    CWinApp* const pApp = AfxGetApp();
    dialog.m_pd.nFromPage = pInfo->GetMinPage();
    dialog.m_pd.nToPage = pInfo->GetMaxPage();
    if (pInfo->m_bPreview && (pApp != nullptr ? pApp->GetPrinterDeviceDefaults(&dialog) : dialog.GetDefaults()) &&
        dialog.CreatePrinterDC()) {
        return true;
    }
    const INT_PTR nResult = pApp != nullptr ? pApp->DoPrintDialog(&dialog) : dialog.DoModal();
    const bool bReady = nResult == IDOK && dialog.CreatePrinterDC();
    if (!bReady && (nResult == IDOK || dialog.HasFailed())) {
        TellFailure(*pInfo);
    }
    return bReady;
}

void CView::OnFilePrint() {
    CPrintInfo info;
    if (!OnPreparePrinting(&info)) {
        return;
    }
    if (!RunPrinting(*this, info)) {
        TellFailure(info);
    }
}
