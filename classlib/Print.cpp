// The print dialog and the application object. Tested by: tests/e2e/PrintTest.cpp, tests/win/PrintSetupTest.cpp
#include "classlib/Print.h"

// after windows.h
#include <winspool.h>

#include <utility>

#include "classlib/Thread.h"
#include "classlib/Wnd.h"

namespace {

CWinApp* g_pApp = nullptr;

void FreeGlobal(HGLOBAL& hMemory) {
    if (hMemory != nullptr) {
        ::GlobalFree(std::exchange(hMemory, nullptr));
    }
}

/// Whether the user has a printer, of this machine or of another.
bool HasPrinter() {
    DWORD nBytes = 0;
    DWORD nPrinters = 0;
    const bool bFits =
        ::EnumPrintersW(PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS, nullptr, 4, nullptr, 0, &nBytes, &nPrinters) != FALSE;
    return !bFits && ::GetLastError() == ERROR_INSUFFICIENT_BUFFER;  // what there is does not fit into nothing
}

/// Keeps a movable block at its place.
template <class T>
class CGlobalLock {
public:
    explicit CGlobalLock(HGLOBAL hMemory)
        : m_hMemory(hMemory), m_p(hMemory != nullptr ? static_cast<const T*>(::GlobalLock(hMemory)) : nullptr) {}
    CGlobalLock(const CGlobalLock&) = delete;
    CGlobalLock& operator=(const CGlobalLock&) = delete;
    ~CGlobalLock() {
        if (m_p != nullptr) {
            ::GlobalUnlock(m_hMemory);
        }
    }
    const T* Get() const { return m_p; }

private:
    HGLOBAL m_hMemory;
    const T* m_p;
};

}  // namespace

CPrintDialog::CPrintDialog(bool bPrintSetupOnly, DWORD dwFlags) {
    m_pd.lStructSize = sizeof m_pd;
    m_pd.Flags = dwFlags | static_cast<DWORD>(bPrintSetupOnly ? PD_PRINTSETUP : PD_RETURNDC);
    m_pd.nCopies = 1;
}

CPrintDialog::~CPrintDialog() {
    if (m_pd.hDC != nullptr) {
        CDC().Attach(m_pd.hDC);  // deletes it
    }
    FreeDevice();
}

void CPrintDialog::FreeDevice() {
    if (!m_bDeviceIsLent) {
        FreeGlobal(m_pd.hDevMode);
        FreeGlobal(m_pd.hDevNames);
    }
}

INT_PTR CPrintDialog::DoModal() {
    m_dwError = 0;
    if (!m_strNoPrinter.empty() && !HasPrinter()) {
        AfxMessageBox(m_strNoPrinter.c_str(), MB_OK | MB_ICONEXCLAMATION);
        return IDCANCEL;
    }
    const CWnd* const pMain = AfxGetMainWnd();
    m_pd.hwndOwner = pMain != nullptr ? pMain->m_hWnd : nullptr;
    m_pd.Flags |= m_strNoPrinter.empty() ? 0 : PD_NOWARNING;
    if (::PrintDlgW(&m_pd) != FALSE) {
        return IDOK;
    }
    m_dwError = ::CommDlgExtendedError();
    return IDCANCEL;
}

bool CPrintDialog::GetDefaults() {
    FreeDevice();
    m_bDeviceIsLent = false;
    const DWORD dwFlags = std::exchange(m_pd.Flags, m_pd.Flags | PD_RETURNDEFAULT);
    m_pd.hDevMode = nullptr;  // the system wants them null
    m_pd.hDevNames = nullptr;
    const bool bFound = ::PrintDlgW(&m_pd) != FALSE && m_pd.hDevNames != nullptr;
    m_pd.Flags = dwFlags;
    return bFound;
}

bool CPrintDialog::CreatePrinterDC() {
    if (m_pd.hDC == nullptr && m_pd.hDevNames != nullptr) {
        const CGlobalLock<DEVMODEW> mode(m_pd.hDevMode);
        m_pd.hDC = ::CreateDCW(NameAt(&DEVNAMES::wDriverOffset).c_str(), GetDeviceName().c_str(), nullptr, mode.Get());
    }
    return m_pd.hDC != nullptr;
}

// Offsets count characters from the record's start.
std::wstring CPrintDialog::NameAt(WORD DEVNAMES::*pOffset) const {
    const CGlobalLock<DEVNAMES> names(m_pd.hDevNames);
    return names.Get() != nullptr ? reinterpret_cast<const wchar_t*>(names.Get()) + names.Get()->*pOffset : std::wstring();
}

std::wstring CPrintDialog::GetDeviceName() const {
    return NameAt(&DEVNAMES::wDeviceOffset);
}

std::wstring CPrintDialog::GetPortName() const {
    return NameAt(&DEVNAMES::wOutputOffset);
}

// ---- the application object ----

CWinApp* AfxGetApp() {
    return g_pApp;
}

CWinApp::CWinApp() {
    g_pApp = this;
}

CWinApp::~CWinApp() {
    g_pApp = nullptr;
    FreeGlobal(m_hDevMode);
    FreeGlobal(m_hDevNames);
}

void CWinApp::Lend(CPrintDialog* pPD) const {
    pPD->m_pd.hDevMode = m_hDevMode;
    pPD->m_pd.hDevNames = m_hDevNames;
    pPD->m_bDeviceIsLent = true;
}

// The dialog may have replaced the blocks, and has then released the old ones.
void CWinApp::TakeBack(CPrintDialog* pPD) {
    m_hDevMode = pPD->m_pd.hDevMode;
    m_hDevNames = pPD->m_pd.hDevNames;
    pPD->m_bDeviceIsLent = true;
}

INT_PTR CWinApp::DoPrintDialog(CPrintDialog* pPD) {
    m_bDialogOpen = true;
    Lend(pPD);
    INT_PTR nResult = pPD->DoModal();
    TakeBack(pPD);
    const DWORD dwError = pPD->GetError();
    if (dwError == PDERR_PRINTERNOTFOUND || dwError == PDERR_DNDMMISMATCH || dwError == PDERR_DEFAULTDIFFERENT) {
        // The remembered printer is no more: once again with the system's own.
        FreeGlobal(m_hDevMode);
        FreeGlobal(m_hDevNames);
        Lend(pPD);
        nResult = pPD->DoModal();
        TakeBack(pPD);
    }
    m_bDialogOpen = false;
    return nResult;
}

bool CWinApp::GetPrinterDeviceDefaults(CPrintDialog* pPD) {
    if (m_hDevNames != nullptr) {
        Lend(pPD);
        return true;
    }
    const bool bFound = pPD->GetDefaults();
    TakeBack(pPD);
    return bFound;
}
