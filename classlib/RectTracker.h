// CRectTracker: follows the mouse with a rectangle while a button is held. Tested by: tests/win/ClasslibViewTest.cpp.
#pragma once

#include "classlib/Wnd.h"

class CRectTracker {
public:
    RECT m_rect{};         ///< client coordinates of the tracked window; right < left when turned over
    SIZE m_sizeMin{1, 1};  ///< smallest width and height if turning over is not allowed

    CRectTracker() = default;
    CRectTracker(const CRectTracker&) = delete;
    CRectTracker& operator=(const CRectTracker&) = delete;
    virtual ~CRectTracker() = default;

    /// Takes the mouse and runs a message loop until the left button goes up. m_rect's left and top stay at point (client
    /// coordinates), its right and bottom follow the mouse, beyond point only if bAllowInvert. True if the rectangle
    /// ever changed. False, with m_rect as before the call: nothing moved, the escape key, the right button, the mouse
    /// taken away, the window destroyed. A command, a close or a quit message ends the tracking too, and takes effect
    /// after it. Other messages are served meanwhile, so the caller's window may be gone afterwards. False at once if
    /// some window of the thread holds the mouse already.
    bool TrackRubberBand(CWnd* pWnd, POINT point, bool bAllowInvert = true);

    /// Called after each change with the rectangle before it; m_rect is the new one. The base does nothing.
    virtual void OnChangedRect(const RECT& /*rectOld*/) {}
    /// Draws the rectangle, or wipes it when called a second time. The base draws a dotted frame.
    virtual void DrawTrackerRect(const RECT& rect, CDC* pDC);

private:
    enum class Step { Track, Accept, Cancel };
    bool TrackLoop(CWnd* pWnd, HWND hWnd, bool bAllowInvert);
    Step OnMessage(const MSG& msg, CWnd* pWnd, HWND hWnd, bool bAllowInvert);
    void MoveCorner(POINT point, CWnd* pWnd, bool bAllowInvert);
    void Draw(CWnd* pWnd);

    bool m_bMoved = false;
    bool m_bShown = false;  // the rectangle stands on the screen
};
