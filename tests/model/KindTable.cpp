#include "Operation.h"

namespace {

using Domain = Argument::Domain;

Argument Of(const char* name, std::uint32_t count)
{
    return {name, Domain::Range, count, {}};
}

Argument RegisterOf(const char* name, std::uint32_t count)
{
    return {name, Domain::Register, count, {}};
}

Argument ChoiceOf(const char* name, const std::vector<int>& weights)
{
    return {name, Domain::Choice, static_cast<std::uint32_t>(weights.size()), weights};
}

const Argument kDocument = RegisterOf("document", kDocuments);
const Argument kName = RegisterOf("name", kNames);
const Argument kFile = RegisterOf("file", kFiles);
const Argument kPool = RegisterOf("pool", kPools);
const Argument kPlace = RegisterOf("locator", kLocators);
const Argument kMemory = RegisterOf("memory", kMemories);
const Argument kReader = RegisterOf("reader", kReaders);
const Argument kWriter = RegisterOf("writer", kWriters);
const Argument kChunk = Of("chunk", 65);
const Argument kLimit = {"limit", Domain::Limit, 0, {}};
const Argument kByte = Of("byte", 256);
const Argument kBound = ChoiceOf("bound", {1, 3}); // a stream over a buffer, to the pool
const Argument kSize = {"length", Domain::Length, 0, {}};
const Argument kHuge = ChoiceOf("huge", {31, 1});         // over the end of all positions
const Argument kEvenOpen = ChoiceOf("even-open", {7, 1}); // files that are open, too
const Argument kMode = ChoiceOf("mode", {7, 10, 5, 1, 1});
const Argument kFirstUuid = ChoiceOf("uuid", {9, 1}); // of a file's first pool
const Argument kUuid = ChoiceOf("uuid", {10, 1, 2, 1, 1, 1});
} // namespace

const std::vector<KindFacts>& AllKinds()
{
    static const std::vector<KindFacts> kinds{
        {Kind::AddFile, "add-file", {kDocument, kName, kMode, kFile, kFirstUuid}, 90},
        {Kind::CreateTemporary,
         "create-temporary",
         {kDocument, Of("flag", 2), kFile, kFirstUuid},
         3},
        {Kind::CreateGenerated,
         "create-generated",
         {kDocument, Of("flag", 2), kFile, kFirstUuid},
         3},
        {Kind::FlushDocument, "flush-document", {kDocument}, 10},
        {Kind::CloseDocument, "close-document", {kDocument}, 2},
        {Kind::CloseFile, "close-file", {kDocument, kFile}, 20},
        {Kind::RenewDocument, "renew-document", {kDocument}, 2},
        {Kind::UseMovedDocument, "use-moved-document", {kDocument, Of("member", 6), kFile}, 4},
        {Kind::AskVersion, "ask-version", {kName, Of("question", 4)}, 12},

        {Kind::DamageFile,
         "damage-file",
         {kName, Of("pool", 400), Of("field", 11), kByte, kEvenOpen},
         15},
        {Kind::CutFile, "cut-file", {kName, Of("pool", 400), Of("at", 600), kEvenOpen}, 8},
        {Kind::LengthenFile, "lengthen-file", {kName, kSize, kByte, kEvenOpen}, 4},
        {Kind::RemoveFile, "remove-file", {kName}, 5},

        {Kind::AskFile, "ask-file", {kFile}, 20},
        {Kind::TakePool, "take-pool", {kFile, Of("index", 320), kPool}, 45},
        {Kind::TakeCurrentPool, "take-current-pool", {kFile, kPool}, 40},
        {Kind::FileStart, "file-start", {kFile, kPlace}, 15},
        {Kind::FileEnd, "file-end", {kFile, kPlace}, 15},
        {Kind::FileAllocate, "file-allocate", {kFile, kSize, kPlace, kHuge}, 50},
        {Kind::NewPool, "new-pool", {kFile, Of("flag", 2), kUuid, Of("known", 16)}, 40},
        {Kind::ManyPools, "many-pools", {kFile, Of("count", 40), ChoiceOf("flag", {1, 7})}, 1},
        {Kind::AppendPool, "append-pool", {kFile, Of("pool", kPools)}, 40},
        {Kind::FlushFile, "flush-file", {kFile}, 20},

        {Kind::AskPool, "ask-pool", {kPool}, 20},
        {Kind::PoolStart, "pool-start", {kPool, kPlace}, 50},
        {Kind::PoolEnd, "pool-end", {kPool, kPlace}, 20},
        {Kind::PoolAllocate, "pool-allocate", {kPool, kSize, kPlace, kHuge}, 30},

        {Kind::ResetLocator, "reset-locator", {kPlace}, 5},
        {Kind::CopyLocator, "copy-locator", {kPlace, Of("to", kLocators)}, 15},
        {Kind::MoveLocator, "move-locator", {kPlace, Of("how", 4), kSize, Of("to", kLocators)}, 40},
        {Kind::CarryMemory, "carry-memory", {kPlace, kMemory, Of("to", kLocators)}, 25},
        {Kind::AskLocator, "ask-locator", {kPlace, Of("question", 5)}, 40},
        {Kind::CompareLocators,
         "compare-locators",
         {kPlace, Of("with", kLocators), Of("how", 5)},
         40},
        {Kind::ReadLocator, "read-locator", {kPlace, kSize}, 80},
        {Kind::WriteLocator, "write-locator", {kPlace, kSize, kByte}, 80},
        {Kind::ReadDirect, "read-direct", {kPlace, kSize}, 20},
        {Kind::WriteDirect, "write-direct", {kPlace, kSize, kByte}, 15},

        {Kind::MakeMemory, "make-memory", {kMemory, kPlace, kSize, Of("given", 4)}, 30},
        {Kind::AskMemory, "ask-memory", {kMemory, kPlace, kSize}, 20},
        {Kind::ReadMemory, "read-memory", {kMemory, kPlace, kSize}, 20},
        {Kind::WriteMemory, "write-memory", {kMemory, kPlace, kSize, kByte}, 15},

        {Kind::OpenBufferReader,
         "open-buffer-reader",
         {kReader, kWriter, kBound, kPool, kByte},
         25},
        {Kind::OpenLocatorReader, "open-locator-reader", {kReader, kPlace, kLimit, kChunk}, 45},
        {Kind::PrepRead, "prep-read", {kReader, kSize}, 45},
        {Kind::ReadBytes, "read-bytes", {kReader, kSize}, 45},
        {Kind::ReadString, "read-string", {kReader}, 25},
        {Kind::ReadReference, "read-reference", {kReader, kPlace}, 40},
        {Kind::AskReader, "ask-reader", {kReader}, 12},

        {Kind::OpenBufferWriter, "open-buffer-writer", {kWriter, kSize, kBound, kPool}, 20},
        {Kind::OpenLocatorWriter, "open-locator-writer", {kWriter, kPlace, kLimit, kChunk}, 35},
        {Kind::OpenAppender, "open-appender", {kWriter, kPool, kChunk}, 40},
        {Kind::PrepWrite, "prep-write", {kWriter, kSize, kByte}, 45},
        {Kind::WriteBytes, "write-bytes", {kWriter, kSize, kByte}, 45},
        {Kind::WriteString, "write-string", {kWriter, Of("length", 41), kByte}, 30},
        {Kind::WriteReference, "write-reference", {kWriter, kPlace}, 60},
        {Kind::FlushWriter, "flush-writer", {kWriter}, 30},
        {Kind::AskWriter, "ask-writer", {kWriter}, 15},
        {Kind::CloseWriter, "close-writer", {kWriter}, 20},
        {Kind::UnwindWriter, "unwind-writer", {kWriter}, 5},
    };
    return kinds;
}
