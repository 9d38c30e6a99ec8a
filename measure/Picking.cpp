// The search window of a click and the steps of picking a pair.
// Tested by: tests/unit/measure/PickingTest.cpp
#include "measure/Picking.h"

#include <algorithm>

namespace width {

namespace {

// The window takes 20 x 20 cells, from 10 before to 9 after the clicked cell on both axes.
constexpr std::int64_t kBefore = 10;
constexpr std::int64_t kAfter = 9;

struct CellRange {
    std::int32_t first;
    std::int32_t last;  // included; below first: nothing
};

// Part of the window that lies in the map, on one axis.
CellRange WindowRange(std::int64_t nCentre, std::int32_t nCells) noexcept {
    const std::int64_t nFirst = std::clamp<std::int64_t>(nCentre - kBefore, 0, nCells);
    const std::int64_t nLast = std::clamp<std::int64_t>(nCentre + kAfter, -1, std::int64_t{nCells} - 1);
    return {static_cast<std::int32_t>(nFirst), static_cast<std::int32_t>(nLast)};
}

}  // namespace

std::vector<PickEvent> LinePairPicker::Click(POINT ptClient, const SkeletonMap* pMap, const ViewGeometry& geometry,
                                             LabelList& labels) {
    std::vector<PickEvent> events;
    if (pMap == nullptr) {
        return events;
    }
    events.reserve(8);
    if (m_bLabelPending != 0) {
        CommitLabel(ptClient, m_ptPick, geometry, labels);
        m_bLabelPending = 0;
        events.push_back({PickEventKind::LabelPlaced});
    }
    const POINT ptImage = ClientToImage(ptClient, geometry);
    const CellRange rows = WindowRange(std::int64_t{geometry.nImageHeight} + 1 - ptImage.y, pMap->Rows());
    const CellRange columns = WindowRange(std::int64_t{ptImage.x} + 2, pMap->Columns());
    PickOutcome outcome = PickOutcome::GoOn;
    for (std::int32_t r = rows.first; r <= rows.last && outcome == PickOutcome::GoOn; ++r) {
        for (std::int32_t c = columns.first; c <= columns.last && outcome == PickOutcome::GoOn; ++c) {
            const std::uint8_t value = pMap->At({r, c});
            if (value >= 2) {
                outcome = PickEnd(value, {c - SkeletonMap::kBorder, r - SkeletonMap::kBorder}, ptClient, geometry, events);
            }
        }
    }
    if (outcome != PickOutcome::Refused) {
        events.push_back({PickEventKind::DefaultHandling});
    }
    return events;
}

LinePairPicker::PickOutcome LinePairPicker::PickEnd(std::int32_t nId, POINT ptBlock, POINT ptClient, const ViewGeometry& geometry,
                                                    std::vector<PickEvent>& events) {
    const auto mark = [&](std::int32_t nNumber) {
        const POINT ptImage{ptBlock.x, geometry.nImageHeight - ptBlock.y - 1};
        events.push_back({PickEventKind::Mark, ImageToClient(ptImage, geometry), nNumber});
    };
    const auto refuse = [&](std::int32_t& bDone, std::int32_t& nIdOfLine, std::int32_t nCount) {
        bDone = 0;
        nIdOfLine = 0;
        m_nClickCount = nCount;
        events.push_back({PickEventKind::WrongLine});
        return PickOutcome::Refused;
    };
    const auto take = [&](std::size_t nSlot, std::int32_t& bDone) {
        m_ptPick[nSlot] = ptBlock;
        bDone = 1;
        m_nClickCount = static_cast<std::int32_t>(nSlot) + 1;
        mark(m_nClickCount);
        return PickOutcome::GoOn;
    };
    if (m_bPick2Done == 0 && m_bPick1Done == 0) {
        m_nPickId1 = nId;
        return take(0, m_bPick1Done);
    }
    if (m_bPick2Done == 0) {
        return nId == m_nPickId1 ? take(1, m_bPick2Done) : refuse(m_bPick1Done, m_nPickId1, 0);
    }
    if (m_bPick3Done == 0) {
        m_nPickId3 = nId;
        return take(2, m_bPick3Done);
    }
    if (nId != m_nPickId3) {
        return refuse(m_bPick3Done, m_nPickId3, 2);
    }
    m_ptPick[3] = ptBlock;
    mark(4);
    return CompletePair(ptClient, geometry, events);
}

// The fourth end is in its slot. The picks start anew whatever becomes of the pair.
LinePairPicker::PickOutcome LinePairPicker::CompletePair(POINT ptClient, const ViewGeometry& geometry,
                                                         std::vector<PickEvent>& events) {
    m_bPick1Done = m_bPick2Done = m_bPick3Done = 0;
    m_nPickId3 = 0;
    m_nClickCount = 0;
    m_bPairPicked = 1;
    if (IsPairParallel(m_ptPick, m_fParallelTol) == 0) {
        events.push_back({PickEventKind::NotParallel});
        return PickOutcome::GoOn;
    }
    if (!(PairWidth(m_ptPick) > 0.0F)) {
        return PickOutcome::GoOn;
    }
    m_nPickId1 = 0;
    for (POINT& pt : m_ptPick) {
        pt = ImageToClient({pt.x, geometry.nImageHeight - pt.y - 1}, geometry);
    }
    const Feet feet = ComputeFeet(ptClient, m_ptPick);
    m_ptFoot1 = feet.pt1;
    m_ptFoot2 = feet.pt2;
    m_bLabelPending = 1;
    events.push_back({PickEventKind::RubberLabel});
    return PickOutcome::Accepted;
}

void LinePairPicker::Reset() noexcept {
    m_bPick1Done = m_bPick2Done = m_bPick3Done = 0;
    m_bPairPicked = 0;
    m_nClickCount = 0;
}

}  // namespace width
