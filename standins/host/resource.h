/* Ids of the host's resources and commands. Read by the resource compiler too. */
#pragma once

#define IDR_HOST 1 /* menu, accelerators, icon */

/* Text parts of the status bar are numbered by HostWindow. */
#define IDC_STATUS 10
#define IDC_PICTURE 11

#define IDM_OPEN 100
#define IDM_SAVE 101
#define IDM_EXIT 102

#define IDM_FIT 110
#define IDM_ACTUAL 111

#define IDM_MEASURE 120
#define IDM_ABOUT 121

#define IDM_ENGLISH 130
#define IDM_CHINESE 131
