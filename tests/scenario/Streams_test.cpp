// The same records through every kind of stream, in pools and in memory.
#include "Records.h"

#include "Bytes.h"
#include "Failures.h"
#include "OnePool.h"
#include "VUKSimRpm_BStreamReadBuffer.h"
#include "VUKSimRpm_BStreamWriteBuffer.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_SwapperTraits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

constexpr char kReadSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamReadLocator";

using testing::ElementsAre;

// Texts around the sizes of chunks and scratch buffers, UTF-8 and the empty one among them.
std::vector<std::string> Texts()
{
    std::vector<std::string> texts = {"", "a", "ab", "abc", "abcd", "Gr\xC3\xB6\xC3\x9F\x65"};
    for (const unsigned int length : {11U, 12U, 13U, 63U, 64U, 65U, 255U, 256U, 257U, 5000U}) {
        texts.push_back(Letters(length));
    }
    return texts;
}

void StoreAll(VUKSimRpm_BStreamWrite& stream, const VUKSimRpm_Locator& link)
{
    for (const std::string& text : Texts()) {
        Store(stream, {text, link});
    }
}

void ExpectAll(VUKSimRpm_BStreamRead& stream, const VUKSimRpm_Locator& link)
{
    for (const std::string& text : Texts()) {
        const Record record = Load(stream);
        EXPECT_EQ(record.name, text);
        EXPECT_TRUE(record.link == link);
    }
}

// What StoreAll writes, by hand: each link leads to byte 7 of the storing pool itself.
std::string AllBytes()
{
    std::string all;
    for (const std::string& text : Texts()) {
        all += bytes::Word(static_cast<unsigned int>(text.size())) + text +
               bytes::Zeros((4 - text.size() % 4) % 4) + bytes::LongWord(7) + bytes::Word(0);
    }
    return all;
}
} // namespace

TEST(Streams, ThatAppendAndThatOverwriteStoreTheSameBytes)
{
    for (const unsigned long chunkSize : {16UL, 17UL, 64UL, 4096UL, 65536UL}) {
        OnePool appended;
        OnePool written;
        {
            VUKSimRpm_BStreamAppendToPool stream(appended.Pool(), chunkSize);
            StoreAll(stream, appended.Start() + 7);
            EXPECT_EQ(stream.Length(), AllBytes().size());
        }
        {
            written.File().Allocate(AllBytes().size());
            VUKSimRpm_BStreamWriteLocator stream(written.Start(), AllBytes().size(), chunkSize);
            StoreAll(stream, written.Start() + 7);
        }
        EXPECT_EQ(appended.Stored(), AllBytes()) << chunkSize;
        EXPECT_EQ(written.Stored(), AllBytes()) << chunkSize;
    }
}

TEST(Streams, ReadWhatWasStoredWhateverTheChunk)
{
    const OnePool store(AllBytes());
    for (const unsigned long chunkSize : {16UL, 17UL, 64UL, 4096UL, 65536UL}) {
        VUKSimRpm_BStreamReadLocator stream(store.Start(), AllBytes().size(), chunkSize);
        ExpectAll(stream, store.Start() + 7);
        EXPECT_THROW((void)stream.PrepRead(1), VUKSimExcShortBuffer);
    }
}

TEST(Streams, OverBuffersCarryRecordsToAndFromAPool)
{
    const OnePool store(Letters(20));
    std::string buffer(28, '?');
    VUKSimRpm_BStreamWriteBuffer out(buffer.data(), buffer.size(), store.Pool());
    Store(out, {"twelve bytes", store.Start() + 3});
    EXPECT_EQ(buffer, bytes::Word(12) + "twelve bytes" + bytes::LongWord(3) + bytes::Word(0));
    VUKSimRpm_BStreamReadBuffer in(buffer.data(), buffer.size(), store.Pool());
    const Record record = Load(in);
    EXPECT_EQ(record.name, "twelve bytes");
    EXPECT_EQ(ReadFrom(record.link, 4), "defg");
}

TEST(Streams, CarryAPoolsBytesIntoAnotherPoolOfTheSameDirectoryOrder)
{
    OnePool store("first");
    store.File().NewPool(false, nullptr);
    Append(store.File().Pool(), {"second", store.Start()});
    const std::string copied = ReadFrom(store.File().Start(), store.File().Pool().Length());
    store.File().NewPool(false, nullptr);
    WriteTo(store.File().Allocate(copied.size()), copied);
    // The index is the copy's own now: entry 1 of its directory is the first pool as well.
    EXPECT_TRUE(RecordAt(store.File().Start()).link == store.Start());
}

TEST(Streams, PatchALinkWhenItsTargetIsKnown)
{
    OnePool store;
    const VUKSimRpm_Pool pool = store.Pool();
    std::vector<VUKSimRpm_Locator> places;
    for (const char* const name : {"one", "two", "three"}) {
        places.push_back(Append(pool, {name, {}}));
    }
    for (std::size_t i = 0; i + 1 < places.size(); ++i) {
        // Behind the text record of 4 + 4 bytes.
        VUKSimRpm_BStreamWriteLocator stream(places[i] + 8, 12, 16);
        places[i + 1].ExternalizeImpl(stream);
    }
    EXPECT_THAT(Chain(places[0]), ElementsAre("one", "two", "three"));
    store.ReopenReadOnly();
    EXPECT_THAT(Chain(places[0]), ElementsAre("one", "two", "three"));
}

TEST(Streams, MoveArraysInPlace)
{
    const double values[] = {0.0, -1.5, 1e300, 6.25};
    OnePool store;
    {
        VUKSimRpm_BStreamAppendToPool stream(store.Pool(), 64);
        VUKSimRpm_SwapperTraits<8>::ExternalizeArray(stream.PrepWrite(32), values, 4);
    }
    EXPECT_EQ(store.Stored(), std::string("\0\0\0\0\0\0\0\0"
                                          "\0\0\0\0\0\0\xF8\xBF"
                                          "\x9C\x75\x00\x88\x3C\xE4\x37\x7E"
                                          "\0\0\0\0\0\0\x19\x40",
                                          32));
    double read[4] = {};
    VUKSimRpm_BStreamReadLocator stream(store.Start(), 32, 64);
    VUKSimRpm_SwapperTraits<8>::InternalizeArray(stream.PrepRead(32), read, 4);
    EXPECT_THAT(read, testing::ElementsAreArray(values));
}

TEST(Streams, WithALimitStopABadRecordAtItsOwnEnd)
{
    OnePool store;
    const VUKSimRpm_Locator first = Append(store.Pool(), {"abcd", {}}); // 20 bytes
    Append(store.Pool(), {"next", {}});
    WriteTo(first, std::string("\x0C\0\0\0", 4)); // claims 12 bytes of text
    {
        VUKSimRpm_BStreamReadLocator stream(first, 20, 64);
        EXPECT_TRUE(RaisesShortBuffer([&] { Load(stream); }, 28, 20, kReadSource, 59));
    }
    VUKSimRpm_BStreamReadLocator next(first + 20, 20, 64);
    EXPECT_EQ(Load(next).name, "next");
}

TEST(Streams, WriteAndReadOnePoolAtTheSameTime)
{
    OnePool store;
    VUKSimRpm_BStreamAppendToPool out(store.Pool(), 64);
    VUKSimRpm_BStreamReadLocator in(store.Start(), 0, 64);
    for (int i = 0; i < 50; ++i) {
        Store(out, {"record " + std::to_string(i), store.Start()});
        out.Flush();
        EXPECT_EQ(Load(in).name, "record " + std::to_string(i));
    }
}
