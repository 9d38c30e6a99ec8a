// A new file beside a target, which takes the target's place when it is complete and vanishes when it is not. Every picture
// is written through one.
//
// Encoders do not all tell what became of their writes. So the file itself remembers the first write that failed, and how
// far it was written: nothing that came after a failure, or fell short of it, can take the target's place.
// Tested by: tests/unit/imageio/NewFileTest.cpp
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace width {

/// The platform's own number for a failure; 0: none.
using SystemError = std::uint32_t;

/// Each operation gives false after a failure, and Error() tells the first one. What follows a failure is not tried.
class NewFile {
public:
    /// target  what the file is to become. On Linux a link stands for the file that it leads to.
    explicit NewFile(std::filesystem::path target);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// Makes the file, empty, under a name that is no longer than the target's own. Fails for a target that is no file or may
    /// not be written.
    bool Create();

    /// Writes at the position, which moves behind what was written.
    bool Write(const void* pBytes, std::size_t nBytes) noexcept;
    /// Reads at the position, which moves behind what was read. Returns the number of bytes, fewer at the file's end.
    std::size_t Read(void* pBytes, std::size_t nBytes) noexcept;
    /// Bytes from the file's start; may lie behind its end.
    void Seek(std::uint64_t nPosition) noexcept { m_nPosition = nPosition; }
    std::uint64_t Position() const noexcept { return m_nPosition; }
    /// In bytes, by what was written.
    std::uint64_t Size() const noexcept { return m_nSize; }
    /// Cuts the file, or fills it up with zeros.
    bool Resize(std::uint64_t nBytes) noexcept;

    /// Has the system bring everything to the disk, compares the size with what was written, and closes the file: then
    /// others may read it.
    bool Finish() noexcept;
    /// The finished file takes the target's place.
    bool Commit() noexcept;

    /// Where the file is, until it takes the target's place.
    const std::filesystem::path& Path() const noexcept { return m_temporary; }
    SystemError Error() const noexcept { return m_nError; }

private:
    // The platform's part. Each keeps its failure in m_nError.
    static const SystemError kExists;  // the name is taken
    static const SystemError kDiskFull;
    static const SystemError kWriteFault;
    bool CheckTarget();
    bool Open(const std::filesystem::path& path);
    std::size_t WriteAt(const std::byte* pBytes, std::size_t nBytes) noexcept;
    std::size_t ReadAt(std::byte* pBytes, std::size_t nBytes) noexcept;
    bool SetEnd(std::uint64_t nBytes) noexcept;
    std::uint64_t Sync() noexcept;  // the file's size
    void Close() noexcept;
    bool Replace() noexcept;
    void Delete() noexcept;

    std::filesystem::path m_target;
    std::filesystem::path m_temporary;  // empty while there is none
    std::intptr_t m_hFile = kClosed;
    std::uint64_t m_nPosition = 0;
    std::uint64_t m_nSize = 0;
    SystemError m_nError = 0;

    static constexpr std::intptr_t kClosed = -1;
};

}  // namespace width
