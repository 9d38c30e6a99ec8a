// CDialog: a modal dialog from a template, and the exchange of its values with the controls.
// Tested by: tests/e2e/DialogTest.cpp
#pragma once

#include <string>

#include "classlib/Win.h"

class CDialog;

/// One exchange between a dialog's values and its controls, in either direction. The first value that can't be taken ends
/// it: later calls of the same exchange do nothing.
class CDataExchange {
public:
    CDataExchange(CDialog* pDlg, bool bSaveAndValidate) : m_pDlg(pDlg), m_bSaveAndValidate(bSaveAndValidate) {}

    CDialog* m_pDlg;
    bool m_bSaveAndValidate;  ///< true: controls to values
    bool m_bFailed = false;   ///< a value could not be taken
    HWND m_hWndLastControl = nullptr;

    /// Tells the user, gives the last control the focus and selects its text.
    void Fail(const std::wstring& text);
};

/// A whole number, and a decimal number, in a text control. Anything else fails. A number that the type can't hold becomes the
/// nearest that it can (see NumberText.h): it is for the range check behind to refuse it.
void DDX_Text(CDataExchange* pDX, UINT nID, int& value);
void DDX_Text(CDataExchange* pDX, UINT nID, float& value);
/// A check box: 1 checked, 0 not.
void DDX_Check(CDataExchange* pDX, UINT nID, int& value);
/// To follow the DDX call of its value at once: fails outside [nMin, nMax], and tells the range.
void DDV_MinMaxInt(CDataExchange* pDX, int value, int nMin, int nMax);
void DDV_MinMaxFloat(CDataExchange* pDX, float value, float fMin, float fMax);

/// Lives on the stack of the call that shows it. Values are plain members of the derived class, set before DoModal and read
/// after it gave IDOK.
class CDialog {
public:
    HWND m_hWnd = nullptr;  ///< null while the dialog is not open

    CDialog() = default;
    CDialog(const CDialog&) = delete;
    CDialog& operator=(const CDialog&) = delete;
    virtual ~CDialog() = default;

    /// Shows the dialog until it is closed. hParent is disabled meanwhile; null: none.
    /// returns  the id that closed it, IDOK among them, or -1 if it could not be shown
    INT_PTR DoModal(HINSTANCE hInstance, UINT nTemplate, HWND hParent);

    /// Values to controls (false) or back (true). False if a value could not be taken; the user has been told.
    bool UpdateData(bool bSaveAndValidate);

    HWND GetDlgItem(UINT nID) const { return ::GetDlgItem(m_hWnd, static_cast<int>(nID)); }
    void EnableItem(UINT nID, bool bEnable) const { ::EnableWindow(GetDlgItem(nID), bEnable ? TRUE : FALSE); }

    /// What the user is told when a text is no number of its kind, and when it is outside a range. English; override for others.
    virtual std::wstring NoIntegerText() const { return L"Please enter an integer."; }
    virtual std::wstring RangeText(int nMin, int nMax) const;
    virtual std::wstring NoNumberText() const { return L"Please enter a number."; }
    virtual std::wstring NumberRangeText(float fMin, float fMax) const;

protected:
    /// The controls exist. True: the system sets the focus. The base brings the values into the controls.
    virtual bool OnInitDialog();
    virtual void DoDataExchange(CDataExchange* /*pDX*/) {}
    /// Puts a dialog over the middle of its owner, or of the screen when it has none, and wholly on the screen.
    static void CenterWindow(HWND hDlg);
    /// Takes the values and closes with IDOK; stays open if one could not be taken.
    virtual void OnOK();
    virtual void OnCancel();
    /// A control's notification, BN_CLICKED and so on.
    virtual void OnControl(UINT /*nID*/, UINT /*nCode*/) {}
    /// An owner-drawn control wants to be painted.
    virtual void OnDrawItem(const DRAWITEMSTRUCT& /*item*/) {}
    /// A control of the type CTLCOLOR_... asks for its background; the base gives the system's own brush.
    virtual HBRUSH OnCtlColor(HDC hdc, HWND hControl, UINT nCtlColor);

private:
    static INT_PTR CALLBACK DlgProc(HWND hDlg, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void OnCommand(UINT nID, UINT nCode);
};
