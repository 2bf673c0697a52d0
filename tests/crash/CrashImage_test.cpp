// The images themselves, against such as are written out by hand.
#include "CrashImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;
using Kind = DiskEvent::Kind;

// A log of the file `a` alone.
DiskLog LogOf(const std::vector<DiskEvent>& events)
{
    DiskLog log;
    log.File("a");
    for (const DiskEvent& event : events) {
        log.Add(event);
    }
    return log;
}

DiskEvent Write(unsigned long long position, const std::string& bytes)
{
    return {.kind = Kind::Write, .file = 0, .position = position, .bytes = bytes};
}

DiskEvent Resize(unsigned long long size)
{
    return {.kind = Kind::Resize, .file = 0, .position = size};
}

const DiskEvent kCreate{.kind = Kind::Create, .file = 0};
const DiskEvent kSync{.kind = Kind::Sync, .file = 0};
const DiskEvent kNameSync{.kind = Kind::NameSync, .file = -1};
const DiskEvent kRemove{.kind = Kind::Remove, .file = 0};

std::string Sector(char letter)
{
    return std::string(512, letter);
}

// The first byte of each sector, `.` for a zero; a file that is missing is `-`.
std::string Shape(const DiskFile& file)
{
    std::string shape = file.present ? "" : "-";
    for (std::size_t i = 0; i < file.bytes.size(); i += 512) {
        shape += file.bytes[i] == '\0' ? '.' : file.bytes[i];
    }
    return shape;
}

// The images of a power loss at the end of `log`.
std::vector<std::string> ShapesAtTheEnd(const DiskLog& log, std::size_t most)
{
    std::vector<std::string> shapes;
    VisitPowerLost(log, most, 1, [&](const CrashImage& image) {
        if (image.moment == log.Events().size()) {
            shapes.push_back(Shape(image.files[0]));
        }
    });
    return shapes;
}
} // namespace

TEST(DiskLog, LeavesZerosBeforeAWriteBehindTheEnd)
{
    const DiskLog log = LogOf({kCreate, Write(2, "xy"), Write(1, "z")});
    EXPECT_EQ(log.At(3)[0], (DiskFile{true, std::string("\0zxy", 4)}));
}

TEST(DiskLog, ResizesBothWays)
{
    const DiskLog log = LogOf({kCreate, Write(0, "abcd"), Resize(2), Resize(3)});
    EXPECT_EQ(log.At(3)[0].bytes, "ab");
    EXPECT_EQ(log.At(4)[0].bytes, std::string("ab\0", 3));
}

TEST(KilledImages, AreTheDiskBeforeBetweenAndBehindTheEvents)
{
    std::vector<std::string> found;
    VisitKilled(LogOf({kCreate, Write(0, "ab"), kSync, Write(1, "c")}),
                [&](const CrashImage& image) {
                    found.push_back(image.files[0].present ? image.files[0].bytes : "missing");
                });
    EXPECT_THAT(found, ElementsAre("missing", "", "ab", "ab", "ac"));
}

TEST(KilledImages, MissAFileFromItsRemovalOn)
{
    std::vector<std::string> found;
    VisitKilled(LogOf({kCreate, Write(0, "ab"), kRemove}),
                [&](const CrashImage& image) { found.push_back(Shape(image.files[0])); });
    EXPECT_THAT(found, ElementsAre("-", "", "a", "-"));
}

TEST(KilledImages, CutAShortWriteAtEachByte)
{
    std::vector<std::string> found;
    VisitKilledInCall(LogOf({kCreate, Write(0, "abcd"), Write(1, "xyz")}),
                      [&](const CrashImage& image) { found.push_back(image.files[0].bytes); });
    EXPECT_THAT(found, ElementsAre("a", "ab", "abc", "axcd", "axyd"));
}

TEST(KilledImages, CutALongWriteAtItsFirstBytesAndAtPages)
{
    std::set<std::size_t> sizes;
    VisitKilledInCall(LogOf({kCreate, Write(0, std::string(9000, 'x'))}),
                      [&](const CrashImage& image) { sizes.insert(image.files[0].bytes.size()); });
    EXPECT_EQ(sizes.size(), 130U); // 1 to 128, 4096 and 8192
    EXPECT_EQ(*sizes.rbegin(), 8192U);
}

TEST(PowerLossImages, HoldAnySubsetOfTheSectorsAndAnySizeSinceTheLastSync)
{
    const DiskLog log = LogOf({kCreate, kNameSync, Write(0, Sector('x') + Sector('x')), kSync,
                               Write(0, Sector('y')), Write(1024, Sector('z'))});
    EXPECT_THAT(ShapesAtTheEnd(log, 100),
                UnorderedElementsAre("xx", "yx", "xx", "yx", "xx.", "yx.", "xxz", "yxz"));
}

TEST(PowerLossImages, HoldEachVersionOfASector)
{
    const DiskLog log = LogOf({kCreate, kNameSync, Write(0, Sector('x')), kSync,
                               Write(0, Sector('y')), Write(0, Sector('z'))});
    EXPECT_THAT(ShapesAtTheEnd(log, 100), UnorderedElementsAre("x", "y", "z"));
}

TEST(PowerLossImages, HoldNothingOldOnceItWasSynced)
{
    const DiskLog log =
        LogOf({kCreate, kNameSync, Write(0, Sector('x')), Write(0, Sector('y')), kSync});
    EXPECT_THAT(ShapesAtTheEnd(log, 100), ElementsAre("y"));
}

TEST(PowerLossImages, MissAFileWhoseNameIsNotDurable)
{
    EXPECT_THAT(ShapesAtTheEnd(LogOf({kCreate, Write(0, "x"), kSync}), 100),
                UnorderedElementsAre("-", "x"));
    EXPECT_THAT(ShapesAtTheEnd(LogOf({kCreate, Write(0, "x"), kSync, kNameSync}), 100),
                ElementsAre("x"));
}

TEST(PowerLossImages, MayStillHoldAFileWhoseRemovalIsNotDurable)
{
    EXPECT_THAT(ShapesAtTheEnd(LogOf({kCreate, kNameSync, Write(0, "x"), kSync, kRemove}), 100),
                UnorderedElementsAre("-", "x"));
    EXPECT_THAT(
        ShapesAtTheEnd(LogOf({kCreate, kNameSync, Write(0, "x"), kSync, kRemove, kNameSync}), 100),
        ElementsAre("-"));
}

TEST(PowerLossImages, MayEndAtAPageBorderInsideAWrite)
{
    const DiskLog log = LogOf({kCreate, kNameSync, kSync, Write(0, std::string(4097, 'x'))});
    std::set<std::size_t> sizes;
    VisitPowerLost(log, 2000, 1,
                   [&](const CrashImage& image) { sizes.insert(image.files[0].bytes.size()); });
    EXPECT_THAT(sizes, ElementsAre(0U, 4096U, 4097U));
}

TEST(PowerLossImages, MayHoldZerosWhereAFileWasCutAndGrewAgain)
{
    const DiskLog log =
        LogOf({kCreate, kNameSync, Write(0, Sector('x')), kSync, Resize(0), Resize(512)});
    EXPECT_THAT(ShapesAtTheEnd(log, 100), UnorderedElementsAre("x", "", ".", ""));
}

TEST(PowerLossImages, AreDrawnWhereThereAreTooManyWithAllOldAndAllNewFirst)
{
    const DiskLog log = LogOf({kCreate, kNameSync, Write(0, std::string(4096, 'x')), kSync,
                               Write(0, std::string(4096, 'y'))}); // 256 combinations
    const auto shapes = ShapesAtTheEnd(log, 20);
    EXPECT_EQ(shapes.size(), 20U);
    EXPECT_EQ(shapes[0], "xxxxxxxx");
    EXPECT_EQ(shapes[1], "yyyyyyyy");
    EXPECT_EQ(ShapesAtTheEnd(log, 20), shapes); // the same seed
    EXPECT_EQ(ShapesAtTheEnd(log, 256).size(), 256U);
}
