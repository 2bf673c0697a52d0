#include "RealStore.h"

#include "VUKBasAllocator.h"
#include "VUKBasAssertException.h"
#include "VUKBasRangeException.h"
#include "VUKSimExc.h"
#include "VUKSimRpm_UUID.h"
#include "VUKSimUttAssert.h"
#include "VUKSimUttOSFileException.h"
#include "VUKSimUttSystemCalls.h"

#include <stdexcept>
#include <typeinfo>

namespace {

std::vector<Report>& Reports()
{
    static std::vector<Report> reports;
    return reports;
}

void Keep(VUKSimUttAssert::Kind kind, const char* text, const char* path, int line)
{
    Reports().push_back({kind == VUKSimUttAssert::Kind::Validation, text, path, line});
}

// What the class carries. Where the platform raised its own errors is not part of the interface.
void DescribeValues(const VUKBasException& raised, Failure& failure)
{
    if (const auto* check = dynamic_cast<const VUKBasAssertException*>(&raised)) {
        failure.text = check->Text();
    } else if (const auto* range = dynamic_cast<const VUKBasRangeException*>(&raised)) {
        failure.values = {static_cast<std::uint64_t>(range->Index()),
                          static_cast<std::uint64_t>(range->Length())};
    } else if (const auto* file = dynamic_cast<const VUKSimUttOSFileException*>(&raised)) {
        failure.text = std::string(file->Operation()) + ' ' + file->FileName();
        failure.values = {static_cast<std::uint64_t>(file->ErrorNumber())};
        failure.path.clear();
        failure.line = 0;
    } else if (const auto* create = dynamic_cast<const VUKSimExcCantCreateFile*>(&raised)) {
        failure.text = create->FileName();
    } else if (const auto* version = dynamic_cast<const VUKSimExcNeedUpgrade*>(&raised)) {
        failure.values = {version->Expected(), version->Found()};
        failure.text = version->FileName();
    } else if (const auto* bounds = dynamic_cast<const VUKSimExcIOBounds*>(&raised)) {
        failure.values = {bounds->Offset(), bounds->End(), bounds->DataLength()};
    } else if (const auto* buffer = dynamic_cast<const VUKSimExcShortBuffer*>(&raised)) {
        failure.values = {buffer->Requested(), buffer->Available()};
    } else if (const auto* request = dynamic_cast<const VUKSimExcRequestTooBig*>(&raised)) {
        failure.values = {request->Requested(), request->Available()};
    }
}
} // namespace

std::string RealStore::Bytes(const VUKString& text)
{
    return {text.UTF8(), text.GetLengthInByte()};
}

std::unique_ptr<VUKSimRpm_MemoryPool> RealStore::MakeMemory(const VUKSimRpm_Locator& place,
                                                            unsigned long size, unsigned int given)
{
    if (given == 0) {
        return std::make_unique<VUKSimRpm_MemoryPool>(place, size, VUKBasAllocator(), nullptr);
    }
    VUKBasAllocator allocator(new VUKBasMemAllocator);
    char* buffer = given == 1 ? nullptr : static_cast<char*>(allocator.Alloc(size));
    try {
        return std::make_unique<VUKSimRpm_MemoryPool>(place, size, allocator, buffer);
    } catch (...) {
        allocator.Free(buffer); // a constructor that fails leaves it to the caller
        throw;
    }
}

void RealStore::ForceUuid(const char* uuid)
{
    VUKSimRpm_UUID::TestForceUUID(uuid);
}

std::vector<Report> RealStore::TakeReports()
{
    return std::exchange(Reports(), {});
}

void RealStore::Prepare()
{
    VUKSimUttAssert::SetHandler(&Keep);
    VUKSimUttSystemCalls& calls = VUKSimUttSystemCalls::Current();
    calls.fdatasync = [](int) { return 0; };
    calls.fsync = [](int) { return 0; };
    calls.syncfs = [](int) { return 0; };
}

Failure RealStore::Describe(const VUKBasException& raised)
{
    Failure failure{
        .exception = raised.ClassName(), .text = {}, .path = raised.Path(), .line = raised.Line()};
    if (std::string(typeid(raised).name()).find(failure.exception) == std::string::npos) {
        failure.exception += " thrown as another class";
    }
    DescribeValues(raised, failure);
    return failure;
}
