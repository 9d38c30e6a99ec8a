// How a bar's row of items is broken when its window is narrow. Tested by: tests/unit/classlib/BarRowsTest.cpp
#pragma once

#include <span>
#include <vector>

/// From where to where an item of a row reaches, in pixels.
struct BarItem {
    int nLeft = 0;
    int nRight = 0;
};

/// Where an item comes to lie.
struct BarPlace {
    int nRow = 0;
    int nLeft = 0;
    friend constexpr bool operator==(const BarPlace&, const BarPlace&) = default;
};

/// Breaks a row of items so that none reaches beyond nRoom, if an item alone does not. Each row begins where the first one does
/// and keeps the gaps. items  one row, from left to right
std::vector<BarPlace> BreakIntoRows(std::span<const BarItem> items, int nRoom);
