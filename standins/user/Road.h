// One whole measurement as a person does it: with the mouse, menus and dialogs of the host and the plug-in, and nothing else.
// Run by scripts/demo, and by ./test through it.
#pragma once

#include <array>
#include <string>

#include "core/Platform.h"

namespace width::user {

/// What is measured, and where it is shown. Points are image pixels from the top left.
struct Plan {
    std::wstring host;             ///< host.exe
    bool bChinese = false;         ///< language of the plug-in
    std::wstring picture;          ///< a picture that fits on the screen
    std::wstring maxGrey;          ///< upper limit of the grey window
    std::array<POINT, 2> lines{};  ///< on the skeletons of the two lines
    std::array<POINT, 4> ends{};   ///< ends of the first and of the second line
    POINT place{};                 ///< of the label
    std::wstring text;             ///< that the label has to have
    std::wstring prefix;           ///< of the screenshots: a folder and the beginning of a name
};

/// Walks the road: host, plug-in, grey window, skeleton, two lines, four picks, label, Write to Bitmap, Send Image, and Save As
/// in the host to PREFIXlabelled.bmp, with a screenshot after each step (PREFIX1-host.png and so on). Needs a screen that is read
/// back, 1024 x 768 or larger. Throws std::runtime_error with the step, what did not come, the texts of the box that stood in the
/// way if there is one, and the name of a last screenshot, PREFIXfault.png; the host is ended in any case.
void Walk(const Plan& plan);

}  // namespace width::user
