// Two files of one document: names of materials in one, a record that refers to a name by locator
// in the other. Written, closed, opened again in the other order, and read back by the locator.

#include "VUKBasException.h"
#include "VUKSimPoolManager.h"
#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_Swapper.h"

#include <cstdio>

namespace {

constexpr char kSignature[] = "DEMO"; // marks our files; others are refused
constexpr char kNames[] = "names.sim";
constexpr char kRecords[] = "records.sim";
constexpr unsigned long kChunk = 4096; // bytes that a stream gathers before it touches the file

void Create()
{
    VUKSimRpm_Document document(kSignature);
    const VUKSimRpm_File names = document.AddFile(kNames, VUKSimRpm_Document::Write);
    // Made second: a pool can refer to the pools that its document knew when it was made.
    const VUKSimRpm_File records = document.AddFile(kRecords, VUKSimRpm_Document::Write);

    const VUKSimRpm_Locator steel = names.End(); // the next byte that will be appended
    {
        VUKSimRpm_BStreamAppendToPool stream(names.Pool(), kChunk);
        stream.Write(VUKString("structural steel"));
        stream.Flush();
    }

    VUKSimRpm_BStreamAppendToPool stream(records.Pool(), kChunk);
    const double density = 7850.0; // kg/m3
    VUKSimRpm_Swapper::ExternalizeScalarUnsafe(stream.PrepWrite(8), &density, 8);
    steel.ExternalizeImpl(stream);
    stream.Flush();

    document.Close(); // rewrites the pools' headers and makes everything durable
}

void ReadBack()
{
    VUKSimRpm_Document document(kSignature);
    const VUKSimRpm_File records = document.AddFile(kRecords, VUKSimRpm_Document::Read);
    const VUKSimRpm_File names = document.AddFile(kNames, VUKSimRpm_Document::Read);

    VUKSimRpm_BStreamReadLocator stream(records.Start(), 0, kChunk);
    double density = 0.0;
    VUKSimRpm_Swapper::InternalizeScalarUnsafe(stream.PrepRead(8), &density, 8);
    VUKSimRpm_Locator name;
    name.InternalizeImpl(stream);

    VUKString text;
    VUKSimRpm_BStreamReadLocator(name, 0, kChunk).Read(text);
    std::printf("%s: %.0f kg/m3, named in %s, %u pool\n", text.UTF8(), density,
                names.FileName().UTF8(), names.PoolCount());
}

} // namespace

int main()
{
    int modules = 0;
    VUKSimPoolManager_initialize(modules);
    int status = 0;
    try {
        Create();
        ReadBack();
    } catch (const VUKBasException& error) {
        std::fprintf(stderr, "%s\n", error.what());
        status = 1;
    }
    VUKSimPoolManager_finalize(modules);
    return status;
}
