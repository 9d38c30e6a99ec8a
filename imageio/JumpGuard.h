// Catches the errors of C libraries that report them by a function that must not return.
//
// Such an error leaves the library by a jump over its frames and over the step that called it. A
// step therefore holds nothing with a destructor: whatever owns memory lives outside, beside the
// guard, and steps only read and fill it.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#pragma once

#include <array>
#include <csetjmp>
#include <cstdio>
#include <string>

namespace width {

class JumpGuard {
public:
    /// Runs a step. Returns false when Raise ended it early.
    template <class Step>
    bool Run(const Step& step) {
        if (setjmp(m_target) != 0) {
            return false;
        }
        step();
        return true;
    }

    /// Ends the running step. Called by a library's error function only while Run is active.
    /// pText  the library's own words, kept for Text()
    [[noreturn]] void Raise(const char* pText) {
        std::snprintf(m_text.data(), m_text.size(), "%s", pText);
        std::longjmp(m_target, 1);
    }

    /// The words of the last error.
    std::string Text() const { return m_text.data(); }

private:
    std::jmp_buf m_target{};
    std::array<char, 200> m_text{};
};

}  // namespace width
