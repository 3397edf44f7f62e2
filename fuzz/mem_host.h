// An in-memory host for the fuzz targets: the OSA_* services over files kept
// in memory by path, malloc-backed memory with leak accounting, fault
// injection for allocations and reads, and a log that formats every line (so
// the sanitizers see every format argument) and drops it.
//
// Everything here runs on the fuzzing thread only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace fuzzhost {

// Files ------------------------------------------------------------------
void resetFiles();
void putFile(std::string_view path, const uint8_t* data, size_t size);
void putFile(std::string_view path, std::string_view text);
// The file's bytes, or nullptr when there is no such file.
const std::vector<uint8_t>* file(std::string_view path);
// Handles opened and not closed yet.
uint64_t openHandles();
// Bytes that OSA_fileRead delivered since the last resetCounters().
uint64_t bytesRead();

// Memory -----------------------------------------------------------------
uint64_t allocCalls();  // since the last resetCounters()
uint64_t liveBlocks();
uint64_t liveBytes();

// Fault injection --------------------------------------------------------
// The k-th allocation call from now fails (1 = the next one); 0 = never.
void failAllocAt(uint64_t k);
// Every open file delivers at most `limit` bytes through OSA_fileRead;
// UINT64_MAX = no limit.
void limitReads(uint64_t limit);
// Clears the counters and switches every fault off.
void resetCounters();

// Checks -----------------------------------------------------------------
// Stops the run (a fuzzing finding) with a message when `ok` is false.
void require(bool ok, const char* what);

}  // namespace fuzzhost
