#include "New.h"

#include "CommandFailure.h"
#include "EscapedText.h"
#include "FileBytes.h"
#include "Json.h"
#include "PoolCopying.h"

#include "VUKSimRpm_UUID.h"

#include <algorithm>
#include <cstring>
#include <deque>

namespace simpool {
namespace {

UserSignature ParseSignature(const std::string& text)
{
    const std::string bytes = Unescaped(text).value_or("");
    UserSignature signature;
    if (bytes.size() != signature.size()) {
        throw CommandFailure("the user signature " + Quoted(text) + " must have four bytes");
    }
    std::ranges::copy(bytes, signature.begin());
    return signature;
}

Uuid ParseUuid(const std::string& text)
{
    Uuid uuid;
    if (text.size() != uuid.size()) {
        throw CommandFailure("the UUID " + Quoted(text) + " must have 32 characters");
    }
    std::ranges::copy(text, uuid.begin());
    return uuid;
}

// Header and directory of pool `number`. It can refer to itself and to the pools in front of it.
std::string Beginning(UserSignature signature, const std::vector<Uuid>& uuids, std::size_t number,
                      std::uint64_t dataLength)
{
    StoredHeader header;
    header.userSignature = signature;
    header.directoryCount = static_cast<std::uint32_t>(number + 1);
    const bool isLast = number + 1 == uuids.size();
    header.SetLength(isLast ? 0 : header.FullSize() + dataLength);
    std::string bytes(kHeaderSize, '\0');
    EncodeHeader(header, bytes.data());
    bytes.append(uuids[number].data(), kEntrySize);
    for (std::size_t i = 0; i < number; ++i) {
        bytes.append(uuids[i].data(), kEntrySize);
    }
    return bytes;
}

void OpenAll(std::deque<FileBytes>& files, const std::vector<std::string>& names,
             const std::string& output)
{
    for (const std::string& name : names) {
        const int failure = files.emplace_back().Open(name.c_str());
        if (failure == FileBytes::kNotRegular) {
            throw CommandFailure(Quoted(name) + " is no regular file");
        }
        if (failure != 0) {
            throw SystemFailure("cannot open", name, failure);
        }
        if (files.back().IsSameFile(output.c_str())) {
            throw CommandFailure(Quoted(output) + " is read by this command and cannot be written");
        }
    }
}
} // namespace

CommandText New::Text() const
{
    return {"new", "Make a file, empty or from raw data",
            "Makes a file under a user signature of four bytes. Each --data file becomes the data "
            "of a pool of its own; without any, the file has one empty pool, as a new file of the "
            "library has. A pool can refer to itself and to the pools in front of it.\n\n"
            "Pools get fresh random UUIDs, or those given with --uuid, in order. Bytes that are "
            "hard to type can be given as \\xNN in the signature.",
            "simpool new -o empty.sim --signature DEMO\n"
            "simpool new -o run.sim --signature DEMO --data mesh.bin --data loads.bin\n"};
}

void New::AddOptions(CLI::App& options)
{
    options.add_option("-o,--output", mOutput, "The file to make")->required()->type_name("FILE");
    options.add_option("--signature", mSignature, "The user signature: four bytes")
        ->required()
        ->type_name("TEXT");
    options.add_option("--data", mData, "A file whose bytes become a pool's data; repeatable")
        ->type_name("FILE")
        ->allow_extra_args(false);
    options.add_option("--uuid", mUuids, "32 characters for the next pool; repeatable")
        ->type_name("UUID")
        ->allow_extra_args(false);
    options.add_flag("--force", mIsForced, "Replace the output if it exists");
}

std::vector<Uuid> New::Uuids(std::size_t count) const
{
    if (mUuids.size() > count) {
        throw CommandFailure(fmt::format("{} were given for {}", Counted(mUuids.size(), "UUID"),
                                         Counted(count, "pool")));
    }
    std::vector<Uuid> uuids;
    for (std::size_t i = 0; i < count; ++i) {
        if (i < mUuids.size()) {
            uuids.push_back(ParseUuid(mUuids[i]));
        } else {
            VUKSimRpm_UUID::CreateUUID(uuids.emplace_back().data());
        }
        if (std::count(uuids.begin(), uuids.end(), uuids.back()) > 1) {
            throw CommandFailure("the UUID " + UuidText(uuids.back()) + " was given twice");
        }
    }
    return uuids;
}

ExitCode New::Run(const Surroundings& surroundings)
{
    const UserSignature signature = ParseSignature(mSignature);
    const std::vector<Uuid> uuids = Uuids(std::max<std::size_t>(mData.size(), 1));
    std::deque<FileBytes> data;
    OpenAll(data, mData, mOutput);

    NewFile out(mOutput, mIsForced ? NewFile::Existing::Replace : NewFile::Existing::Refuse);
    Json list = Json::array();
    for (std::size_t i = 0; i < uuids.size(); ++i) {
        const std::uint64_t length = data.empty() ? 0 : data[i].Size();
        list.push_back(
            {{"uuid", UuidText(uuids[i])}, {"position", out.Size()}, {"dataLength", length}});
        out.Append(Beginning(signature, uuids, i, length));
        if (length > 0) {
            ProgressLine progress(surroundings.err, "copying", out.Size() + length);
            CopyInSteps(data[i], 0, length, out, progress);
        }
    }
    const std::uint64_t size = out.Size();
    out.Commit();

    if (surroundings.json) {
        Json document = NewDocument("new");
        document["output"] = Escaped(mOutput);
        document["size"] = size;
        document["pools"] = std::move(list);
        PrintJson(surroundings.out, document);
    } else {
        surroundings.out.Print("{}, {}, in {}\n", Counted(uuids.size(), "pool"), FullSize(size),
                               Quoted(mOutput));
    }
    return ExitCode::Fine;
}
} // namespace simpool
