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

void CPibView::OnPrint() {
    Tell(L"This version does not print. Send the image to the main application.", L"此版本尚不能打印，请将图像发送到主程序。");
}

void CPibView::OnPrintPreview() {
    OnPrint();
}

}  // namespace width
