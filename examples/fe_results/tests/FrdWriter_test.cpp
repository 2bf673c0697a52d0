#include "FrdError.h"
#include "FrdReader.h"
#include "FrdWriter.h"
#include "ScratchFolder.h"
#include "TinyResult.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace fe {
namespace {

class FrdWriterTest : public testing::Test
{
protected:
    // What is written of a text that was read.
    std::string Again(const std::string& text)
    {
        FrdReader reader(mFolder.Write("in.frd", text));
        FrdWriter writer(mFolder.PathOf("out.frd"));
        writer.Write(reader.ReadMesh());
        for (FrdResult result; reader.ReadResult(result);) {
            writer.Write(result);
        }
        writer.Finish(reader.Trailing());
        EXPECT_EQ(writer.Bytes(), mFolder.Read("out.frd").size());
        return mFolder.Read("out.frd");
    }

    void ExpectEqualAgain(const std::string& text) { EXPECT_EQ(Again(text), text); }

    ScratchFolder mFolder;
};

TEST_F(FrdWriterTest, ATinyResultComesBack)
{
    ExpectEqualAgain(Text(TinyLines()));
}

TEST_F(FrdWriterTest, NumbersAreSpelledAnewFromTheirValues)
{
    FrdResult result;
    result.header = "  100CL  101";
    result.nameRecord = " -4  V           7    1";
    result.components.resize(7);
    for (FrdComponent& component : result.components) {
        component.record = " -5";
    }
    result.nodeNumbers = {12};
    result.values = {1.0, -0.5, 1e-30, 123456.0, 0.1, 1e10, -7.0};
    FrdWriter writer(mFolder.PathOf("out.frd"));
    writer.Write(result);
    writer.Finish({});
    EXPECT_EQ(mFolder.Read("out.frd"),
              "  100CL  101\n -4  V           7    1\n -5\n -5\n -5\n -5\n -5\n -5\n -5\n"
              " -1        12 1.00000E+00-5.00000E-01 1.00000E-30 1.23456E+05 1.00000E-01 "
              "1.00000E+10\n"
              " -2          -7.00000E+00\n"
              " -3\n 9999\n");
}

TEST_F(FrdWriterTest, OwnSpellingsComeBackAtTheirPlaces)
{
    ExpectEqualAgain(TinyWith(4, " -1         1     0.0E+00    0.      -0.00000E+00"));
    ExpectEqualAgain(TinyWith(7, " -1  00000010 0.00000D+00 0.00000E+00 2.50000-100"));
    ExpectEqualAgain(TinyWith(10, " -1         7    3   00WATER"));
    ExpectEqualAgain(TinyWith(11, " -2         1         2        +3        10"));
    ExpectEqualAgain(TinyWith(21, " -1        10 3.000000000         nan   -Infinity"));
    ExpectEqualAgain(TinyWith(34, " -2           7          "));
}

TEST_F(FrdWriterTest, LineEndsOfTheOtherKindComeBack)
{
    ExpectEqualAgain(Text(TinyLines(), TinyLines().size(), "\r\n"));
}

TEST_F(FrdWriterTest, TheShortFormComesBack)
{
    ExpectEqualAgain("    1Cshort\n"
                     "    2C\n"
                     " -1    1 0.00000E+00 0.00000E+00 0.00000E+00\n"
                     " -1    2 1.00000E+00-1.00000E+00 0.00000E+00\n"
                     " -3\n"
                     "    3C                             1                                     0\n"
                     " -1    1    4    0    0\n"
                     " -2    1    2    3    4    5    6    7    8    9   10   11   12   13   14"
                     "   15\n"
                     " -2   16   17   18   19   20\n"
                     " -1    2   11    0    0\n"
                     " -2    1    2\n"
                     " -3\n"
                     "  100CL101\n"
                     " -4  SDV         7    1\n"
                     " -5  A           1    1    0    0\n -5  B           1    1    0    0\n"
                     " -5  C           1    1    0    0\n -5  D           1    1    0    0\n"
                     " -5  E           1    1    0    0\n -5  F           1    1    0    0\n"
                     " -5  G           1    1    0    0\n"
                     " -1    2 1.00000E+00 2.00000E+00 3.00000E+00 4.00000E+00 5.00000E+00 "
                     "6.00000E+00\n"
                     " -2      7.00000E+00\n"
                     " -3\n"
                     " 9999\n");
}

TEST_F(FrdWriterTest, FilesWithoutElementsResultsOrMeshComeBack)
{
    std::vector<std::string> lines = TinyLines();
    lines.erase(lines.begin() + 8, lines.begin() + 12);
    ExpectEqualAgain(Text(lines));
    lines.erase(lines.begin() + 8, lines.end() - 1);
    lines.insert(lines.end() - 1, "    1UTAIL");
    ExpectEqualAgain(Text(lines));
    ExpectEqualAgain("    1C\n    1UModel: a\n 9999\n");
}

TEST_F(FrdWriterTest, AnEmptyBlockComesBack)
{
    std::vector<std::string> lines = TinyLines();
    lines.erase(lines.begin() + 19, lines.begin() + 21);
    ExpectEqualAgain(Text(lines));
}

TEST_F(FrdWriterTest, WhateverIsChangedIsRefusedOrComesBackAsItIs)
{
    const std::string whole = Text(TinyLines());
    std::mt19937 random(20);
    int refused = 0;
    int returned = 0;
    for (int i = 0; i < 1000; ++i) {
        std::string changed = whole;
        const char byte = "0123456789 -+.EeDNAna\n\r*x"[random() % 26];
        const std::size_t place = random() % changed.size();
        switch (random() % 3) {
        case 0:
            changed[place] = byte;
            break;
        case 1:
            changed.insert(place, 1, byte);
            break;
        default:
            changed.erase(place, 1 + random() % 20);
        }
        try {
            ASSERT_EQ(Again(changed), changed);
            ++returned;
        } catch (const FrdError&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 300);
    EXPECT_GT(returned, 100);
}

TEST_F(FrdWriterTest, AFileThatCannotBeWrittenIsAnError)
{
    EXPECT_THROW(FrdWriter(mFolder.PathOf("no/such/folder.frd")), FrdError);
    FrdWriter full("/dev/full");
    try {
        full.Finish({});
        ADD_FAILURE() << "a full disk went unnoticed";
    } catch (const FrdError& error) {
        EXPECT_STREQ(error.what(), "/dev/full: cannot be written: No space left on device");
    }
}

} // namespace
} // namespace fe
