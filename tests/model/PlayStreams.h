// Operations on streams.
#pragma once

#include "Registers.h"

#include <memory>
#include <string>
#include <utility>

template <class Store>
class StreamPlay
{
public:
    StreamPlay(Registers<Store>& registers, const Operation& operation, Outcome& outcome)
        : r(registers), op(operation), out(outcome)
    {}

    /// False for a kind that belongs elsewhere.
    bool Play() { return PlayOpening() || PlayReading() || PlayWriting(); }

private:
    using Reader = typename Registers<Store>::Reader;
    using Writer = typename Registers<Store>::Writer;
    using String = typename Store::String;

    [[nodiscard]] std::uint32_t Arg(std::size_t i) const { return op.arguments[i]; }
    [[nodiscard]] Reader& TheReader() { return r.readers[Arg(0)]; }
    [[nodiscard]] Writer& TheWriter() { return r.writers[Arg(0)]; }

    bool PlayOpening()
    {
        switch (op.kind) {
        case Kind::OpenBufferReader:
            OpenBufferReader();
            return true;
        case Kind::OpenLocatorReader:
            OpenLocatorReader();
            return true;
        case Kind::OpenBufferWriter:
            OpenBufferWriter();
            return true;
        case Kind::OpenLocatorWriter:
            OpenLocatorWriter();
            return true;
        case Kind::OpenAppender:
            OpenAppender();
            return true;
        default:
            return false;
        }
    }

    bool PlayReading()
    {
        switch (op.kind) {
        case Kind::PrepRead:
        case Kind::ReadBytes:
        case Kind::ReadString:
        case Kind::ReadReference:
        case Kind::AskReader:
            out.skipped = TheReader().stream == nullptr;
            if (!out.skipped) {
                Read(*TheReader().stream);
            }
            return true;
        default:
            return false;
        }
    }

    bool PlayWriting()
    {
        out.skipped = TheWriter().stream == nullptr;
        if (!out.skipped) {
            Write(*TheWriter().stream);
        }
        return true;
    }

    // The bytes that a stream in memory wrote, or small words.
    void OpenBufferReader()
    {
        const Writer& source = r.writers[Arg(1)];
        const std::string bytes = source.room != nullptr
                                      ? std::string(source.room.get(), source.size)
                                      : Pattern(Arg(4), Arg(4) % 64);
        Reader& reader = TheReader();
        reader = {};
        reader.bytes = std::make_unique<char[]>(bytes.size() + 1);
        bytes.copy(reader.bytes.get(), bytes.size());
        if (const auto& pool = r.pools[Arg(3)]; Arg(2) != 0 && pool.has_value()) {
            reader.stream = std::make_unique<typename Store::ReadBuffer>(reader.bytes.get(),
                                                                         bytes.size(), *pool);
        } else {
            reader.stream =
                std::make_unique<typename Store::ReadBuffer>(reader.bytes.get(), bytes.size());
        }
    }

    void OpenLocatorReader()
    {
        TheReader().stream = std::make_unique<typename Store::ReadLocator>(
            r.places[Arg(1)].locator, static_cast<unsigned long long>(Arg(2)), Arg(3));
    }

    // The stream before dies first; when that raises, no new one is made.
    void OpenBufferWriter()
    {
        Writer& writer = TheWriter();
        writer.Close();
        writer.size = Arg(1);
        writer.room = std::make_unique<char[]>(writer.size + 1);
        if (const auto& pool = r.pools[Arg(3)]; Arg(2) != 0 && pool.has_value()) {
            writer.stream = new typename Store::WriteBuffer(writer.room.get(), writer.size, *pool);
        } else {
            writer.stream = new typename Store::WriteBuffer(writer.room.get(), writer.size);
        }
    }

    void OpenLocatorWriter()
    {
        const auto& place = r.places[Arg(1)];
        out.skipped = !place.tame;
        if (!out.skipped) {
            Writer& writer = TheWriter();
            writer.Close();
            writer.room.reset();
            writer.toLocator = new typename Store::WriteLocator(
                place.locator, static_cast<unsigned long long>(Arg(2)), Arg(3));
            writer.stream = writer.toLocator;
        }
    }

    void OpenAppender()
    {
        const auto& pool = r.pools[Arg(1)];
        out.skipped = !pool.has_value() || (!pool->Null() && SizeOf(*pool) > kLargestPool);
        if (!out.skipped) {
            Writer& writer = TheWriter();
            writer.Close();
            writer.room.reset();
            writer.toPool = new typename Store::AppendToPool(*pool, Arg(2));
            writer.stream = writer.toPool;
        }
    }

    void Read(typename Store::StreamRead& stream)
    {
        const std::uint32_t size = Arg(1);
        switch (op.kind) {
        case Kind::PrepRead:
            out.bytes.append(stream.PrepRead(size), size);
            break;
        case Kind::ReadBytes:
            stream.Read(out.Room(size), size);
            break;
        case Kind::ReadString:
            ReadString(stream);
            break;
        case Kind::ReadReference:
            r.places[size].locator.InternalizeImpl(stream);
            r.places[size].tame = false;
            Answer(r.places[size].locator.Null());
            break;
        default:
            Answer(r.NumberOf(stream.IMPool()));
            Answer(stream.SourceDir() != nullptr);
            break;
        }
    }

    // On failure the text stays what it was.
    void ReadString(typename Store::StreamRead& stream)
    {
        String text("before");
        try {
            stream.Read(text);
        } catch (...) {
            out.bytes += Store::Bytes(text);
            throw;
        }
        out.bytes += Store::Bytes(text);
    }

    void Write(typename Store::StreamWrite& stream)
    {
        const std::uint32_t size = Arg(1);
        switch (op.kind) {
        case Kind::PrepWrite:
            Pattern(Arg(2), size).copy(stream.PrepWrite(size), size);
            break;
        case Kind::WriteBytes:
            stream.Write(Pattern(Arg(2), size).data(), size);
            break;
        case Kind::WriteString: {
            const std::string text(size, static_cast<char>('A' + Arg(2) % 26));
            stream.Write(String(text.c_str()));
            break;
        }
        case Kind::WriteReference:
            r.places[size].locator.ExternalizeImpl(stream);
            break;
        case Kind::FlushWriter:
            Flush();
            break;
        case Kind::AskWriter:
            Ask(stream);
            break;
        case Kind::CloseWriter:
            TheWriter().Close();
            break;
        default:
            Unwind();
            break;
        }
    }

    void Flush()
    {
        if (TheWriter().toLocator != nullptr) {
            TheWriter().toLocator->Flush();
        } else if (TheWriter().toPool != nullptr) {
            TheWriter().toPool->Flush();
        }
    }

    void Ask(const typename Store::StreamWrite& stream)
    {
        const Writer& writer = TheWriter();
        if (writer.room != nullptr) {
            out.bytes.append(writer.room.get(), writer.size);
        }
        if (writer.toPool != nullptr) {
            Answer(writer.toPool->Length());
        }
        Answer(r.NumberOf(stream.IMPool()));
        Answer(stream.SourceDir() != nullptr);
    }

    // The stream dies while an exception is on its way, which nothing else may overtake.
    void Unwind()
    {
        struct Dying
        {
            Writer& writer;
            explicit Dying(Writer& dying) : writer(dying) {}
            Dying(const Dying&) = delete;
            Dying& operator=(const Dying&) = delete;
            ~Dying() noexcept(false) { writer.Close(); }
        };
        try {
            const Dying dying(TheWriter());
            throw std::pair<int, int>();
        } catch (const std::pair<int, int>&) {
            Answer(TheWriter().stream == nullptr);
        }
    }

    template <class Number>
    void Answer(Number number)
    {
        out.numbers.push_back(static_cast<std::uint64_t>(number));
    }

    Registers<Store>& r;
    const Operation& op;
    Outcome& out;
};
