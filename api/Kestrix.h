/* The contract between the width plug-in and the image library that writes its pictures to files.
 *
 * Plain C, no other header of the project. The library is a 64-bit Windows DLL named kestrix.dll; the plug-in imports the
 * seven functions below by name and nothing more, and runs with any library that keeps this contract.
 *
 * Formats have numbers from 0 to 15. Which of them exist, and what they are called, is the library's to say.
 *
 * Calling convention: the platform's only one for 64-bit code; functions have C linkage. All integers are little-endian.
 * Texts are narrow, in the process's code page, and end with a zero byte.
 *
 * Threads: the plug-in calls all seven on the thread of its window, one call at a time.
 *
 * Memory: records and blocks stay the caller's. What Kestrix_ExtFmt and Kestrix_GetFmtInfo point to stays the library's, and
 * is valid at least until the next call of the same function.
 */
#ifndef WIDTH_API_KESTRIX_H
#define WIDTH_API_KESTRIX_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define KESTRIX_STATIC_ASSERT(condition) static_assert(condition, #condition)
extern "C" {
#else
#define KESTRIX_STATIC_ASSERT(condition) _Static_assert(condition, #condition)
#endif

/* Format numbers end before this. */
#define KESTRIX_FORMATS 16

/* A format's options, 12 bytes, given by value. What each means is the library's business, with one exception: the plug-in
 * asks nothing before it replaces a file when bOption1 is not 0. */
typedef struct FormatOptions {
    uint32_t nOption0;
    uint8_t bOption1;
    uint8_t bOption2;
    uint8_t bOption3;
    uint8_t bOption4;
    uint8_t bOption5;
    uint8_t bOption6;
    uint8_t bReserved[2]; /* carried along with the value, never given to Kestrix_Save */
} FormatOptions;

/* What to save as, 284 bytes. Unnamed bytes are 0. */
typedef struct SaveOptions {
    uint32_t nFormat;
    uint32_t nOption0;
    uint8_t bOption1;
    uint8_t bOption2;
    uint8_t bUnused10;
    uint8_t bOption3;
    uint8_t bOption4;
    uint8_t bOption5;
    uint8_t bOption6;
    uint8_t bUnused15[13];
    char szError[256]; /* empty on the way in; a failed Kestrix_Save may leave a text in it */
} SaveOptions;

#pragma pack(push, 1)

/* One entry of the format table. Several may have the same number. */
typedef struct KestrixExtension {
    const char* pszExtension; /* without a dot; null ends the table */
    int32_t nFormat;
} KestrixExtension;

/* What the library tells of a format. The plug-in reads the name only. */
typedef struct KestrixFormatInfo {
    uint8_t bUnused[20];
    const char* pszName;
} KestrixFormatInfo;

#pragma pack(pop)

KESTRIX_STATIC_ASSERT(sizeof(FormatOptions) == 12);
KESTRIX_STATIC_ASSERT(offsetof(FormatOptions, bOption1) == 4);
KESTRIX_STATIC_ASSERT(offsetof(FormatOptions, bOption6) == 9);
KESTRIX_STATIC_ASSERT(offsetof(FormatOptions, bReserved) == 10);
KESTRIX_STATIC_ASSERT(sizeof(SaveOptions) == 284);
KESTRIX_STATIC_ASSERT(offsetof(SaveOptions, nOption0) == 4);
KESTRIX_STATIC_ASSERT(offsetof(SaveOptions, bOption1) == 8);
KESTRIX_STATIC_ASSERT(offsetof(SaveOptions, bOption2) == 9);
KESTRIX_STATIC_ASSERT(offsetof(SaveOptions, bOption3) == 11);
KESTRIX_STATIC_ASSERT(offsetof(SaveOptions, bOption6) == 14);
KESTRIX_STATIC_ASSERT(offsetof(SaveOptions, szError) == 28);
KESTRIX_STATIC_ASSERT(sizeof(KestrixExtension) == 12 || sizeof(void*) != 8);
KESTRIX_STATIC_ASSERT(offsetof(KestrixFormatInfo, pszName) == 20);

/* Writes a packed bitmap to a file. pszPath: the whole path. pDib: as in the plug-in's own contract; only read.
 * pOptions: format and options; szError is written when the call fails.
 * Returns non-zero on success. */
int32_t Kestrix_Save(const char* pszPath, const void* pDib, SaveOptions* pOptions);

/* Whether a bitmap can be saved in the format pOptions->nFormat, the only field that is set. Non-zero: it can. */
int32_t Kestrix_CanSave(const void* pDib, const SaveOptions* pOptions);

/* The format table. Never null. */
const KestrixExtension* Kestrix_ExtFmt(void);

/* What is to be told of a format; null for a number without one. */
const KestrixFormatInfo* Kestrix_GetFmtInfo(int32_t nFormat);

/* Non-zero if the format has a dialog for its options. */
int32_t iopt_bDlg(int32_t nFormat);

/* The format's options before anybody changed them. */
FormatOptions iopt_get_default(int32_t nFormat);

/* Lets the user change the format's options in a dialog. bChinese: 1 for the Chinese dialog, 0 for the English one.
 * hOwner: the dialog's owner, a window handle. Returns the options as they are afterwards. */
FormatOptions iopt_Dlg(int32_t bChinese, int32_t nFormat, void* hOwner);

#ifdef __cplusplus
}
#endif

#endif
