// Two pieces of work at a time.
// Tested by: tests/unit/analysis/FastSkeletonTest.cpp
#pragma once

#include <new>
#include <system_error>
#include <thread>

namespace width::fast {

/// Runs f in a thread of its own and g in this one, and returns when both are done. Where there is no thread to be had, one
/// after the other. Neither may throw.
template <class Thread = std::thread, class F, class G>
void RunBoth(F f, G g) noexcept {
    Thread thread;
    try {
        thread = Thread(f);
    } catch (const std::system_error&) {
        f();
    } catch (const std::bad_alloc&) {
        f();
    }
    g();
    if (thread.joinable()) {
        thread.join();
    }
}

}  // namespace width::fast
