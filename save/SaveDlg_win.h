// CSaveDlg: the system's file dialog over the image library's formats, with a button for the options of the current type.
//
// It keeps three things in step: the type in the list, the extension of the name, and the option values.
// Tested by: tests/e2e/SaveDialogTest.cpp
#pragma once

#include <string>
#include <vector>

#include "api/Kestrix.h"
#include "classlib/FileDialog.h"
#include "save/FileTypes.h"

namespace width {

/// The library's format table, copied.
FormatTable LibraryFormats();

/// Lives on the stack of the call that shows it. After IDOK, m_nFormat and m_options are what the user chose.
class CSaveDlg : public CFileDialog {
public:
    HWND m_btnOption = nullptr;
    std::vector<std::wstring> m_pFilterExts;  ///< for each type in the list its pattern string, in upper case
    std::uint32_t m_nFormat = 0;              ///< the current type's format
    FormatOptions m_options{};                ///< the option values for it

    /// pszFileName  the name to start with; null: none
    explicit CSaveDlg(LPCWSTR pszFileName);

    /// The list of types, and which of them is the first one shown. Before DoModal.
    void SetTypes(const std::vector<FileType>& types, LPCWSTR pszInitialName);

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    bool OnFileNameOK() override;
    void OnInitDone() override;
    void OnTypeChange() override;
    void OnControl(UINT nID, UINT nCode) override;

private:
    void OnOption();
    std::int32_t GetSelectedType() const;
    std::uint32_t GetSelectedFormat() const;
    UINT NameControl() const;
    std::wstring FileNameForType() const;
    void PlaceOptionButton() const;

    std::wstring m_filter;
};

}  // namespace width
