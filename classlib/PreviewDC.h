// CPreviewDC: a context that tells about a printer and draws on the screen, as in a print preview.
// Tested by: tests/win/ClasslibPreviewTest.cpp
#pragma once

#include "classlib/Gdi.h"

/// Asked, it answers for the printer; what is drawn in the printer's dots lands, reduced, on a picture of the paper. Owns
/// neither of its two contexts.
class CPreviewDC : public CDC {
public:
    CPreviewDC() { m_bPrinting = true; }
    ~CPreviewDC() override { ReleaseOutputDC(); }

    /// The printer's context; it must outlive the object, or be replaced by null.
    void SetAttribDC(HDC hdc) { m_hAttribDC = hdc; }
    /// The whole sheet in printer dots, and where on it the printable area begins.
    SIZE GetPaperSize() const;
    POINT GetPrintOffset() const;
    /// From here on output goes to hdc: the sheet fills the rectangle given in hdc's device coordinates, logical (0, 0) is the
    /// corner of the printable area, and nothing outside that area is drawn. hdc keeps this until it is restored.
    void SetOutputDC(HDC hdc, const RECT& rcSheet);
    void ReleaseOutputDC() { m_hDC = nullptr; }
};
