// Every operation of the public interfaces, with every fault of each of its calls.
#include "FaultLoop.h"
#include "Operations.h"

#include <gtest/gtest.h>

namespace {

// The first complaints; the rest are mostly their echo.
std::string Some(const std::vector<std::string>& complaints)
{
    std::string text = std::to_string(complaints.size()) + " complaints";
    for (std::size_t i = 0; i < complaints.size() && i < 12; ++i) {
        text += "\n  " + complaints[i];
    }
    return text;
}

std::string NameOf(const testing::TestParamInfo<OperationEntry>& info)
{
    return info.param.name;
}

class EveryCall : public testing::TestWithParam<OperationEntry>
{};

class EveryPairOfCalls : public testing::TestWithParam<OperationEntry>
{};
} // namespace

TEST_P(EveryCall, MayFail)
{
    const LoopResult result = TryEveryFault(GetParam());
    EXPECT_TRUE(result.complaints.empty()) << Some(result.complaints);
    TriedPoints()["system calls"] += result.callPoints;
    TriedPoints()["allocations"] += result.points - result.callPoints;
    RecordProperty("calls", result.calls);
    RecordProperty("allocations", result.allocations);
}

TEST_P(EveryPairOfCalls, MayFail)
{
    const LoopResult result = TryEveryPairOfFaults(GetParam());
    EXPECT_TRUE(result.complaints.empty()) << Some(result.complaints);
    TriedPoints()["pairs of system calls"] += result.points;
}

INSTANTIATE_TEST_SUITE_P(Documents, EveryCall, testing::ValuesIn(DocumentOperations()), NameOf);
INSTANTIATE_TEST_SUITE_P(Pools, EveryCall, testing::ValuesIn(PoolOperations()), NameOf);
INSTANTIATE_TEST_SUITE_P(Imports, EveryCall, testing::ValuesIn(ImportOperations()), NameOf);
INSTANTIATE_TEST_SUITE_P(Closing, EveryCall, testing::ValuesIn(ClosingOperations()), NameOf);
INSTANTIATE_TEST_SUITE_P(Locators, EveryCall, testing::ValuesIn(LocatorOperations()), NameOf);
INSTANTIATE_TEST_SUITE_P(ReadStreams, EveryCall, testing::ValuesIn(ReadStreamOperations()), NameOf);
INSTANTIATE_TEST_SUITE_P(WriteStreams, EveryCall, testing::ValuesIn(WriteStreamOperations()),
                         NameOf);
INSTANTIATE_TEST_SUITE_P(Queries, EveryCall, testing::ValuesIn(QueryOperations()), NameOf);
INSTANTIATE_TEST_SUITE_P(OSFiles, EveryCall, testing::ValuesIn(OSFileOperations()), NameOf);
INSTANTIATE_TEST_SUITE_P(MappedFiles, EveryCall, testing::ValuesIn(MappedFileOperations()), NameOf);
INSTANTIATE_TEST_SUITE_P(Recovering, EveryPairOfCalls, testing::ValuesIn(RecoveringOperations()),
                         NameOf);
