/* Ids of the library's options dialogs; English and Chinese ones differ in the dialog's id alone. */
#pragma once

#define IDD_PNG_EN 101
#define IDD_JPEG_EN 102
#define IDD_TIFF_EN 103
#define IDD_PNG_ZH 201
#define IDD_JPEG_ZH 202
#define IDD_TIFF_ZH 203

#define IDC_INTERLACED 1001
#define IDC_QUALITY 1002
#define IDC_QUALITY_SPIN 1003
/* the order of the packings */
#define IDC_PACK_LZW 1004
#define IDC_PACK_NONE 1005
#define IDC_PACK_ZIP 1006
#define IDC_LABEL -1
