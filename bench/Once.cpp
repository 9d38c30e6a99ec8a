// One skeleton in a fresh process: memory, code and threads cold, only the picture is there. Called by scripts/bench-table
// for every single run: skeleton_once SCENE SIZE BITS THREADS. Prints the time by the clock on the wall; the bytes that the
// process grew by at its peak, per pixel, or nothing where the system doesn't tell; and the time of a copy of the picture
// into fresh memory.
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "analysis/fast/SkeletonRun.h"
#include "bench/Inputs.h"

namespace width::bench {

namespace {

struct Task {
    Scene scene = Scene::LineArt;
    std::int32_t nSize = 4096;
    std::int32_t nBitCount = 8;
    std::int32_t nThreads = 1;
};

bool ReadNumber(std::string_view text, std::int32_t& nValue) {
    const auto [pEnd, error] = std::from_chars(text.data(), text.data() + text.size(), nValue);
    return error == std::errc() && pEnd == text.data() + text.size();
}

bool ReadScene(std::string_view text, Scene& scene) {
    for (const Scene known : {Scene::LineArt, Scene::LineSpace, Scene::DeepAreas}) {
        if (text == SceneName(known)) {
            scene = known;
            return true;
        }
    }
    return false;
}

template <class Work>
double MillisecondsOf(Work work) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

// Kilobytes that the system tells about this process under a name, or -1.
double StatusKilobytes(const std::string& name) {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        double fValue = -1.0;
        if (word == name && status >> fValue) {
            return fValue;
        }
    }
    return -1.0;
}

// From here on the peak counts anew.
bool ForgetPeak() {
    std::ofstream file("/proc/self/clear_refs");
    file << "5" << std::flush;
    return file.good();
}

void Run(const Task& task) {
    const std::vector<std::byte>& block = Picture(task.scene, task.nSize, static_cast<std::uint16_t>(task.nBitCount));
    const std::optional<DibView> dib = DibView::Open(block);
    const bool bPeakKnown = ForgetPeak();
    const double fBefore = StatusKilobytes("VmRSS:");
    const double fTime =
        MillisecondsOf([&] { fast::MakeSkeleton(*dib, kDark, fast::BestInstructionSet(), fast::BandsFor(*dib, task.nThreads)); });
    const double fPeak = StatusKilobytes("VmHWM:");
    std::unique_ptr<std::byte[]> copy;
    const double fCopy = MillisecondsOf([&] {
        copy = std::make_unique_for_overwrite<std::byte[]>(block.size());
        std::memcpy(copy.get(), block.data(), block.size());
    });
    std::printf("{\"ms\": %.4f, \"copy_ms\": %.4f", fTime, fCopy);
    if (bPeakKnown && fBefore >= 0.0 && fPeak >= 0.0) {
        std::printf(", \"bytes_per_pixel\": %.4f", (fPeak - fBefore) * 1024.0 / task.nSize / task.nSize);
    }
    std::printf("}\n");
}

}  // namespace

}  // namespace width::bench

int main(int argc, char** argv) {
    using namespace width::bench;
    Task task;
    if (argc != 5 || !ReadScene(argv[1], task.scene) || !ReadNumber(argv[2], task.nSize) ||
        !ReadNumber(argv[3], task.nBitCount) || !ReadNumber(argv[4], task.nThreads)) {
        std::fprintf(stderr, "usage: skeleton_once SCENE SIZE BITS THREADS, as in: skeleton_once 'line art' 4096 8 1\n");
        return 2;
    }
    Run(task);
    return 0;
}
