// The reference host layer that every other test stands on: sandboxed files,
// seek/tell/fgets semantics, counted memory with fault injection, log sinks.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "ispdsp/osa.h"
#include "ispdsp_host/host.h"
#include "support/log_capture.h"
#include "support/mem_guard.h"
#include "support/sandbox.h"

namespace {

using ispdsp_test::FailAllocAfter;
using ispdsp_test::LimitFileReads;
using ispdsp_test::LogCapture;
using ispdsp_test::MemGuard;
using ispdsp_test::Sandbox;

struct OpenFile {
    OSA_FileHandle h = nullptr;
    OpenFile(const char* path, Int32 mode) { EXPECT_EQ(OSA_fileOpen(path, mode, &h), 0) << path; }
    ~OpenFile() {
        if (h != nullptr) {
            OSA_fileClose(h);
        }
    }
};

TEST(HostFiles, AbsolutePathsLiveUnderTheSandboxRoot) {
    Sandbox sandbox;
    sandbox.makeDir("/var/tmp");
    {
        OpenFile out("/var/tmp/out.bin", OSA_FILE_MODE_WRITE);
        EXPECT_EQ(OSA_fileWrite(out.h, "abc", 3), 3);
    }
    EXPECT_EQ(sandbox.readText("/var/tmp/out.bin"), "abc");

    char resolved[256];
    ASSERT_EQ(ispdsp_host_resolve_path("/var/tmp/out.bin", resolved, sizeof resolved), 0);
    EXPECT_EQ(std::string(resolved), sandbox.hostPath("/var/tmp/out.bin"));
    ASSERT_EQ(ispdsp_host_resolve_path("relative.txt", resolved, sizeof resolved), 0);
    EXPECT_STREQ(resolved, "relative.txt");
    EXPECT_EQ(ispdsp_host_resolve_path("/var/tmp/out.bin", resolved, 4), -1);
}

TEST(HostFiles, EmptyRootLeavesPathsAlone) {
    Sandbox sandbox;
    setenv("ISPDSP_ROOT", "", 1);  // the sandbox puts the old value back
    char resolved[64];
    ASSERT_EQ(ispdsp_host_resolve_path("/var/tmp/x", resolved, sizeof resolved), 0);
    EXPECT_STREQ(resolved, "/var/tmp/x");
}

TEST(HostFiles, OpenFailuresLeaveANullHandle) {
    Sandbox sandbox;
    OSA_FileHandle h = reinterpret_cast<OSA_FileHandle>(1);
    EXPECT_EQ(OSA_fileOpen("/missing/file", OSA_FILE_MODE_READ, &h), -1);
    EXPECT_EQ(h, nullptr);
    EXPECT_EQ(OSA_fileOpen("/no/such/dir/file", OSA_FILE_MODE_WRITE, &h), -1);
    sandbox.writeFile("/f", "x");
    EXPECT_EQ(OSA_fileOpen("/f", 7, &h), -1);
    EXPECT_EQ(OSA_fileOpen(nullptr, OSA_FILE_MODE_READ, &h), -1);
    EXPECT_EQ(OSA_fileOpen("/f", OSA_FILE_MODE_READ, nullptr), -1);
}

TEST(HostFiles, WriteModeTruncates) {
    Sandbox sandbox;
    sandbox.writeFile("/t.bin", "0123456789");
    { OpenFile out("/t.bin", OSA_FILE_MODE_WRITE); }
    EXPECT_TRUE(sandbox.readFile("/t.bin").empty());
}

struct SeekCase {
    Int32 start;  // position before the seek (from the start)
    Int32 offset;
    Int32 whence;
    Int32 result;
    Uint32 position;  // after the call; unchanged on failure
};

class HostSeek : public ::testing::TestWithParam<SeekCase> {};

TEST_P(HostSeek, MovesOrFailsWithoutMoving) {
    const SeekCase c = GetParam();
    Sandbox sandbox;
    sandbox.writeFile("/ten.bin", "0123456789");
    OpenFile in("/ten.bin", OSA_FILE_MODE_READ);
    ASSERT_EQ(OSA_fileSeek(in.h, c.start, OSA_SEEK_SET), 0);
    EXPECT_EQ(OSA_fileSeek(in.h, c.offset, c.whence), c.result);
    Uint32 position = 0xFFFFFFFFu;
    ASSERT_EQ(OSA_fileTell(in.h, &position), 0);
    EXPECT_EQ(position, c.position);
}

INSTANTIATE_TEST_SUITE_P(Table, HostSeek,
                         ::testing::Values(SeekCase{0, 4, OSA_SEEK_SET, 0, 4}, SeekCase{3, -1, OSA_SEEK_SET, -1, 3},
                                           SeekCase{4, 2, OSA_SEEK_CUR, 0, 6}, SeekCase{4, -4, OSA_SEEK_CUR, 0, 0},
                                           SeekCase{4, -5, OSA_SEEK_CUR, -1, 4}, SeekCase{0, 0, OSA_SEEK_END, 0, 10},
                                           SeekCase{0, -10, OSA_SEEK_END, 0, 0}, SeekCase{2, -11, OSA_SEEK_END, -1, 2},
                                           SeekCase{0, 20, OSA_SEEK_SET, 0, 20}, SeekCase{5, 0, 3, -1, 5}),
                         [](const ::testing::TestParamInfo<SeekCase>& info) {
                             const char* whence = info.param.whence == OSA_SEEK_SET   ? "Set"
                                                  : info.param.whence == OSA_SEEK_CUR ? "Cur"
                                                  : info.param.whence == OSA_SEEK_END ? "End"
                                                                                      : "BadWhence";
                             return std::to_string(info.index) + "_" + whence + (info.param.result == 0 ? "" : "_fails");
                         });

TEST(HostFiles, FgetsDeliversLinesInPiecesThenFails) {
    Sandbox sandbox;
    sandbox.writeFile("/lines.txt", "ab\ncdefgh\nlast");
    OpenFile in("/lines.txt", OSA_FILE_MODE_READ);
    char buffer[8];
    std::vector<std::string> got;
    while (OSA_fgets(buffer, 4, in.h) == 0) {
        got.emplace_back(buffer);
    }
    EXPECT_EQ(got, (std::vector<std::string>{"ab\n", "cde", "fgh", "\n", "las", "t"}));
    EXPECT_EQ(OSA_fgets(buffer, 4, in.h), -1);
    EXPECT_EQ(OSA_fgets(buffer, 0, in.h), -1);
    EXPECT_EQ(OSA_fgets(nullptr, 4, in.h), -1);
}

TEST(HostFiles, ReadLimitMakesReadsComeUpShort) {
    Sandbox sandbox;
    sandbox.writeFile("/ten.bin", "0123456789");
    LimitFileReads limit(6);
    OpenFile in("/ten.bin", OSA_FILE_MODE_READ);
    char buffer[16];
    EXPECT_EQ(OSA_fileRead(in.h, buffer, 4), 4);
    EXPECT_EQ(OSA_fileRead(in.h, buffer, 4), 2);
    EXPECT_EQ(OSA_fileRead(in.h, buffer, 4), 0);
}

TEST(HostMemory, CallocZeroFillsAndCountsEveryBlock) {
    MemGuard guard;
    const Uint32 size = 4099;
    auto* dirty = static_cast<unsigned char*>(OSA_memUAllocAlign(size, 0));
    ASSERT_NE(dirty, nullptr);
    std::memset(dirty, 0xA5, size);
    OSA_memUFree(dirty);
    auto* block = static_cast<unsigned char*>(OSA_memUCallocAlign(size, 0));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(guard.liveBlocks(), 1);
    EXPECT_EQ(guard.liveBytes(), size);
    for (Uint32 i = 0; i < size; ++i) {
        ASSERT_EQ(block[i], 0) << "byte " << i;
    }
    EXPECT_EQ(OSA_memUFree(block), 0);
    EXPECT_EQ(OSA_memUFree(nullptr), 0);
    EXPECT_EQ(guard.allocCalls(), 2u);
    EXPECT_EQ(guard.freeCalls(), 2u);
}

TEST(HostMemory, ZeroSizeBlocksAreUniqueAndMustBeFreed) {
    MemGuard guard;
    void* a = OSA_memUAllocAlign(0, 0);
    void* b = OSA_memUCallocAlign(0, 0);
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    EXPECT_NE(a, b);
    EXPECT_EQ(guard.liveBlocks(), 2);
    OSA_memUFree(a);
    OSA_memUFree(b);
}

TEST(HostMemory, AlignmentIsHonouredOrRefused) {
    MemGuard guard;
    for (Uint32 align : {0u, 8u, 16u, 64u, 4096u}) {
        void* p = OSA_memUAllocAlign(100, align);
        ASSERT_NE(p, nullptr) << align;
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % (align > 16 ? align : 16), 0u) << align;
        OSA_memUFree(p);
    }
    EXPECT_EQ(OSA_memUAllocAlign(100, 24), nullptr);
}

TEST(HostMemory, FailAllocAfterFailsExactlyTheNthCall) {
    MemGuard guard;
    {
        FailAllocAfter fail(2);
        void* first = OSA_memUAllocAlign(8, 0);
        void* second = OSA_memUCallocAlign(8, 0);
        void* third = OSA_memUAllocAlign(8, 0);
        EXPECT_NE(first, nullptr);
        EXPECT_EQ(second, nullptr);
        EXPECT_NE(third, nullptr);
        EXPECT_EQ(guard.allocCalls(), 3u);
        EXPECT_EQ(guard.liveBlocks(), 2);
        OSA_memUFree(first);
        OSA_memUFree(third);
    }
    void* after = OSA_memUAllocAlign(8, 0);
    EXPECT_NE(after, nullptr);
    OSA_memUFree(after);
}

TEST(HostLog, SinkGetsWholeLinesAndNestedCapturesRestore) {
    LogCapture outer;
    {
        LogCapture inner;
        const std::string long_text(5000, 'x');
        OSA_logWrite(0, 1, "[DSP_DRV] ERROR  (%s|%d): %s\n", "fn", 42, long_text.c_str());
        ASSERT_EQ(inner.lines().size(), 1u);
        EXPECT_EQ(inner.lines()[0].level, 0);
        EXPECT_EQ(inner.lines()[0].category, 1);
        EXPECT_EQ(inner.texts()[0], "[DSP_DRV] ERROR  (fn|42): " + long_text + "\n");
        EXPECT_EQ(inner.count("fn|42"), 1u);
    }
    EXPECT_TRUE(outer.lines().empty());
    OSA_logWrite(2, 2, "[DSP_DRV] after %d\n", 1);
    EXPECT_TRUE(outer.contains("after 1"));
    outer.clear();
    EXPECT_FALSE(outer.contains("after"));
}

TEST(HostLog, DefaultSinkPrefixesTheLevelOnStderr) {
    ::testing::internal::CaptureStderr();
    OSA_logWrite(1, 8, "warn %d\n", 7);
    OSA_logWrite(2, 2, "info\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "W warn 7\nI info\n");
}

TEST(HostConcurrency, CountersAndSinkStayConsistentAcrossThreads) {
    MemGuard guard;
    LogCapture capture;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 200; ++i) {
                void* p = OSA_memUCallocAlign(32, 0);
                OSA_logWrite(2, 2, "t%d i%d\n", t, i);
                OSA_memUFree(p);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(capture.lines().size(), 800u);
    EXPECT_EQ(guard.allocCalls(), 800u);
}

}  // namespace
