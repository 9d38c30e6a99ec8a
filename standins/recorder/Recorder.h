/* What a test tells the recording image library, and what that library saw.
 *
 * The library keeps the contract of api/Kestrix.h, writes no file, and answers as told. A test gets the one record by the
 * export recorder_state and may read and write it while the plug-in makes no call. */
#ifndef WIDTH_STANDINS_RECORDER_RECORDER_H
#define WIDTH_STANDINS_RECORDER_RECORDER_H

#include "api/Kestrix.h"

typedef struct RecorderState {
    /* answers */
    const KestrixExtension* pTable;
    const char* pszNames[KESTRIX_FORMATS]; /* null: no information */
    uint32_t nCanSave;                     /* bit n: the picture can be saved in format n */
    uint32_t nHasDialog;                   /* bit n: format n has an options dialog */
    FormatOptions defaults[KESTRIX_FORMATS];
    FormatOptions chosen; /* by the user in the options dialog */
    int32_t nSaved;       /* result of Kestrix_Save */
    char szError[256];    /* left by a failed one */

    /* record */
    char szCalls[4096];    /* a word for each call, its numbers in it, a blank behind it */
    SaveOptions saved;     /* what the last Kestrix_Save got */
    char szPath[300];      /* of the last Kestrix_Save */
    const void* pDib;      /* of the last call that has one */
    int32_t bProbesZeroed; /* every Kestrix_CanSave got a record with nothing but a format in it */
    void* hOwner;          /* of the last options dialog */
} RecorderState;

typedef RecorderState* (*recorder_state_fn)(void);

#endif
