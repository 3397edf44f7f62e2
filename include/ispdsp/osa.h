/* The host's OS abstraction layer. The driver library only declares these
 * services: they are resolved from the host process when libispdsp.so is
 * loaded (a development host links libispdsp_host, which implements them). */
#ifndef ISPDSP_OSA_H
#define ISPDSP_OSA_H

#include "ispdsp/types.h"

ISPDSP_EXTERN_C_BEGIN

typedef void* OSA_FileHandle;

enum { OSA_FILE_MODE_READ = 0, OSA_FILE_MODE_WRITE = 1 };
enum { OSA_SEEK_SET = 0, OSA_SEEK_CUR = 1, OSA_SEEK_END = 2 };

/* mode 0 read, 1 write (create or truncate); 0 on success. */
Int32 OSA_fileOpen(const Char* fileName, Int32 mode, OSA_FileHandle* hFile);
Int32 OSA_fileClose(OSA_FileHandle hFile);
/* Bytes moved, -1 on error. */
Int32 OSA_fileRead(OSA_FileHandle hFile, Ptr buffer, Uint32 size);
Int32 OSA_fileWrite(OSA_FileHandle hFile, const void* buffer, Uint32 size);
/* whence 0 start, 1 current, 2 end; 0 on success, -1 on failure (also before the start). */
Int32 OSA_fileSeek(OSA_FileHandle hFile, Int32 offset, Int32 whence);
Int32 OSA_fileTell(OSA_FileHandle hFile, Uint32* position);
/* fgets semantics; 0 while it delivers a line, -1 at end of file or error. */
Int32 OSA_fgets(Char* buffer, Int32 size, OSA_FileHandle hFile);

Ptr OSA_memUAllocAlign(Uint32 size, Uint32 align);
/* Zero-filled. */
Ptr OSA_memUCallocAlign(Uint32 size, Uint32 align);
Int32 OSA_memUFree(Ptr ptr);

/* level/category pairs used by the driver: (0,1) error, (1,8) warning, (2,2) information;
 * the RLR file functions also use (2,8) and (2,9). */
void OSA_logWrite(Int32 level, Int32 category, const Char* format, ...)
    __attribute__((format(printf, 3, 4)));

ISPDSP_EXTERN_C_END

#endif /* ISPDSP_OSA_H */
