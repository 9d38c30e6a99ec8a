// Writes pictures with the image library, for another program to read: tests/win/kestrix/read-back.
//   kestrix_files FOLDER           every format and depth that it takes, each with NAME.rgb, the rows as red, green, blue
//   kestrix_files FILE             two pictures, one over the other, in the format of the ending
//   kestrix_files FILE forever     the same in turn, until somebody ends the program
// Status 1 when a save fails.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <initializer_list>

#include "tests/win/kestrix/Library.h"

namespace {

using namespace width;

const char* const kEndings[] = {"bmp", "png", "jpg", "tif", "gif"};

bool WriteAll(const std::filesystem::path& folder) {
    bool bDone = true;
    for (const auto nBits : std::initializer_list<std::uint16_t>{1, 4, 8, 24, 32}) {
        for (const bool bGrey : {false, true}) {
            const auto block = test::TestPicture(67, 45, nBits, bGrey);
            const DibView view = *DibView::Open(block);
            for (std::int32_t n = 0; n < 5; ++n) {
                SaveOptions probe{};
                probe.nFormat = static_cast<std::uint32_t>(n);
                if (test::TheLibrary().CanSave(block.data(), &probe) == 0) {
                    continue;
                }
                const std::string name = std::string(bGrey ? "grey" : "colour") + std::to_string(nBits) + "." + kEndings[n];
                bDone = test::SaveTo(folder / name, block, n) && bDone;
                std::ofstream rows(folder / (name + ".rgb"), std::ios::binary);
                for (std::int32_t y = view.Height(); y-- > 0;) {
                    for (std::int32_t x = 0; x < view.Width(); ++x) {
                        const Colour colour = view.PixelAt(x, y);
                        rows.put(static_cast<char>(colour.red)).put(static_cast<char>(colour.green));
                        rows.put(static_cast<char>(colour.blue));
                    }
                }
            }
        }
    }
    return bDone;
}

}  // namespace

int wmain(int nArguments, wchar_t** arguments) {
    if (nArguments < 2) {
        std::fputs("usage: kestrix_files FOLDER | FILE [forever]\n", stderr);
        return 2;
    }
    const std::filesystem::path target = arguments[1];
    if (std::filesystem::is_directory(target)) {
        return WriteAll(target) ? 0 : 1;
    }
    const auto isEnding = [&](const char* pszEnding) { return target.extension().string() == std::string(".") + pszEnding; };
    const auto nFormat = static_cast<std::int32_t>(std::ranges::find_if(kEndings, isEnding) - kEndings);
    const std::vector<std::byte> pictures[] = {test::TestPicture(300, 200, 8, true), test::TestPicture(301, 200, 8, true)};
    bool bDone = true;
    do {
        for (const auto& picture : pictures) {
            bDone = test::SaveTo(target, picture, nFormat) && bDone;
            std::puts("saved");
            std::fflush(stdout);
        }
    } while (nArguments > 2);
    return bDone ? 0 : 1;
}
