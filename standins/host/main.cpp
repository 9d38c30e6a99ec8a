// The stand-in for the image program that hosts the plug-in: opens a picture, hands it to plugin\width.dll beside it,
// and takes it back.
// Tested by: tests/win/host/HostTest.cpp
#include "core/Platform.h"
// after core/Platform.h, which brings the platform in
#include <commctrl.h>
#include <shellapi.h>

#include <array>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "standins/host/CommandLine.h"
#include "standins/host/HostWindow.h"
#include "standins/host/resource.h"

namespace {

std::vector<std::wstring> Arguments() {
    int nCount = 0;
    wchar_t** ppArguments = CommandLineToArgvW(GetCommandLineW(), &nCount);
    std::vector<std::wstring> arguments;
    for (int i = 1; ppArguments != nullptr && i < nCount; ++i) {
        arguments.emplace_back(ppArguments[i]);
    }
    LocalFree(ppArguments);
    return arguments;
}

// Beside this program, wherever it was started from.
std::wstring PluginPath() {
    std::array<wchar_t, 4096> path{};
    GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()) - 1);
    const std::wstring program = path.data();
    return program.substr(0, program.find_last_of(L'\\') + 1) + L"plugin\\width.dll";
}

void RunMessageLoop(HWND hWnd) {
    const HACCEL hKeys = LoadAcceleratorsW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDR_HOST));
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (TranslateAcceleratorW(hWnd, hKeys, &message) == 0) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

int Run(int nShow) {
    using namespace width::host;
    const auto commandLine = ParseCommandLine(Arguments());
    if (!commandLine.has_value()) {
        MessageBoxW(nullptr, kUsage, L"Picture Host", MB_OK | MB_ICONINFORMATION);
        return 2;
    }
    HostWindow window(commandLine->nLangId, PluginPath());
    if (!window.Create(nShow)) {
        return 1;
    }
    if (!commandLine->picture.empty()) {
        window.OpenPicture(commandLine->picture);
    }
    if (commandLine->bMeasure) {
        window.Measure();
    }
    RunMessageLoop(window.Window());
    return 0;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE /*hInstance*/, HINSTANCE /*hPrevious*/, PWSTR /*pCommandLine*/, int nShow) {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_BAR_CLASSES};
    InitCommonControlsEx(&controls);
    try {
        return Run(nShow);
    } catch (const std::exception&) {
        MessageBoxW(nullptr, L"There is not enough memory to go on.", L"Picture Host", MB_OK | MB_ICONERROR);
        return 1;
    }
}
