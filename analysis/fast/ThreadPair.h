// Two pieces of work at a time, again and again.
// Tested by: tests/unit/analysis/FastSkeletonTest.cpp
#pragma once

#include <atomic>
#include <new>
#include <system_error>
#include <thread>

namespace width::fast {

/// This thread and one more, which lives as long as the object and sleeps while it has nothing to do.
template <class Thread = std::thread>
class ThreadPair {
public:
    /// bTwo  false: there is this thread only. So it is when there is no thread to be had.
    explicit ThreadPair(bool bTwo) noexcept {
        if (!bTwo) {
            return;
        }
        try {
            m_second = Thread([this]() noexcept { Serve(); });
        } catch (const std::system_error&) {
            return;
        } catch (const std::bad_alloc&) {
            return;
        }
    }
    ThreadPair(const ThreadPair&) = delete;
    ThreadPair& operator=(const ThreadPair&) = delete;
    ~ThreadPair() {
        if (AreTwo()) {
            Give(nullptr, nullptr);
            m_second.join();
        }
    }

    /// Whether there is a second thread, so that one piece of work may wait for the other.
    bool AreTwo() const noexcept { return m_second.joinable(); }

    /// Runs f in the second thread and g in this one, and returns when both are done; without a second thread, f and then
    /// g. Neither may throw.
    template <class F, class G>
    void RunBoth(F f, G g) noexcept {
        if (!AreTwo()) {
            f();
            g();
            return;
        }
        const int nGiven = Give([](void* pWork) { (*static_cast<F*>(pWork))(); }, &f);
        g();
        for (int nDone = m_nDone.load(std::memory_order_acquire); nDone != nGiven;
             nDone = m_nDone.load(std::memory_order_acquire)) {
            m_nDone.wait(nDone, std::memory_order_acquire);
        }
    }

private:
    int Give(void (*pfnCall)(void*), void* pWork) noexcept {
        m_pfnCall = pfnCall;
        m_pWork = pWork;
        const int nGiven = m_nGiven.load(std::memory_order_relaxed) + 1;
        m_nGiven.store(nGiven, std::memory_order_release);
        m_nGiven.notify_one();
        return nGiven;
    }

    void Serve() noexcept {
        for (int nServed = 0;; ++nServed) {
            m_nGiven.wait(nServed, std::memory_order_acquire);
            if (m_pfnCall == nullptr) {
                return;
            }
            m_pfnCall(m_pWork);
            m_nDone.store(nServed + 1, std::memory_order_release);
            m_nDone.notify_one();
        }
    }

    void (*m_pfnCall)(void*) = nullptr;
    void* m_pWork = nullptr;
    std::atomic<int> m_nGiven = 0;
    std::atomic<int> m_nDone = 0;
    Thread m_second;  // begins when all the rest is there
};

}  // namespace width::fast
