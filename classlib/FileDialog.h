// CFileDialog: the system's dialog for the name of a file to save, extended by a child template.
// Tested by: tests/e2e/SaveDialogTest.cpp
#pragma once

#include <string>
#include <vector>

#include "classlib/Dialog.h"
// after the platform's own header
#include <commdlg.h>

/// Lives on the stack of the call that shows it. m_hWnd is the child made from the template; its parent is the system's
/// dialog. Settings go into m_ofn before DoModal; OFN_EXPLORER is always set.
class CFileDialog : public CDialog {
public:
    OPENFILENAMEW m_ofn{};

    /// pszFileName  the name to start with; null: none.  dwFlags  OFN_... values.
    CFileDialog(LPCWSTR pszFileName, DWORD dwFlags, HWND hParent);

    /// Shows the dialog until it is closed. IDOK, or another value when the user chose nothing.
    INT_PTR DoModal();

    /// The whole path of the name in the dialog, or after IDOK of the name chosen, with the default extension where the
    /// name has none.
    std::wstring GetPathName() const;

    /// The file name without its folders.
    std::wstring GetFileName() const;

    /// Puts a text into one of the system's own controls. Only while the dialog is open.
    void SetControlText(UINT nID, const std::wstring& text) const;

    /// The extension, without a dot, that a name without one gets. Only while the dialog is open.
    void SetDefExt(const std::wstring& extension);

protected:
    /// The user confirmed the name: true keeps the dialog open.
    virtual bool OnFileNameOK() { return false; }
    /// The dialog has been laid out. The base puts it over the middle of its owner.
    virtual void OnInitDone();
    /// The user chose another type; m_ofn.nFilterIndex tells which, counted from 1.
    virtual void OnTypeChange() {}

    /// The system's dialog.
    HWND Platform() const { return ::GetParent(m_hWnd); }

private:
    static UINT_PTR CALLBACK Hook(HWND hDlg, UINT message, WPARAM wParam, LPARAM lParam);
    UINT_PTR OnHook(UINT message, WPARAM wParam, LPARAM lParam);
    bool OnDialogNotify(const OFNOTIFYW& notify);
    bool OnConfirmed(LPCWSTR pszPath);
    std::wstring WithDefExt(std::wstring path) const;

    std::vector<wchar_t> m_path;  // what the system's dialog starts with and ends with
    std::wstring m_extension;
    bool m_bConfirmed = false;  // the system asks whether it may close; m_path holds the path
};
