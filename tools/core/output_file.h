// Writing a tool's output without ever losing a user's work, one rule for every tool:
//  - the bytes go to a temporary file beside the target and are renamed into place only when
//    all of them were written, so an interrupted or failed write leaves the old file as it was;
//  - an output is never one of the run's inputs (same device and inode: links and other
//    spellings of the path count), whatever the user asks;
//  - an existing file is replaced only on an explicit choice (--force, `save --force FILE`).
// A target that exists and is no regular file (/dev/null, a FIFO, a terminal) is written
// directly: there is no work of the user's to keep there.
#pragma once

#include <cstdio>
#include <span>
#include <string>
#include <vector>

namespace ispdsp::tools {

struct OutputRule {
    std::vector<std::string> inputs;  // the run's input files: never written
    bool replace = false;             // an existing file may be replaced
    std::string howToReplace = "--force";  // named in the refusal of an existing file
};

// Why `path` may not be written under `rule` ("PATH: exists; --force replaces it"); empty when
// it may. Called before the work starts, so a long run is not wasted on a refused output.
std::string outputRefusal(const std::string& path, const OutputRule& rule);

// An output being written: a temporary file in the target's folder until commit().
class OutputFile {
public:
    OutputFile() = default;
    ~OutputFile();  // removes the temporary file unless committed
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Checks `path` (outputRefusal) and opens the temporary file; false with error().
    bool open(const std::string& path, const OutputRule& rule);
    std::FILE* stream() const { return stream_; }
    // Flushes, syncs and renames into place; false with error() when any byte was lost
    // (the target is then left as it was). `lostErrno`: a write error seen earlier.
    bool commit(int lostErrno = 0);
    const std::string& error() const { return error_; }

private:
    bool fail(const std::string& reason);
    std::string path_;
    std::string temporary_;  // empty when writing straight to a device
    bool replace_ = false;
    std::string howToReplace_;
    std::FILE* stream_ = nullptr;
    std::string error_;
};

// The whole of `bytes` to `path` through an OutputFile; false with `error` ("PATH: ...").
bool writeOutputFile(const std::string& path, std::span<const char> bytes, const OutputRule& rule, std::string& error);

}  // namespace ispdsp::tools
