// The module's door: load, unload and the one export, named in width.def.
// Tested by: tests/e2e/PluginTest.cpp
#include "classlib/Print.h"
#include "classlib/Wnd.h"
#include "module/ModuleState.h"
#include "shell/Plugin_win.h"

namespace {

// The module's application object: remembers printer, paper and orientation as long as the module is loaded.
CWinApp g_app;

}  // namespace

extern "C" int32_t pi_init(pi_table* pTable, uint16_t nLangId);
extern "C" int32_t pi_init(pi_table* pTable, uint16_t nLangId) {
    return width::InitPlugin(pTable, nLangId);
}

extern "C" BOOL WINAPI DllMain(HINSTANCE hModule, DWORD dwReason, LPVOID lpReserved);
extern "C" BOOL WINAPI DllMain(HINSTANCE hModule, DWORD dwReason, LPVOID lpReserved) {
    if (dwReason == DLL_PROCESS_ATTACH) {
        width::g_hModule = hModule;
        ::DisableThreadLibraryCalls(hModule);
    } else if (dwReason == DLL_PROCESS_DETACH && lpReserved == nullptr) {
        AfxUnregisterWndClasses();
    }
    return TRUE;
}
