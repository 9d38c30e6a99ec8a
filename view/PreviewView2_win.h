// CPreviewView2: the preview of the job's picture.
// Tested by: tests/e2e/PrintTest.cpp
#pragma once

#include "classlib/PreviewView.h"

namespace width {

/// Nothing of its own: a name under which the preview is created.
class CPreviewView2 : public CPreviewView {
public:
    static const CRuntimeClass classCPreviewView2;
};

}  // namespace width
