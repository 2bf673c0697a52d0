#include "Store.h"

#include "Bytes.h"
#include "OnePool.h"
#include "VUKSimExc.h"
#include "VUKSimUttOSFileException.h"

namespace {

const bytes::Pool kFrozen{
    .length = "0000000000000090", .directory = {bytes::Uuid('a')}, .data = "frozen one"};
const bytes::Pool kGrowing{.directory = {bytes::Uuid('b'), bytes::Uuid('a')}, .data = "growing"};

// The answers to a file whose pools do not stand end to end.
bool IsRefusal(const VUKBasException& raised)
{
    const std::string name = raised.ClassName();
    return name == "VUKSimExcNotSimFile" || name == "VUKSimExcCorruptHeader" ||
           name == "VUKSimExcCorruptDirectory" || name == "VUKSimExcPoolAlreadyInDoc" ||
           name == "VUKBasRangeException";
}

// As many as there are of both.
void JudgePools(const VUKSimRpm_File& file, const std::vector<HeldPool>& pools,
                Complaints& complaints)
{
    for (unsigned int i = 0; i < file.PoolCount() && i < pools.size(); ++i) {
        const VUKSimRpm_Pool pool = file.Pool(i);
        std::string data = DataOf(pool);
        if (pools[i].mayBeLonger) {
            data = data.substr(0, pools[i].data.size());
        }
        complaints.Same(std::string(pool.GetGUID().UTF8()), bytes::Uuid(pools[i].uuid), "a UUID");
        complaints.Same(data, pools[i].data, "the data of pool " + std::string(1, pools[i].uuid));
    }
}

bool EveryFlushFails(VUKSimRpm_File& file)
{
    for (int i = 0; i < 2; ++i) {
        try {
            file.Flush();
            return false;
        } catch (const VUKSimUttOSFileException& raised) {
            if (raised.Operation() != std::string("flush") || raised.Line() != 223) {
                return false;
            }
        }
    }
    return true;
}
} // namespace

Store::Store() : Store(TwoPools()) {}

Store::Store(const std::string& bytes)
    : mDocument(std::in_place, "TEST"),
      mFile(mDocument->AddFile(mFolder.Write("a.sim", bytes), VUKSimRpm_Document::Update))
{}

std::string Store::TwoPools()
{
    return bytes::File({kFrozen, kGrowing});
}

std::string Store::WithAnEmptyPool()
{
    return bytes::File({kFrozen, {.directory = kGrowing.directory}});
}

std::vector<HeldPool> Store::Pools()
{
    return {{'a', "frozen one"}, {'b', "growing"}};
}

void Store::ExpectPools(const std::vector<HeldPool>& pools, Complaints& complaints,
                        const std::string& name) const
{
    try {
        VUKSimRpm_Document document("TEST");
        const VUKSimRpm_File file = document.AddFile(mFolder.File(name), VUKSimRpm_Document::Read);
        complaints.Same(file.PoolCount(), pools.size(), "the number of pools in " + name);
        JudgePools(file, pools, complaints);
    } catch (const VUKBasException& raised) {
        complaints.Add(name + " does not open: " + raised.what());
    }
}

void Store::ExpectPoolsOrRefusal(Complaints& complaints) const
{
    ExpectDataInPlace(complaints);
    try {
        VUKSimRpm_Document document("TEST");
        JudgePools(document.AddFile(mFolder.File("a.sim"), VUKSimRpm_Document::Read),
                   {{'a', "frozen one"}, {'b', "growing", true}}, complaints);
    } catch (const VUKBasException& raised) {
        complaints.Expect(IsRefusal(raised), std::string("it is refused: ") + raised.what());
    }
}

void Store::ExpectDataInPlace(Complaints& complaints) const
{
    const std::string disk = mFolder.Read("a.sim");
    complaints.Expect(disk.size() >= 209, "a.sim is not shorter than before");
    if (disk.size() >= 209) {
        complaints.Same(disk.substr(80, 10), "frozen one", "what lies in a.sim from 80 on");
        complaints.Same(disk.substr(202, 7), "growing", "what lies in a.sim from 202 on");
    }
}

void Store::ExpectDisk(const std::string& bytes, Complaints& complaints,
                       const std::string& name) const
{
    complaints.Expect(mFolder.Read(name) == bytes, "the bytes of " + name + " are those expected");
}

void Store::ExpectGoesOn(const Outcome& outcome, const std::vector<HeldPool>& pools,
                         Complaints& complaints)
{
    WriteTo(mFile.Allocate(4), "next");
    if (outcome.syncFailed) {
        complaints.Expect(EveryFlushFails(mFile), "once a sync failed every flush does");
        Drop();
    } else {
        mDocument->Flush();
        mDocument->Close();
        complaints.Expect(mFile.Null(), "the closed file is gone");
    }
    ExpectPools(pools, complaints);
}

std::string DataOf(const VUKSimRpm_Pool& pool)
{
    return ReadFrom(pool.Start(), pool.Length());
}
