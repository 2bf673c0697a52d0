#include "PoolGraph.h"
#include "RunSimpool.h"
#include "SvgText.h"

#include "Bytes.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using namespace simpool;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

// A frozen pool without data whose directory names `letters`, its own first.
std::string PoolNaming(const std::string& letters)
{
    bytes::Pool pool;
    for (const char letter : letters) {
        pool.directory.push_back(bytes::Uuid(letter));
    }
    const std::string length = std::to_string(48 + 32 * letters.size());
    pool.length = std::string(16 - length.size(), '0') + length;
    return pool.Bytes();
}

class PoolGraphs : public testing::Test
{
protected:
    PoolGraph Build(const std::vector<std::string>& contents)
    {
        std::vector<std::string> names;
        for (const std::string& content : contents) {
            const std::string name = std::to_string(names.size()) + ".sim";
            mFolder.Write(name, content);
            names.push_back(mFolder.Path(name));
        }
        const LoadedFiles files(names, LoadedFiles::Walk::AsOneDocument);
        PoolGraph graph = BuildGraph(files).value();
        MarkImplied(graph);
        return graph;
    }

    static std::vector<std::pair<int, int>> Arrows(const PoolGraph& graph, bool implied)
    {
        std::vector<std::pair<int, int>> arrows;
        for (const GraphArrow& arrow : graph.arrows) {
            if (arrow.implied == implied) {
                arrows.emplace_back(arrow.from, arrow.to);
            }
        }
        return arrows;
    }

    TemporaryFolder mFolder;
};
} // namespace

TEST_F(PoolGraphs, HasAnArrowForEachPoolThatADirectoryNames)
{
    const PoolGraph graph = Build({PoolNaming("a") + PoolNaming("bxa"), PoolNaming("cb")});
    ASSERT_EQ(graph.nodes.size(), 4U);
    EXPECT_EQ(graph.resolvedNodes, 3U);
    EXPECT_EQ(graph.nodes[2].file, 1U);
    EXPECT_EQ(graph.nodes[3].uuid[0], 'x');
    EXPECT_FALSE(graph.nodes[3].resolved);
    EXPECT_THAT(Arrows(graph, false), ElementsAre(Pair(1, 0), Pair(1, 3), Pair(2, 1)));
    EXPECT_THAT(Arrows(graph, true), IsEmpty());
}

TEST_F(PoolGraphs, CountsRepeatedEntriesOnceAndOwnOnesNever)
{
    const PoolGraph graph = Build({PoolNaming("a") + PoolNaming("baabab")});
    ASSERT_EQ(graph.arrows.size(), 1U);
    EXPECT_EQ(graph.arrows[0].times, 3U);
}

TEST_F(PoolGraphs, MarksArrowsThatALongerWayReplaces)
{
    const PoolGraph graph =
        Build({PoolNaming("ax") + PoolNaming("bax") + PoolNaming("cbax") + PoolNaming("da")});
    EXPECT_THAT(Arrows(graph, false), ElementsAre(Pair(0, 4), Pair(1, 0), Pair(2, 1), Pair(3, 0)));
    EXPECT_THAT(Arrows(graph, true), ElementsAre(Pair(1, 4), Pair(2, 0), Pair(2, 4)));
}

TEST_F(PoolGraphs, KeepsBothArrowsOfPoolsThatNameEachOther)
{
    const PoolGraph graph = Build({PoolNaming("ab") + PoolNaming("ba")});
    EXPECT_THAT(Arrows(graph, false), ElementsAre(Pair(0, 1), Pair(1, 0)));
}

TEST_F(PoolGraphs, AreWrittenForGraphvizMermaidAndAsADocument)
{
    mFolder.Write("a\"b.sim", PoolNaming("a") + PoolNaming("bxa"));
    const auto draw = [&](const std::string& format) {
        const Ran ran = RunSimpool({"graph", mFolder.Path("a\"b.sim"), "--format", format});
        EXPECT_EQ(ran.exit, 0) << ran.err;
        return ran.out;
    };
    const std::string dot = draw("dot");
    EXPECT_THAT(dot, HasSubstr("label=\"a\\\"b.sim\""));
    EXPECT_THAT(dot, HasSubstr("  n1 -> n0;\n  n1 -> n2 [style=dashed, color=\"#b23a3a\"];\n}\n"));
    const std::string mermaid = draw("mermaid");
    EXPECT_THAT(mermaid, HasSubstr("subgraph f0[\"a#34;b.sim\"]"));
    EXPECT_THAT(mermaid, HasSubstr("  n1 --> n0\n  n1 -.-> n2\n"));
    EXPECT_THAT(draw("json"), HasSubstr("\"resolved\": false"));
    EXPECT_EQ(draw("json"), RunSimpool({"graph", mFolder.Path("a\"b.sim"), "--json"}).out);
}

TEST_F(PoolGraphs, AreDrawnUpToTheDamage)
{
    mFolder.Write("a.sim", PoolNaming("a") + "rubbish");
    const Ran ran = RunSimpool({"graph", mFolder.Path("a.sim")});
    EXPECT_EQ(ran.exit, 1);
    EXPECT_THAT(ran.err, HasSubstr("is drawn up to byte 80 only: "));
    EXPECT_THAT(ran.out, HasSubstr("damaged at byte 80"));
}

TEST(SvgText, EscapesAndShortensByCharacters)
{
    EXPECT_EQ(XmlText("<a&\"b\">"), "&lt;a&amp;&quot;b&quot;&gt;");
    EXPECT_EQ(Shortened("abcd", 4), "abcd");
    EXPECT_EQ(Shortened("abcde", 4), "abc\u2026");
    EXPECT_EQ(Shortened("\u00e4\u00f6\u00fc\u00df\u00e4", 4), "\u00e4\u00f6\u00fc\u2026");
}
