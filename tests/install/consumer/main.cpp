// A host outside the tree: stores a text, reads it back, and catches the library's exceptions by
// their own types across its border.

#include "VUKSimExc.h"
#include "VUKSimPoolManager.h"
#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_Document.h"

#include <cstdio>
#include <cstring>

namespace {

bool KeepsAText()
{
    VUKSimRpm_Document document("HOST");
    {
        const VUKSimRpm_File file = document.AddFile("host.sim", VUKSimRpm_Document::Write);
        VUKSimRpm_BStreamAppendToPool stream(file.Pool(), 64);
        stream.Write(VUKString("kept"));
    }
    document.Close();

    const VUKSimRpm_File file = document.AddFile("host.sim", VUKSimRpm_Document::Read);
    VUKSimRpm_BStreamReadLocator stream(file.Start(), 0, 64);
    VUKString text;
    stream.Read(text);
    return std::strcmp(text.UTF8(), "kept") == 0;
}

bool CatchesAcrossTheBorder()
{
    try {
        VUKSimRpm_Document other("ELSE");
        static_cast<void>(other.AddFile("host.sim", VUKSimRpm_Document::Read));
    } catch (const VUKSimExcUserSigMismatch& error) {
        return std::strcmp(error.ClassName(), "VUKSimExcUserSigMismatch") == 0;
    }
    return false;
}

} // namespace

int main()
{
    int modules = 0;
    VUKSimPoolManager_initialize(modules);
    const bool kept = KeepsAText();
    const bool caught = CatchesAcrossTheBorder();
    VUKSimPoolManager_finalize(modules);
    std::printf("text kept: %d, exception caught: %d, modules left: %d\n", kept, caught, modules);
    return kept && caught && modules == 0 ? 0 : 1;
}
