// The library against the model, and the model against bytes written by hand.
#include "Bytes.h"
#include "CrashNote.h"
#include "Drawer.h"
#include "ModelOptions.h"
#include "ModelStore.h"
#include "Run.h"

#include <gtest/gtest.h>

#include <chrono>
#include <iostream>

namespace {

constexpr std::uint64_t kEnoughToSeeAll = 1000000; // operations

std::string Explain(const Script& script, const Difference& difference, const std::string& folder)
{
    const Script small = Shrink(script, folder);
    Tally ignored;
    const auto left = RunScript(small, folder, ignored);
    return "At operation " + std::to_string(difference.step) + ": " + difference.what +
           "\nThe shortest script that shows a difference:\n" + Print(small) +
           (left ? left->what : "which then was gone");
}

std::string Listed(const std::vector<std::string>& names)
{
    std::string list;
    for (const std::string& name : names) {
        list += "\n  " + name;
    }
    return list;
}

void PrintCounts(const Tally& tally, double seconds)
{
    tally.Print(std::cout);
    std::cout << tally.Operations() << " operations without a difference, "
              << static_cast<std::uint64_t>(static_cast<double>(tally.Operations()) / seconds)
              << " a second; seed " << ModelOptions::Current().seed << std::endl;
}
} // namespace

TEST(Model, AgreesWithTheLibraryInEveryStep)
{
    const ModelOptions& options = ModelOptions::Current();
    Tally tally;
    const auto begin = std::chrono::steady_clock::now();
    for (std::uint64_t number = 0; tally.Operations() < options.operations; ++number) {
        CrashNote::Playing(options.seed, number);
        const Script script = DrawScript(options.seed, number);
        if (const auto difference = RunScript(script, options.folder, tally)) {
            FAIL() << "Script " << number << " of seed " << options.seed << ".\n"
                   << Explain(script, *difference, options.folder);
        }
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    PrintCounts(tally, took.count());
    EXPECT_TRUE(tally.Unexpected().empty()) << "not on the list:" << Listed(tally.Unexpected());
    if (options.operations >= kEnoughToSeeAll) {
        EXPECT_TRUE(tally.Missing().empty()) << "never came:" << Listed(tally.Missing());
        EXPECT_GE(tally.LargestFile(), 300U);
    }
}

TEST(Model, WritesTheBytesOfAFileAsTheyAreDefined)
{
    model::Disk::Current().Clear();
    model::Document document("TEST");
    ModelStore::ForceUuid("aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa");
    model::File file = document.AddFile("/one", model::Document::Write);
    file.Allocate(5).Write(5, "hello");
    file.NewPool(false, "bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb");
    file.Allocate(3); // of which two bytes are written
    file.Start().Write(2, "ok");

    const bytes::Pool first{
        .length = "0000000000000085", .directory = {bytes::Uuid('a')}, .data = "hello"};
    const bytes::Pool second{.directory = {bytes::Uuid('b'), bytes::Uuid('a')}, .data = "ok"};
    EXPECT_EQ(*model::Disk::Current().Find("/one"), bytes::File({first, second}));
}

TEST(Model, StoresAReferenceAsItIsDefined)
{
    model::Disk::Current().Clear();
    model::Document document("TEST");
    ModelStore::ForceUuid("aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa");
    model::File file = document.AddFile("/one", model::Document::Write);
    file.Allocate(8);
    const model::Locator target = file.Start() + 7;
    file.NewPool(false, "bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb");
    std::string room(28, '\0');
    {
        model::WriteBuffer stream(room.data(), room.size(), file.Pool());
        target.ExternalizeImpl(stream);
        model::Locator().ExternalizeImpl(stream);
    }
    EXPECT_EQ(room, bytes::LongWord(7) + bytes::Word(1) + bytes::LongWord(0) +
                        bytes::Word(0xFFFFFFFF) + bytes::Zeros(4));
}

TEST(Model, KnowsAGeneratedUuidByItsLook)
{
    //                                 0       8   12  16      24
    EXPECT_TRUE(model::LooksGenerated("fedcba9789ab4cd0bfedcba101234567"));
    EXPECT_FALSE(model::LooksGenerated("fedcba9889ab4cd0bfedcba101234567")); // at 7
    EXPECT_FALSE(model::LooksGenerated("fedcba9789ab5cd0bfedcba101234567")); // at 12
    EXPECT_FALSE(model::LooksGenerated("fedcba9789ab4cd07fedcba101234567")); // at 16
    EXPECT_FALSE(model::LooksGenerated("fedcba9789ab4cd0bFedcba101234567"));
    EXPECT_FALSE(model::LooksGenerated("fedcba9789ab4cd0bfedcba10123456"));
}
