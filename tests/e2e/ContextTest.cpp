// Which common controls the plug-in gets in a host that asks for none: this program has no manifest, so its windows are of the
// old kind, and the plug-in has to bring its own.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "res/resource.h"
#include "tests/e2e/PluginJob.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::PluginJob;
using test::WaitFor;

std::vector<std::byte> Picture() {
    return test::DibBuilder(40, 30, 24).Block();
}

/// The file whose manifest makes the context that is active now; empty in the process's own.
std::wstring ActiveManifest() {
    struct {
        ACTIVATION_CONTEXT_DETAILED_INFORMATION details;
        wchar_t text[2000];
    } answer{};
    HANDLE hContext = nullptr;
    if (::GetCurrentActCtx(&hContext) == FALSE || hContext == nullptr) {
        return {};
    }
    const bool bKnown =
        ::QueryActCtxW(0, hContext, nullptr, ActivationContextDetailedInformation, &answer, sizeof answer, nullptr) != FALSE;
    ::ReleaseActCtx(hContext);
    return bKnown && answer.details.lpRootManifestPath != nullptr ? answer.details.lpRootManifestPath : L"?";
}

std::wstring FileName(const std::wstring& path) {
    return path.substr(path.rfind(L'\\') + 1);
}

/// Whether the code behind a window's class is that of the common controls of version 6.
bool IsOfVersion6(HWND hWnd) {
    HMODULE hModule = nullptr;
    const auto pCode = reinterpret_cast<LPCWSTR>(::GetClassLongPtrW(hWnd, GCLP_WNDPROC));
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, pCode, &hModule);
    wchar_t path[MAX_PATH] = {};
    ::GetModuleFileNameW(hModule, path, MAX_PATH);
    ::CharLowerW(path);
    return std::wstring(path).find(L"common-controls_6595b64144ccf1df_6.0") != std::wstring::npos;
}

/// Looks at things on another thread, while that thread handles a message.
void RunOnThreadOf(HWND hWnd, const std::function<void()>& look) {
    static const std::function<void()>* s_pLook = nullptr;
    s_pLook = &look;
    const auto procedure = [](int nCode, WPARAM wParam, LPARAM lParam) -> LRESULT {
        const auto* const pLook = std::exchange(s_pLook, nullptr);
        if (pLook != nullptr) {
            (*pLook)();
        }
        return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
    };
    const HHOOK hHook = ::SetWindowsHookExW(WH_CALLWNDPROC, procedure, nullptr, ::GetWindowThreadProcessId(hWnd, nullptr));
    ::SendMessageW(hWnd, WM_NULL, 0, 0);
    ::UnhookWindowsHookEx(hHook);
    EXPECT_EQ(s_pLook, nullptr) << "the thread was not there";
}

/// What the host sees of the contexts in its callback, by code.
std::wstring g_seen[PI_CODE_END + 1];

/// Makes the system's own context of version 6 the active one, as a modern host's thread may have it.
class ActiveContext {
public:
    ActiveContext() {
        ACTCTXW context{};
        context.cbSize = sizeof context;
        context.lpSource = L"C:\\windows\\system32\\shell32.dll";
        context.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID;
        context.lpResourceName = MAKEINTRESOURCEW(124);
        m_hContext = ::CreateActCtxW(&context);
        ::ActivateActCtx(m_hContext, &m_nCookie);
    }
    ActiveContext(const ActiveContext&) = delete;
    ActiveContext& operator=(const ActiveContext&) = delete;
    ~ActiveContext() {
        ::DeactivateActCtx(0, m_nCookie);
        ::ReleaseActCtx(m_hContext);
    }
    bool IsThere() const { return m_hContext != INVALID_HANDLE_VALUE; }

private:
    HANDLE m_hContext = nullptr;
    ULONG_PTR m_nCookie = 0;
};

// A host that has no manifest at all, under any name.
TEST(Context, ThisHostAsksForNothing) {
    const auto none = [](HMODULE, LPCWSTR, LPWSTR, LONG_PTR pCount) -> BOOL {
        ++*reinterpret_cast<int*>(pCount);
        return TRUE;
    };
    int nManifests = 0;
    ::EnumResourceNamesW(nullptr, RT_MANIFEST, none, reinterpret_cast<LONG_PTR>(&nManifests));
    EXPECT_EQ(nManifests, 0);
    const HWND hButton = ::CreateWindowExW(0, L"Button", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    EXPECT_FALSE(IsOfVersion6(hButton));
    ::DestroyWindow(hButton);
}

TEST(Context, JobRunsInThePluginsOwnAndItsCallbacksInTheHosts) {
    PluginJob job(0x0409);
    job.m_pfnOnEvent = [](PluginJob&, int32_t nCode) { g_seen[nCode] = L"host: " + ActiveManifest(); };
    ASSERT_NE(job.Start(Picture()), nullptr);
    RunOnThreadOf(job.Frame(), [] { EXPECT_EQ(FileName(ActiveManifest()), L"width.dll"); });
    EXPECT_TRUE(IsOfVersion6(job.ToolBar()));
    EXPECT_TRUE(IsOfVersion6(::GetDlgItem(job.Frame(), 59393)));
    ASSERT_TRUE(job.WaitForPane(1, L"40 x 30"));
    ::PostMessageW(job.Frame(), WM_COMMAND, ID_ABOUT, 0);
    const HWND hAbout = test::WaitForWindow(0, L"#32770");
    EXPECT_TRUE(IsOfVersion6(::GetDlgItem(hAbout, IDOK))) << "a class that the system has too";
    test::PostCommand(hAbout, IDOK);
    ASSERT_TRUE(WaitFor([&] { return ::IsWindow(hAbout) == FALSE && ::IsWindowEnabled(job.Frame()) != FALSE; }));

    job.Command(ID_SEND_IMAGE);
    RunOnThreadOf(job.Frame(), [] { EXPECT_EQ(FileName(ActiveManifest()), L"width.dll") << "after the callback"; });
    EXPECT_TRUE(job.Close());
    EXPECT_EQ(g_seen[PI_CODE_IMAGE], L"host: ");
    EXPECT_EQ(g_seen[PI_CODE_END], L"host: ");
    EXPECT_EQ(ActiveManifest(), L"") << "on this thread nothing has changed";
}

TEST(Context, HostsContextComesWithTheCallbacks) {
    const ActiveContext hosts;
    if (!hosts.IsThere()) {
        GTEST_SKIP() << "the system has no such manifest";
    }
    const std::wstring mine = ActiveManifest();
    PluginJob job(0x0409);
    job.m_pfnOnEvent = [](PluginJob&, int32_t nCode) { g_seen[nCode] = ActiveManifest(); };
    ASSERT_NE(job.Start(Picture()), nullptr);
    RunOnThreadOf(job.Frame(), [] { EXPECT_EQ(FileName(ActiveManifest()), L"width.dll"); });
    ASSERT_TRUE(job.WaitForPane(1, L"40 x 30"));
    job.Command(ID_SEND_IMAGE);
    EXPECT_TRUE(job.Close());
    EXPECT_EQ(g_seen[PI_CODE_IMAGE], mine);
    EXPECT_EQ(g_seen[PI_CODE_END], mine);
}

TEST(Context, AboutOnTheHostsThreadIsOfThePluginsKindAndLeavesTheThreadAsItWas) {
    PluginJob job(0x0409);
    bool bNew = false;
    std::wstring within;
    std::thread watcher([&] {
        const HWND hAbout = test::WaitForWindow(0, L"#32770");
        bNew = IsOfVersion6(::GetDlgItem(hAbout, IDOK));
        RunOnThreadOf(hAbout, [&] { within = FileName(ActiveManifest()); });
        test::PostCommand(hAbout, IDOK);
    });
    job.Table().pfnAbout();
    watcher.join();
    EXPECT_TRUE(bNew);
    EXPECT_EQ(within, L"width.dll");
    EXPECT_EQ(ActiveManifest(), L"");
}

// A copy of the plug-in whose manifest says nothing: the context can't be made.
TEST(Context, WithoutItsManifestTheJobRunsAllTheSame) {
    wchar_t folder[MAX_PATH] = {};
    ::GetTempPathW(MAX_PATH, folder);
    const std::wstring path = std::wstring(folder) + L"bare.dll";
    ASSERT_TRUE(::CopyFileW(PLUGIN_PATH, path.c_str(), FALSE));
    const HANDLE hUpdate = ::BeginUpdateResourceW(path.c_str(), FALSE);
    char nothing[] = "nothing";
    EXPECT_TRUE(::UpdateResourceW(hUpdate, RT_MANIFEST, MAKEINTRESOURCEW(2), 0, nothing, sizeof nothing));
    EXPECT_TRUE(::EndUpdateResourceW(hUpdate, FALSE));
    {
        PluginJob job(0x0409, path.c_str());
        ASSERT_NE(job.Start(Picture()), nullptr);
        RunOnThreadOf(job.Frame(), [] { EXPECT_EQ(ActiveManifest(), L""); });
        EXPECT_NE(job.ToolBar(), nullptr);
        EXPECT_TRUE(job.WaitForPane(1, L"40 x 30"));
        EXPECT_TRUE(job.Close());
    }
    EXPECT_TRUE(::DeleteFileW(path.c_str()));
}

}  // namespace
}  // namespace width
