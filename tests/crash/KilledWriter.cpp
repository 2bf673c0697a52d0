#include "KilledWriter.h"

#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"

namespace {

constexpr std::uint32_t kPoolEach = 11; // records

// Where the data of pool `index` begins in the file.
std::uint64_t DataBegin(const VUKSimRpm_File& file, std::uint32_t index)
{
    std::uint64_t position = 0;
    for (std::uint32_t i = 0; i <= index; ++i) {
        const VUKSimRpm_Pool pool = file.Pool(i);
        position += pool.HeaderSizeBytes() + pool.DirectorySizeBytes();
        position += i < index ? pool.Length() : 0;
    }
    return position;
}

void AppendRecord(VUKSimRpm_File& file, WriterReport& report)
{
    const std::uint32_t number = report.written;
    const std::string bytes = RecordBytes(number);
    WriterReport::Record& record = report.records[number];
    record.pool = file.PoolCount() - 1;
    record.offset = file.Pool().Length();
    record.position = DataBegin(file, record.pool) + record.offset;
    record.length = static_cast<std::uint32_t>(bytes.size());
    if (number % 2 == 0) {
        file.Allocate(bytes.size()).Write(bytes.size(), bytes.data());
    } else {
        VUKSimRpm_BStreamAppendToPool stream(file.Pool(), 256);
        stream.Write(bytes.data(), record.length);
        stream.Flush();
    }
    report.written = number + 1;
}
} // namespace

std::string RecordBytes(std::uint32_t number)
{
    std::string bytes(1 + number * 37 % 900, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(1 + (number * 101 + i) % 251);
    }
    return bytes;
}

void WriteRecords(const VUKString& name, std::uint32_t flushEach, WriterReport& report)
{
    VUKSimRpm_Document document("TEST");
    const bool fresh = report.written == 0;
    report.inPoolCall = fresh ? 1 : 0;
    VUKSimRpm_File file =
        document.AddFile(name, fresh ? VUKSimRpm_Document::Write : VUKSimRpm_Document::Update);
    report.inPoolCall = 0;
    while (report.written < WriterReport::kMost) {
        AppendRecord(file, report);
        if (report.written % flushEach == 0) {
            const std::uint32_t covered = report.written;
            file.Flush();
            report.flushed = covered;
        }
        if (report.written % kPoolEach == 0) {
            file.Allocate(report.written % 200); // a tail that nobody writes
            report.inPoolCall = 1;
            file.NewPool(false, nullptr);
            report.inPoolCall = 0;
        }
    }
    document.Close();
    report.flushed = report.written.load();
}
