// The part that Windows has in a new file.
// Tested by: tests/unit/imageio/NewFileTest.cpp
#include "core/Platform.h"
//
#include <bit>

#include "imageio/NewFile.h"

namespace width {

const SystemError NewFile::kExists = ERROR_FILE_EXISTS;
const SystemError NewFile::kDiskFull = ERROR_DISK_FULL;
const SystemError NewFile::kWriteFault = ERROR_WRITE_FAULT;

namespace {

// Where a read or a write takes place.
OVERLAPPED At(std::uint64_t nPosition) noexcept {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(nPosition);
    place.OffsetHigh = static_cast<DWORD>(nPosition >> 32);
    return place;
}

LARGE_INTEGER Large(std::uint64_t nValue) noexcept {
    LARGE_INTEGER large{};
    large.QuadPart = static_cast<LONGLONG>(nValue);
    return large;
}

}  // namespace

bool NewFile::CheckTarget() {
    constexpr DWORD kUnwritable = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
    const DWORD nAttributes = GetFileAttributesW(m_target.c_str());
    const bool bMay = nAttributes == INVALID_FILE_ATTRIBUTES || (nAttributes & kUnwritable) == 0;
    m_nError = bMay ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
    return bMay;
}

bool NewFile::Open(const std::filesystem::path& path) {
    const HANDLE hFile =
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    m_nError = hFile != INVALID_HANDLE_VALUE ? ERROR_SUCCESS : GetLastError();
    m_hFile = std::bit_cast<std::intptr_t>(hFile);
    return m_nError == ERROR_SUCCESS;
}

std::size_t NewFile::WriteAt(const std::byte* pBytes, std::size_t nBytes) noexcept {
    OVERLAPPED place = At(m_nPosition);
    DWORD nDone = 0;
    if (WriteFile(std::bit_cast<HANDLE>(m_hFile), pBytes, static_cast<DWORD>(nBytes), &nDone, &place) == FALSE) {
        m_nError = GetLastError();
    }
    return nDone;
}

std::size_t NewFile::ReadAt(std::byte* pBytes, std::size_t nBytes) noexcept {
    OVERLAPPED place = At(m_nPosition);
    DWORD nDone = 0;
    const BOOL bDone = ReadFile(std::bit_cast<HANDLE>(m_hFile), pBytes, static_cast<DWORD>(nBytes), &nDone, &place);
    if (bDone == FALSE && GetLastError() != ERROR_HANDLE_EOF) {
        m_nError = GetLastError();
    }
    return nDone;
}

bool NewFile::SetEnd(std::uint64_t nBytes) noexcept {
    const HANDLE hFile = std::bit_cast<HANDLE>(m_hFile);
    if (SetFilePointerEx(hFile, Large(nBytes), nullptr, FILE_BEGIN) == FALSE || SetEndOfFile(hFile) == FALSE) {
        m_nError = GetLastError();
    }
    return m_nError == ERROR_SUCCESS;
}

std::uint64_t NewFile::Sync() noexcept {
    LARGE_INTEGER size{};
    const HANDLE hFile = std::bit_cast<HANDLE>(m_hFile);
    if (FlushFileBuffers(hFile) == FALSE || GetFileSizeEx(hFile, &size) == FALSE) {
        m_nError = GetLastError();
    }
    return static_cast<std::uint64_t>(size.QuadPart);
}

void NewFile::Close() noexcept {
    if (m_hFile != kClosed && CloseHandle(std::bit_cast<HANDLE>(m_hFile)) == FALSE && m_nError == ERROR_SUCCESS) {
        m_nError = GetLastError();
    }
    m_hFile = kClosed;
}

bool NewFile::Replace() noexcept {
    constexpr DWORD kHow = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (MoveFileExW(m_temporary.c_str(), m_target.c_str(), kHow) == FALSE) {
        m_nError = GetLastError();
    }
    return m_nError == ERROR_SUCCESS;
}

void NewFile::Delete() noexcept {
    DeleteFileW(m_temporary.c_str());
}

}  // namespace width
