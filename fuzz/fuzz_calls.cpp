// A fuzzed file, and a fuzzed sequence of calls on a document that holds it.

#include "FuzzSupport.h"

#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_Locator.h"

#include <vector>

namespace {

constexpr std::size_t kCalls = 48; // bytes of the input that choose calls

class Session
{
public:
    Session(const VUKString& fuzzed, const VUKString& own) : mNames{fuzzed, own} {}

    void Call(unsigned which, unsigned argument)
    {
        switch (which % 12) {
        case 0:
            Add(argument);
            break;
        case 1:
            mDocument.Close(File(argument));
            break;
        case 2:
            mDocument.Close();
            break;
        case 3:
            mDocument.Flush();
            break;
        case 4:
            File(argument).NewPool(argument % 2 == 0, nullptr);
            break;
        case 5:
            mKept.push_back(File(argument).Allocate(argument));
            break;
        case 6:
            Append(argument);
            break;
        case 7:
            CopyPool(File(argument / 2), argument % 3, File(argument));
            break;
        case 8:
            mKept.push_back(File(argument).Pool(argument % 5).End() - argument);
            break;
        case 9:
            static_cast<void>(Kept(argument).Write(argument % 32, mBytes));
            break;
        case 10:
            static_cast<void>(Kept(argument).Read(argument % 32, mBytes));
            break;
        default:
            WalkFile(File(argument));
        }
    }

private:
    void Add(unsigned argument)
    {
        const auto mode = static_cast<VUKSimRpm_Document::AccessMode>(argument % 3);
        mFiles.push_back(mDocument.AddFile(mNames[argument % 2], mode));
    }

    void Append(unsigned argument)
    {
        VUKSimRpm_BStreamAppendToPool stream(File(argument).Pool(), 16);
        Kept(argument).ExternalizeImpl(stream);
        stream.Write(mBytes, argument % 32);
    }

    VUKSimRpm_File& File(unsigned argument)
    {
        if (mFiles.empty()) {
            Add(1);
        }
        return mFiles[argument % mFiles.size()];
    }

    VUKSimRpm_Locator Kept(unsigned argument) const
    {
        return mKept.empty() ? VUKSimRpm_Locator() : mKept[argument % mKept.size()];
    }

    VUKSimRpm_Document mDocument{kFuzzSignature};
    VUKString mNames[2];
    std::vector<VUKSimRpm_File> mFiles;
    std::vector<VUKSimRpm_Locator> mKept;
    char mBytes[32] = {};
};
} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < kCalls) {
        return 0;
    }
    SilenceAssertions();
    const MemoryFile fuzzed(data + kCalls, size - kCalls);
    const MemoryFile own(nullptr, 0);
    Session session(fuzzed.Name(), own.Name());
    for (std::size_t i = 0; i + 1 < kCalls; i += 2) {
        Survives([&] { session.Call(data[i], data[i + 1]); });
    }
    return 0;
}
