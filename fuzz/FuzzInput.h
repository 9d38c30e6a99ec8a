// What the fuzz targets share: taking numbers from the input, and stopping on a broken promise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

namespace width::fuzz {

/// Stops the program, which the fuzzer reports together with the input, unless a promise holds.
inline void Require(bool bHolds, const char* pPromise) {
    if (!bHolds) {
        std::fprintf(stderr, "broken: %s\n", pPromise);
        std::abort();
    }
}

/// Takes numbers from the front of an input; 0 once it is used up.
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* pData, std::size_t nSize) : m_rest(pData, nSize) {}

    bool IsEmpty() const noexcept { return m_rest.empty(); }

    std::uint8_t Byte() noexcept {
        if (m_rest.empty()) {
            return 0;
        }
        const std::uint8_t value = m_rest.front();
        m_rest = m_rest.subspan(1);
        return value;
    }

    std::int16_t Short() noexcept {
        const std::uint32_t low = Byte();
        return static_cast<std::int16_t>(low | std::uint32_t{Byte()} << 8);
    }

    std::int32_t Int() noexcept {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i) {
            value = value << 8 | Byte();
        }
        return static_cast<std::int32_t>(value);
    }

    /// nFirst to nLast, at most 256 values.
    std::int32_t Between(std::int32_t nFirst, std::int32_t nLast) noexcept { return nFirst + Byte() % (nLast - nFirst + 1); }

private:
    std::span<const std::uint8_t> m_rest;
};

}  // namespace width::fuzz
