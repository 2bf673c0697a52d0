#include "Scenarios.h"

#include "CrashOptions.h"
#include "VUKSimRpm_UUID.h"

namespace {

// A document of its own with one file whose pools can be imported; not recorded, and closed never.
class ImportSource
{
public:
    explicit ImportSource(const std::string& uuid) : mUuid(uuid)
    {
        VUKSimRpm_UUID::TestForceUUID(mUuid.c_str());
        mFile = mDocument.AddFile(mFolder.File("source.sim"), VUKSimRpm_Document::Write);
    }

    // Fills the current pool with `length` bytes.
    void Fill(std::size_t length)
    {
        mData = std::string(length, 's');
        for (std::size_t i = 0; i < length; i += 7) {
            mData[i] = static_cast<char>('A' + i / 7 % 26);
        }
        mFile.Allocate(length).Write(length, mData.data());
    }

    // Makes the filled pool an earlier one, with its length in its header.
    void Freeze() { mFile.NewPool(true, nullptr); }

    [[nodiscard]] VUKSimRpm_Pool Pool() const { return mFile.Pool(0); }
    [[nodiscard]] const std::string& Data() const { return mData; }

private:
    TemporaryFolder mFolder;
    std::string mUuid;
    VUKSimRpm_Document mDocument{"TEST"};
    VUKSimRpm_File mFile{VUKBasWeakPtr<VUKSimRpm_FileImpl>()};
    std::string mData;
};

void AppendAndFlush(WatchedStore& store)
{
    store.Create("a.sim", "a");
    store.Flush("a.sim");
    store.Append("a.sim", 100);
    store.Append("a.sim", 1);
    store.Flush("a.sim");
    for (const std::size_t length : {300U, 512U, 37U}) {
        store.Append("a.sim", length);
    }
    store.Flush("a.sim");
    store.Flush("a.sim");
    store.Append("a.sim", 1500);
    store.Allocate("a.sim", 64);
    store.Append("a.sim", 20); // leaves a hole behind it
    store.Flush("a.sim");
    store.Append("a.sim", 5);
}

void LongRecords(WatchedStore& store)
{
    store.Create("a.sim", "a");
    store.Flush("a.sim");
    store.Append("a.sim", 3000);
    store.Append("a.sim", 2600);
    store.Flush("a.sim");
    store.WriteAt("a.sim", 0, 100, 3100);
    store.Append("a.sim", 4200); // over the border of a page
    store.WriteAt("a.sim", 0, 900, 700);
    store.Flush("a.sim");
    store.Stream("a.sim", 2048, {1500, 400, 2000, 3000, 100});
    store.Flush("a.sim");
    store.WriteAt("a.sim", 0, 5000, 6000);
}

void StreamsAndRewrites(WatchedStore& store)
{
    store.Create("a.sim", "a");
    store.Stream("a.sim", 64, {10, 20, 30, 40, 50, 200, 3});
    store.Flush("a.sim");
    store.StreamAt("a.sim", 0, 17, 32, {5, 30, 100, 8}); // over promised bytes
    store.Stream("a.sim", 256, {255, 255, 4});
    store.WriteThroughMemory("a.sim", 0, 300, 90);
    store.Flush("a.sim");
    store.WriteAt("a.sim", 0, 0, 700);
    store.Flush("a.sim");
    store.StreamAt("a.sim", 0, 400, 16, {16, 16, 1, 33});
}

void NewPoolsBehindData(WatchedStore& store)
{
    store.Create("a.sim", "a");
    store.Append("a.sim", 390);
    store.NewPool("a.sim", "b", true); // its header lies over the border of the first sector
    store.Append("a.sim", 120);
    store.Flush("a.sim");
    store.NewPool("a.sim", "c", false);
    store.Append("a.sim", 217);
    store.NewPool("a.sim", "d", false);
    store.Append("a.sim", 40);
    store.Flush("a.sim");
    store.WriteAt("a.sim", 1, 5, 30); // a pool that is no longer current
    store.NewPool("a.sim", "e", false);
    store.Flush("a.sim");
    store.Append("a.sim", 9);
}

void NewPoolsBehindUnwrittenTails(WatchedStore& store)
{
    store.Create("a.sim", "a");
    store.Append("a.sim", 100);
    store.Allocate("a.sim", 300);
    store.NewPool("a.sim", "b", true);
    store.Allocate("a.sim", 1000); // nothing of it is written
    store.NewPool("a.sim", "c", true);
    store.Append("a.sim", 77);
    store.Allocate("a.sim", 5);
    store.Flush("a.sim");
    store.NewPool("a.sim", "d", false);
    store.Allocate("a.sim", 600);
    store.Flush("a.sim");
    store.NewPool("a.sim", "e", false);
    store.Append("a.sim", 30);
    store.Flush("a.sim");
}

void NewPoolsOntoEmptyOnes(WatchedStore& store)
{
    store.Create("a.sim", "a");
    store.NewPool("a.sim", "b", false);
    store.NewPool("a.sim", "c", true);
    store.Flush("a.sim");
    store.NewPool("a.sim", "d", true);
    store.Append("a.sim", 370);
    store.NewPool("a.sim", "e", true); // its UUID lies over the border of the first sector
    store.Flush("a.sim");
    store.NewPool("a.sim", "f", false);
    store.NewPool("a.sim", "g", true);
    store.Append("a.sim", 50);
    store.Flush("a.sim");
}

// The header of the first two lies over the border of the first sector, that of the third in a
// sector of its own, and none is made durable before the next one follows.
void PoolsInAHurry(WatchedStore& store)
{
    store.Create("a.sim", "a");
    store.Append("a.sim", 370);
    store.Flush("a.sim");
    store.NewPool("a.sim", "b", true);
    store.NewPool("a.sim", "c", true);
    store.Append("a.sim", 600);
    store.NewPool("a.sim", "d", true);
    store.Append("a.sim", 20);
    store.Flush("a.sim");
}

void ImportsBehindData(WatchedStore& store)
{
    ImportSource grown("11112222333344445555666677778888");
    grown.Fill(450);
    ImportSource fixed("88887777666655554444333322221111");
    fixed.Fill(260);
    fixed.Freeze();
    store.Create("a.sim", "a");
    store.Append("a.sim", 333);
    store.Flush("a.sim");
    store.Import("a.sim", grown.Pool(), grown.Data());
    store.Append("a.sim", 60);
    store.Import("a.sim", fixed.Pool(), fixed.Data());
    store.Flush("a.sim");
    store.Append("a.sim", 8);
    store.Allocate("a.sim", 200);
    store.NewPool("a.sim", "b", false);
    store.Flush("a.sim");
}

void ImportsOntoEmptyPools(WatchedStore& store)
{
    ImportSource first("11112222333344445555666677778888");
    first.Fill(450);
    first.Freeze();
    ImportSource second("88887777666655554444333322221111");
    second.Fill(90);
    store.Create("a.sim", "a");
    store.Import("a.sim", first.Pool(), first.Data());
    store.Flush("a.sim");
    store.NewPool("a.sim", "b", false);
    store.Flush("a.sim");
    store.Import("a.sim", second.Pool(), second.Data());
    store.Append("a.sim", 12);
    store.Flush("a.sim");
}

void ImportOfALongPool(WatchedStore& store)
{
    ImportSource source("11112222333344445555666677778888");
    source.Fill(262144); // with its header copied in two pieces
    store.Create("a.sim", "a");
    store.Append("a.sim", 1000);
    store.Flush("a.sim");
    store.Import("a.sim", source.Pool(), source.Data());
    store.Flush("a.sim");
}

void EmptyFile(WatchedStore& store)
{
    ImportSource source("11112222333344445555666677778888");
    source.Fill(70);
    store.CreateEmpty("a.sim");
    store.CreateEmpty("b.sim");
    store.Update("a.sim");
    store.Update("b.sim");
    store.NewPool("a.sim", "a", true);
    store.Append("a.sim", 25);
    store.Import("b.sim", source.Pool(), source.Data());
    store.FlushAll();
    store.Append("b.sim", 14);
    store.CloseAll();
}

void SeveralFiles(WatchedStore& store)
{
    store.Create("mesh.sim", "a");
    store.Append("mesh.sim", 600);
    store.Create("steps.sim", "b");
    store.NewPool("steps.sim", "c", false); // names the mesh
    for (int step = 0; step < 3; ++step) {
        store.Append("steps.sim", 150);
        store.AppendReference("steps.sim", "mesh.sim", 0);
    }
    store.Flush("steps.sim");
    const std::string other = store.CreateGenerated("other", "d");
    store.Append(other, 33);
    store.NewPool("steps.sim", "e", false);
    store.AppendReference("steps.sim", "mesh.sim", 0);
    store.FlushAll();
    store.Append("mesh.sim", 10);
    store.Append(other, 520);
    store.CloseAll();
}

void TemporaryFiles(WatchedStore& store)
{
    store.Create("a.sim", "a");
    store.Append("a.sim", 130);
    store.Flush("a.sim");
    const std::string scratch = store.CreateTemporary("scratch", "b");
    store.Append(scratch, 700);
    store.Flush(scratch);
    store.NewPool(scratch, "c", false);
    store.Append(scratch, 60);
    store.Append("a.sim", 90);
    store.Close(scratch); // takes it away
    store.Flush("a.sim");
    store.Append("a.sim", 11);
    const std::string other = store.CreateTemporary("scratch", "d");
    store.Append(other, 20);
    store.CloseAll();
}

void CloseAndUpdate(WatchedStore& store)
{
    store.Create("a.sim", "a");
    store.Append("a.sim", 200);
    store.NewPool("a.sim", "b", false);
    store.Append("a.sim", 345);
    store.Allocate("a.sim", 40);
    store.Close("a.sim");
    store.Update("a.sim");
    store.WriteAt("a.sim", 0, 50, 100);
    store.Append("a.sim", 66);
    store.Flush("a.sim");
    store.Allocate("a.sim", 90);
    store.NewPool("a.sim", "c", false);
    store.Append("a.sim", 31);
    store.CloseAll();
    store.Update("a.sim");
    store.WriteAt("a.sim", 1, 0, 345);
    store.CloseAll();
}

void WriteOverAFile(WatchedStore& store)
{
    store.Create("a.sim", "a");
    store.Append("a.sim", 700);
    store.NewPool("a.sim", "b", false);
    store.Append("a.sim", 100);
    store.Close("a.sim");
    store.Create("a.sim", "c");
    store.Append("a.sim", 45);
    store.Flush("a.sim");
    store.Append("a.sim", 500);
    store.CloseAll();
}
} // namespace

std::vector<Scenario> AllScenarios()
{
    std::vector<Scenario> all{
        {"append and flush", &AppendAndFlush},
        {"long records", &LongRecords, 600},
        {"streams and rewrites", &StreamsAndRewrites},
        {"new pools behind data", &NewPoolsBehindData},
        {"new pools behind unwritten tails", &NewPoolsBehindUnwrittenTails},
        {"new pools onto empty ones", &NewPoolsOntoEmptyOnes},
        {"pools without a flush between", &PoolsInAHurry},
        {"imports behind data", &ImportsBehindData},
        {"imports onto empty pools", &ImportsOntoEmptyPools},
        {"import of a long pool", &ImportOfALongPool, 12},
        {"first pools of empty files", &EmptyFile},
        {"several files", &SeveralFiles},
        {"temporary files", &TemporaryFiles},
        {"close and update", &CloseAndUpdate},
        {"write over a file", &WriteOverAFile},
    };
    const CrashOptions& options = CrashOptions::Current();
    for (Scenario& scenario : all) {
        scenario.powerLosses *= options.longRun ? 40 : 1;
    }
    for (Scenario& scenario : RandomScenarios(options.longRun ? 400 : 16, options.seed)) {
        all.push_back(std::move(scenario));
    }
    return all;
}
