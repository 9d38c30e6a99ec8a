// The list of cases.
#include "bench/PictureCases.h"

#include <cstring>
#include <thread>

#include "analysis/GreyLevels.h"
#include "analysis/fast/SkeletonRun.h"
#include "tests/support/LiteralSkeleton.h"
#include "tests/support/LiteralThreshold.h"

namespace width::bench {

namespace {

using fast::InstructionSet;

constexpr std::int32_t kWorthTwoThreads = 1024;  // pixels a side; see fast::ThreadsFor

const char* SetName(InstructionSet set) noexcept {
    return set == InstructionSet::Sse2 ? "sse2" : "avx2";
}

// The rows of the picture into memory of equal size that stays.
void CopyRows(const DibView& dib) {
    static std::vector<std::uint8_t> s_copy;
    const std::size_t nBytes = std::size_t{dib.Figures().nStride} * static_cast<std::size_t>(dib.Height());
    if (s_copy.size() != nBytes) {
        s_copy = std::vector<std::uint8_t>(nBytes);
    }
    std::memcpy(s_copy.data(), dib.Row(0).data(), nBytes);
}

// Two skeletons that have nothing to do with each other: what a second thread can give at most on this machine.
void MakeTwoAtATime(const DibView& dib, InstructionSet set) {
    std::thread other([&] { fast::MakeSkeleton(dib, kDark, set, fast::BandsFor(dib, 1)); });
    fast::MakeSkeleton(dib, kDark, set, fast::BandsFor(dib, 1));
    other.join();
}

void AddSkeleton(std::vector<PictureCase>& cases, const PictureCase& picture, bool bAllSets) {
    const auto add = [&](const std::string& variant, auto run) -> PictureCase& {
        PictureCase& added = cases.emplace_back(picture);
        added.name = CaseName("skeleton", picture.scene, picture.nSize, picture.nBitCount) + "/" + variant;
        added.run = run;
        return added;
    };
    const InstructionSet best = fast::BestInstructionSet();
    for (const InstructionSet set : {InstructionSet::Sse2, InstructionSet::Avx2}) {
        if (set == best || (bAllSets && set < best)) {
            add(SetName(set), [set](const DibView& dib) { fast::MakeSkeleton(dib, kDark, set, fast::BandsFor(dib, 1)); });
        }
    }
    if (picture.nSize >= kWorthTwoThreads) {
        add("two threads", [best](const DibView& dib) {
            fast::MakeSkeleton(dib, kDark, best, fast::BandsFor(dib, 2));
        }).bTwoThreads = true;
        add("two at a time", [best](const DibView& dib) { MakeTwoAtATime(dib, best); }).bTwoThreads = true;
    }
    add("literal", [](const DibView& dib) { test::LiteralSkeleton(dib, kDark); }).bLiteral = true;
}

void AddThreshold(std::vector<PictureCase>& cases, const PictureCase& picture) {
    const std::string name = CaseName("threshold", picture.scene, picture.nSize, picture.nBitCount);
    PictureCase added = picture;
    added.name = name + "/" + SetName(fast::BestInstructionSet());
    added.run = [](const DibView& dib) { CalcAutoThreshold(&dib); };
    cases.push_back(added);
    added.name = name + "/literal";
    added.run = [](const DibView& dib) { test::LiteralThreshold(dib); };
    added.bLiteral = true;
    cases.push_back(added);
}

}  // namespace

std::string CaseName(const std::string& stage, Scene scene, std::int32_t nSize, std::uint16_t nBitCount) {
    const std::string size = std::to_string(nSize);
    return stage + " " + std::to_string(nBitCount) + " bit/" + SceneName(scene) + "/" + size + " x " + size;
}

std::vector<PictureCase> PictureCases(std::int32_t nSize, std::uint16_t nBitCount, bool bAllSets) {
    std::vector<PictureCase> cases;
    for (const Scene scene : {Scene::LineArt, Scene::LineSpace, Scene::DeepAreas}) {
        const PictureCase picture{"", scene, nSize, nBitCount, nullptr};
        PictureCase& copy = cases.emplace_back(picture);
        copy.name = CaseName("copy", scene, nSize, nBitCount) + "/memcpy";
        copy.run = CopyRows;
        AddSkeleton(cases, picture, bAllSets);
        AddThreshold(cases, picture);
    }
    return cases;
}

}  // namespace width::bench
