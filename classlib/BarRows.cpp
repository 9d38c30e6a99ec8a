// Tested by: tests/unit/classlib/BarRowsTest.cpp
#include "classlib/BarRows.h"

std::vector<BarPlace> BreakIntoRows(std::span<const BarItem> items, int nRoom) {
    std::vector<BarPlace> places;
    BarPlace place;
    int nShift = 0;  // of the present row, to the left
    for (const BarItem& item : items) {
        const bool bFirstOfRow = places.empty() || places.back().nRow != place.nRow;
        if (!bFirstOfRow && item.nRight - nShift > nRoom) {
            ++place.nRow;
            nShift = item.nLeft - items.front().nLeft;
        }
        place.nLeft = item.nLeft - nShift;
        places.push_back(place);
    }
    return places;
}
