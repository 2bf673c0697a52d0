#include "OnePool.h"
#include "Operations.h"
#include "Store.h"
#include "VUKSimPoolManager.h"
#include "VUKSimRpm_Swapper.h"
#include "VUKSimRpm_UUID.h"

namespace {

constexpr char kDocumentSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_DocumentImpl";

// One of the four questions about a file's version. A file that ends early has none.
class VersionQuery : public Operation
{
public:
    using Query = int (*)(const VUKString& name);

    // `line` is where a file too short is reported; 0 where it is not.
    VersionQuery(Query query, int answer, int line) : mQuery(query), mExpected(answer), mLine(line)
    {
        mFolder.Write("a.sim", Store::TwoPools());
    }

    void Run() override { mAnswer = mQuery(mName); }

    [[nodiscard]] bool Answers(const Hit& hit, const VUKBasException& raised) const override
    {
        return hit.Ends() && IsFrom(raised, "VUKSimExcNotSimFile", kDocumentSource, mLine);
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const bool ends = outcome.hits.size() == 1 && outcome.hits[0].Ends();
        complaints.Expect(!ends || mLine == 0 || outcome.failed, "a file too short is reported");
        if (!outcome.failed) {
            complaints.Same(mAnswer, ends ? 0 : mExpected, "the answer");
        }
        Run();
        complaints.Same(mAnswer, mExpected, "the next answer");
        complaints.Same(mFolder.Read("a.sim"), Store::TwoPools(), "the bytes of a.sim");
    }

private:
    Query mQuery;
    int mExpected;
    int mLine;
    int mAnswer = -1;
    TemporaryFolder mFolder;
    const VUKString mName = mFolder.File("a.sim");
};

class AskForTheFileType : public VersionQuery
{
public:
    AskForTheFileType() : VersionQuery(&VUKSimRpm_Document::GetFileType, 1, 0) {}
};

template <bool (*Query)(const VUKString&)>
int AsNumber(const VUKString& name)
{
    return Query(name) ? 1 : 0;
}

class AskForAnUpgrade : public VersionQuery
{
public:
    AskForAnUpgrade() : VersionQuery(&AsNumber<&VUKSimRpm_Document::UpgradeRequired>, 0, 189) {}
};

class AskForADowngrade : public VersionQuery
{
public:
    AskForADowngrade() : VersionQuery(&AsNumber<&VUKSimRpm_Document::DowngradeRequired>, 0, 202) {}
};

class AskForABinaryUpgrade : public VersionQuery
{
public:
    AskForABinaryUpgrade()
        : VersionQuery(&AsNumber<&VUKSimRpm_Document::BinaryUpgradeRequired>, 0, 176)
    {}
};

// Names are texts of their own.
class AskForNames : public Operation
{
public:
    void Run() override
    {
        mFileName = mStore.File().FileName();
        mUuid = mPool.GetGUID();
    }

    void Check(const Outcome&, Complaints& complaints) override
    {
        Run();
        complaints.Expect(mFileName == mStore.Folder().File("a.sim"), "the file's name is right");
        complaints.Expect(mUuid == VUKString(std::string(32, 'b').c_str()), "the UUID is right");
    }

private:
    Store mStore;
    const VUKSimRpm_Pool mPool = mStore.File().Pool();
    VUKString mFileName;
    VUKString mUuid;
};

// What handles know: neither disk nor heap is asked.
class AskHandles : public Operation
{
public:
    void Run() override
    {
        const VUKSimRpm_File& file = mStore.File();
        const VUKSimRpm_Pool pool = file.Pool(1);
        mHolds = !file.Null() && !file.ReadOnly() && file.PoolCount() == 2 && !pool.Null() &&
                 !pool.ReadOnly() && pool.Length() == 7 && pool.HeaderSizeBytes() == 48 &&
                 pool.DirectorySizeBytes() == 64 && file.Start() == pool.Start() &&
                 file.End() == pool.End() && file.Pool().End() - pool.Start() == 7;
    }

    void Check(const Outcome&, Complaints& complaints) override
    {
        complaints.Expect(mHolds, "handles tell what is in the file");
    }

private:
    Store mStore;
    bool mHolds = false;
};

// Start and stop, UUIDs and the order of bytes: nothing to fail.
class UseModulesAndValues : public Operation
{
public:
    void Run() override
    {
        VUKSimPoolManager_initialize(mModules);
        VUKSimPoolManager_initializeC();
        VUKSimPoolManager_finalizeC();
        VUKSimPoolManager_finalize(mModules);
        VUKSimRpm_UUID::CreateUUID(mUuid);
        VUKSimRpm_Swapper::InternalizeScalarUnsafe("\x01\x02\x03\x04", &mNumber, 4);
    }

    void Check(const Outcome&, Complaints& complaints) override
    {
        complaints.Same(mModules, 0, "the count of modules");
        complaints.Same(mUuid[12], '4', "what every UUID has");
        complaints.Same(mNumber, 0x04030201U, "the number");
    }

private:
    int mModules = 0;
    char mUuid[32] = {};
    unsigned int mNumber = 0;
};
} // namespace

std::vector<OperationEntry> QueryOperations()
{
    return {
        Entry<AskForTheFileType>("AskForTheFileType", 5, 1),
        Entry<AskForAnUpgrade>("AskForAnUpgrade", 5, 1),
        Entry<AskForADowngrade>("AskForADowngrade", 5, 1),
        Entry<AskForABinaryUpgrade>("AskForABinaryUpgrade", 5, 1),
        Entry<AskForNames>("AskForNames", 0, 2),
        Entry<AskHandles>("AskHandles", 0, 0),
        Entry<UseModulesAndValues>("UseModulesAndValues", 0, 0),
    };
}
