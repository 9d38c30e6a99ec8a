// Commands whose full dialogue is not part of this version: they do what can be done without it and say so.
// Tested by: tests/e2e/PluginTest.cpp
#include "classlib/Thread.h"
#include "module/ModuleState.h"
#include "view/PibView_win.h"

namespace width {

namespace {

void Tell(LPCWSTR lpszEnglish, LPCWSTR lpszChinese) {
    AfxMessageBox(g_bChinese != 0 ? lpszChinese : lpszEnglish, MB_OK | MB_ICONINFORMATION);
}

}  // namespace

void CPibView::OnSave() {
    Tell(L"This version does not save files. Send the image to the main application.",
         L"此版本尚不能保存文件，请将图像发送到主程序。");
}

void CPibView::OnSaveAs() {
    OnSave();
}

}  // namespace width
