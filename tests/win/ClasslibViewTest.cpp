// Scrolling and tracking of classlib's views, on real windows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/WinDriver.h"
#include "tests/win/ClasslibWindows.h"

namespace width::test {

using ::testing::ElementsAre;

namespace {

SIZE BarSizes() {
    return {::GetSystemMetrics(SM_CXVSCROLL), ::GetSystemMetrics(SM_CYHSCROLL)};
}

/// The view's state as a test wants to compare it: which bars, position, range and page.
struct ScrollState {
    bool bHorz, bVert;
    LONG x, y;
    bool operator==(const ScrollState&) const = default;
};
void PrintTo(const ScrollState& state, std::ostream* out) {
    *out << (state.bHorz ? "H" : "-") << (state.bVert ? "V" : "-") << " at " << state.x << "," << state.y;
}

ScrollState StateOf(const TestView& view) {
    const POINT pt = view.GetScrollPosition();
    return {(view.GetStyle() & WS_HSCROLL) != 0, (view.GetStyle() & WS_VSCROLL) != 0, pt.x, pt.y};
}

class ScrollView : public ::testing::Test {
protected:
    /// Sends a message to the view from its own thread and tells what came of it.
    ScrollState After(UINT message, WPARAM wParam) const {
        ScrollState state{};
        m_app.Run([&](TestFrame&, TestView& view) {
            view.SendMessage(message, wParam, 0);
            state = StateOf(view);
        });
        return state;
    }
    ScrollState Extent(SIZE sizeTotal) const {
        ScrollState state{};
        m_app.Run([&](TestFrame&, TestView& view) {
            view.SetScrollSizes(MM_TEXT, sizeTotal);
            state = StateOf(view);
        });
        return state;
    }
    ScrollState ScrollTo(POINT pt) const {
        ScrollState state{};
        m_app.Run([&](TestFrame&, TestView& view) {
            view.ScrollToPosition(pt);
            state = StateOf(view);
        });
        return state;
    }
    SIZE ClientSize() const {
        RECT rc{};
        ::GetClientRect(m_app.hView, &rc);
        return {rc.right, rc.bottom};
    }

    TestApp m_app;
};

class Tracker : public ::testing::Test {
protected:
    void SetUp() override {
        PostMouse(m_app.hView, WM_LBUTTONDOWN, {50, 40}, MK_LBUTTON);
        PostMouse(m_app.hView, WM_MOUSEMOVE, {60, 45}, MK_LBUTTON);
        ASSERT_TRUE(WaitFor([&] { return m_app.log.Has("moved 10,5"); }));
    }
    /// What the view wrote down since the tracking began, once it has ended.
    std::vector<std::string> Outcome() const {
        EXPECT_TRUE(WaitFor([&] { return m_app.log.Has("tracked") || m_app.log.Has("not tracked"); }));
        const auto events = m_app.log.All();
        return {std::find(events.begin(), events.end(), "shown") + 1, events.end()};
    }

    TestApp m_app;
};

}  // namespace

TEST_F(ScrollView, ABarStandsWhereTheContentDoesNotFitAndMayForceTheOther) {
    const SIZE whole = ClientSize();
    const SIZE bar = BarSizes();
    EXPECT_EQ(Extent({0, 0}), (ScrollState{false, false, 0, 0}));
    EXPECT_EQ(Extent({whole.cx, whole.cy}), (ScrollState{false, false, 0, 0}));
    EXPECT_EQ(Extent({whole.cx + 1, whole.cy - bar.cy}), (ScrollState{true, false, 0, 0}));
    EXPECT_EQ(Extent({whole.cx + 1, whole.cy - bar.cy + 1}), (ScrollState{true, true, 0, 0}));
    EXPECT_EQ(Extent({whole.cx - bar.cx, whole.cy + 1}), (ScrollState{false, true, 0, 0}));
    EXPECT_EQ(Extent({whole.cx - bar.cx + 1, whole.cy + 1}), (ScrollState{true, true, 0, 0}));
    EXPECT_EQ(ClientSize().cx, whole.cx - bar.cx);
    EXPECT_EQ(Extent({whole.cx, whole.cy}), (ScrollState{false, false, 0, 0}));
    EXPECT_EQ(ClientSize().cx, whole.cx);
}

TEST_F(ScrollView, PositionStaysWithinTheExtent) {
    Extent({2000, 100'000});
    const SIZE client = ClientSize();
    SCROLLINFO info{sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
    ::GetScrollInfo(m_app.hView, SB_VERT, &info);
    EXPECT_EQ(info.nMax, 99'999);
    EXPECT_EQ(info.nPage, static_cast<UINT>(client.cy));
    EXPECT_EQ(ScrollTo({-5, 70'000}), (ScrollState{true, true, 0, 70'000})) << "beyond 16 bits";
    EXPECT_EQ(ScrollTo({5000, 100'000}), (ScrollState{true, true, 2000 - client.cx, 100'000 - client.cy}));
    EXPECT_EQ(Extent({1500, 100'000}), (ScrollState{true, true, 1500 - client.cx, 100'000 - client.cy})) << "shrunk";
    EXPECT_EQ(Extent({100, 100'000}), (ScrollState{false, true, 0, 100'000 - client.cy - BarSizes().cy})) << "a bar went";
    EXPECT_EQ(ScrollTo({50, 0}), (ScrollState{false, true, 0, 0})) << "no bar, no scrolling";

    Extent({2000, 2000});
    ScrollTo({2000, 2000});
    ::SetWindowPos(m_app.hFrame, nullptr, 0, 0, 700, 500, SWP_NOMOVE | SWP_NOZORDER);
    const SIZE grown = ClientSize();
    EXPECT_EQ(After(WM_NULL, 0), (ScrollState{true, true, 2000 - grown.cx, 2000 - grown.cy})) << "the window grew";
}

TEST_F(ScrollView, BarMessagesMoveByLinePageAndThumb) {
    Extent({3000, 2000});
    EXPECT_EQ(After(WM_VSCROLL, SB_LINEDOWN).y, 20) << "a hundredth of the total";
    EXPECT_EQ(After(WM_VSCROLL, SB_PAGEDOWN).y, 220) << "a tenth of it";
    EXPECT_EQ(After(WM_VSCROLL, SB_PAGEUP).y, 20);
    EXPECT_EQ(After(WM_VSCROLL, SB_PAGEUP).y, 0);
    EXPECT_EQ(After(WM_HSCROLL, SB_PAGERIGHT).x, 300);
    EXPECT_EQ(After(WM_HSCROLL, SB_LINELEFT).x, 270);
    EXPECT_EQ(After(WM_HSCROLL, MAKEWPARAM(SB_THUMBTRACK, 777)).x, 777);
    EXPECT_EQ(After(WM_VSCROLL, SB_BOTTOM).y, 2000 - ClientSize().cy);
    EXPECT_EQ(After(WM_VSCROLL, SB_TOP), (ScrollState{true, true, 777, 0}));
}

TEST_F(ScrollView, WheelScrollsDownOrAcross) {
    UINT nLines = 3;
    ::SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &nLines, 0);
    UINT nChars = 3;
    ::SystemParametersInfoW(SPI_GETWHEELSCROLLCHARS, 0, &nChars, 0);
    const auto notch = [](int nNotches, int nKeys) { return MAKEWPARAM(nKeys, nNotches * WHEEL_DELTA); };
    Extent({3000, 2000});
    const auto nStepY = static_cast<LONG>(nLines * 20);
    EXPECT_EQ(After(WM_MOUSEWHEEL, notch(-2, 0)), (ScrollState{true, true, 0, 2 * nStepY}));
    EXPECT_EQ(After(WM_MOUSEWHEEL, notch(1, 0)), (ScrollState{true, true, 0, nStepY}));
    EXPECT_EQ(After(WM_MOUSEWHEEL, notch(-1, MK_CONTROL)), (ScrollState{true, true, 0, nStepY}));
    EXPECT_EQ(After(WM_MOUSEWHEEL, notch(-1, MK_SHIFT)).x, static_cast<LONG>(nLines * 30));
    EXPECT_EQ(After(WM_MOUSEHWHEEL, notch(1, 0)).x, static_cast<LONG>((nLines + nChars) * 30));
    EXPECT_EQ(After(WM_MOUSEWHEEL, notch(99, 0)).y, 0);
    Extent({3000, 100});
    EXPECT_EQ(After(WM_MOUSEWHEEL, notch(1, 0)), (ScrollState{true, false, static_cast<LONG>(nChars * 30), 0}));
    Extent({100, 100});
    EXPECT_EQ(After(WM_MOUSEWHEEL, notch(-1, 0)), (ScrollState{false, false, 0, 0}));
}

TEST_F(ScrollView, OnlyTheUncoveredStripIsPainted) {
    Extent({3000, 2000});
    const SIZE client = ClientSize();
    RECT rcPainted{};
    m_app.Run([&](TestFrame&, TestView& view) {
        view.UpdateWindow();
        view.ScrollToPosition({0, 30});
        view.UpdateWindow();
        rcPainted = view.m_rcPainted;
    });
    const RECT rcStrip{0, client.cy, client.cx, client.cy + 30};  // content coordinates
    EXPECT_TRUE(::EqualRect(&rcPainted, &rcStrip))
        << rcPainted.left << "," << rcPainted.top << " " << rcPainted.right << "," << rcPainted.bottom;
    int nPaints = 0;
    m_app.Run([&](TestFrame&, TestView& view) {
        nPaints = view.m_nPaints;
        view.ScrollToPosition({0, 30});
        view.UpdateWindow();
        nPaints = view.m_nPaints - nPaints;
    });
    EXPECT_EQ(nPaints, 0) << "nothing moved, nothing to paint";
}

TEST_F(Tracker, TellsEachChangeUntilTheButtonGoesUp) {
    PostMouse(m_app.hView, WM_MOUSEMOVE, {60, 45}, MK_LBUTTON);
    PostMouse(m_app.hView, WM_MOUSEMOVE, {-20, 45}, MK_LBUTTON);
    PostMouse(m_app.hView, WM_LBUTTONUP, {-20, 50});
    EXPECT_THAT(Outcome(), ElementsAre("moved 10,5", "moved -80,0", "moved 0,5", "tracked"));
}

TEST_F(Tracker, EscapeOrLostMouseCancels) {
    ::PostMessageW(m_app.hView, WM_KEYDOWN, VK_ESCAPE, 0);
    EXPECT_THAT(Outcome(), ElementsAre("moved 10,5", "not tracked"));

    PostMouse(m_app.hView, WM_LBUTTONDOWN, {50, 40}, MK_LBUTTON);
    EXPECT_TRUE(WaitFor([&] {
        bool bHeld = false;
        m_app.Run([&](TestFrame&, TestView& view) { bHeld = ::GetCapture() == view; });
        return bHeld;
    }));
    m_app.Run([](TestFrame&, TestView&) { ::ReleaseCapture(); });
    EXPECT_TRUE(WaitFor([&] {  // giving the mouse back may make the system tell one more movement
        const auto events = m_app.log.All();
        return std::count(events.begin(), events.end(), "not tracked") == 2;
    }));
}

TEST_F(Tracker, CommandWaitsUntilTrackingHasEnded) {
    PostCommand(m_app.hFrame, kView);
    EXPECT_TRUE(WaitFor([&] { return m_app.log.Has("view's"); }));
    EXPECT_THAT(Outcome(), ElementsAre("moved 10,5", "not tracked", "view's"));
}

TEST_F(Tracker, PostedCloseEndsTrackingAndThenTheApplication) {
    ::PostMessageW(m_app.hFrame, WM_CLOSE, 0, 0);
    ASSERT_TRUE(m_app.WaitForEnd());
    EXPECT_THAT(Outcome(), ElementsAre("moved 10,5", "not tracked", "frame gone", "view gone", "exit", "thread gone"));
}

TEST_F(Tracker, SurvivesItsWindow) {
    ::SendMessageW(m_app.hFrame, WM_CLOSE, 0, 0);
    ASSERT_TRUE(m_app.WaitForEnd());
    EXPECT_THAT(Outcome(), ElementsAre("moved 10,5", "not tracked", "frame gone", "view gone", "exit", "thread gone"));
}

TEST_F(Tracker, QuitMessageIsPassedOn) {
    ::PostThreadMessageW(m_app.ThreadId(), WM_QUIT, 0, 0);
    ASSERT_TRUE(m_app.WaitForEnd());
    EXPECT_THAT(Outcome(), ElementsAre("moved 10,5", "not tracked", "frame gone", "view gone", "exit", "thread gone"));
}

}  // namespace width::test
