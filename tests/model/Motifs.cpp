#include "Motifs.h"

#include "Choices.h"

#include <array>

namespace {

constexpr auto kWrite = static_cast<std::uint32_t>(Mode::Write);
constexpr auto kUpdate = static_cast<std::uint32_t>(Mode::Update);
constexpr auto kRead = static_cast<std::uint32_t>(Mode::Read);
constexpr auto kGivenFresh = static_cast<std::uint32_t>(UuidFrom::Caller);
constexpr auto kGivenKnown = static_cast<std::uint32_t>(UuidFrom::CallerKnown);
constexpr auto kSmallCount = static_cast<std::uint32_t>(Field::SmallCount);
constexpr std::uint32_t kBound = 1;
constexpr std::uint32_t kEvenOpen = 1;

Script Reopen(Random& random)
{
    const std::uint32_t i = random.Below(kDocuments);
    const std::uint32_t mode = random.InEight(2) ? kRead : kUpdate;
    return {{Kind::CloseFile, {i, i}},
            {Kind::AddFile, {i, i, mode, i}},
            {Kind::TakeCurrentPool, {i, i}},
            {Kind::PoolStart, {i, i}}};
}

// Several files of one document, in another order than before.
Script ReopenAll(Random& random)
{
    const std::uint32_t document = random.Below(kDocuments);
    Script script{{Kind::CloseDocument, {document}}};
    for (std::uint32_t i = 0; i < 4; ++i) {
        const std::uint32_t name = random.Below(kFixedNames);
        script.push_back({Kind::AddFile, {document, name, kUpdate, name}});
        script.push_back({Kind::TakePool, {name, random.Below(4), name}});
    }
    return script;
}

// Records behind the end of a current pool, and the way back through them.
Script AppendAndRead(Random& random)
{
    const std::uint32_t file = random.Below(kFiles);
    const std::uint32_t place = random.Below(kLocators);
    const std::uint32_t stream = random.Below(kWriters);
    const std::uint32_t length = random.Below(41);
    const std::uint32_t count = random.Below(65);
    return {{Kind::TakeCurrentPool, {file, file}},
            {Kind::FileEnd, {file, place}},
            {Kind::OpenAppender, {stream, file, random.Below(65)}},
            {Kind::WriteString, {stream, length, random.Below(26)}},
            {Kind::WriteReference, {stream, random.Below(kLocators)}},
            {Kind::WriteBytes, {stream, count, random.Below(256)}},
            {random.InEight(4) ? Kind::FlushWriter : Kind::CloseWriter, {stream}},
            {Kind::OpenLocatorReader, {stream, place, 0, random.Below(65)}},
            {Kind::ReadString, {stream}},
            {Kind::ReadReference, {stream, random.Below(kLocators)}},
            {Kind::ReadBytes, {stream, count}}};
}

// Bytes that exist are written again through a stream.
Script Overwrite(Random& random)
{
    const std::uint32_t file = random.Below(kFiles);
    const std::uint32_t place = random.Below(kLocators);
    const std::uint32_t stream = random.Below(kWriters);
    const std::uint32_t limit = random.InEight(4) ? 0 : random.Below(120);
    return {{Kind::FileAllocate, {file, 100 + random.Below(60), place}},
            {Kind::OpenLocatorWriter, {stream, place, limit, random.Below(65)}},
            {Kind::WriteBytes, {stream, random.Below(65), random.Below(256)}},
            {Kind::PrepWrite, {stream, random.Below(20), random.Below(256)}},
            {Kind::WriteReference, {stream, random.Below(kLocators)}},
            {random.InEight(4) ? Kind::FlushWriter : Kind::CloseWriter, {stream}},
            {Kind::OpenLocatorReader, {stream, place, limit, random.Below(65)}},
            {Kind::PrepRead, {stream, random.Below(20)}},
            {Kind::ReadBytes, {stream, random.Below(65)}}};
}

Script ImageOfAPool(Random& random)
{
    const std::uint32_t pool = random.Below(kPools);
    const std::uint32_t from = random.Below(kLocators);
    const std::uint32_t inside = random.Below(kLocators);
    const std::uint32_t memory = random.Below(kMemories);
    const std::uint32_t byte = random.Below(256);
    return {{Kind::PoolStart, {pool, from}},
            {Kind::MakeMemory, {memory, from, random.Below(65), random.Below(4)}},
            {Kind::MoveLocator, {from, 1, random.Below(24), inside}},
            {Kind::WriteMemory, {memory, inside, random.Below(24), byte}},
            {Kind::ReadMemory, {memory, inside, random.Below(64)}},
            {Kind::CarryMemory, {inside, memory, inside}},
            {Kind::WriteLocator, {inside, random.Below(24), byte}},
            {Kind::ReadLocator, {inside, random.Below(64)}},
            {Kind::ReadLocator, {from, random.Below(64)}},
            {Kind::AskMemory, {memory, inside, random.Below(64)}},
            {Kind::MoveLocator, {from, 2, 1, inside}},
            {Kind::ReadMemory, {memory, inside, 1}}};
}

// Places before a pool's first byte: offsets that wrap, into headers or out of all positions.
Script BeforeThePool(Random& random)
{
    const std::uint32_t file = random.Below(kFiles);
    const std::uint32_t pool = random.Below(kPools);
    const std::uint32_t place = random.Below(kLocators);
    const std::uint32_t size = random.Below(30);
    const std::uint32_t byte = random.Below(256);
    return {{Kind::TakePool, {file, 0, pool}},
            {Kind::PoolStart, {pool, place}},
            {Kind::MoveLocator, {place, 2, random.Below(400), place}},
            {Kind::ReadLocator, {place, size}},
            {Kind::WriteLocator, {place, size, byte}},
            {Kind::ReadDirect, {place, size}},
            {Kind::WriteDirect, {place, size, byte}}};
}

// A pool of one document into a file of another one; its header may have been hit on the way.
Script Import(Random& random)
{
    const std::uint32_t from = random.Below(kDocuments);
    const std::uint32_t to = random.InEight(2) ? 2 : (from + 1) % 2; // often of one signature
    const std::uint32_t place = random.Below(kLocators);
    const std::uint32_t size = 1 + random.Below(100);
    const std::uint32_t unwritten = random.InEight(1) ? 1 : 0;
    Script script{{Kind::AddFile, {from, from, kUpdate, from}},
                  {Kind::AddFile, {to, to, kUpdate, to}},
                  {Kind::NewPool, {from, random.Below(2), 0}},
                  {Kind::FileAllocate, {from, size, place}},
                  {Kind::WriteLocator, {place, size - unwritten, random.Below(256)}},
                  {Kind::TakeCurrentPool, {from, from}}};
    if (random.InEight(1)) {
        script.push_back(
            {Kind::DamageFile, {from, random.Below(400), kSmallCount, random.Below(8), kEvenOpen}});
    }
    script.push_back({Kind::AppendPool, {to, from}});
    script.push_back({Kind::TakeCurrentPool, {to, to}});
    script.push_back({random.InEight(4) ? Kind::FlushFile : Kind::FlushDocument, {to}});
    return script;
}

// A pool that was dropped gives its identifier to later ones, which then have it twice.
Script UuidComesBack(Random& random)
{
    const std::uint32_t file = random.Below(kFiles);
    const std::uint32_t flag = random.Below(2);
    return {{Kind::NewPool, {file, flag, kGivenFresh}},
            {Kind::NewPool, {file, flag, kGivenFresh}},
            {Kind::NewPool, {file, flag, kGivenKnown, 1}},
            {Kind::FileAllocate, {file, 1 + random.Below(20), random.Below(kLocators)}},
            {Kind::NewPool, {file, flag, kGivenKnown, 0}},
            {Kind::TakeCurrentPool, {file, file}},
            {Kind::AppendPool, {random.Below(kFiles), file}},
            {Kind::FlushFile, {file}}};
}

// A reference that names nothing, read into a locator that does.
Script NoReference(Random& random)
{
    const std::uint32_t file = random.Below(kFiles);
    const std::uint32_t from = random.Below(kLocators);
    const std::uint32_t null = random.Below(kLocators);
    const std::uint32_t into = random.Below(kLocators);
    const std::uint32_t stream = random.Below(kWriters);
    return {{Kind::TakeCurrentPool, {file, file}},
            {Kind::FileEnd, {file, from}},
            {Kind::ResetLocator, {null}},
            {Kind::OpenAppender, {stream, file, random.Below(65)}},
            {Kind::WriteReference, {stream, null}},
            {Kind::CloseWriter, {stream}},
            {Kind::FileEnd, {file, into}},
            {Kind::OpenLocatorReader, {stream, from, 0, random.Below(65)}},
            {Kind::ReadReference, {stream, into}},
            {Kind::CompareLocators, {into, from, random.Below(5)}},
            {Kind::ReadLocator, {into, 12}}};
}

// Bytes of a closed file change before it is opened again.
Script Damage(Random& random)
{
    const std::uint32_t i = random.Below(kDocuments);
    Script script{{Kind::CloseFile, {i, i}}};
    if (random.InEight(6)) {
        script.push_back(
            {Kind::DamageFile, {i, random.Below(400), random.Below(11), random.Below(256)}});
    } else if (random.InEight(6)) {
        const std::uint32_t least = random.InEight(2) ? 9 : 200;
        script.push_back({Kind::CutFile, {i, random.Below(400), random.Below(least)}});
    } else {
        script.push_back({Kind::LengthenFile, {i, random.Below(200), random.Below(256)}});
    }
    script.push_back({Kind::AskVersion, {i, random.Below(4)}});
    script.push_back({Kind::AddFile, {i, i, random.InEight(2) ? kRead : kUpdate, i}});
    script.push_back({Kind::TakeCurrentPool, {i, i}});
    script.push_back({Kind::AskPool, {i}});
    script.push_back({Kind::PoolEnd, {i, random.Below(kLocators)}});
    return script;
}

// A reference that was stored once, while the pool had a longer directory.
Script ShortenedDirectory(Random& random)
{
    const std::uint32_t i = random.Below(kDocuments);
    const std::uint32_t place = random.Below(kLocators);
    const std::uint32_t stream = random.Below(kWriters);
    return {{Kind::NewPool, {i, 0, 0}},
            {Kind::TakeCurrentPool, {i, i}},
            {Kind::OpenBufferWriter, {stream, 40, kBound, i}},
            {Kind::WriteReference, {stream, place}},
            {Kind::CloseFile, {i, i}},
            {Kind::DamageFile, {i, random.Below(400), kSmallCount, random.Below(8)}},
            {Kind::AddFile, {i, i, kUpdate, i}},
            {Kind::TakeCurrentPool, {i, i}},
            {Kind::OpenBufferWriter, {stream, 40, kBound, i}},
            {Kind::WriteReference, {stream, place}}};
}

// Files that were lost on the way, and handles on those that are open.
Script FindFiles(Random& random)
{
    Script script;
    for (std::uint32_t i = 0; i < kFiles; ++i) {
        if (random.InEight(3)) {
            const std::uint32_t mode = random.InEight(2) ? kWrite : kUpdate;
            script.push_back({Kind::AddFile, {i % kDocuments, i % kFixedNames, mode, i}});
            script.push_back({Kind::TakeCurrentPool, {i, i}});
        }
    }
    return script;
}

void Append(Script& script, const Script& more)
{
    script.insert(script.end(), more.begin(), more.end());
}
} // namespace

Script DrawMotif(Random& random)
{
    constexpr std::array kMotifs{
        &Reopen,        &ReopenAll,   &AppendAndRead, &AppendAndRead, &Overwrite,
        &ImageOfAPool,  &Import,      &Import,        &BeforeThePool, &ShortenedDirectory,
        &UuidComesBack, &NoReference, &Damage,        &Damage};
    Script script = FindFiles(random);
    Append(script, kMotifs[random.Below(kMotifs.size())](random));
    return script;
}

Script ManyPoolsInAFile(std::uint32_t file)
{
    Script script;
    for (std::uint32_t i = 0; i < 8; ++i) {
        script.push_back({Kind::ManyPools, {file, 39, i % 4 == 0 ? 0U : 1U}});
    }
    return script;
}
