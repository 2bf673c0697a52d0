#include "FrdError.h"
#include "FrdReader.h"
#include "ScratchFolder.h"
#include "TinyResult.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace fe {
namespace {

struct Content
{
    FrdMesh mesh;
    std::vector<FrdResult> results;
    FrdLines trailing;
};

Content ReadAll(const std::string& path)
{
    Content content;
    FrdReader reader(path);
    content.mesh = reader.ReadMesh();
    for (FrdResult result; reader.ReadResult(result);) {
        content.results.push_back(result);
    }
    content.trailing = reader.Trailing();
    return content;
}

class FrdReaderTest : public testing::Test
{
protected:
    Content Read(const std::string& text) { return ReadAll(mFolder.Write("t.frd", text)); }

    // What the reader says about a text, without the folder; empty when it has no complaint.
    std::string Complaint(const std::string& text)
    {
        const std::string path = mFolder.Write("t.frd", text);
        try {
            ReadAll(path);
        } catch (const FrdError& error) {
            return std::string(error.what()).substr(path.size() - 5);
        }
        return "";
    }

    ScratchFolder mFolder;
};

TEST_F(FrdReaderTest, NumbersOfTheMeshAreRead)
{
    const FrdMesh mesh = Read(Text(TinyLines())).mesh;
    EXPECT_EQ(mesh.lineEnd, "\n");
    EXPECT_EQ(mesh.nodes.before, (FrdLines{TinyLines()[0], TinyLines()[1]}));
    EXPECT_EQ(mesh.nodes.numbers, (std::vector<std::int64_t>{1, 2, 3, 10}));
    EXPECT_EQ(mesh.nodes.coordinates,
              (std::vector<double>{0, 0, 0, 1, 0, 0, 0, -1.5, 0, 0, 0, 0.25}));
    EXPECT_TRUE(mesh.nodes.spellings.empty());
    EXPECT_EQ(mesh.elements.numbers, (std::vector<std::int64_t>{7}));
    EXPECT_EQ(mesh.elements.types, (std::vector<std::int32_t>{3}));
    EXPECT_EQ(mesh.elements.groups, (std::vector<std::int32_t>{0}));
    EXPECT_EQ(mesh.elements.materials, (std::vector<std::int32_t>{1}));
    EXPECT_EQ(mesh.elements.nodeNumbers, (std::vector<std::int64_t>{1, 2, 3, 10}));
}

TEST_F(FrdReaderTest, ABlockOfResultsIsReadWithNamesUnitsAndTime)
{
    const std::vector<FrdResult> results = Read(Text(TinyLines())).results;
    ASSERT_EQ(results.size(), 2U);
    const FrdResult& result = results[0];
    EXPECT_EQ(result.before, (FrdLines{TinyLines()[12]}));
    EXPECT_EQ(result.name, "DISP");
    EXPECT_EQ(result.value, 0.25);
    EXPECT_EQ(result.step, 1);
    EXPECT_EQ(result.analysis, 0);
    ASSERT_EQ(result.components.size(), 4U);
    EXPECT_EQ(result.components[1].name, "D2");
    EXPECT_EQ(result.components[1].unit, "length");
    EXPECT_TRUE(result.components[1].stored);
    EXPECT_EQ(result.components[3].name, "ALL");
    EXPECT_FALSE(result.components[3].stored);
    EXPECT_EQ(result.nodeNumbers, (std::vector<std::int64_t>{2, 10}));
    ASSERT_EQ(result.values.size(), 6U);
    EXPECT_EQ(result.values[0], 0.001);
    EXPECT_EQ(result.values[1], -0.002);
    EXPECT_TRUE(std::isnan(result.values[4]));
    EXPECT_EQ(result.values[5], 412.5);
}

TEST_F(FrdReaderTest, MoreThanSixValuesGoOnInTheNextLine)
{
    const std::vector<FrdResult> results = Read(Text(TinyLines())).results;
    ASSERT_EQ(results.size(), 2U);
    EXPECT_EQ(results[1].nodeNumbers, (std::vector<std::int64_t>{3}));
    EXPECT_EQ(results[1].values, (std::vector<double>{1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(FrdReaderTest, EveryCutBetweenLinesIsFoundInTheLineBeforeIt)
{
    for (std::size_t kept = 1; kept < TinyLines().size(); ++kept) {
        const std::string complaint = Complaint(Text(TinyLines(), kept));
        EXPECT_EQ(complaint.rfind("t.frd:" + std::to_string(kept) + ": the file ends here", 0), 0U)
            << complaint;
    }
    EXPECT_EQ(Complaint(Text(TinyLines())), "");
}

TEST_F(FrdReaderTest, EveryCutInsideALineIsFoundInThatLine)
{
    for (std::size_t line = 1; line <= TinyLines().size(); ++line) {
        const std::string before = Text(TinyLines(), line - 1);
        const std::string& cut = TinyLines()[line - 1];
        for (const std::size_t kept : {std::size_t{1}, cut.size() / 2, cut.size()}) {
            EXPECT_EQ(Complaint(before + cut.substr(0, kept)),
                      "t.frd:" + std::to_string(line) +
                          ": the file ends in the middle of this line: it is cut");
        }
    }
}

TEST_F(FrdReaderTest, AnEmptyFileIsCut)
{
    EXPECT_EQ(Complaint(""),
              "t.frd: the file ends here without its last record (\" 9999\"): it is cut");
}

TEST_F(FrdReaderTest, ACutBlockIsNamedWithTheLineWhereItBegins)
{
    EXPECT_EQ(Complaint(Text(TinyLines(), 6)),
              "t.frd:6: the file ends here, inside the block of nodes that begins in line 3: "
              "it is cut");
    EXPECT_EQ(Complaint(Text(TinyLines(), 20)),
              "t.frd:20: the file ends here, inside the block of results that begins in line 14: "
              "it is cut");
}

TEST_F(FrdReaderTest, OddNumbersAreNamedWithTheirPlace)
{
    EXPECT_EQ(Complaint(TinyWith(6, " -1         3 0.00000E+00-1.5O000E+00 0.00000E+00")),
              "t.frd:6: y of node 3 in column 26, \"-1.5O000E+00\", is no number");
    EXPECT_EQ(Complaint(TinyWith(21, " -1        10 3.00000E+00************ 4.12500E+02")),
              "t.frd:21: a value of node 10 in column 26, \"************\", is no number");
    EXPECT_EQ(Complaint(TinyWith(21, " -1        10                     NAN 4.12500E+02")),
              "t.frd:21: a value of node 10 in column 14, \"            \", is no number");
    EXPECT_EQ(Complaint(TinyWith(7, " -1        1x 0.00000E+00 0.00000E+00 2.50000E-01")),
              "t.frd:7: node in column 4, \"        1x\", is no integer");
    EXPECT_EQ(Complaint(TinyWith(11, " -2         1         2        3.        10")),
              "t.frd:11: a node in column 24, \"        3.\", is no integer");
    EXPECT_EQ(Complaint(TinyWith(14, "  100CL  101 0.250000000           2                     0"
                                     "    x           1")),
              "t.frd:14: the step number in column 59, \"    x\", is no integer");
}

TEST_F(FrdReaderTest, LinesOfAnotherLengthAreRefused)
{
    EXPECT_EQ(Complaint(TinyWith(5, " -1         2 1.00000E+00 0.00000E+00")),
              "t.frd:5: node 2: the line has 37 characters where 49 are due");
    EXPECT_EQ(Complaint(TinyWith(20, " -1         2 1.00000E-03-2.00000E-03 0.00000E+00 ")),
              "t.frd:20: node 2: the line has 50 characters where 49 are due");
    EXPECT_EQ(Complaint(TinyWith(10, " -1         7    3    0")),
              "t.frd:10: element 7: the line has 23 characters where 28 are due");
}

TEST_F(FrdReaderTest, MissingPartsAreNamed)
{
    EXPECT_EQ(Complaint(TinyWith(11, " -3")), "t.frd:11: element 7 misses 4 of its nodes");
    EXPECT_EQ(Complaint(TinyWith(34, " -3")), "t.frd:34: node 3 misses 1 of its 7 values");
    EXPECT_EQ(Complaint(TinyWith(34, " -2         1 7.00000E+00")),
              "t.frd:34: node 3 misses 1 of its 7 values");
    EXPECT_EQ(Complaint(TinyWith(19, " -3")),
              "t.frd:19: DISP misses 1 of its 4 components (\" -5\")");
    EXPECT_EQ(Complaint(TinyWith(15, " -3")),
              "t.frd:15: the block of results misses its name (\" -4\")");
}

TEST_F(FrdReaderTest, WhatIsNotUnderstoodIsRefused)
{
    EXPECT_EQ(Complaint(TinyWith(10, " -1         7   13    0    1")),
              "t.frd:10: element 7 has the unknown type 13");
    EXPECT_EQ(Complaint(TinyWith(15, " -4  DISP        4    2")),
              "t.frd:15: DISP is no nodal data (kind 2, not 1)");
    EXPECT_EQ(Complaint(TinyWith(13, "    1XSTEP")),
              "t.frd:13: no record of a result file begins like \"    1X\" here");
    EXPECT_EQ(Complaint(TinyWith(6, " -2")),
              "t.frd:6: the block of nodes goes on with \" -1\" or ends with \" -3\", not \" -2\"");
    EXPECT_EQ(Complaint(Text(TinyLines()) + " 9999\n"),
              "t.frd:37: more data behind the last record (\" 9999\")");
    EXPECT_EQ(Complaint(TinyWith(3, "    3C                             4                      "
                                    "               1")),
              "t.frd:3: a block of nodes (\"2C\") has to come first");
    EXPECT_EQ(Complaint(TinyWith(13, "    2C                             4                     "
                                     "                1")),
              "t.frd:13: a second mesh: only one is known in a result file");
}

TEST_F(FrdReaderTest, BinaryBlocksAreRefusedWithAdvice)
{
    EXPECT_EQ(Complaint(TinyWith(3, "    2C                             4                      "
                                    "               3")),
              "t.frd:3: the block of nodes is binary (format 3); let the solver write ASCII: "
              "*NODE FILE and *EL FILE in place of *NODE OUTPUT and *ELEMENT OUTPUT");
    EXPECT_EQ(Complaint(TinyWith(3, "    2C                             4                      "
                                    "               7")),
              "t.frd:3: the block of nodes has an unknown format: \"7\"");
}

TEST_F(FrdReaderTest, TextThatIsNoneIsRefused)
{
    EXPECT_EQ(Complaint(TinyWith(2, std::string("    1U\0", 7))),
              "t.frd:2: the line holds a zero byte: this is no text");
    EXPECT_EQ(Complaint(TinyWith(2, "    1U" + std::string(4091, 'x'))),
              "t.frd:2: the line is longer than any record of a result file");
    EXPECT_EQ(Complaint(std::string(1000000, 'x')),
              "t.frd:1: the line is longer than any record of a result file");
    EXPECT_EQ(Complaint(TinyWith(2, "    1UUSER\r")),
              "t.frd:2: the line ends in another way than those before it");
}

TEST_F(FrdReaderTest, WhatIsNoRegularFileIsRefused)
{
    const std::string missing = mFolder.PathOf("missing.frd");
    const std::string folder = mFolder.PathOf("");
    for (const auto& [path, what] :
         {std::pair{missing, "there is no such file"}, {folder, "is no regular file"}}) {
        try {
            const FrdReader reader(path);
            ADD_FAILURE() << path << " was opened";
        } catch (const FrdError& error) {
            EXPECT_EQ(error.what(), path + ": " + what);
        }
    }
}

TEST_F(FrdReaderTest, FieldsWithASpellingOfTheirOwnKeepItBesideTheNumber)
{
    const FrdMesh mesh =
        Read(TinyWith(5, " -1  00000002   1.000E+00 0.00000E+00 0.00000e+00")).mesh;
    EXPECT_EQ(mesh.nodes.numbers[1], 2);
    EXPECT_EQ(mesh.nodes.coordinates[3], 1.0);
    EXPECT_EQ(mesh.nodes.spellings,
              (FrdSpellings{{4, "  00000002"}, {5, "   1.000E+00"}, {7, " 0.00000e+00"}}));
}

TEST_F(FrdReaderTest, AMaterialMayBeAName)
{
    const FrdElements elements = Read(TinyWith(10, " -1         7    3    0WATER")).mesh.elements;
    EXPECT_EQ(elements.materials, (std::vector<std::int32_t>{0}));
    EXPECT_EQ(elements.spellings, (FrdSpellings{{3, "WATER"}}));
}

TEST_F(FrdReaderTest, CountsInHeadersAreNotReliedOn)
{
    const Content content =
        Read(TinyWith(3, "    2C                           999                                   "
                         "  1"));
    EXPECT_EQ(content.mesh.nodes.numbers.size(), 4U);
}

TEST_F(FrdReaderTest, AMeshMayHaveNoElementsAndAFileNoMesh)
{
    std::vector<std::string> lines = TinyLines();
    lines.erase(lines.begin() + 8, lines.begin() + 12);
    const Content bare = Read(Text(lines));
    EXPECT_EQ(bare.mesh.elements.header, "");
    EXPECT_EQ(bare.results.size(), 2U);

    const Content none = Read("    1C\n    1UModel: a\n 9999\n");
    EXPECT_EQ(none.mesh.nodes.header, "");
    EXPECT_EQ(none.trailing, (FrdLines{"    1C", "    1UModel: a"}));
}

} // namespace
} // namespace fe
