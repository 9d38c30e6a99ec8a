// The loop that holds the mouse. Tested by: tests/win/ClasslibViewTest.cpp.
#include "classlib/RectTracker.h"

#include <algorithm>

namespace {

/// Holds the mouse, and lets it go on every way out.
class CaptureGuard {
public:
    explicit CaptureGuard(HWND hWnd) : m_hWnd(hWnd) { ::SetCapture(hWnd); }
    CaptureGuard(const CaptureGuard&) = delete;
    CaptureGuard& operator=(const CaptureGuard&) = delete;
    ~CaptureGuard() {
        if (Holds()) {
            ::ReleaseCapture();
        }
    }
    bool Holds() const { return ::GetCapture() == m_hWnd; }

private:
    HWND m_hWnd;
};

/// Waits for the next message of the thread. False once the mouse is taken away: that is told by a sent message, which
/// is served in here and would leave a plain GetMessage waiting.
bool NextMessage(const CaptureGuard& capture, MSG& msg) {
    while (capture.Holds()) {
        if (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            return true;
        }
        if (capture.Holds()) {
            ::MsgWaitForMultipleObjectsEx(0, nullptr, INFINITE, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        }
    }
    return false;
}

}  // namespace

bool CRectTracker::TrackRubberBand(CWnd* pWnd, POINT point, bool bAllowInvert) {
    const HWND hWnd = pWnd->m_hWnd;
    if (hWnd == nullptr || ::GetCapture() != nullptr) {
        return false;
    }
    const RECT rectBefore = std::exchange(m_rect, RECT{point.x, point.y, point.x, point.y});
    m_bMoved = m_bShown = false;
    const bool bAccepted = TrackLoop(pWnd, hWnd, bAllowInvert);
    if (m_bShown) {
        Draw(pWnd);
    }
    if (!bAccepted || !m_bMoved) {
        m_rect = rectBefore;
    }
    return bAccepted && m_bMoved;
}

bool CRectTracker::TrackLoop(CWnd* pWnd, HWND hWnd, bool bAllowInvert) {
    const CaptureGuard capture(hWnd);
    MSG msg{};
    while (NextMessage(capture, msg)) {
        const Step step = OnMessage(msg, pWnd, hWnd, bAllowInvert);
        if (step != Step::Track) {
            return step == Step::Accept;
        }
    }
    return false;
}

CRectTracker::Step CRectTracker::OnMessage(const MSG& msg, CWnd* pWnd, HWND hWnd, bool bAllowInvert) {
    if (msg.message == WM_QUIT) {
        ::PostQuitMessage(static_cast<int>(msg.wParam));
        return Step::Cancel;
    }
    if (msg.message == WM_COMMAND || msg.message == WM_CLOSE) {
        ::PostMessageW(msg.hwnd, msg.message, msg.wParam, msg.lParam);
        return Step::Cancel;
    }
    if (msg.message == WM_KEYDOWN && msg.wParam == VK_ESCAPE) {
        return Step::Cancel;
    }
    if (msg.hwnd == hWnd && (msg.message == WM_MOUSEMOVE || msg.message == WM_LBUTTONUP)) {
        MoveCorner(PointFromLParam(msg.lParam), pWnd, bAllowInvert);
        return msg.message == WM_LBUTTONUP ? Step::Accept : Step::Track;
    }
    if (msg.hwnd == hWnd && msg.message == WM_RBUTTONDOWN) {
        return Step::Cancel;
    }
    ::TranslateMessage(&msg);
    ::DispatchMessageW(&msg);
    return Step::Track;
}

void CRectTracker::MoveCorner(POINT point, CWnd* pWnd, bool bAllowInvert) {
    if (!bAllowInvert) {
        point.x = std::max(point.x, m_rect.left + m_sizeMin.cx);
        point.y = std::max(point.y, m_rect.top + m_sizeMin.cy);
    }
    if (point.x == m_rect.right && point.y == m_rect.bottom) {
        return;
    }
    if (m_bShown) {
        Draw(pWnd);
    }
    const RECT rectOld = m_rect;
    m_rect.right = point.x;
    m_rect.bottom = point.y;
    m_bMoved = true;
    OnChangedRect(rectOld);
    Draw(pWnd);
}

void CRectTracker::Draw(CWnd* pWnd) {
    m_bShown = !m_bShown;
    CClientDC dc(pWnd);
    if (dc.m_hDC != nullptr) {
        DrawTrackerRect(m_rect, &dc);
    }
}

void CRectTracker::DrawTrackerRect(const RECT& rect, CDC* pDC) {
    pDC->DrawFocusRect({std::min(rect.left, rect.right), std::min(rect.top, rect.bottom), std::max(rect.left, rect.right),
                        std::max(rect.top, rect.bottom)});
}
