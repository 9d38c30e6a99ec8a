// The child window that shows the picture: as large as it is, with scroll bars, or fitted into the window.
// Tested by: tests/win/host/HostTest.cpp
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <type_traits>

#include "core/Platform.h"

namespace width::host {

class PictureView {
public:
    PictureView() = default;
    PictureView(const PictureView&) = delete;
    PictureView& operator=(const PictureView&) = delete;
    ~PictureView();

    /// Creates the window. The object must outlive it. false on failure.
    bool Create(HWND hParent, int nId);
    HWND Window() const noexcept { return m_hWnd; }

    /// Shows a block that CheckPackedDib accepts, or nothing for an empty one. Keeps no pointer to the block.
    /// returns  false when the platform cannot show it: a depth it does not know, or no memory
    bool Show(std::span<const std::byte> block);

    /// Fitted: reduced as far as the window asks, never enlarged. Otherwise one picture pixel is one screen pixel.
    void SetFit(bool bFit);
    bool IsFit() const noexcept { return m_bFit; }

private:
    struct DeleteBitmap {
        void operator()(HBITMAP hBitmap) const { DeleteObject(hBitmap); }
    };
    using Bitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>, DeleteBitmap>;

    static LRESULT CALLBACK WindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    LRESULT OnMessage(UINT nMessage, WPARAM wParam, LPARAM lParam);
    void OnPaint() const;
    void OnScroll(int nBar, int nRequest);
    void OnWheel(WPARAM wParam, bool bAcross);
    void OnKey(WPARAM nKey);
    void PaintPicture(HDC hdc, const RECT& rcPicture) const;
    void PaintHint(HDC hdc, RECT rcClient) const;

    RECT ClientRect() const;
    RECT PictureRect() const;
    SIZE FullSize() const;
    SIZE FittedSize(const RECT& rcClient) const;
    void UpdateScrollBars();
    void ScrollTo(int nBar, int nPos);
    void Refresh();

    HWND m_hWnd = nullptr;
    Bitmap m_pBitmap;
    SIZE m_size{};  // of the picture, in pixels
    bool m_bFit = true;
    bool m_bSettingBars = false;
    int m_nWheel = 0;  // wheel movement that has not made a line yet
};

}  // namespace width::host
