// Clicks on pictures as people bring them: samples, artwork, and what a pen, a plotter or a microscope draws.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include "analysis/Skeleton.h"
#include "bench/ClickCases.h"
#include "bench/Inputs.h"
#include "imageio/ImageIo.h"
#include "tests/support/Pictures.h"

namespace width::bench {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;

struct Place {
    double x;
    double y;
};

// Dark lines on white, drawn by a square pen.
class Drawing {
public:
    Drawing(std::int32_t nWidth, std::int32_t nHeight) : m_nWidth(nWidth), m_nHeight(nHeight), m_dib(nWidth, nHeight, 8, 2) {
        m_dib.SetColour(0, {255, 255, 255}).SetColour(1, {20, 20, 20});
    }

    /// Along place(t) for t from 0 to 1, a curve of about fLength pixels.
    template <class PlaceAt>
    void Curve(double fLength, std::int32_t nPen, PlaceAt place) {
        const auto nSteps = static_cast<std::int32_t>(2 * fLength);
        for (std::int32_t i = 0; i <= nSteps; ++i) {
            const Place at = place(static_cast<double>(i) / nSteps);
            const std::int32_t x0 = static_cast<std::int32_t>(std::lround(at.x)) - nPen / 2;
            const std::int32_t y0 = static_cast<std::int32_t>(std::lround(at.y)) - nPen / 2;
            for (std::int32_t y = std::max(y0, 0); y < std::min(y0 + nPen, m_nHeight); ++y) {
                for (std::int32_t x = std::max(x0, 0); x < std::min(x0 + nPen, m_nWidth); ++x) {
                    m_dib.SetIndex(x, y, 1);
                }
            }
        }
    }

    std::vector<std::byte> Block() const { return m_dib.Block(); }
    std::int32_t Width() const { return m_nWidth; }
    std::int32_t Height() const { return m_nHeight; }

private:
    std::int32_t m_nWidth;
    std::int32_t m_nHeight;
    test::DibBuilder m_dib;
};

double Between(std::mt19937& random, double fLow, double fHigh) {
    return fLow + (fHigh - fLow) * test::Below(random, 10'000) / 10'000.0;
}

// Rings beside each other, round and oval, most drawn by a pen of one pixel.
void DrawRings(Drawing& drawing, std::mt19937& random) {
    constexpr std::int32_t kCell = 512;
    for (std::int32_t y = kCell / 2; y < drawing.Height(); y += kCell) {
        for (std::int32_t x = kCell / 2; x < drawing.Width(); x += kCell) {
            const double a = Between(random, 20, kCell / 2 - 5);
            const double b = x % 1024 < kCell ? a : Between(random, 20, kCell / 2 - 5);
            drawing.Curve(8 * std::max(a, b), y % 1024 < kCell && x % 2048 < kCell ? 5 : 1, [&](double t) {
                return Place{x + a * std::cos(kTurn * t), y + b * std::sin(kTurn * t)};
            });
        }
    }
}

// Fibres from the left to the right, each with two waves of its own.
void DrawWavyFibres(Drawing& drawing, std::mt19937& random) {
    for (int i = 0; i < 30; ++i) {
        const double y = Between(random, 0, drawing.Height());
        const double a = Between(random, 5, 60);
        const double b = Between(random, 1, 8);
        const double m = Between(random, 4, 20);
        const double n = Between(random, 20, 100);
        drawing.Curve(2 * drawing.Width(), 1 + 2 * (i % 4), [&](double t) {
            return Place{t * drawing.Width(), y + a * std::sin(kTurn * m * t) + b * std::sin(kTurn * n * t)};
        });
    }
}

// Fibres in all directions, across each other.
void DrawFibreMat(Drawing& drawing, std::mt19937& random) {
    for (int i = 0; i < 150; ++i) {
        const Place from{Between(random, 0, drawing.Width()), Between(random, 0, drawing.Height())};
        const double fAngle = Between(random, 0, kTurn);
        const double fBow = Between(random, -300, 300);
        drawing.Curve(3000, 3 + 2 * (i % 3), [&](double t) {
            const double u = 3000 * (t - 0.5);
            const double v = fBow * t * t;
            return Place{from.x + u * std::cos(fAngle) - v * std::sin(fAngle),
                         from.y + u * std::sin(fAngle) + v * std::cos(fAngle)};
        });
    }
}

void DrawSpiral(Drawing& drawing, double fPitch) {
    const double fMiddle = drawing.Width() / 2.0;
    const double fTurns = (fMiddle - 20) / fPitch;
    drawing.Curve(fTurns * kTurn * fMiddle, 1, [&](double t) {
        const double fRadius = 5 + t * (fMiddle - 20);
        return Place{fMiddle + fRadius * std::cos(kTurn * fTurns * t), fMiddle + fRadius * std::sin(kTurn * fTurns * t)};
    });
}

// A paper chart, more than a metre of it: a trace that swings to and fro while it drifts.
void DrawStripChart(Drawing& drawing, std::mt19937& random) {
    const double fPhase = Between(random, 0, kTurn);
    drawing.Curve(10.0 * drawing.Width(), 1, [&](double t) {
        const double x = t * drawing.Width();
        const double fSwing = 3 + 40 * std::pow(std::sin(x / 900 + fPhase), 6);
        return Place{x, drawing.Height() / 2 + 100 * std::sin(x / 2500) + fSwing * std::sin(x / 3.5)};
    });
}

// A seam sewn in zigzag.
void DrawSeam(Drawing& drawing) {
    drawing.Curve(5.0 * drawing.Width(), 1, [&](double t) {
        const double x = t * drawing.Width();
        return Place{x, 200 + std::fabs(std::fmod(x, 24) - 12) * 2 + x * 0.01};
    });
}

// A track that runs to and fro, as to delay a signal.
void DrawMeander(Drawing& drawing) {
    constexpr double kRow = 24;
    const double fSide = drawing.Width() - 100;
    const double fRows = std::floor(fSide / kRow);
    drawing.Curve(fRows * (fSide + kRow), 7, [&](double t) {
        const double fAlong = t * fRows * (fSide + kRow);
        const double fRow = std::floor(fAlong / (fSide + kRow));
        const double u = std::min(fAlong - fRow * (fSide + kRow), fSide);
        const double v = std::max(fAlong - fRow * (fSide + kRow) - fSide, 0.0);
        return Place{50 + (std::fmod(fRow, 2) == 0 ? u : fSide - u), 50 + fRow * kRow + v};
    });
}

// Seeded clicks on skeleton pixels, those that find a path.
ClickInput ClicksOn(const std::vector<std::byte>& block, GreyWindow window) {
    constexpr std::size_t kClicks = 100;
    constexpr int kTries = 10'000;
    ClickInput input{*MakeSkeleton(*DibView::Open(block), window), {}};
    std::vector<POINT> pixels;
    for (std::int32_t y = 0; y < input.map.Height(); ++y) {
        for (std::int32_t x = 0; x < input.map.Width(); ++x) {
            if (input.map.At({input.map.Height() + 1 - y, x + 2}) != 0) {
                pixels.push_back({x, y});
            }
        }
    }
    std::mt19937 random(4);
    for (int i = 0; i < kTries && input.clicks.size() < kClicks; ++i) {
        const POINT pt = pixels[random() % pixels.size()];
        if (LineDetector(LineConditions{}).TraceFromPoint(input.map, pt) != 0) {
            input.clicks.push_back(pt);
        }
    }
    return input;
}

ClickCase OfScene(Scene scene) {
    return {std::string(SceneName(scene)) + "/4096 x 4096", [=] { return ClicksOn(Picture(scene, 4096, 8), kDark); }};
}

ClickCase OfSample(const std::string& name, std::int32_t nMaxGrey) {
    return {"sample/" + name, [=] {
                return ClicksOn(LoadPicture(std::string(WIDTH_SAMPLES) + "/" + name).block, {0, nMaxGrey});
            }};
}

template <class Draw>
ClickCase Drawn(const std::string& what, std::int32_t nWidth, std::int32_t nHeight, Draw draw) {
    return {what + "/" + std::to_string(nWidth) + " x " + std::to_string(nHeight), [=] {
                std::mt19937 random(20'241'101);
                Drawing drawing(nWidth, nHeight);
                draw(drawing, random);
                return ClicksOn(drawing.Block(), kDark);
            }};
}

}  // namespace

std::vector<ClickCase> PictureClickCases() {
    using Random = std::mt19937;
    return {
        OfSample("line-space.bmp", 126),
        OfSample("tracks.png", 127),
        OfSample("fibre.bmp", 120),
        OfSample("scan.bmp", 128),
        OfScene(Scene::LineArt),
        OfScene(Scene::LineSpace),
        OfScene(Scene::DeepAreas),
        Drawn("rings", 4096, 4096, DrawRings),
        Drawn("wavy fibres", 4096, 4096, DrawWavyFibres),
        Drawn("fibre mat", 4096, 4096, DrawFibreMat),
        Drawn("meander", 4096, 4096, [](Drawing& drawing, Random&) { DrawMeander(drawing); }),
        Drawn("spiral", 3000, 3000, [](Drawing& drawing, Random&) { DrawSpiral(drawing, 30); }),
        Drawn("record groove", 3000, 3000, [](Drawing& drawing, Random&) { DrawSpiral(drawing, 6); }),
        Drawn("zigzag seam", 7000, 400, [](Drawing& drawing, Random&) { DrawSeam(drawing); }),
        Drawn("strip chart", 16000, 600, DrawStripChart),
    };
}

}  // namespace width::bench
