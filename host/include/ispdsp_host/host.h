/* libispdsp_host: the reference host layer. Implements the OSA_* services
 * that libispdsp.so expects from its host process, on POSIX, for development
 * hosts, tools and tests. Never linked into the driver library.
 *
 * - Files through stdio. Every absolute path is placed under the sandbox root
 *   set by the program, or else named by the environment variable ISPDSP_ROOT
 *   (read at each open), so
 *   "/var/tmp/dsp_isp_para.bin" can live in a temporary folder; or, switched
 *   on, files kept in memory by path (fuzzing: no disk, no sandbox).
 *   Open handles and delivered bytes are counted.
 * - Memory through malloc, with counters and optional fault injection; an
 *   uncleared block is filled with 0xA5, so code that relies on zeros shows up;
 *   a 16-byte guard of 0x7F behind every block is checked at its free (a write
 *   past the end aborts there) and makes a read past the end see large values.
 * - Log lines to stderr with their level, or to a sink that the program installs. */
#ifndef ISPDSP_HOST_HOST_H
#define ISPDSP_HOST_HOST_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Receives every formatted log line (text as formatted, line end included). */
typedef void (*ispdsp_host_log_sink)(void* ctx, int32_t level, int32_t category, const char* text);

/* Installs a sink; NULL restores the default (stderr, prefixed with the level). */
void ispdsp_host_set_log_sink(ispdsp_host_log_sink sink, void* ctx);

/* The installed sink and its context (both NULL for the default), so a caller
 * can put back what it replaced. */
void ispdsp_host_get_log_sink(ispdsp_host_log_sink* sink, void** ctx);

typedef struct {
    uint64_t alloc_calls; /* OSA_memUAllocAlign + OSA_memUCallocAlign calls, failed ones included */
    uint64_t free_calls;  /* OSA_memUFree calls with a non-null block */
    uint64_t live_blocks; /* blocks handed out and not yet freed */
    uint64_t live_bytes;
} ispdsp_host_mem_stats;

void ispdsp_host_get_mem_stats(ispdsp_host_mem_stats* stats);

/* Fault injection: the n-th allocation call from now (1 = the next one) returns
 * NULL; 0 switches it off. */
void ispdsp_host_fail_alloc_after(uint64_t n);

/* Fault injection: OSA_fileRead and OSA_fgets deliver at most `limit` bytes in
 * total per file opened from now on (the file looks cut there); UINT64_MAX
 * switches it off. The _of form limits only the files opened by that driver
 * path (NULL: every file). */
void ispdsp_host_limit_file_reads(uint64_t limit);
void ispdsp_host_limit_file_reads_of(const char* path, uint64_t limit);

/* Fault injection: OSA_fileWrite accepts at most `limit` bytes in total per
 * file opened from now on (the device looks full there); UINT64_MAX switches
 * it off. */
void ispdsp_host_limit_file_writes(uint64_t limit);

/* Fault injection: while on (on != 0), OSA_fileOpen reports success but hands
 * out no handle, as a faulty platform layer might; 0 switches it off. */
void ispdsp_host_open_without_handle(int on);

typedef struct {
    uint64_t open_files; /* OSA_fileOpen successes not closed yet */
    uint64_t bytes_read; /* bytes that OSA_fileRead and OSA_fgets delivered */
} ispdsp_host_file_stats;

void ispdsp_host_get_file_stats(ispdsp_host_file_stats* stats);

/* In-memory files: while on (on != 0), OSA_fileOpen finds files by their path
 * in a store kept in memory (no sandbox root, no disk); a write-mode handle
 * replaces the file when it is closed. Each call empties the store. */
void ispdsp_host_use_memory_files(int on);
/* Puts (or replaces) a file of the store; 0, or -1 without a path. */
int ispdsp_host_put_memory_file(const char* path, const void* data, size_t size);
/* The size of a file of the store, or -1 when there is none. */
int64_t ispdsp_host_memory_file_size(const char* path);

/* Sets the sandbox root for every open from now on, in place of ISPDSP_ROOT:
 * "" switches the sandbox off (driver paths are host paths), NULL goes back to
 * reading ISPDSP_ROOT at each open. */
void ispdsp_host_set_sandbox_root(const char* root);
/* The root set by ispdsp_host_set_sandbox_root into `out`: 1 when one is set,
 * 0 when ISPDSP_ROOT is read, -1 when `out` is too small. A caller that changes
 * the root for a while puts the previous one back with it. */
int ispdsp_host_get_sandbox_root(char* out, size_t out_size);

/* Resolves a driver path into the sandbox; returns 0 or -1 when `out` is too small. */
int ispdsp_host_resolve_path(const char* path, char* out, size_t out_size);

#ifdef __cplusplus
}
#endif

#endif /* ISPDSP_HOST_HOST_H */
