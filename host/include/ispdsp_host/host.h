/* libispdsp_host: the reference host layer. Implements the OSA_* services
 * that libispdsp.so expects from its host process, on POSIX, for development
 * hosts, tools and tests. Never linked into the driver library.
 *
 * - Files through stdio. Every absolute path is placed under the sandbox root
 *   named by the environment variable ISPDSP_ROOT (read at each open), so
 *   "/var/tmp/dsp_isp_para.bin" can live in a temporary folder.
 * - Memory through malloc, with counters and optional fault injection.
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

/* Fault injection: every OSA_fileRead moves at most `limit` bytes in total per
 * open file (later reads come up short); UINT64_MAX switches it off. */
void ispdsp_host_limit_file_reads(uint64_t limit);

/* Resolves a driver path into the sandbox; returns 0 or -1 when `out` is too small. */
int ispdsp_host_resolve_path(const char* path, char* out, size_t out_size);

#ifdef __cplusplus
}
#endif

#endif /* ISPDSP_HOST_HOST_H */
