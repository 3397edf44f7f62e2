// The reference host layer that every other test stands on: sandboxed and
// in-memory files, seek/tell/fgets semantics, counted handles and memory, log
// sinks, and the support library's log matcher. (The robust suite's concurrency
// test drives the counters and the sink from several threads. Its fault suite
// pins the fault injectors: each allocation of a creation fails in turn, and
// reads are cut at every byte through OSA_fileRead, OSA_fgets and for one path.)
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "ispdsp/osa.h"
#include "ispdsp_host/host.h"
#include "support/log_capture.h"
#include "support/mem_guard.h"
#include "support/sandbox.h"

namespace {

using namespace ispdsp_test;

struct OpenFile {
    OSA_FileHandle h = nullptr;
    OpenFile(const char* path, Int32 mode) { EXPECT_EQ(OSA_fileOpen(path, mode, &h), 0) << path; }
    ~OpenFile() { EXPECT_EQ(h != nullptr ? OSA_fileClose(h) : 0, 0); }
    std::string readAll(size_t chunk) {
        std::string out(256, '\0');
        size_t got = 0;
        for (Int32 n; (n = OSA_fileRead(h, out.data() + got, static_cast<Uint32>(chunk))) > 0;) got += n;
        return out.substr(0, got);
    }
};

// (Files the library writes land there too: rlr_test.cpp reads the flash copy back from the sandbox.)
TEST(HostFiles, AbsolutePathsLiveUnderTheSandboxRoot) {
    Sandbox sandbox;
    char resolved[256];
    ASSERT_EQ(ispdsp_host_resolve_path("/var/tmp/out.bin", resolved, sizeof resolved), 0);
    EXPECT_EQ(std::string(resolved), sandbox.hostPath("/var/tmp/out.bin"));
    ASSERT_EQ(ispdsp_host_resolve_path("relative.txt", resolved, sizeof resolved), 0);
    EXPECT_STREQ(resolved, "relative.txt");
    EXPECT_EQ(ispdsp_host_resolve_path("/var/tmp/out.bin", resolved, 4), -1);
    setenv("ISPDSP_ROOT", "", 1);  // an empty root leaves paths alone (the sandbox puts the old value back)
    ASSERT_EQ(ispdsp_host_resolve_path("/var/tmp/x", resolved, sizeof resolved), 0);
    EXPECT_STREQ(resolved, "/var/tmp/x");
}

TEST(HostFiles, FailedOpensLeaveANullHandleAndCountNothing) {
    Sandbox sandbox;
    sandbox.writeFile("/f", "x");
    const uint64_t before = openFiles();
    const struct {
        const char* path;
        Int32 mode;
    } cases[] = {{"/missing/file", OSA_FILE_MODE_READ}, {"/no/dir/file", OSA_FILE_MODE_WRITE}, {"/f", 7}, {nullptr, 0}};
    for (const auto& c : cases) {
        OSA_FileHandle h = reinterpret_cast<OSA_FileHandle>(1);
        EXPECT_EQ(OSA_fileOpen(c.path, c.mode, &h), -1);
        EXPECT_EQ(h, nullptr);
    }
    EXPECT_EQ(OSA_fileOpen("/f", OSA_FILE_MODE_READ, nullptr), -1);
    EXPECT_EQ(openFiles(), before);
    {
        OpenFile in("/f", OSA_FILE_MODE_READ);
        EXPECT_EQ(openFiles(), before + 1);
    }
    EXPECT_EQ(openFiles(), before);
}

// Seeks from a start position: the result and the position after (unchanged on failure).
TEST(HostFiles, SeekMovesOrFailsWithoutMoving) {
    Sandbox sandbox;
    sandbox.writeFile("/ten.bin", "0123456789");
    const struct {
        Int32 start, offset, whence, result;
        Uint32 position;
    } cases[] = {{0, 4, OSA_SEEK_SET, 0, 4},   {3, -1, OSA_SEEK_SET, -1, 3}, {4, 2, OSA_SEEK_CUR, 0, 6},
                 {4, -4, OSA_SEEK_CUR, 0, 0},  {4, -5, OSA_SEEK_CUR, -1, 4}, {0, 0, OSA_SEEK_END, 0, 10},
                 {0, -10, OSA_SEEK_END, 0, 0}, {2, -11, OSA_SEEK_END, -1, 2}, {0, 20, OSA_SEEK_SET, 0, 20},
                 {5, 0, 3, -1, 5}};
    OpenFile in("/ten.bin", OSA_FILE_MODE_READ);
    for (const auto& c : cases) {
        SCOPED_TRACE("case " + std::to_string(&c - cases));
        ASSERT_EQ(OSA_fileSeek(in.h, c.start, OSA_SEEK_SET), 0);
        EXPECT_EQ(OSA_fileSeek(in.h, c.offset, c.whence), c.result);
        Uint32 position = 0xFFFFFFFFu;
        ASSERT_EQ(OSA_fileTell(in.h, &position), 0);
        EXPECT_EQ(position, c.position);
    }
}

TEST(HostFiles, FgetsDeliversLinesInPiecesThenFails) {
    Sandbox sandbox;
    sandbox.writeFile("/lines.txt", "ab\ncdefgh\nlast");
    OpenFile in("/lines.txt", OSA_FILE_MODE_READ);
    char buffer[8];
    std::vector<std::string> got;
    while (OSA_fgets(buffer, 4, in.h) == 0) got.emplace_back(buffer);
    EXPECT_EQ(got, (std::vector<std::string>{"ab\n", "cde", "fgh", "\n", "las", "t"}));
    EXPECT_EQ(OSA_fgets(buffer, 0, in.h), -1);
    EXPECT_EQ(OSA_fgets(nullptr, 4, in.h), -1);
}

TEST(HostFiles, MemoryFilesAreFoundByPathWithoutDisk) {
    ispdsp_host_use_memory_files(1);
    ASSERT_EQ(ispdsp_host_put_memory_file("/var/tmp/a.bin", "0123456789", 10), 0);
    ASSERT_EQ(ispdsp_host_put_memory_file("/empty", nullptr, 0), 0);
    EXPECT_EQ(ispdsp_host_memory_file_size("/missing"), -1);
    OSA_FileHandle h = nullptr;
    EXPECT_EQ(OSA_fileOpen("/missing", OSA_FILE_MODE_READ, &h), -1);
    {
        OpenFile in("/var/tmp/a.bin", OSA_FILE_MODE_READ), empty("/empty", OSA_FILE_MODE_READ);
        Uint32 size = 0;
        EXPECT_EQ(OSA_fileSeek(in.h, 0, OSA_SEEK_END), 0);
        EXPECT_EQ(OSA_fileTell(in.h, &size), 0);
        EXPECT_EQ(size, 10u);
        EXPECT_EQ(OSA_fileSeek(in.h, -4, OSA_SEEK_END), 0);
        EXPECT_EQ(in.readAll(3), "6789");
        EXPECT_EQ(empty.readAll(3), "");
        OpenFile out("/var/tmp/a.bin", OSA_FILE_MODE_WRITE);  // truncates at open, stored at close
        EXPECT_EQ(ispdsp_host_memory_file_size("/var/tmp/a.bin"), 0);
        EXPECT_EQ(OSA_fileWrite(out.h, "xyz", 3), 3);
    }
    EXPECT_EQ(ispdsp_host_memory_file_size("/var/tmp/a.bin"), 3);
    ispdsp_host_use_memory_files(0);
    EXPECT_EQ(ispdsp_host_memory_file_size("/var/tmp/a.bin"), -1) << "switching empties the store";
}

TEST(HostMemory, BlocksAreCountedFilledAndAligned) {
    MemGuard guard;
    const Uint32 size = 4099;
    auto* dirty = static_cast<unsigned char*>(OSA_memUAllocAlign(size, 0));
    auto* clean = static_cast<unsigned char*>(OSA_memUCallocAlign(size, 0));
    ASSERT_TRUE(dirty != nullptr && clean != nullptr);
    EXPECT_EQ(guard.liveBlocks(), 2);
    EXPECT_EQ(guard.liveBytes(), 2 * size);
    for (Uint32 i = 0; i < size; ++i) ASSERT_EQ(dirty[i] + clean[i], 0xA5) << "byte " << i;
    void* empty[2] = {OSA_memUAllocAlign(0, 0), OSA_memUCallocAlign(0, 0)};  // unique, counted, freed
    EXPECT_TRUE(empty[0] != nullptr && empty[1] != nullptr && empty[0] != empty[1]);
    for (void* p : {static_cast<void*>(dirty), static_cast<void*>(clean), empty[0], empty[1], static_cast<void*>(nullptr)})
        EXPECT_EQ(OSA_memUFree(p), 0);
    EXPECT_EQ(guard.allocCalls(), 4u);
    EXPECT_EQ(guard.freeCalls(), 4u);
    for (Uint32 align : {0u, 8u, 16u, 64u, 4096u}) {
        void* p = OSA_memUAllocAlign(100, align);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % (align > 16 ? align : 16), 0u) << align;
        OSA_memUFree(p);
    }
    EXPECT_EQ(OSA_memUAllocAlign(100, 24), nullptr);
}

TEST(HostMemoryDeathTest, AWritePastABlockAbortsAtItsFree) {
    auto* block = static_cast<unsigned char*>(OSA_memUAllocAlign(10, 64));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block[10], 0x7F);  // what an index one too far reads
    block[10 + 15] = 0;
    EXPECT_DEATH(OSA_memUFree(block), "written past the end of its 10 bytes");
    block[10 + 15] = 0x7F;
    EXPECT_EQ(OSA_memUFree(block), 0);
}

TEST(HostLog, SinksNestAndTheDefaultPrefixesTheLevel) {
    LogCapture outer;
    {
        LogCapture inner;
        const std::string longText(5000, 'x');
        OSA_logWrite(0, 1, "[DSP_DRV] ERROR  (%s|%d): %s\n", "fn", 42, longText.c_str());
        ASSERT_EQ(inner.texts(), std::vector<std::string>{"[DSP_DRV] ERROR  (fn|42): " + longText + "\n"});
    }
    EXPECT_TRUE(outer.lines().empty());
    ispdsp_host_set_log_sink(nullptr, nullptr);
    testing::internal::CaptureStderr();
    OSA_logWrite(1, 8, "warn %d\n", 7);
    OSA_logWrite(2, 2, "info\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "W warn 7\nI info\n");
}

// The one matcher of the driver's lines: level, category, tag, function, any line number, exact message.
TEST(HostLog, DriverLinesMatchByKindFunctionAndMessage) {
    const struct {
        LogLine line;
        bool matches;
    } cases[] = {{{0, 1, "[DSP_DRV] ERROR  (f|12): gone\n"}, true},  {{1, 1, "[DSP_DRV] ERROR  (f|12): gone\n"}, false},
                 {{0, 8, "[DSP_DRV] ERROR  (f|12): gone\n"}, false}, {{0, 1, "[DSP_DRV] ERROR  (f|): gone\n"}, false},
                 {{0, 1, "[DSP_DRV] ERROR  (f|1x): gone\n"}, false}, {{0, 1, "[DSP_DRV] ERROR  (g|12): gone\n"}, false},
                 {{0, 1, "[DSP_DRV] ERROR  (f|12): gone\r\n"}, false}, {{0, 1, "[DSP_DRV] WARN  (f|12): gone\n"}, false},
                 {{0, 1, "ERROR  (f|12): gone\n"}, false}};
    for (const auto& c : cases) EXPECT_EQ(isDriverLine(c.line, LogKind::Error, "f", "gone\n"), c.matches) << c.line.text;
    EXPECT_TRUE(isDriverLine({1, 8, "[DSP_DRV] WARN  (f|3): w\n"}, LogKind::Warn, "f", "w\n"));
    EXPECT_TRUE(isDriverLine({2, 2, "[DSP_DRV] pswitch=1\n"}, LogKind::Info, "", "pswitch=1\n"));
    EXPECT_FALSE(isDriverLine({2, 2, "[DSP_DRV] pswitch=1\n"}, LogKind::Info, "", "pswitch=2\n"));
}

}  // namespace
