// What both platforms share. A write goes on until everything has gone out or the system refuses: one that is cut short is
// told by the refusal of its rest.
// Tested by: tests/unit/imageio/NewFileTest.cpp
#include "imageio/NewFile.h"

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <utility>

namespace width {

namespace {

constexpr std::size_t kMaxPart = std::size_t{1} << 30;  // bytes for one call of the system

// Begins with a digit where the target does not, so that the two are never one.
std::string TemporaryName(const std::filesystem::path& target) {
    constexpr std::string_view kDigits = "0123456789";
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
    const auto name = target.filename().native();
    const bool bDigit = !name.empty() && name.front() >= '0' && name.front() <= '9';
    std::uint32_t nRandom = std::random_device{}();
    const std::string_view first = bDigit ? kLetters.substr(0, 26) : kDigits;
    std::string result(1, first[nRandom % first.size()]);
    for (nRandom /= 26; nRandom > 0; nRandom /= 36) {
        result += kLetters[nRandom % 36];
    }
    return (result + ".tmp").substr(0, name.size());
}

}  // namespace

NewFile::NewFile(std::filesystem::path target) : m_target(std::move(target)) {}

NewFile::~NewFile() {
    Close();
    if (!m_temporary.empty()) {
        Delete();
    }
}

bool NewFile::Create() {
    constexpr int kAttempts = 100;
    if (!CheckTarget()) {
        return false;
    }
    m_nError = kExists;
    for (int i = 0; i < kAttempts && m_nError == kExists; ++i) {
        std::filesystem::path candidate = m_target.parent_path() / TemporaryName(m_target);
        m_nError = 0;
        if (Open(candidate)) {
            m_temporary = std::move(candidate);
        }
    }
    return m_nError == 0;
}

bool NewFile::Write(const void* pBytes, std::size_t nBytes) noexcept {
    const auto* pFrom = static_cast<const std::byte*>(pBytes);
    while (nBytes > 0 && m_nError == 0) {
        const std::size_t nDone = WriteAt(pFrom, std::min(nBytes, kMaxPart));
        if (nDone == 0 && m_nError == 0) {
            m_nError = kDiskFull;
        }
        pFrom += nDone;
        nBytes -= nDone;
        m_nPosition += nDone;
        m_nSize = std::max(m_nSize, m_nPosition);
    }
    return m_nError == 0;
}

std::size_t NewFile::Read(void* pBytes, std::size_t nBytes) noexcept {
    auto* pTo = static_cast<std::byte*>(pBytes);
    std::size_t nDone = 0;
    for (std::size_t nPart = 1; nPart > 0 && nDone < nBytes && m_nError == 0; nDone += nPart, m_nPosition += nPart) {
        nPart = ReadAt(pTo + nDone, std::min(nBytes - nDone, kMaxPart));
    }
    return nDone;
}

bool NewFile::Resize(std::uint64_t nBytes) noexcept {
    if (m_nError == 0 && SetEnd(nBytes)) {
        m_nSize = nBytes;
    }
    return m_nError == 0;
}

bool NewFile::Finish() noexcept {
    if (m_nError == 0) {
        const std::uint64_t nBytes = Sync();
        if (m_nError == 0 && nBytes != m_nSize) {
            m_nError = kWriteFault;
        }
    }
    Close();
    return m_nError == 0;
}

bool NewFile::Commit() noexcept {
    if (m_nError == 0 && Replace()) {
        m_temporary.clear();
    }
    return m_nError == 0;
}

}  // namespace width
