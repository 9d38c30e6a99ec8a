// One detection: walk, search, store, mark.
// Tested by: tests/unit/analysis/LineStoreTest.cpp
#include "analysis/LineStore.h"

#include <new>

#include "core/Arithmetic.h"

namespace width {

namespace {

bool LiesInside(const PathPoint& pt, const SkeletonMap& map) noexcept {
    return pt.x >= 0 && pt.x < map.Width() && pt.y >= 0 && pt.y < map.Height();
}

// Only the low 8 bits of an id fit a cell: ids 256 and 257 write 0 and 1, which mark nothing, and
// 258 writes 2 again.
void Mark(SkeletonMap& map, const PathPoint& pt, std::int32_t nId) noexcept {
    map.Set({pt.y + SkeletonMap::kBorder, pt.x + SkeletonMap::kBorder}, static_cast<std::uint8_t>(nId));
}

PathPoint WithoutIndex(const PathPoint& pt) noexcept {
    return {0, pt.x, pt.y};
}

Detection StoreLine(const LineDetector& detector, SkeletonMap& map, LineStore& store) {
    Detection detection;
    detection.line = {WithoutIndex(detector.First()), WithoutIndex(detector.Last())};
    detection.nFitAxis = detector.Axis();
    store.m_Lines.push_back(detection.line);
    detection.bStored = true;
    if (LiesInside(detection.line.ptFirst, map) && LiesInside(detection.line.ptLast, map)) {
        detection.nId = store.m_nNextLineId;
        Mark(map, detection.line.ptFirst, store.m_nNextLineId);
        Mark(map, detection.line.ptLast, store.m_nNextLineId);
        store.m_nNextLineId = WrapAdd(store.m_nNextLineId, 1);
    }
    return detection;
}

}  // namespace

Detection DetectLine(SkeletonMap& map, POINT ptImage, const LineConditions& conditions, LineStore& store) noexcept {
    try {
        LineDetector detector(conditions);
        if (detector.TraceFromPoint(map, ptImage) == 0 || detector.SearchLine() == 0) {
            return {};
        }
        return StoreLine(detector, map, store);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace width
