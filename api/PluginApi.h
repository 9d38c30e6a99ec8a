/* The contract between the width plug-in and the image program that hosts it.
 *
 * Plain C, no other header of the project. The plug-in is a 64-bit Windows DLL with a single export, pi_init. A host
 *
 *   1. loads the DLL and looks up "pi_init";
 *   2. calls it once with a zeroed pi_table and a language, and gets two entry functions back;
 *   3. calls pi_start with one bitmap for each job, and pi_about whenever its user asks what the plug-in is;
 *   4. hears of a job through the callback that it gave to pi_start.
 *
 *   HMODULE hPlugin = LoadLibraryW(L"plugin\\width.dll");
 *   pi_init_fn pfnInit = (pi_init_fn)GetProcAddress(hPlugin, PI_INIT_NAME);
 *   pi_table table = {0};
 *   pfnInit(&table, 0x0409);
 *   table.pfnStart(pDib, NULL, OnPlugin, pHostState);
 *
 * A job is the span from pi_start to the closing of the window that pi_start opens. There is at most one at a time.
 *
 * Calling convention: the platform's only one for 64-bit code; functions have C linkage. All integers are
 * little-endian. No function throws or sets an error code.
 *
 * Bitmap: a packed device-independent bitmap in one block: a 40-byte BITMAPINFOHEADER (biSize 40, width and height
 * positive), for 8 bits per pixel and fewer a colour table of biClrUsed entries (2 to the power biBitCount when that
 * is 0) of blue, green, red and an unread byte, and the rows, bottom row first, each filled up to a multiple of four
 * bytes. Nothing lies between the three, and the block must be as long as its header says. Depths 1, 4, 8, 24 and 32 are
 * measured; biCompression is not read, rows are taken as uncompressed. biXPelsPerMeter and biYPelsPerMeter give the
 * resolution; 0 means unknown, and widths are then told in pixels.
 *
 * Memory: the block of a job comes from malloc and is released with free by the other side, so host and plug-in must
 * use the same C run-time library, which for this plug-in is the system's msvcrt.dll.
 *
 * Threads: pi_init, pi_start and pi_about run on the caller's thread. The callback runs on the job's own thread, never
 * on the one that called pi_start: a host with a window posts a message to it and returns. The plug-in locks nothing;
 * a host must not call pi_start from two threads at once.
 *
 * Unloading: the DLL must stay loaded while a job runs. Code 4 comes from inside the DLL, on a thread that still has
 * to leave it: a host that unloads waits for that thread to end, for instance by opening a handle of the current
 * thread during code 4 and waiting for it.
 */
#ifndef WIDTH_API_PLUGINAPI_H
#define WIDTH_API_PLUGINAPI_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define PI_STATIC_ASSERT(condition) static_assert(condition, #condition)
extern "C" {
#else
#define PI_STATIC_ASSERT(condition) _Static_assert(condition, #condition)
#endif

/* The name of the only export. */
#define PI_INIT_NAME "pi_init"

/* Language identifiers that give the Chinese interface; every other gives the English one. */
#define PI_LANG_CHINESE 0x0004
#define PI_LANG_CHINESE_PRC 0x0804
#define PI_LANG_CHINESE_SINGAPORE 0x1004

/* Code of the callback: the user sends the picture back.
 *
 * pParam is the job's bitmap, in its present state. It stays the plug-in's: the host reads or copies it before the
 * callback returns, and neither keeps the pointer nor changes or releases the block. Its size follows from its header,
 * and from _msize. Comes as often as the user gives the command, also never. */
#define PI_CODE_IMAGE 2

/* Code of the callback: the job ends.
 *
 * pParam is null. The window and the bitmap are already gone. Comes exactly once for each job whose thread was created,
 * also when its window could not be opened, and nothing follows it. The thread itself is still on its way out: a
 * pi_start from inside this callback is refused as during a job, its bitmap released unseen. */
#define PI_CODE_END 4

/* What a host is called with.
 *
 * pCookie   what the host gave to pi_start, unchanged
 * nCode     PI_CODE_IMAGE or PI_CODE_END
 * pParam    as the code says
 * pUnused   always null
 * There is no result. The job's window does not react before the callback returns. It must not throw. */
typedef void (*HostCallback)(void* pCookie, int32_t nCode, void* pParam, void* pUnused);

/* Opens a job: a maximised window with a picture, on a thread of its own. Returns at once.
 *
 * pDib      the bitmap, a block from malloc
 * pUnused   not read
 * pfn       the callback, called until it has been given PI_CODE_END
 * pCookie   handed back with every call; must not be null
 *
 * With pDib, pfn or pCookie null nothing happens and a block stays the caller's. Otherwise the block belongs to the
 * plug-in from the call on, whatever comes of it. During a job the block is released and nothing else happens: the
 * running job keeps its picture, callback and cookie. When no thread can be created the block is released and no
 * callback comes. None of this is told to the caller: a host keeps its own account, from the call to code 4. */
typedef void (*pi_start_fn)(void* pDib, void* pUnused, HostCallback pfn, void* pCookie);

/* Shows what the plug-in is, in a modal box without a parent window, on the caller's thread; returns when it is closed.
 * Independent of a job, allowed during one. The box pumps the thread's messages. */
typedef void (*pi_about_fn)(void);

/* Record in the host's memory, of 32 bytes or more, filled in by pi_init. Fields named unused keep what the host wrote. */
typedef struct pi_table {
    int32_t nHead;        /* 1 */
    uint8_t unused4[4];   /* not written */
    pi_start_fn pfnStart; /* never null afterwards */
    uint8_t unused16[8];  /* not written */
    pi_about_fn pfnAbout; /* never null afterwards */
} pi_table;

PI_STATIC_ASSERT(sizeof(void*) == 8);
PI_STATIC_ASSERT(sizeof(pi_start_fn) == 8 && sizeof(pi_about_fn) == 8);
PI_STATIC_ASSERT(sizeof(pi_table) == 32);
PI_STATIC_ASSERT(offsetof(pi_table, nHead) == 0);
PI_STATIC_ASSERT(offsetof(pi_table, pfnStart) == 8);
PI_STATIC_ASSERT(offsetof(pi_table, pfnAbout) == 24);

/* Type of the export.
 *
 * pTable    where the entry functions go; must not be null; need not outlive the call
 * nLangId   the language of the interface for as long as the DLL is loaded, and of the help folder that is looked for
 *           beside the host's executable (plugin\help\<four hexadecimal digits>\<name of the DLL>\index.html, and 0000
 *           when that is not there). Once Chinese was chosen, a later call with another language changes the help
 *           folder only: a host that changes its language unloads the DLL and loads it anew.
 * returns   always 1 */
typedef int32_t (*pi_init_fn)(pi_table* pTable, uint16_t nLangId);

#ifdef __cplusplus
}
#endif

#endif
