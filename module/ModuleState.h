// The values that live as long as the module, and nothing else: a later job finds what an earlier one left.
//
// Written by the entry functions on the host's threads before the job's thread runs, and by that thread from then
// on; there are no locks. g_pThread tells whether a job is running.
// Tested by: tests/e2e/PluginTest.cpp
#pragma once

#include "api/PluginApi.h"
#include "classlib/Win.h"

class CFrameWnd;
class CWinThread;

namespace width {

inline WORD g_nLangId = 0;  ///< language identifier of the last pi_init; picks the help folder
inline int g_bChinese = 0;  ///< 1: Chinese texts and resources; never goes back to 0

inline HINSTANCE g_hModule = nullptr;  ///< the plug-in's own module: all resources come from it

inline HostCallback g_pfnHostCallback = nullptr;
inline void* g_pHostCookie = nullptr;
inline void* g_pPendingDib = nullptr;      ///< the block of the job that starts; read once
inline CFrameWnd* g_pMainFrame = nullptr;  ///< not owned
inline CWinThread* g_pThread = nullptr;    ///< not owned; null: idle
inline HANDLE g_hHostActCtx = nullptr;  ///< activation context of the host that the job's thread began with; null: the program's

/// What the left mouse button of the view means.
enum ToolMode : int {
    TOOL_LINE_DETECT = 0,
    TOOL_WIDTH_LABEL = 1,
    TOOL_TRACK = 2,
    TOOL_ZOOM = 3,
};
inline int g_nToolMode = TOOL_TRACK;

// Cursors of the tools, loaded by the first view and kept.
inline HCURSOR g_hCursorGrab = nullptr;
inline HCURSOR g_hCursorHand = nullptr;
inline HCURSOR g_hCursorZoom = nullptr;
inline HCURSOR g_hCursorZoomIn = nullptr;
inline HCURSOR g_hCursorZoomOut = nullptr;

// Line conditions, see analysis/LineConditions.h. The greatest angle is only kept and shown: no part of detection reads it.
inline int g_nMinLineLength = 30;
inline float g_fMaxLineAngle = 0.01745F;
inline int g_bRectAlgorithm = 1;
inline float g_fRectWidth = 3.0F;

// Fields of the binary dialog, set anew at each opening.
inline int g_nAutoMinGrey = 0;
inline int g_nAutoMaxGrey = 0;
inline int g_nSelfMinGrey = 0;
inline int g_nSelfMaxGrey = 0;

}  // namespace width
