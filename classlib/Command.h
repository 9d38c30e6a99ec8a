// Commands: who takes them, in which state their menu item, button or pane is shown.
//
// A class that takes commands lists them in one table, Commands(), built with the helpers below from its own
// member functions; a handler of the wrong form doesn't compile. A command is offered to one target after the
// other by OnCmdMsg, which the frame overrides to set the order. Before a menu opens, when the thread is idle and
// before a command runs, the same road carries a CCmdUI to the update handlers, which enable, mark or name the item.
// Tested by: tests/win/ClasslibTest.cpp.
#pragma once

#include <span>
#include <type_traits>

#include "classlib/Win.h"

class CCmdTarget;

constexpr int CN_COMMAND = 0;             ///< a menu item or button was chosen
constexpr int CN_UPDATE_COMMAND_UI = -1;  ///< the state of the item is asked for

/// One item whose state is being decided. The base decides for nobody: derived classes carry the calls out on a menu
/// item, a tool bar button or a status pane. Handlers call each at most once and keep no pointer to the object.
class CCmdUI {
public:
    const UINT m_nID;               ///< command id
    bool m_bEnableChanged = false;  ///< a handler called Enable

    explicit CCmdUI(UINT nID) : m_nID(nID) {}
    CCmdUI(const CCmdUI&) = delete;
    CCmdUI& operator=(const CCmdUI&) = delete;
    virtual ~CCmdUI() = default;

    void Enable(bool bOn = true) {
        m_bEnableChanged = true;
        DoEnable(bOn);
    }
    /// 0 unmarked, 1 marked.
    virtual void SetCheck(int /*nCheck*/ = 1) {}
    virtual void SetText(LPCWSTR /*lpszText*/) {}

    /// Asks the target's update handlers. An item that nobody enabled or disabled is enabled exactly when somebody on
    /// the target's road would run its command, provided bDisableIfNoHandler.
    void DoUpdate(CCmdTarget& target, bool bDisableIfNoHandler);

protected:
    virtual void DoEnable(bool /*bOn*/) {}
};

/// One row of a command table: ids nID to nLastID, what runs for them and what tells their state.
struct CmdEntry {
    UINT nID;
    UINT nLastID;
    void (*pfnRun)(CCmdTarget&);              ///< null: the row only tells the state
    void (*pfnUpdate)(CCmdTarget&, CCmdUI*);  ///< null: the row leaves the state alone
};

/// Anything that takes commands.
class CCmdTarget {
public:
    CCmdTarget() = default;
    CCmdTarget(const CCmdTarget&) = delete;
    CCmdTarget& operator=(const CCmdTarget&) = delete;
    virtual ~CCmdTarget() = default;

    /// The target's own table; lives for ever.
    virtual std::span<const CmdEntry> Commands() const { return {}; }

    /// Offers a command, or with nCode CN_UPDATE_COMMAND_UI the question for its state in pCmdUI. With ppHandler
    /// nothing runs: the target that would run the command is stored there. True if somebody took it. The base
    /// looks into Commands() only; the first row that fits wins.
    virtual bool OnCmdMsg(UINT nID, int nCode, CCmdUI* pCmdUI, CCmdTarget** ppHandler);
};

namespace classlib_detail {

template <class Member>
struct MemberOf;
template <class C, class R, class... Args>
struct MemberOf<R (C::*)(Args...)> {
    using Class = C;
};

template <auto Handler>
void RunCommand(CCmdTarget& target) {
    using C = typename MemberOf<decltype(Handler)>::Class;
    static_assert(std::is_same_v<decltype(Handler), void (C::*const)()> || std::is_same_v<decltype(Handler), void (C::*)()>,
                  "a command handler is void OnName()");
    (static_cast<C&>(target).*Handler)();
}

template <auto Handler>
void UpdateCommand(CCmdTarget& target, CCmdUI* pCmdUI) {
    using C = typename MemberOf<decltype(Handler)>::Class;
    static_assert(
        std::is_same_v<decltype(Handler), void (C::*const)(CCmdUI*)> || std::is_same_v<decltype(Handler), void (C::*)(CCmdUI*)>,
        "an update handler is void OnUpdateName(CCmdUI* pCmdUI)");
    (static_cast<C&>(target).*Handler)(pCmdUI);
}

}  // namespace classlib_detail

/// A command: void OnName(), and if given void OnUpdateName(CCmdUI*).
template <auto Run>
constexpr CmdEntry Cmd(UINT nID) {
    return {nID, nID, classlib_detail::RunCommand<Run>, nullptr};
}
template <auto Run, auto Update>
constexpr CmdEntry Cmd(UINT nID) {
    return {nID, nID, classlib_detail::RunCommand<Run>, classlib_detail::UpdateCommand<Update>};
}

/// The state of ids nID to nLastID, such as status panes, which nobody chooses.
template <auto Update>
constexpr CmdEntry CmdUpdate(UINT nID, UINT nLastID) {
    return {nID, nLastID, nullptr, classlib_detail::UpdateCommand<Update>};
}
