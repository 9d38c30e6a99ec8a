// The part that Linux has in a new file. It gets the target's permissions.
// Tested by: tests/unit/imageio/NewFileTest.cpp
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "imageio/NewFile.h"

namespace width {

namespace {

SystemError LastError() noexcept {
    return static_cast<SystemError>(errno);
}

// The result of a call that may be interrupted.
template <class Call>
auto Retried(const Call& call) noexcept {
    auto nResult = call();
    while (nResult < 0 && errno == EINTR) {
        nResult = call();
    }
    return nResult;
}

}  // namespace

const SystemError NewFile::kExists = EEXIST;
const SystemError NewFile::kDiskFull = ENOSPC;
const SystemError NewFile::kWriteFault = EIO;

// Follows links, so that the file they lead to is replaced and not the link.
bool NewFile::CheckTarget() {
    std::error_code error;
    if (std::filesystem::is_symlink(m_target, error)) {
        m_target = std::filesystem::weakly_canonical(m_target, error);
        m_nError = static_cast<SystemError>(error.value());
    }
    struct stat status {};
    if (m_nError != 0 || stat(m_target.c_str(), &status) != 0) {
        return m_nError == 0;
    }
    if (!S_ISREG(status.st_mode)) {
        m_nError = S_ISDIR(status.st_mode) ? EISDIR : EOPNOTSUPP;
    } else if (access(m_target.c_str(), W_OK) != 0) {
        m_nError = LastError();
    }
    return m_nError == 0;
}

bool NewFile::Open(const std::filesystem::path& path) {
    struct stat target {};
    const bool bReplaces = stat(m_target.c_str(), &target) == 0;
    const mode_t mode = bReplaces ? target.st_mode & 0777U : 0666U;
    const int nFile = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (nFile < 0) {
        m_nError = LastError();
        return false;
    }
    if (bReplaces) {
        fchmod(nFile, mode);  // without what the process masks out
    }
    m_hFile = nFile;
    return true;
}

std::size_t NewFile::WriteAt(const std::byte* pBytes, std::size_t nBytes) noexcept {
    const ssize_t nDone =
        Retried([&] { return pwrite(static_cast<int>(m_hFile), pBytes, nBytes, static_cast<off_t>(m_nPosition)); });
    m_nError = nDone < 0 ? LastError() : 0;
    return nDone < 0 ? 0 : static_cast<std::size_t>(nDone);
}

std::size_t NewFile::ReadAt(std::byte* pBytes, std::size_t nBytes) noexcept {
    const ssize_t nDone =
        Retried([&] { return pread(static_cast<int>(m_hFile), pBytes, nBytes, static_cast<off_t>(m_nPosition)); });
    m_nError = nDone < 0 ? LastError() : 0;
    return nDone < 0 ? 0 : static_cast<std::size_t>(nDone);
}

bool NewFile::SetEnd(std::uint64_t nBytes) noexcept {
    if (Retried([&] { return ftruncate(static_cast<int>(m_hFile), static_cast<off_t>(nBytes)); }) != 0) {
        m_nError = LastError();
    }
    return m_nError == 0;
}

std::uint64_t NewFile::Sync() noexcept {
    struct stat status {};
    const int nFile = static_cast<int>(m_hFile);
    if (Retried([nFile] { return fsync(nFile); }) != 0 || fstat(nFile, &status) != 0) {
        m_nError = LastError();
    }
    return static_cast<std::uint64_t>(status.st_size);
}

// Some file systems tell only now that a write failed.
void NewFile::Close() noexcept {
    if (m_hFile != kClosed && close(static_cast<int>(m_hFile)) != 0 && m_nError == 0) {
        m_nError = LastError();
    }
    m_hFile = kClosed;
}

bool NewFile::Replace() noexcept {
    if (std::rename(m_temporary.c_str(), m_target.c_str()) != 0) {
        m_nError = LastError();
    }
    return m_nError == 0;
}

void NewFile::Delete() noexcept {
    unlink(m_temporary.c_str());
}

}  // namespace width
