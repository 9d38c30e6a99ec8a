// Skeleton and threshold of whole pictures.
#include "bench/Cases.h"
#include "bench/PictureCases.h"

namespace width::bench {

namespace {

void Register(const PictureCase& picture) {
    auto* pCase = AddCase(picture.name, [picture](benchmark::State& state) {
        const std::optional<DibView> dib = DibView::Open(Picture(picture.scene, picture.nSize, picture.nBitCount));
        for (auto _ : state) {
            picture.run(*dib);
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(state.iterations() * picture.nSize * picture.nSize);
    });
    if (picture.bLiteral) {
        pCase->Repetitions(1);
    }
    if (picture.bTwoThreads) {
        pCase->UseRealTime();
    }
}

void RegisterAll(std::int32_t nSize, std::initializer_list<std::uint16_t> depths) {
    for (const std::uint16_t nBitCount : depths) {
        const bool bAllSets = nSize == 4096 && (nBitCount == 8 || nBitCount == 24);
        for (const PictureCase& picture : PictureCases(nSize, nBitCount, bAllSets)) {
            Register(picture);
        }
    }
}

const bool g_bAdded = [] {
    RegisterAll(512, {8, 24});
    RegisterAll(2048, {8, 24});
    RegisterAll(4096, {1, 4, 8, 24, 32});
    return true;
}();

}  // namespace

}  // namespace width::bench
