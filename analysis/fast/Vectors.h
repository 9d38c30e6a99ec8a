// Vectors of bytes for the fast passes: one struct an instruction set, all with the same members, so that a pass is
// written once, as a template. Operators, comparisons and minima (a < b ? a : b) are those of the compiler's vector
// types; what has none there, or a slow one, is a member here.
//
// Symbols must not be shared between sources that are compiled for different processors: the linker keeps one of several
// equal ones, whichever it was compiled for. So everything is a member of one of these structs or a template over it,
// and nothing of the standard library with code of its own is used behind this header.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace width::fast {

/// What every 64-bit processor of this kind has: vectors of 16 bytes.
struct Sse2 {
    static constexpr std::ptrdiff_t kWidth = 16;
    using Bytes = std::uint8_t __attribute__((vector_size(16)));

    static Bytes Load(const void* p) noexcept {
        Bytes v;
        std::memcpy(&v, p, sizeof v);
        return v;
    }
    static void Store(void* p, Bytes v) noexcept { std::memcpy(p, &v, sizeof v); }

    /// The highest bit of each byte; byte 0 in bit 0.
    static std::uint64_t HighBits(Bytes v) noexcept { return static_cast<std::uint32_t>(_mm_movemask_epi8(Raw(v))); }

    static Bytes AddSaturated(Bytes a, Bytes b) noexcept { return Cooked(_mm_adds_epu8(Raw(a), Raw(b))); }
    static Bytes SubSaturated(Bytes a, Bytes b) noexcept { return Cooked(_mm_subs_epu8(Raw(a), Raw(b))); }

    /// Bytes move n places up within each group of 16; zeros come in.
    template <int n>
    static Bytes Up(Bytes v) noexcept {
        return Cooked(_mm_slli_si128(Raw(v), n));
    }
    template <int n>
    static Bytes Down(Bytes v) noexcept {
        return Cooked(_mm_srli_si128(Raw(v), n));
    }

    /// The last byte of the lower group of 16 in the whole upper group, zeros in the lower; and the other way round.
    static Bytes LowerLast(Bytes /*v*/) noexcept { return Bytes{}; }
    static Bytes UpperFirst(Bytes /*v*/) noexcept { return Bytes{}; }

    /// The last, or the first, byte in all places.
    static Bytes SpreadLast(Bytes v) noexcept {
        return __builtin_shufflevector(v, v, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15);
    }
    static Bytes SpreadFirst(Bytes v) noexcept {
        return __builtin_shufflevector(v, v, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    }

    /// Bit i of a word in the whole of byte i: eight copies of each byte of the word, by multiplication.
    static Bytes SpreadBits(std::uint64_t word) noexcept {
        using Halves = std::uint64_t __attribute__((vector_size(16)));
        constexpr std::uint64_t kCopies = 0x0101010101010101;
        const Halves copies = {(word & 255) * kCopies, ((word >> 8) & 255) * kCopies};
        return reinterpret_cast<Bytes>(copies);
    }

    /// Stores two vectors, a byte of each in turn.
    static void StoreInTurn(std::uint8_t* p, Bytes a, Bytes b) noexcept {
        Store(p, Cooked(_mm_unpacklo_epi8(Raw(a), Raw(b))));
        Store(p + kWidth, Cooked(_mm_unpackhi_epi8(Raw(a), Raw(b))));
    }

    using Ints = std::int32_t __attribute__((vector_size(16)));

    /// Pixels of three bytes, each into the lower three bytes of an integer. Reads up to kOverrun bytes behind the last one.
    static Ints LoadTriples(const std::uint8_t* p) noexcept { return Ints{Load4(p), Load4(p + 3), Load4(p + 6), Load4(p + 9)}; }
    /// Products of the 16-bit halves of each integer, added in pairs.
    static Ints MultiplyAdd(Ints a, Ints b) noexcept {
        return reinterpret_cast<Ints>(_mm_madd_epi16(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
    }
    /// Integers from -32768 to 32767 as bytes, in order: Narrow from -128 to 127, NarrowUnsigned from 0 to 255.
    static Bytes Narrow(Ints a, Ints b, Ints c, Ints d) noexcept {
        return Cooked(_mm_packs_epi16(_mm_packs_epi32(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)),
                                      _mm_packs_epi32(reinterpret_cast<__m128i>(c), reinterpret_cast<__m128i>(d))));
    }

    static Bytes NarrowUnsigned(Ints a, Ints b, Ints c, Ints d) noexcept {
        return Cooked(_mm_packus_epi16(_mm_packs_epi32(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)),
                                       _mm_packs_epi32(reinterpret_cast<__m128i>(c), reinterpret_cast<__m128i>(d))));
    }

    /// The lower, or the upper, half of the integers as doubles, and back, truncated.
    using Doubles = double __attribute__((vector_size(16)));
    static Doubles LowerDoubles(Ints v) noexcept { return _mm_cvtepi32_pd(reinterpret_cast<__m128i>(v)); }
    static Doubles UpperDoubles(Ints v) noexcept { return LowerDoubles(__builtin_shufflevector(v, v, 2, 3, 2, 3)); }
    static Ints Truncated(Doubles lower, Doubles upper) noexcept {
        return reinterpret_cast<Ints>(_mm_unpacklo_epi64(_mm_cvttpd_epi32(lower), _mm_cvttpd_epi32(upper)));
    }

private:
    static std::int32_t Load4(const std::uint8_t* p) noexcept {
        std::int32_t n;
        std::memcpy(&n, p, sizeof n);
        return n;
    }
    static __m128i Raw(Bytes v) noexcept { return reinterpret_cast<__m128i>(v); }
    static Bytes Cooked(__m128i v) noexcept { return reinterpret_cast<Bytes>(v); }
};

#ifdef __AVX2__
/// Vectors of 32 bytes, in two groups of 16.
struct Avx2 {
    static constexpr std::ptrdiff_t kWidth = 32;
    using Bytes = std::uint8_t __attribute__((vector_size(32)));

    static Bytes Load(const void* p) noexcept {
        Bytes v;
        std::memcpy(&v, p, sizeof v);
        return v;
    }
    static void Store(void* p, Bytes v) noexcept { std::memcpy(p, &v, sizeof v); }

    static std::uint64_t HighBits(Bytes v) noexcept { return static_cast<std::uint32_t>(_mm256_movemask_epi8(Raw(v))); }

    static Bytes AddSaturated(Bytes a, Bytes b) noexcept { return Cooked(_mm256_adds_epu8(Raw(a), Raw(b))); }
    static Bytes SubSaturated(Bytes a, Bytes b) noexcept { return Cooked(_mm256_subs_epu8(Raw(a), Raw(b))); }

    template <int n>
    static Bytes Up(Bytes v) noexcept {
        return Cooked(_mm256_bslli_epi128(Raw(v), n));
    }
    template <int n>
    static Bytes Down(Bytes v) noexcept {
        return Cooked(_mm256_bsrli_epi128(Raw(v), n));
    }

    static Bytes LowerLast(Bytes v) noexcept {
        return Cooked(_mm256_shuffle_epi8(_mm256_permute2x128_si256(Raw(v), Raw(v), 0x08), _mm256_set1_epi8(15)));
    }
    static Bytes UpperFirst(Bytes v) noexcept {
        return Cooked(_mm256_shuffle_epi8(_mm256_permute2x128_si256(Raw(v), Raw(v), 0x81), _mm256_setzero_si256()));
    }

    static Bytes SpreadLast(Bytes v) noexcept {
        return Cooked(_mm256_shuffle_epi8(_mm256_permute2x128_si256(Raw(v), Raw(v), 0x11), _mm256_set1_epi8(15)));
    }
    static Bytes SpreadFirst(Bytes v) noexcept { return Cooked(_mm256_broadcastb_epi8(_mm256_castsi256_si128(Raw(v)))); }

    static Bytes SpreadBits(std::uint64_t word) noexcept {
        const __m256i places = _mm256_setr_epi8(0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1,  //
                                                2, 2, 2, 2, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 3, 3);
        return Cooked(_mm256_shuffle_epi8(_mm256_set1_epi32(static_cast<int>(static_cast<std::uint32_t>(word))), places));
    }

    static void StoreInTurn(std::uint8_t* p, Bytes a, Bytes b) noexcept {
        const __m256i lower = _mm256_unpacklo_epi8(Raw(a), Raw(b));
        const __m256i upper = _mm256_unpackhi_epi8(Raw(a), Raw(b));
        Store(p, Cooked(_mm256_permute2x128_si256(lower, upper, 0x20)));
        Store(p + kWidth, Cooked(_mm256_permute2x128_si256(lower, upper, 0x31)));
    }

    using Ints = std::int32_t __attribute__((vector_size(32)));

    static Ints LoadTriples(const std::uint8_t* p) noexcept {
        const __m256i places = _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1,  //
                                                0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
        const __m128i lower = reinterpret_cast<__m128i>(Sse2::Load(p));
        const __m128i upper = reinterpret_cast<__m128i>(Sse2::Load(p + 12));
        return reinterpret_cast<Ints>(
            _mm256_shuffle_epi8(_mm256_inserti128_si256(_mm256_castsi128_si256(lower), upper, 1), places));
    }
    static Ints MultiplyAdd(Ints a, Ints b) noexcept {
        return reinterpret_cast<Ints>(_mm256_madd_epi16(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)));
    }
    static Bytes Narrow(Ints a, Ints b, Ints c, Ints d) noexcept {
        return InOrder(_mm256_packs_epi16(_mm256_packs_epi32(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)),
                                          _mm256_packs_epi32(reinterpret_cast<__m256i>(c), reinterpret_cast<__m256i>(d))));
    }
    static Bytes NarrowUnsigned(Ints a, Ints b, Ints c, Ints d) noexcept {
        return InOrder(_mm256_packus_epi16(_mm256_packs_epi32(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)),
                                           _mm256_packs_epi32(reinterpret_cast<__m256i>(c), reinterpret_cast<__m256i>(d))));
    }

    using Doubles = double __attribute__((vector_size(32)));
    static Doubles LowerDoubles(Ints v) noexcept {
        return _mm256_cvtepi32_pd(_mm256_castsi256_si128(reinterpret_cast<__m256i>(v)));
    }
    static Doubles UpperDoubles(Ints v) noexcept {
        return _mm256_cvtepi32_pd(_mm256_extracti128_si256(reinterpret_cast<__m256i>(v), 1));
    }
    static Ints Truncated(Doubles lower, Doubles upper) noexcept {
        return reinterpret_cast<Ints>(_mm256_set_m128i(_mm256_cvttpd_epi32(upper), _mm256_cvttpd_epi32(lower)));
    }

private:
    // Packing works within each group of 16 bytes: four bytes of each operand lie in each group.
    static Bytes InOrder(__m256i packed) noexcept {
        return Cooked(_mm256_permutevar8x32_epi32(packed, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7)));
    }
    static __m256i Raw(Bytes v) noexcept { return reinterpret_cast<__m256i>(v); }
    static Bytes Cooked(__m256i v) noexcept { return reinterpret_cast<Bytes>(v); }
};
#endif

/// 0, 1, 2 ... n - 1 in a vector, and the like.
template <class V, int nFirst, int nStep, int nModulus = 256>
constexpr typename V::Bytes Ladder() noexcept {
    typename V::Bytes v{};
    for (int i = 0; i < static_cast<int>(V::kWidth); ++i) {
        v[i] = static_cast<std::uint8_t>(nFirst + nStep * (i % nModulus));
    }
    return v;
}

template <class V>
typename V::Bytes Min(typename V::Bytes a, typename V::Bytes b) noexcept {
    return a < b ? a : b;
}

template <class V>
typename V::Bytes Max(typename V::Bytes a, typename V::Bytes b) noexcept {
    return a > b ? a : b;
}

template <class V>
typename V::Bytes Splat(std::uint8_t value) noexcept {
    return typename V::Bytes{} + value;
}

/// A comparison's result, -1 or 0 in each place, as bytes.
template <class V, class Comparison>
typename V::Bytes Verdict(Comparison v) noexcept {
    return reinterpret_cast<typename V::Bytes>(v);
}

}  // namespace width::fast
