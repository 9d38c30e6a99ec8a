// Two pieces of work at a time, again and again.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

namespace width::fast {

/// This thread and one more, which lives as long as the object and sleeps while it has nothing to do. A condition variable
/// wakes it: waiting on an atomic, which would be simpler, never ends with the library that the Windows build has.
/// kTries  how often a thread looks whether the other is done before it falls asleep; falling asleep and being woken may take
///         longer than the other still needs
template <class Thread = std::thread, int kTries = 300>
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
        Give([](void* pWork) { (*static_cast<F*>(pWork))(); }, &f);
        g();
        WaitFor(Turn::First);
    }

private:
    // Whose turn it is: this thread's, to give more work, or the second one's, to do what it was given.
    enum class Turn { First, Second };

    void Give(void (*pfnCall)(void*), void* pWork) noexcept {
        m_pfnCall = pfnCall;
        m_pWork = pWork;
        Pass(Turn::Second);
    }

    void Serve() noexcept {
        for (;;) {
            WaitFor(Turn::Second);
            if (m_pfnCall == nullptr) {
                return;
            }
            m_pfnCall(m_pWork);
            Pass(Turn::First);
        }
    }

    void Pass(Turn turn) noexcept {
        {
            const std::lock_guard lock(m_mutex);
            m_turn.store(turn, std::memory_order_release);
        }
        m_passed.notify_one();
    }

    void WaitFor(Turn turn) noexcept {
        const auto isTurn = [&] { return m_turn.load(std::memory_order_acquire) == turn; };
        for (int i = 0; i < kTries && !isTurn(); ++i) {
            std::this_thread::yield();
        }
        if (!isTurn()) {
            std::unique_lock lock(m_mutex);
            m_passed.wait(lock, isTurn);
        }
    }

    void (*m_pfnCall)(void*) = nullptr;
    void* m_pWork = nullptr;
    std::atomic<Turn> m_turn = Turn::First;
    std::mutex m_mutex;
    std::condition_variable m_passed;
    Thread m_second;  // begins when all the rest is there
};

}  // namespace width::fast
