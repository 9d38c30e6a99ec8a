// The four-click dialogue that picks two lines by their ends, as plain data.
//
// A click looks through 20 x 20 cells of the skeleton map for line ends (cells of 2 and more); each
// one found is a pick. Two picks of one id make the first line, two more the second; then the pair
// is tested and waits for the click that places its label. What has to be shown comes out as a list
// of events in order; the state is final before the first of them is shown, so a message box that
// pumps messages finds everything in order.
// Tested by: tests/unit/measure/PickingTest.cpp
#pragma once

#include <cstdint>
#include <vector>

#include "core/Platform.h"
#include "core/SkeletonMap.h"
#include "core/ViewGeometry.h"
#include "measure/Width.h"

namespace width {

enum class PickEventKind {
    LabelPlaced,     ///< the pending label is stored: invalidate the view and repaint at once
    Mark,            ///< draw a mark with nNumber at ptClient
    WrongLine,       ///< warn that the two ends are of different lines, then invalidate the view
    NotParallel,     ///< tell that the pair is not parallel, then invalidate the view
    RubberLabel,     ///< draw the rubber label for the first time, with the feet m_ptFoot1, m_ptFoot2
    DefaultHandling  ///< pass the click on to the window's default handling
};

struct PickEvent {
    PickEventKind kind;
    POINT ptClient{};          ///< Mark: centre of the mark, client coordinates
    std::int32_t nNumber = 0;  ///< Mark: 1..4
};

/// The picking state of a view. Fields are read by the painting code; only the operations write.
class LinePairPicker {
public:
    PickedEnds m_ptPick{};  ///< block coordinates while picking; client coordinates while a label is pending
    std::int32_t m_bPick1Done = 0;
    std::int32_t m_bPick2Done = 0;
    std::int32_t m_bPick3Done = 0;
    std::int32_t m_bPairPicked = 0;    ///< four ends picked; only Reset clears it
    std::int32_t m_nPickId1 = 0;       ///< map value of the first pick, 0: none
    std::int32_t m_nPickId3 = 0;       ///< map value of the third pick, 0: none
    std::int32_t m_nClickCount = 0;    ///< picks so far, 0..3 between clicks
    std::int32_t m_bLabelPending = 0;  ///< an accepted pair waits for the click that places its label
    POINT m_ptFoot1{};                 ///< feet of the rubber label on the screen, client coordinates
    POINT m_ptFoot2{};
    float m_fParallelTol = kParallelTolerance;

    /// A left click of the width tool. Places a pending label, then looks for line ends.
    /// pMap      the skeleton, or null while there has been none: the click is then ignored
    /// labels    gets the label that the click places
    /// returns   what to show, in order. Throws std::bad_alloc only; state and labels then still
    ///           fit together, as after a click that found fewer ends.
    std::vector<PickEvent> Click(POINT ptClient, const SkeletonMap* pMap, const ViewGeometry& geometry, LabelList& labels);

    /// What a pick says about going on through the window.
    enum class PickOutcome {
        GoOn,      ///< look for more ends
        Refused,   ///< the click ends here, without default handling
        Accepted,  ///< a pair is complete and its label pending: further ends mean nothing
    };

    /// One line end: its map value nId (2..255) and its point in block coordinates. This is what
    /// Click does with each end that it finds; a caller without a mouse may pick ends this way.
    /// ptClient  where the mouse is, for the first rubber label
    PickOutcome PickEnd(std::int32_t nId, POINT ptBlock, POINT ptClient, const ViewGeometry& geometry,
                        std::vector<PickEvent>& events);

    /// The right button of the width tool: takes all picks back; a pending label stays.
    void Reset() noexcept;

private:
    PickOutcome CompletePair(POINT ptClient, const ViewGeometry& geometry, std::vector<PickEvent>& events);
};

}  // namespace width
