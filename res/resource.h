/* Every id of the plug-in's resources, commands and controls, by name. Read by the resource compiler too, so plain
   numbers only. A resource made once per language has two, which end in _EN and _ZH.
   Tested by: scripts/check-resources. */
#pragma once

/* Frame: menu, icon and title string of one id. The tool bar, one for both languages, bears the English one; its
   pictures for screens of high resolution have one of their own. */
#define IDR_MAINFRAME_EN 1002
#define IDR_MAINFRAME_ZH 1005
#define IDB_TOOLBAR_LARGE 1006

/* Cursors of the track and zoom tools. */
#define IDC_HAND_CLOSED 1009
#define IDC_HAND_OPEN 1010
#define IDC_ZOOM_BOTH 1011
#define IDC_ZOOM_IN 1012
#define IDC_ZOOM_OUT 1013

/* Status bar: the id of a pane is its command id, asked for its text, and that of its first text. */
#define ID_PANE_PATH 1
#define ID_PANE_SIZE 2
#define ID_PANE_ZOOM 3
#define ID_PANE_DEPTH 4

/* Commands. The numbers of the second group are those every frame of this kind uses for them. */
#define ID_TOOL_TRACK 32771
#define ID_TOOL_ZOOM 32772
#define ID_FILE_SAVE_AS_PICTURE 32773
#define ID_ABOUT 32774
#define ID_EXIT 32775
#define ID_VIEW_BEST_FIT 32776
#define ID_VIEW_ACTUAL_SIZE 32777
#define ID_SEND_IMAGE 32778
#define ID_TOOL_LINE_DETECT 32785
#define ID_TOOL_WIDTH_LABEL 32786
#define ID_BINARY_SETTING 32787
#define ID_LINE_SETTING 32789
#define ID_LABEL_SETTING 32793
#define ID_SKELETONIZE 32799
#define ID_WRITE_TO_BITMAP 32802

#define ID_FILE_SAVE 57603
#define ID_FILE_PRINT_SETUP 57606
#define ID_FILE_PRINT 57607
#define ID_FILE_PRINT_PREVIEW 57609
#define ID_EDIT_UNDO 57643
#define ID_EDIT_REDO 57644
#define ID_HELP_CONTENTS 57667

/* Print preview: the bar above the page, and its commands. */
#define IDD_PREVIEW_BAR_EN 30723
#define IDD_PREVIEW_BAR_ZH 30727
#define ID_PREVIEW_CLOSE 58112
#define ID_PREVIEW_PRINT 58116
#define ID_PREVIEW_ZOOM_IN 58117
#define ID_PREVIEW_ZOOM_OUT 58118

/* What stands there while a page is printed. */
#define IDD_PRINTING_EN 30722
#define IDD_PRINTING_ZH 30726
#define IDC_PRINT_DOCUMENT 201
#define IDC_PRINT_PRINTER 202
#define IDC_PRINT_PORT 203

/* Messages */
#define IDS_COMMAND_FAILED_EN 61705
#define IDS_COMMAND_FAILED_ZH 61905
#define IDS_PRINT_FAILED_EN 61708
#define IDS_PRINT_FAILED_ZH 61908
#define IDS_NO_PRINTER_EN 61709
#define IDS_NO_PRINTER_ZH 61909

/* Controls that nobody asks for. */
#define IDC_STATIC -1

/* About */
#define IDD_ABOUT_EN 1001
#define IDD_ABOUT_ZH 1000

/* Binary setting */
#define IDD_BINARY_EN 1016
#define IDD_BINARY_ZH 1018
#define IDC_AUTO_MODE 1026
#define IDC_SELF_MODE 1003
#define IDC_AUTO_MIN_GREY 1004
#define IDC_AUTO_MAX_GREY 1034
#define IDC_SELF_MIN_GREY 1028
#define IDC_SELF_MAX_GREY 1029

/* Line conditions */
#define IDD_LINE_EN 1017
#define IDD_LINE_ZH 1019
#define IDC_LINE_LENGTH 1007
#define IDC_LINE_ANGLE 1027
#define IDC_RECT_ALGORITHM 1021
#define IDC_RECT_WIDTH 1008

/* Colours and font */
#define IDD_LABEL_EN 1022
#define IDD_LABEL_ZH 1023
#define IDC_SKELETON_COLOUR 1032
#define IDC_LABEL_COLOUR 1024
#define IDC_LINE_COLOUR 1033
#define IDC_LABEL_FONT 1025
#define IDC_SAVE_SKELETON 1035
#define IDC_SAVE_LINE 1036

/* What the save dialog adds to the system's */
#define IDD_SAVE_EN 1014
#define IDD_SAVE_ZH 1015
#define IDC_SAVE_OPTION 1033
