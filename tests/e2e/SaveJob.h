// A job over the recording image library, and the save dialog as a person's hands see it.
#pragma once

#include <string>
#include <vector>

#include "standins/recorder/Recorder.h"
#include "tests/e2e/PluginJob.h"

namespace width::test {

/// The record of the library that the plug-in has loaded, with four formats: 1 "One" *.one;*.uno, 3 "Three" *.Three,
/// 6 "Six" *.six, which has options, and 9, which can hold no picture.
RecorderState& Recorder();
/// The same, all answers and records as at the start.
RecorderState& FreshRecorder();

/// A folder of this test program's own, without its last backslash; empty at the start.
std::wstring FreshFolder(const wchar_t* pszName);
void MakeFile(const std::wstring& path);

/// The save dialog of a job that is open.
class SaveDialog {
public:
    /// Gives the command and waits until the dialog has been laid out.
    SaveDialog(const PluginJob& job, UINT nCommand);
    /// The same for another program's dialog.
    SaveDialog(HWND hFrame, UINT nCommand);

    HWND m_hDlg = nullptr;

    std::wstring Name() const;
    void Type(const std::wstring& name) const;
    std::vector<std::wstring> Types() const;
    int SelectedType() const;
    void ChooseType(int nType) const;
    HWND OptionButton() const;
    bool HasOptions() const { return ::IsWindowEnabled(OptionButton()) != FALSE; }
    void PressOption() const;
    /// Presses a button and waits for the dialog to go. False if it stays.
    bool Close(UINT nId) const;
    /// Presses OK, answers the box that comes up with nAnswer, and gives its text.
    std::wstring Confirm(UINT nAnswer) const;
    bool IsOpen() const { return ::IsWindow(m_hDlg) != FALSE; }
};

}  // namespace width::test
