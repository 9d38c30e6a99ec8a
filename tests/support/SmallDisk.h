// A disk that is too small for what is saved there. For test programs that tests/support/full-disk runs.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace width::test {

inline std::string Contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline std::vector<std::filesystem::path> NamesIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    return names;
}

/// A folder, on a small disk if there is one. It goes with the object.
class SmallDisk {
public:
    SmallDisk() {
        const char* const pszDisk = std::getenv("WIDTH_SMALL_DISK");
        m_bDisk = pszDisk != nullptr;
        m_folder = (m_bDisk ? std::filesystem::path(pszDisk) : std::filesystem::temp_directory_path()) / "width-small-disk";
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
    }
    ~SmallDisk() { std::filesystem::remove_all(m_folder); }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return m_folder / name; }

    /// Saves over an old file on a disk that is short by a byte, a block, half of the file and all of it, and expects that the
    /// old file stays as it was with nothing beside it.
    /// nBytes   the size of the whole file
    /// attempt  saves, and expects what the user is told. Its argument: whether the disk is really full, else the size of
    ///          files is limited, for which systems have words of their own.
    void ExpectFullDisk(const std::filesystem::path& path, std::uintmax_t nBytes,
                        const std::function<void(bool)>& attempt) const {
        for (const std::uintmax_t nShort : {std::uintmax_t{1}, std::min(kBlock, nBytes), nBytes / 2, nBytes}) {
            SCOPED_TRACE(path.string() + " of " + std::to_string(nBytes) + " bytes, short by " + std::to_string(nShort));
            std::ofstream(path, std::ios::binary) << "old";
            const auto names = NamesIn(m_folder);
            const bool bFill = m_bDisk && nShort >= kBlock;
            const auto filler = m_folder.parent_path() / "filler";
            if (bFill) {
                const std::uintmax_t nFree = std::filesystem::space(m_folder).available;
                const std::uintmax_t nRoom = (nBytes - nShort) / kBlock * kBlock;
                std::ofstream(filler, std::ios::binary) << std::string(static_cast<std::size_t>(nFree - nRoom), 'x');
            } else {
                LimitFiles(std::to_string(nBytes - nShort));
            }
            attempt(bFill);
            LimitFiles("-1");
            std::filesystem::remove(filler);
            EXPECT_EQ(Contents(path), "old");
            EXPECT_EQ(NamesIn(m_folder), names);
        }
        std::filesystem::remove(path);
    }

private:
    /// How large files of this process, and of those that it starts, may become.
    static void LimitFiles(const std::string& bytes) {
        std::printf("\nlimit %s\n", bytes.c_str());
        std::fflush(stdout);
        char answer[16] = {};
        ASSERT_NE(std::fgets(answer, sizeof answer, stdin), nullptr) << "to be run by tests/support/full-disk";
    }

    static constexpr std::uintmax_t kBlock = 4096;
    std::filesystem::path m_folder;
    bool m_bDisk = false;
};

}  // namespace width::test
