// A document of 1,000 pools in 10 files that refer to each other in all directions, opened, closed
// and combined in random orders. Every choice comes from a generator whose seed is printed.
#include "Failures.h"
#include "OnePool.h"
#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Pool.h"
#include "VUKSimRpm_Swapper.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {
constexpr int kFiles = 10;
constexpr int kPoolsOfAFile = 100;
constexpr int kPools = kFiles * kPoolsOfAFile;
constexpr int kReferences = 8; // of each pool
constexpr char kLocator[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";

// Numbers as strings of the same length, so that every record has the same size.
std::string Digits(int number)
{
    std::string digits = std::to_string(number);
    return std::string(4 - digits.size(), '0') + digits;
}

std::string UuidOf(int pool)
{
    return "aaaabbbbccccddddeeeeffff0000" + Digits(pool);
}

std::string FileName(int file)
{
    return "part" + std::to_string(file) + ".sim";
}

// What pool `number` holds: a string of its number, then its references, each a locator and behind
// it the number of the pool that it must lead to.
struct Reference
{
    VUKSimRpm_Locator place;
    int expected;
};

void WriteContent(const VUKSimRpm_Pool& pool, int number, const std::vector<Reference>& references)
{
    VUKSimRpm_BStreamAppendToPool stream(pool, 64);
    stream.Write(Digits(number).c_str());
    for (const Reference& reference : references) {
        reference.place.ExternalizeImpl(stream);
        VUKSimRpm_Swapper::ExternalizeScalarUnsafe(stream.PrepWrite(4), &reference.expected, 4);
    }
}

// The number that stands at the start of the data at `place`.
int ReadNumber(const VUKSimRpm_Locator& place)
{
    VUKSimRpm_BStreamReadLocator stream(place, 8, 16);
    VUKString digits;
    stream.Read(digits);
    return std::stoi(digits.UTF8());
}

std::vector<Reference> ReadReferences(const VUKSimRpm_Locator& start)
{
    VUKSimRpm_BStreamReadLocator stream(start + 8, 16 * kReferences, 64);
    std::vector<Reference> references(kReferences);
    for (Reference& reference : references) {
        reference.place.InternalizeImpl(stream);
        VUKSimRpm_Swapper::InternalizeScalarUnsafe(stream.PrepRead(4), &reference.expected, 4);
    }
    return references;
}

class ManyPools : public testing::Test
{
protected:
    ManyPools()
    {
        std::cout << "seed " << kSeed << '\n';
        ChooseReferences();
        WriteUuids();
        for (int file = 0; file < kFiles; ++file) {
            WriteFile(file);
        }
    }

    // A shuffled list of the numbers below `count`.
    std::vector<int> Shuffled(int count)
    {
        std::vector<int> numbers(static_cast<std::size_t>(count));
        std::iota(numbers.begin(), numbers.end(), 0);
        std::ranges::shuffle(numbers, mRandom);
        return numbers;
    }

    int Random(int below) { return std::uniform_int_distribution<int>(0, below - 1)(mRandom); }

    VUKSimRpm_File Open(VUKSimRpm_Document& document, int file)
    {
        const auto mode = Random(2) == 0 ? VUKSimRpm_Document::Read : VUKSimRpm_Document::Update;
        return document.AddFile(mFolder.File(FileName(file)), mode);
    }

    // The numbers that pool `number` refers to; the first is the next one of a ring of all pools.
    [[nodiscard]] const std::vector<int>& Targets(int number) const
    {
        return mTargets[static_cast<std::size_t>(number)];
    }

    // The references go from each file to each file, and about half of them to a later pool.
    void CheckDirections() const
    {
        std::set<std::pair<int, int>> directions;
        int forward = 0;
        for (int pool = 0; pool < kPools; ++pool) {
            for (const int target : Targets(pool)) {
                directions.insert({pool / kPoolsOfAFile, target / kPoolsOfAFile});
                forward += target > pool ? 1 : 0;
            }
        }
        EXPECT_EQ(directions.size(), 100U);
        EXPECT_GT(forward, 3000); // of 8000
        EXPECT_LT(forward, 5000);
    }

    // Every reference of the pools in `file`, which must lead to the right pool, or nowhere as long
    // as that pool's file is not among `open`.
    void CheckFile(const VUKSimRpm_File& file, int fileNumber, const std::set<int>& open) const
    {
        ASSERT_EQ(file.PoolCount(), 100U);
        for (int i = 0; i < kPoolsOfAFile; ++i) {
            const int number = fileNumber * kPoolsOfAFile + i;
            const VUKSimRpm_Pool pool = file.Pool(static_cast<unsigned int>(i));
            ASSERT_EQ(ReadNumber(pool.Start()), number);
            const std::vector<Reference> references = ReadReferences(pool.Start());
            for (std::size_t k = 0; k < references.size(); ++k) {
                ASSERT_EQ(references[k].expected, Targets(number)[k]);
                CheckReference(references[k], open);
            }
        }
    }

    // Follows the ring from pool to pool.
    static int LengthOfRing(const VUKSimRpm_Locator& start)
    {
        std::set<int> met;
        for (VUKSimRpm_Locator place = start; met.insert(ReadNumber(place)).second;) {
            place = ReadReferences(place)[0].place;
        }
        return static_cast<int>(met.size());
    }

    static constexpr unsigned int kSeed = 20261121;
    TemporaryFolder mFolder;
    std::mt19937 mRandom{kSeed};

private:
    void ChooseReferences()
    {
        mTargets.resize(kPools);
        const std::vector<int> ring = Shuffled(kPools);
        for (std::size_t i = 0; i < ring.size(); ++i) {
            std::vector<int>& targets = mTargets[static_cast<std::size_t>(ring[i])];
            targets.push_back(ring[(i + 1) % ring.size()]);
            while (targets.size() < kReferences) {
                targets.push_back(Random(kPools));
            }
        }
    }

    // A file of 1,000 pools with the UUIDs of those to come: a document that had it open knows them
    // all, so that the first pool can name the last.
    void WriteUuids() const
    {
        VUKSimRpm_Document document("TEST");
        VUKSimRpm_File file =
            document.AddFile(mFolder.File("uuids.sim"), VUKSimRpm_Document::Write);
        for (int i = 0; i < kPools; ++i) {
            file.NewPool(true, UuidOf(i).c_str());
            file.Allocate(1);
        }
        WriteTo(file.End() - 1, "x");
        document.Close();
    }

    void WriteFile(int number) const
    {
        VUKSimRpm_Document document("TEST");
        const VUKSimRpm_File uuids =
            document.AddFile(mFolder.File("uuids.sim"), VUKSimRpm_Document::Read);
        std::vector<VUKSimRpm_Locator> starts;
        for (unsigned int i = 0; i < kPools; ++i) {
            starts.push_back(uuids.Pool(i).Start());
        }
        document.Close(uuids);
        VUKSimRpm_File file =
            document.AddFile(mFolder.File(FileName(number)), VUKSimRpm_Document::Write);
        for (int i = 0; i < kPoolsOfAFile; ++i) {
            const int pool = number * kPoolsOfAFile + i;
            file.NewPool(false, UuidOf(pool).c_str());
            std::vector<Reference> references;
            for (const int target : Targets(pool)) {
                references.push_back({starts[static_cast<std::size_t>(target)], target});
            }
            WriteContent(file.Pool(), pool, references);
        }
        document.Close();
    }

    static void CheckReference(const Reference& reference, const std::set<int>& open)
    {
        ASSERT_FALSE(reference.place.Null());
        ASSERT_EQ(reference.place.GetGUID().UTF8(), UuidOf(reference.expected));
        if (open.contains(reference.expected / kPoolsOfAFile)) {
            ASSERT_EQ(ReadNumber(reference.place), reference.expected);
        } else {
            ASSERT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { ReadFrom(reference.place, 8); },
                                                          kLocator, 117));
        }
    }

    std::vector<std::vector<int>> mTargets; // by pool
};
} // namespace

TEST_F(ManyPools, FindEachOtherInWhicheverOrderTheirFilesAreOpened)
{
    CheckDirections();
    for (int round = 0; round < 3; ++round) {
        VUKSimRpm_Document document("TEST");
        std::vector<std::pair<int, VUKSimRpm_File>> files;
        std::set<int> open;
        for (const int number : Shuffled(kFiles)) {
            SCOPED_TRACE("round " + std::to_string(round) + ", file " + std::to_string(number));
            files.emplace_back(number, Open(document, number));
            open.insert(number);
            CheckFile(files.back().second, number, open);
        }
        for (const auto& [number, file] : files) {
            CheckFile(file, number, open);
        }
        EXPECT_EQ(LengthOfRing(files.front().second.Start()), 1000);
    }
}

TEST_F(ManyPools, AreFoundAgainByLocatorsFromBeforeTheirFilesWereClosed)
{
    VUKSimRpm_Document document("TEST");
    std::vector<VUKSimRpm_File> files;
    std::vector<VUKSimRpm_Locator> starts;
    for (int number = 0; number < kFiles; ++number) {
        files.push_back(Open(document, number));
        for (unsigned int i = 0; i < kPoolsOfAFile; ++i) {
            starts.push_back(files.back().Pool(i).Start());
        }
    }
    for (const int number : Shuffled(kFiles)) {
        document.Close(files[static_cast<std::size_t>(number)]);
        const auto first = static_cast<std::size_t>(number * kPoolsOfAFile);
        EXPECT_FALSE(starts[first].Null());
        EXPECT_TRUE(
            Raises<VUKSimExcCantDerefLocator>([&] { ReadFrom(starts[first], 8); }, kLocator, 117));
    }
    for (const int number : Shuffled(kFiles)) {
        Open(document, number);
    }
    for (const int number : Shuffled(kPools)) {
        ASSERT_EQ(ReadNumber(starts[static_cast<std::size_t>(number)]), number);
    }
    EXPECT_EQ(LengthOfRing(starts[0]), 1000);
}

TEST_F(ManyPools, FindEachOtherWhenAllAreCopiedIntoOneFile)
{
    VUKSimRpm_Document sources("TEST");
    std::vector<VUKSimRpm_File> files;
    for (int number = 0; number < kFiles; ++number) {
        files.push_back(Open(sources, number));
    }
    VUKSimRpm_Document document("TEST");
    VUKSimRpm_File all = document.AddFile(mFolder.File("all.sim"), VUKSimRpm_Document::Write);
    const std::vector<int> order = Shuffled(kPools);
    for (const int number : order) {
        const auto file = static_cast<std::size_t>(number / kPoolsOfAFile);
        all.AppendPool(files[file].Pool(static_cast<unsigned int>(number % kPoolsOfAFile)));
    }
    document.Close();
    sources.Close();

    const VUKSimRpm_File again =
        document.AddFile(mFolder.File("all.sim"), VUKSimRpm_Document::Read);
    ASSERT_EQ(again.PoolCount(), 1000U);
    for (unsigned int i = 0; i < kPools; ++i) {
        ASSERT_EQ(ReadNumber(again.Pool(i).Start()), order[i]);
        for (const Reference& reference : ReadReferences(again.Pool(i).Start())) {
            ASSERT_EQ(ReadNumber(reference.place), reference.expected);
        }
    }
    EXPECT_EQ(LengthOfRing(again.Start()), 1000);
}
