// The registration file reader: generated field and register lines checked
// against libc's strtoll/strtoull, files cut into 255-character reads, the
// place search, the count limits and the release of earlier loads.
#include "driver/registration.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "support/log_capture.h"
#include "support/mem_guard.h"
#include "support/sandbox.h"

namespace {

using namespace std::string_literals;
using ispdsp_test::LogCapture;
using ispdsp_test::LogKind;

constexpr const char* kPlaces[] = {"/var/tmp/calibration.txt", "/var/calibration.txt", "/mnt/mtd/calibration.txt"};

// A field's value: the text up to the first CR or LF as strtoll reads it, held to Int32.
Int32 decimalOracle(const std::string& text) {
    const std::string cut = text.substr(0, text.find_first_of("\r\n"));
    return static_cast<Int32>(std::clamp<long long>(std::strtoll(cut.c_str(), nullptr, 10), INT32_MIN, INT32_MAX));
}

// A register number as "%x" reads it: blanks, a sign, an optional 0x/0X, hex digits; the
// magnitude saturates at 0xFFFFFFFF before the sign applies.
Uint32 hexOracle(const std::string& text) {
    size_t i = text.find_first_not_of(" \t\n\v\f\r");
    if (i == std::string::npos) return 0;
    const bool negative = text[i] == '-';
    if (text[i] == '+' || text[i] == '-') ++i;
    if (i >= text.size() || !std::isxdigit(static_cast<unsigned char>(text[i]))) return 0;  // no second sign or blank
    const auto m = static_cast<Uint32>(std::min<unsigned long long>(std::strtoull(text.c_str() + i, nullptr, 16), UINT32_MAX));
    return negative ? 0u - m : m;
}

TEST(RegistrationLine, DecimalFieldsReadAsStrtolDoes) {
    const std::string signs[] = {"", " ", "\t\v\f", "+", "-", "+-", "- "};
    const std::string bodies[] = {"0", "9", "42", "/5", ":5", "12/3", "12:3", "007", "2147483647", "2147483648",
                                  "99999999999999999999", "", "a1"};
    const std::string ends[] = {"", "\n", "\r", "\r\n", "\r7", " 7", "\0"s "9"};
    Char field[] = "ZOOM:";
    for (const auto& sign : signs) {
        for (const auto& body : bodies) {
            for (const auto& end : ends) {
                std::string line = "junk ZOOM:" + sign + body + end;
                Int32 value = 12345;
                ASSERT_EQ(DRV_ispGetLineCfg(line.data(), field, &value), 0);
                EXPECT_EQ(value, decimalOracle(sign + body + end)) << '"' << line << '"';
            }
        }
    }
    for (std::string absent : {"ZOOM 3\n"s, "ZOOMNUM:3\n"s, "\0ZOOM:3"s}) {
        Int32 value = 12345;
        EXPECT_EQ(DRV_ispGetLineCfg(absent.data(), field, &value), -1);
        EXPECT_EQ(value, 12345);
    }
}

TEST(RegistrationLine, RegisterNumbersReadAsPercentXDoes) {
    const std::string prefixes[] = {"", "0x", "0X", "+", "-", "\t", "\v\f", "-0X", "+0x"};
    const std::string digits[] = {"0",  "9",   "a",  "f",  "A",  "F",  "1f", "0033", "ffffffff", "FFFFFFFF",
                                  "100000000", "123456789abcdef", "", "/", ":", "@", "G", "`", "g", "1/",
                                  "9:", "A@", "FG", "a`", "fg"};
    const std::string ends[] = {"\n", "\r\n", "", " 0x99\n", "\r"};
    size_t k = 0;
    for (const auto& prefix : prefixes) {
        for (const auto& digit : digits) {
            ++k;
            const std::string addr = prefix + digit;
            const std::string value = prefixes[(k * 3) % std::size(prefixes)] + digits[(k * 7) % std::size(digits)];
            std::string line = "0x" + addr + " x" + value + ends[k % std::size(ends)];
            Int32 a = 0, v = 0;
            ASSERT_EQ(DRV_ispGetLineRegCfg(line.data(), &a, &v), 0) << line;
            EXPECT_EQ(static_cast<Uint32>(a), hexOracle(addr)) << '"' << line << '"';
            EXPECT_EQ(static_cast<Uint32>(v), hexOracle(value)) << '"' << line << '"';
        }
    }
    // No "x", no blank after the address, no "x" after that blank, or a NUL before the blank.
    for (std::string none : {"ZOOM:120\n"s, "0x10\n"s, "0x10 5\n"s, "TFORM: 1 2\n"s, ""s, "0x11\0 0x22\n"s}) {
        Int32 a = 7, v = 7;
        EXPECT_EQ(DRV_ispGetLineRegCfg(none.data(), &a, &v), -1) << none;
        EXPECT_EQ(a + v, 14);
    }
}

// Every test starts and ends with an empty process-wide record; nothing leaks, no file stays open.
// So a load that kept the arrays it replaces fails every test that loads twice, and a release that
// kept its pointers frees them twice in the next test (the host aborts on a double free).
class Registration : public ::testing::Test {
protected:
    void TearDown() override { DRV_ispReleaseRegistrateCfg(&drvRegistrateParam); }
    Int32 load(const std::string& text) {
        sandbox.writeFile(kPlaces[0], text);
        return DRV_ispRegistrateCfgLoad();
    }
    bool cleared = (DRV_ispReleaseRegistrateCfg(&drvRegistrateParam), true);  // before the snapshot
    ispdsp_test::MemGuard mem;
    ispdsp_test::Sandbox sandbox;
    LogCapture log;
};

TEST_F(Registration, FirstReadablePlaceWinsOverEverySubsetOfPlaces) {
    for (int mask = 0; mask < 8; ++mask) {
        SCOPED_TRACE(mask);
        log.clear();
        for (int p = 0; p < 3; ++p) {
            sandbox.remove(kPlaces[p]);
            if (mask & (1 << p)) sandbox.writeFile(kPlaces[p], "ZOOMNUM:1\nREGNUM:1\nZOOM:" + std::to_string(100 + p) + "\n");
        }
        const int first = mask == 0 ? -1 : __builtin_ctz(mask) + 1;
        EXPECT_EQ(DRV_ispRegistrateCfgLoad(), first);
        EXPECT_EQ(log.count("open failed\n"), first < 0 ? 3u : size_t(first - 1));
        EXPECT_EQ(log.count(LogKind::Error, "DRV_ispRegistrateCfgLoad", "Registrate Cfg Load Failed !\n"), first < 0 ? 1u : 0u);
        EXPECT_EQ(first > 0 ? drvRegistrateParam.zoomX[0] : 0, first > 0 ? 99 + first : 0);
        EXPECT_EQ(log.count(LogKind::Warn, "DRV_ispGetRegistrateCfg", "/mnt/mtd/calibration.txt open failed\n"), mask == 0 ? 1u : 0u);
    }
    for (int place : {0, 1, 2, 3, 4}) {
        const char* dir = DRV_ispRegistratePlaceDir(place);
        EXPECT_EQ(dir ? std::string(dir) + "calibration.txt" : "", place >= 1 && place <= 3 ? kPlaces[place - 1] : "");
    }
}

// A failed step of one place returns -1 itself: the open, the line buffer's allocation, and
// a platform open that gives no handle, which the header reader refuses by name.
TEST_F(Registration, FailedStepsOfAPlaceReturnMinusOne) {
    sandbox.writeFile(kPlaces[0], "ZOOMNUM:1\nREGNUM:1\nZOOM:7\n");
    EXPECT_EQ(DRV_ispGetRegistrateCfg("/var/none.txt", &drvRegistrateParam), -1);
    ispdsp_host_fail_alloc_after(1);
    EXPECT_EQ(DRV_ispGetRegistrateCfg(kPlaces[0], &drvRegistrateParam), -1);
    ispdsp_host_fail_alloc_after(0);
    ispdsp_host_open_without_handle(1);
    EXPECT_EQ(DRV_ispGetRegistrateCfg(kPlaces[0], &drvRegistrateParam), -1);
    ispdsp_host_open_without_handle(0);
    EXPECT_EQ(log.count(LogKind::Error, "DRV_ispGetPropertyCfg", "param is null!\n"), 1u);
    EXPECT_EQ(log.count(LogKind::Warn, "DRV_ispGetRegistrateCfg", "getPropertyCfgNew failed\n"), 1u);
    // Each argument alone missing: refused before the others are used (the handle is never read).
    Char line[8];
    Int32 zoomNum, regNum;
    const auto handle = reinterpret_cast<OSA_FileHandle>(uintptr_t{1});
    for (int missing = 0; missing < 4; ++missing) {
        EXPECT_EQ(DRV_ispGetPropertyCfg(missing == 0 ? nullptr : line, missing == 1 ? nullptr : handle,
                                        missing == 2 ? nullptr : &zoomNum, missing == 3 ? nullptr : &regNum),
                  -1);
    }
    EXPECT_EQ(log.count(LogKind::Error, "DRV_ispGetPropertyCfg", "param is null!\n"), 5u);

    // The header and block readers return -1 themselves: the file ends before a "REGNUM:"
    // line, the zoom array cannot be had, and the pair array cannot be had after it was.
    sandbox.writeFile(kPlaces[1], "ZOOMNUM:1\nZOOM:7\n");
    OSA_FileHandle file = nullptr;
    ASSERT_EQ(OSA_fileOpen(kPlaces[1], OSA_FILE_MODE_READ, &file), 0);
    std::vector<Char> text(ispdsp::kRegistrateLineSize);
    EXPECT_EQ(DRV_ispGetPropertyCfg(text.data(), file, &zoomNum, &regNum), -1);
    for (uint64_t failing : {1, 2}) {
        ispdsp_host_fail_alloc_after(failing);
        EXPECT_EQ(DRV_ispGetRegCfg(text.data(), file, 1, 1, &drvRegistrateParam), -1) << failing;
    }
    ispdsp_host_fail_alloc_after(0);
    EXPECT_EQ(DRV_ispGetRegCfg(text.data(), file, 0, 1, &drvRegistrateParam), -1) << "no zoom positions";
    OSA_fileClose(file);
    sandbox.writeFile(kPlaces[1], "ZOOMNUM:0\nREGNUM:1\n");
    EXPECT_EQ(DRV_ispGetRegistrateCfg(kPlaces[1], &drvRegistrateParam), -1) << "counts refused";
    EXPECT_EQ(log.count(LogKind::Warn, "DRV_ispGetRegCfg", "zoomx malloc failed!\n"), 1u);
    EXPECT_EQ(log.count(LogKind::Warn, "DRV_ispGetRegCfg", "registerParam malloc failed!\n"), 1u);
}

TEST_F(Registration, MalformedHeaderFailsThePlaceAndTheNextIsTried) {
    sandbox.writeFile(kPlaces[0], "REGNUM:2\nZOOMNUM:1\nZOOM:5\n0x1 0x2\n");  // REGNUM before ZOOMNUM only
    sandbox.writeFile(kPlaces[1], "ZOOMNUM:1\nREGNUM:1\nZOOM:7\n");
    EXPECT_EQ(DRV_ispRegistrateCfgLoad(), 2);
    EXPECT_EQ(log.count(LogKind::Warn, "DRV_ispGetRegistrateCfg", "getPropertyCfgNew failed\n"), 1u);
    EXPECT_EQ(drvRegistrateParam.zoomX[0], 7);
}

// A file and what it must leave: counts, every zoom position and every pair (addr, data).
struct FileCase {
    std::string name, text;
    Int32 zoomNum, regNum;
    std::vector<Int32> zoomX;
    std::vector<std::pair<Uint32, Uint32>> pairs;
};

std::vector<FileCase> fileCases() {
    std::vector<FileCase> cases = {
        {"BothCountsOnOneLine", "ZOOMNUM:2 REGNUM:2\nZOOM:10\n0x1 0x2\n0x3 0x4\nTFORM:\nZOOM:20\n0x5 0x6\nreg x7 val x8\nTFORM:\n",
         2, 2, {10, 20}, {{1, 2}, {3, 4}, {5, 6}, {7, 8}}},
        {"LinesBeforeZoomNumAreIgnored", "# c\nREGNUM:9\nZOOMNUM:1\ntext\nREGNUM:1\nZOOM:5\n0x1 0x2\nTFORM:\n", 1, 1, {5}, {{1, 2}}},
        // Without its closing line a block takes the next zoom line as its last line.
        {"MissingTformLosesNextZoom", "ZOOMNUM:2\nREGNUM:2\nZOOM:120\n0x1 0x2\n0x3 0x4\nZOOM:240\n0x5 0x6\n0x7 0x8\nTFORM:\n",
         2, 2, {120, 0}, {{1, 2}, {3, 4}, {0, 0}, {0, 0}}},
        // The third pair is dropped; block 1 starts on block 0's closing line.
        {"ExtraRegisterLineIsDropped", "ZOOMNUM:2\nREGNUM:2\nZOOM:1\n0x1 0x2\n0x3 0x4\n0x9 0x9\nTFORM:\nZOOM:2\n0x5 0x6\n0x7 0x8\n",
         2, 2, {1, 2}, {{1, 2}, {3, 4}, {0, 0}, {5, 6}}},
        // Block 0 closes on a register line, which is dropped rather than given to
        // block 1; the file ends inside block 1.
        {"TruncatedFileKeepsZoomNum", "ZOOMNUM:3\nREGNUM:1\nZOOM:10\n0x1 0x2\n0x9 0x9\nZOOM:20\n", 3, 1, {10, 20, 0},
         {{1, 2}, {0, 0}, {0, 0}}},
        {"LinesBeforeZoomLineUsePositions", "ZOOMNUM:1\nREGNUM:2\nTFORM:\n0x7 0x7\nZOOM:50\n0x1 0x2\n", 1, 2, {50}, {{0, 0}, {0, 0}}},
        // CR alone ends no line: the header line holds the whole file, so no block follows.
        {"CrOnlyEndings", "ZOOMNUM:1\rREGNUM:1\rZOOM:5\r0x1 0x2\rTFORM:\r", 1, 1, {0}, {{0, 0}}},
        // A NUL ends the text of a line: REGNUM after it is not seen, nor the register value.
        {"NulInsideLines", "ZOOMNUM:1\0 REGNUM:9\nREGNUM:2\nZOOM:3\0" "4\n0x11\0 0x22\n0x33 0x44\nTFORM:\n"s, 1, 2, {3},
         {{0, 0}, {0x33, 0x44}}},
        // "ZOOMN" | "UM:9" is in neither 255-character piece; the count after 255 characters is whole.
        {"LongHeaderLinesArriveInPieces", std::string(250, 'a') + "ZOOMNUM:9\n" + std::string(255, 'b') +
         "ZOOMNUM:1 REGNUM:1\nZOOM:4\n0x5 0x6\n", 1, 1, {4}, {{5, 6}}},
    };
    // A register line of 254, 255 or 256 characters with its line end, the value's last digit
    // just before it: at 256 that digit is the piece's last character, and the line end
    // arrives as a line of its own and takes the last pair's position.
    for (const std::string end : {"\n", "\r\n"}) {
        for (size_t length : {254u, 255u, 256u}) {
            for (bool finalEnd : {true, false}) {
                const std::string padded = "0x11" + std::string(length - 9 - end.size(), ' ') + " 0x22" + end;
                const std::string tail = finalEnd ? "0x33 0x44" + end + "TFORM:" + end : "0x33 0x44";
                cases.push_back({"Line" + std::to_string(length) + (end.size() == 2 ? "CrLf" : "Lf") + (finalEnd ? "" : "NoFinalEnd"),
                                 "ZOOMNUM:1" + end + "REGNUM:2" + end + "ZOOM:40" + end + padded + tail, 1, 2, {40},
                                 {{0x11, 0x22}, length <= 255 ? std::pair<Uint32, Uint32>{0x33, 0x44} : std::pair<Uint32, Uint32>{0, 0}}});
            }
        }
    }
    return cases;
}

TEST_F(Registration, FilesLoadTheirBlocks) {
    for (const FileCase& c : fileCases()) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(load(c.text), 1);
        ASSERT_EQ(drvRegistrateParam.zoomNum, c.zoomNum);
        ASSERT_EQ(drvRegistrateParam.regNum, c.regNum);
        EXPECT_EQ(std::vector<Int32>(drvRegistrateParam.zoomX, drvRegistrateParam.zoomX + c.zoomNum), c.zoomX);
        std::vector<std::pair<Uint32, Uint32>> pairs;
        for (Int32 k = 0; k < c.zoomNum * c.regNum; ++k)
            pairs.emplace_back(drvRegistrateParam.registerParam[k].addr, drvRegistrateParam.registerParam[k].data);
        EXPECT_EQ(pairs, c.pairs);
    }
    EXPECT_EQ(log.count(LogKind::Warn), 0u);
}

// The count limits at their edges: validity_boundary_test.cpp, through creation. Here a refused
// count keeps the previous load: negative counts and counts beyond Int32 (held to its ends).
TEST_F(Registration, RefusedCountsKeepThePreviousLoad) {
    const std::pair<const char*, const char*> cases[] = {{"-1", "2"}, {"2", "-3"}, {"2147483648", "1"}, {"1", "-2147483649"}};
    for (const auto& [zoomNum, regNum] : cases) {
        SCOPED_TRACE(std::string(zoomNum) + " x " + regNum);
        ASSERT_EQ(load("ZOOMNUM:1\nREGNUM:1\nZOOM:77\n"), 1);
        const Int32* previous = drvRegistrateParam.zoomX;
        log.clear();
        EXPECT_EQ(load("ZOOMNUM:" + std::string(zoomNum) + "\nREGNUM:" + regNum + "\nZOOM:5\n"), -1);
        EXPECT_EQ(drvRegistrateParam.zoomNum, 1);
        EXPECT_EQ(drvRegistrateParam.zoomX, previous);
        EXPECT_EQ(drvRegistrateParam.zoomX[0], 77);
        EXPECT_EQ(log.count(LogKind::Warn, "DRV_ispGetRegistrateCfg", "getDspRegCfgNew failed\n"), 1u);
    }
}

}  // namespace
