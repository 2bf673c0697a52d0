#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

/// What one step of a script does. Documents, files, pools and so on are kept in registers; an
/// operation names registers and plain numbers, so that it means something in any script.
enum class Kind
{
    // documents
    AddFile,
    CreateTemporary,
    CreateGenerated,
    FlushDocument,
    CloseDocument,
    CloseFile,
    RenewDocument,
    UseMovedDocument,
    AskVersion,
    // the disk, behind the library's back
    DamageFile,
    CutFile,
    LengthenFile,
    RemoveFile,
    // files
    AskFile,
    TakePool,
    TakeCurrentPool,
    FileStart,
    FileEnd,
    FileAllocate,
    NewPool,
    ManyPools,
    AppendPool,
    FlushFile,
    // pools
    AskPool,
    PoolStart,
    PoolEnd,
    PoolAllocate,
    // locators
    ResetLocator,
    CopyLocator,
    MoveLocator,
    CarryMemory,
    AskLocator,
    CompareLocators,
    ReadLocator,
    WriteLocator,
    ReadDirect,
    WriteDirect,
    // memory pools
    MakeMemory,
    AskMemory,
    ReadMemory,
    WriteMemory,
    // reading streams
    OpenBufferReader,
    OpenLocatorReader,
    PrepRead,
    ReadBytes,
    ReadString,
    ReadReference,
    AskReader,
    // writing streams
    OpenBufferWriter,
    OpenLocatorWriter,
    OpenAppender,
    PrepWrite,
    WriteBytes,
    WriteString,
    WriteReference,
    FlushWriter,
    AskWriter,
    CloseWriter,
    UnwindWriter,
};

inline constexpr std::size_t kKinds = static_cast<std::size_t>(Kind::UnwindWriter) + 1;

/// One step, as a plain value.
struct Operation
{
    static constexpr std::size_t kMostArguments = 5;

    Kind kind = Kind::AddFile;
    std::array<std::uint32_t, kMostArguments> arguments{}; // those beyond the kind's own are zero

    bool operator==(const Operation&) const = default;
};

using Script = std::vector<Operation>;

/// How many registers of each sort there are.
inline constexpr std::uint32_t kDocuments = 3;
inline constexpr std::uint32_t kFiles = 6;
inline constexpr std::uint32_t kPools = 6;
inline constexpr std::uint32_t kLocators = 8;
inline constexpr std::uint32_t kMemories = 3;
inline constexpr std::uint32_t kReaders = 3;
inline constexpr std::uint32_t kWriters = 3;
inline constexpr std::uint32_t kFixedNames = 5;          // files f0, f1, ...
inline constexpr std::uint32_t kNames = kFixedNames + 2; // and the last one made of either sort

/// What an argument may be.
struct Argument
{
    enum class Domain
    {
        Range,    // 0 up to below `count`
        Choice,   // the same, by weight
        Register, // the same; more often than not the number of the operation's first register
        Length,   // mostly up to 64, at times a few hundred bytes
        Limit,    // 0 for none in half of all cases
    };

    const char* name;
    Domain domain = Domain::Range;
    std::uint32_t count = 0;
    std::vector<int> weights = {}; // of a choice: how often each is drawn
};

/// All that is known of a kind of operation.
struct KindFacts
{
    Kind kind;
    const char* name;
    std::vector<Argument> arguments;
    int weight; // how often it is drawn, against the others
};

/// In the order of the kinds.
const std::vector<KindFacts>& AllKinds();
const KindFacts& FactsOf(Kind kind);

/// One operation is a line, `append-pool file=3 pool=2`.
std::ostream& operator<<(std::ostream& out, const Operation& operation);
std::string Print(const Script& script);

/// The script that Print made; empty lines and those that begin with # do not count.
/// \throws std::runtime_error that names the line, for what is no operation.
Script Parse(std::istream& in);
