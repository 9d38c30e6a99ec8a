#include "tests/support/LiteralSkeleton.h"

#include <algorithm>
#include <vector>

namespace width::test {

namespace {

using Rows = std::vector<std::vector<std::uint8_t>>;

Rows MakeRows(int H, int W) {
    return Rows(static_cast<std::size_t>(H) + 4, std::vector<std::uint8_t>(static_cast<std::size_t>(W) + 4));
}

// A map indexed by plain integers.
struct Map {
    Rows rows;
    Map(int H, int W) : rows(MakeRows(H, W)) {}
    std::uint8_t& operator()(int r, int c) { return rows[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)]; }
    void Clear() {
        for (auto& row : rows) {
            std::ranges::fill(row, std::uint8_t{0});
        }
    }
};

Colour ColourAt(const DibView& dib, const std::array<Colour, 256>& palette, const std::uint8_t* pRow, std::size_t x) {
    switch (dib.BitCount()) {
        case 1:
            return palette[(pRow[x / 8] >> (7 - x % 8)) & 1];
        case 4:
            return palette[x % 2 == 0 ? pRow[x / 2] >> 4 : pRow[x / 2] & 15];
        case 8:
            return palette[pRow[x]];
        case 24:
            return {pRow[3 * x + 2], pRow[3 * x + 1], pRow[3 * x]};
        default:
            return {pRow[4 * x + 2], pRow[4 * x + 1], pRow[4 * x]};
    }
}

std::uint8_t StepOf(std::uint8_t a, std::uint8_t b) {
    return static_cast<std::uint8_t>(std::min(a, b) + 1);
}

void DistancePasses(Map& A, Map& B, Map& C, Map& D, int H, int W) {
    for (int r = 2; r <= H + 1; ++r) {
        for (int c = W + 1; c >= 2; --c) {
            if (A(r, c) != 0)
                A(r, c) = StepOf(A(r - 1, c), A(r, c + 1));
        }
    }
    for (int r = 2; r <= H + 1; ++r) {
        for (int c = 2; c <= W + 1; ++c) {
            if (B(r, c) != 0)
                B(r, c) = StepOf(B(r - 1, c), B(r, c - 1));
        }
    }
    for (int r = H + 1; r >= 2; --r) {
        for (int c = 2; c <= W + 1; ++c) {
            if (C(r, c) != 0)
                C(r, c) = StepOf(C(r + 1, c), C(r, c - 1));
        }
    }
    for (int r = H + 1; r >= 2; --r) {
        for (int c = W + 1; c >= 2; --c) {
            if (D(r, c) != 0)
                D(r, c) = StepOf(D(r + 1, c), D(r, c + 1));
        }
    }
    for (int r = 0; r < H + 4; ++r) {
        for (int c = 0; c < W + 4; ++c) {
            if (B(r, c) != 0)
                B(r, c) = std::min({A(r, c), B(r, c), C(r, c), D(r, c)});
        }
    }
}

void PlateauRule(Map& A, Map& B, int H, int W) {
    for (int r = 2; r <= H; ++r) {
        for (int c = 2; c <= W; ++c) {
            const int v = B(r, c);
            if (v != 0 && B(r, c + 1) == v && B(r + 1, c) == v && B(r + 1, c + 1) == v) {
                A(r, c) = A(r, c + 1) = A(r + 1, c) = A(r + 1, c + 1) = 1;
            }
        }
    }
}

void EvenWidthRule(Map& C, Map& B, int H, int W) {
    for (int a = 2; a <= H - 2; ++a) {
        for (int c = 2; c <= W + 1; ++c) {
            if (B(a, c) == B(a + 3, c) && B(a + 1, c) == B(a + 2, c) && B(a, c) == B(a + 1, c) - 1)
                C(a + 1, c) = 1;
        }
    }
    for (int r = 2; r <= H + 1; ++r) {
        for (int c = 2; c <= W - 2; ++c) {
            if (B(r, c) == B(r, c + 3) && B(r, c + 1) == B(r, c + 2) && B(r, c) == B(r, c + 1) - 1)
                C(r, c + 1) = 1;
        }
    }
}

void RidgeRuleAndMerge(Map& A, Map& B, Map& C, int H, int W) {
    for (int r = 2; r <= H + 1; ++r) {
        for (int c = 2; c <= W + 1; ++c) {
            const int v = B(r, c);
            if (v != 0 && (v > std::max(B(r, c - 1), B(r, c + 1)) || v > std::max(B(r - 1, c), B(r + 1, c)) ||
                           v > std::max(B(r - 1, c - 1), B(r + 1, c + 1)) || v > std::max(B(r + 1, c - 1), B(r - 1, c + 1)))) {
                A(r, c) = 1;
            }
        }
    }
    for (int r = 2; r <= H + 1; ++r) {
        for (int c = 2; c <= W + 1; ++c) {
            A(r, c) = A(r, c) != 0 || C(r, c) != 0;
        }
    }
}

void BlockReduction(Map& A, Map& E, int H, int W) {
    for (int nPass = 0; nPass < 2; ++nPass) {
        for (int r = 2; r <= H; ++r) {
            for (int c = 2; c <= W; ++c) {
                if (A(r, c) != 0 && A(r, c + 1) != 0 && A(r + 1, c) != 0 && A(r + 1, c + 1) != 0) {
                    E(r, c) = 1;
                    A(r + 1, c + 1) = A(r + 1, c) = A(r, c + 1) = 0;
                }
            }
        }
        for (int r = 2; r <= H; ++r) {
            for (int c = 2; c <= W; ++c) {
                if (E(r, c) != 0) {
                    E(r, c) = 0;
                    if (A(r + 1, c + 2) != 0 || A(r + 2, c + 2) != 0 || A(r + 2, c + 1) != 0)
                        A(r + 1, c + 1) = 1;
                    if (A(r + 2, c) != 0 || A(r + 2, c - 1) != 0)
                        A(r + 1, c) = 1;
                    if (A(r - 1, c + 2) != 0 || A(r, c + 2) != 0)
                        A(r, c + 1) = 1;
                }
            }
        }
    }
}

SkeletonMap ToSkeletonMap(Map& map, int H, int W) {
    SkeletonMap result(H, W);
    for (int r = 0; r < H + 4; ++r) {
        std::ranges::copy(map.rows[static_cast<std::size_t>(r)], result.Row(r));
    }
    return result;
}

SkeletonMap FromForeground(Map A, int H, int W) {
    Map B = A;
    Map C = A;
    Map D = A;
    DistancePasses(A, B, C, D, H, W);
    A.Clear();
    PlateauRule(A, B, H, W);
    C.Clear();
    EvenWidthRule(C, B, H, W);
    RidgeRuleAndMerge(A, B, C, H, W);
    Map E(H, W);
    BlockReduction(A, E, H, W);
    return ToSkeletonMap(A, H, W);
}

Map FromSkeletonMap(const SkeletonMap& map) {
    Map result(map.Height(), map.Width());
    for (int r = 0; r < map.Rows(); ++r) {
        std::copy_n(map.Row(r), map.Columns(), result.rows[static_cast<std::size_t>(r)].begin());
    }
    return result;
}

}  // namespace

SkeletonMap LiteralSkeleton(const DibView& dib, GreyWindow window) {
    const int H = dib.Height();
    const int W = dib.Width();
    Map A(H, W);
    const auto palette = dib.Palette();
    for (int s = 0; IsReadableDepth(dib.BitCount()) && s < H; ++s) {
        const std::uint8_t* pRow = dib.Row(s).data();
        for (int x = 0; x < W; ++x) {
            const Colour colour = ColourAt(dib, palette, pRow, static_cast<std::size_t>(x));
            const double g = (0.299 * colour.red + 0.587 * colour.green) + 0.114 * colour.blue;
            A(s + 2, x + 2) = static_cast<double>(window.nMinGrey) <= g && g <= static_cast<double>(window.nMaxGrey);
        }
    }
    return FromForeground(std::move(A), H, W);
}

SkeletonMap LiteralDistance(const SkeletonMap& foreground) {
    Map A = FromSkeletonMap(foreground);
    Map B = A;
    Map C = A;
    Map D = A;
    DistancePasses(A, B, C, D, foreground.Height(), foreground.Width());
    return ToSkeletonMap(B, foreground.Height(), foreground.Width());
}

SkeletonMap LiteralSkeletonOfMap(const SkeletonMap& foreground) {
    return FromForeground(FromSkeletonMap(foreground), foreground.Height(), foreground.Width());
}

}  // namespace width::test
