// Whether two lines are parallel, how far apart they are, and the label that says so.
//
// Two quantities are called width. The mean cross distance (PairWidth) only decides whether a label
// can be made; nobody is shown it in the window. The width of a label is the length of the segment
// of the common normal between its two feet, at the place where the user put it.
//
// Float and double are used step by step as written; results depend on it.
// Tested by: tests/unit/measure/WidthTest.cpp
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/Platform.h"
#include "core/ViewGeometry.h"

namespace width {

/// Four picked line ends: 0 and 1 of the first line, 2 and 3 of the second.
using PickedEnds = std::array<POINT, 4>;

/// Widest angle between two lines that count as parallel, in degrees.
inline constexpr float kParallelTolerance = 5.0F;

/// Whether the two lines make an angle of at most fTolerance degrees (equal passes).
/// ends     any pixel space, y up or down; two equal ends of one line are never parallel to anything
/// returns  1 or 0
std::int32_t IsPairParallel(const PickedEnds& ends, float fTolerance = kParallelTolerance) noexcept;

/// Mean of the distances of each line's middle from the other line, in the pixels of the ends; 0
/// when the two lines are one. The lines must not have two equal ends.
float PairWidth(const PickedEnds& ends) noexcept;

/// The feet of a common normal: where it meets the first and the second line.
struct Feet {
    POINT pt1{};
    POINT pt2{};
};

/// Where the common normal through a point meets the two lines. Both in client coordinates,
/// truncated. Nearly horizontal and nearly vertical pairs are taken as exactly so. Which end of a
/// line comes first matters where lines are vertical or lean to both sides of the vertical. A line
/// whose ends coincide takes the direction of the other; if both do, the ends are the feet.
Feet ComputeFeet(POINT ptClient, const PickedEnds& endsClient) noexcept;

/// Half a label: two points in image coordinates, y from the top. A label is two consecutive
/// entries: the starts of its two extension lines, then its feet on the first and second line.
struct LabelEntry {
    POINT ptA{};
    POINT ptB{};
};

/// The labels of a job in the order of making, undone ones included, and how many of them, counted
/// from the first, are in force. Two entries a label; 2 * m_nCurLabel <= m_Labels.size().
struct LabelList {
    std::vector<LabelEntry> m_Labels;
    std::int32_t m_nCurLabel = 0;

    bool CanUndo() const noexcept { return m_nCurLabel > 0; }
    bool CanRedo() const noexcept { return 2 * static_cast<std::size_t>(m_nCurLabel) < m_Labels.size(); }
    void Undo() noexcept { --m_nCurLabel; }  ///< only when CanUndo
    void Redo() noexcept { ++m_nCurLabel; }  ///< only when CanRedo
};

/// Stores the label whose normal runs through a point, and drops the labels that were undone.
/// ptClient    the placing click, client coordinates
/// endsClient  the four ends in client coordinates
/// On std::bad_alloc, which it throws, the list is unchanged.
void CommitLabel(POINT ptClient, const PickedEnds& endsClient, const ViewGeometry& geometry, LabelList& labels);

/// Resolution of a picture, pixels per metre; 0: not known.
struct Resolution {
    std::int32_t nXPelsPerMeter = 0;
    std::int32_t nYPelsPerMeter = 0;
};

/// Length of the segment between two feet in whole pixels, truncated.
std::int32_t LabelLength(POINT ptFoot1, POINT ptFoot2) noexcept;

/// The text of a label: its number and its length, "1#: 50", or in centimetres where the picture
/// has a resolution, "1#: 10.0000cm". Feet in image coordinates. A picture with a resolution on one
/// axis only counts as one without.
std::string FormatLabelText(std::int32_t nLabel, POINT ptFoot1, POINT ptFoot2, Resolution resolution);

}  // namespace width
