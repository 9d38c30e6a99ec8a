// Any skeleton, line conditions and clicks: detection ends and leaves map and store in order, picking
// keeps its state consistent, labels can be made and written.
#include <algorithm>

#include "analysis/LineStore.h"
#include "fuzz/FuzzInput.h"
#include "measure/Picking.h"
#include "measure/Width.h"

namespace width::fuzz {

namespace {

constexpr std::int32_t kMostSide = 64;
constexpr int kMostClicks = 64;

void TakeNoise(FuzzInput& input, SkeletonMap& map) {
    for (std::int32_t s = 0; s < map.Height(); ++s) {
        std::uint32_t bits = 0;
        for (std::int32_t x = 0; x < map.Width(); ++x) {
            bits = x % 8 == 0 ? input.Byte() : bits >> 1;
            map.Set({s + SkeletonMap::kBorder, x + SkeletonMap::kBorder}, bits & 1U);
        }
    }
}

// A straight row of cells, from anywhere in any direction; it stops at the edge.
void TakeStroke(FuzzInput& input, SkeletonMap& map) {
    std::int32_t x16 = 16 * input.Between(0, map.Width() - 1);
    std::int32_t s16 = 16 * input.Between(0, map.Height() - 1);
    const std::int32_t nStepX = input.Between(-16, 16);
    const std::int32_t nStepS = input.Between(-16, 16);
    for (std::int32_t n = input.Between(1, kMostSide); n > 0; --n, x16 += nStepX, s16 += nStepS) {
        const std::int32_t x = x16 >> 4;
        const std::int32_t s = s16 >> 4;
        if (x < 0 || x >= map.Width() || s < 0 || s >= map.Height()) {
            return;
        }
        map.Set({s + SkeletonMap::kBorder, x + SkeletonMap::kBorder}, 1);
    }
}

SkeletonMap TakeMap(FuzzInput& input) {
    const std::int32_t nHeight = input.Between(1, kMostSide);
    SkeletonMap map(nHeight, input.Between(1, kMostSide));
    const std::int32_t nStrokes = input.Between(0, 15);
    if (nStrokes == 0) {
        TakeNoise(input, map);
    }
    for (std::int32_t i = 0; i < nStrokes; ++i) {
        TakeStroke(input, map);
    }
    return map;
}

LineConditions TakeConditions(FuzzInput& input) {
    const std::uint8_t shape = input.Byte();
    LineConditions conditions;
    conditions.nMinLineLength = shape & 1 ? input.Int() : input.Between(0, kMostSide);
    conditions.bRectAlgorithm = shape >> 1 & 1;
    conditions.fRectWidth = shape & 4 ? static_cast<float>(input.Int()) : static_cast<float>(input.Byte()) / 16.0F;
    return conditions;
}

// On the picture or a little beside it, mostly; anywhere, sometimes.
POINT TakePoint(FuzzInput& input) {
    const std::uint8_t x = input.Byte();
    if (x == 255) {
        const std::int32_t nFarX = input.Int();
        return {nFarX, input.Int()};
    }
    return {x % 80 - 8, input.Byte() % 80 - 8};
}

bool IsBorderClear(const SkeletonMap& map) {
    for (std::int32_t r = 0; r < map.Rows(); ++r) {
        const bool bInside = r >= SkeletonMap::kBorder && r < map.Rows() - SkeletonMap::kBorder;
        for (std::int32_t c = 0; c < map.Columns(); c = bInside && c == 1 ? map.Columns() - 2 : c + 1) {
            if (map.At({r, c}) != 0) {
                return false;
            }
        }
    }
    return true;
}

void CheckMarks(const SkeletonMap& map, const Detection& detection) {
    const auto cell = [](const PathPoint& pt) { return MapCell{pt.y + SkeletonMap::kBorder, pt.x + SkeletonMap::kBorder}; };
    const auto isOnPicture = [&](const PathPoint& pt) {
        return pt.x >= 0 && pt.x < map.Width() && pt.y >= 0 && pt.y < map.Height();
    };
    const PathPoint first = detection.line.ptFirst;
    const PathPoint last = detection.line.ptLast;
    Require(detection.nId.has_value() == (isOnPicture(first) && isOnPicture(last)), "a line on the picture has an id");
    if (detection.nId) {
        const auto value = static_cast<std::uint8_t>(*detection.nId);
        Require(map.At(cell(first)) == value && map.At(cell(last)) == value, "both ends are marked");
    }
}

void Detect(FuzzInput& input, SkeletonMap& map, LineStore& store) {
    const LineConditions conditions = TakeConditions(input);
    const std::int32_t nClicks = input.Between(1, 8);
    for (std::int32_t i = 0; i < nClicks; ++i) {
        const SkeletonMap before = map;
        const LineStore storeBefore = store;
        const Detection detection = DetectLine(map, TakePoint(input), conditions, store);
        Require(IsBorderClear(map), "the border stays 0");
        if (!detection.bStored) {
            Require(map == before && store.m_Lines == storeBefore.m_Lines, "nothing found changes nothing");
            continue;
        }
        Require(store.m_Lines.size() == storeBefore.m_Lines.size() + 1 && store.m_Lines.back() == detection.line,
                "a found line is the store's last");
        Require(store.m_nNextLineId == storeBefore.m_nNextLineId + (detection.nId ? 1 : 0), "a mark takes one id");
        CheckMarks(map, detection);
    }
}

ViewGeometry TakeGeometry(FuzzInput& input, const SkeletonMap& map) {
    ViewGeometry geometry = UnitGeometry(map.Width(), map.Height());
    const std::uint8_t shape = input.Byte();
    if (shape & 1) {
        geometry.nZoomNum = input.Between(1, 32);
        geometry.nZoomDen = input.Between(1, 32);
    }
    if (shape & 2) {
        geometry.nClientWidth = input.Short() & 0x7FFF;
        geometry.nClientHeight = input.Short() & 0x7FFF;
    }
    if (shape & 4) {
        geometry.nScrollX = input.Short();
        geometry.nScrollY = input.Short();
    }
    return geometry;
}

void CheckPicker(const LinePairPicker& picker, const LabelList& labels) {
    Require(picker.m_bPick1Done >= picker.m_bPick2Done && picker.m_bPick2Done >= picker.m_bPick3Done, "picks follow each other");
    Require(picker.m_nClickCount == picker.m_bPick1Done + picker.m_bPick2Done + picker.m_bPick3Done, "picks are counted");
    Require(picker.m_bPick1Done == 0 || picker.m_nPickId1 >= 2, "a first pick has an id");
    Require(picker.m_bPick3Done == 0 || picker.m_nPickId3 >= 2, "a third pick has an id");
    Require(labels.m_Labels.size() % 2 == 0, "a label has two entries");
    Require(labels.m_nCurLabel >= 0 && 2 * static_cast<std::size_t>(labels.m_nCurLabel) <= labels.m_Labels.size(),
            "labels in force are there");
}

void ChangeSomething(FuzzInput& input, LinePairPicker& picker, LabelList& labels) {
    switch (input.Byte() % 8) {
        case 0:
            picker.Reset();
            break;
        case 1:
            if (labels.CanUndo()) {
                labels.Undo();
            }
            break;
        case 2:
            if (labels.CanRedo()) {
                labels.Redo();
            }
            break;
        default:
            break;
    }
}

void Pick(FuzzInput& input, const SkeletonMap& map) {
    LinePairPicker picker;
    LabelList labels;
    for (int i = 0; i < kMostClicks && !input.IsEmpty(); ++i) {
        const ViewGeometry geometry = TakeGeometry(input, map);
        // A click at an image point, so that one finds an end at any zoom; picks of zoomed views mix.
        const POINT ptClient = ImageToClient(TakePoint(input), geometry);
        const bool bPending = picker.m_bLabelPending != 0;
        const std::int32_t nLabels = labels.m_nCurLabel;
        const std::vector<PickEvent> events = picker.Click(ptClient, &map, geometry, labels);
        Require(labels.m_nCurLabel == nLabels + (bPending ? 1 : 0), "a pending label is placed, and no other");
        Require(std::ranges::count(events, PickEventKind::WrongLine, &PickEvent::kind) <= 1, "a refused pick ends the click");
        CheckPicker(picker, labels);
        ChangeSomething(input, picker, labels);
        CheckPicker(picker, labels);
    }
    for (std::size_t i = 1; i < labels.m_Labels.size(); i += 2) {
        const LabelEntry& feet = labels.m_Labels[i];
        const std::string pixels = FormatLabelText(1, feet.ptA, feet.ptB, {});
        const std::string centimetres = FormatLabelText(1, feet.ptA, feet.ptB, {input.Int() | 1, -1});
        Require(pixels.starts_with("1#: ") && centimetres.ends_with("cm"), "a label has a text");
    }
}

}  // namespace

void TryClicks(FuzzInput input) {
    SkeletonMap map = TakeMap(input);
    LineStore store;
    Detect(input, map, store);
    Pick(input, map);
}

}  // namespace width::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    width::fuzz::TryClicks({pData, nSize});
    return 0;
}
