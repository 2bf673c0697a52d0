#include "ResultRecord.h"

#include "RecordReader.h"
#include "RecordWriter.h"

#include "VUKSimRpm_BStreamReadLocator.h"

namespace fe {

namespace {

constexpr char kResultTag[] = "FRDBLOCK";
constexpr char kEndTag[] = "FRD TAIL";
constexpr unsigned long kLocatorBytes = 12;

ResultLinks GetLinks(RecordReader& record)
{
    ResultLinks links;
    links.mesh = record.Locator();
    links.previous = record.Locator();
    links.nodeList = record.Locator();
    return links;
}

} // namespace

VUKSimRpm_Locator WriteResult(const VUKSimRpm_Pool& pool, const FrdResult& result,
                              const ResultLinks& links)
{
    RecordWriter record(pool, kResultTag);
    record.Locator(links.mesh);
    record.Locator(links.previous);
    record.Locator(links.nodeList);
    record.Number(result.value);
    record.Number(result.analysis);
    record.Number(result.step);
    record.Number(static_cast<std::uint32_t>(result.layout));
    record.Text(result.name);
    record.Number(static_cast<std::uint32_t>(result.components.size()));
    for (const FrdComponent& component : result.components) {
        record.Text(component.name);
        record.Text(component.unit);
        record.Number(std::uint32_t{component.stored});
        record.Text(component.record);
    }
    record.Lines(result.before);
    record.Text(result.header);
    record.Text(result.nameRecord);
    record.Number(static_cast<std::uint64_t>(result.values.size()));
    record.Array(result.values);
    record.Spellings(result.spellings);
    return record.Finish();
}

ResultLinks ReadResultLinks(const VUKSimRpm_Locator& place)
{
    RecordReader record(place, kResultTag);
    return GetLinks(record);
}

FrdResult ReadResult(const VUKSimRpm_Locator& place, ResultLinks& links)
{
    RecordReader record(place, kResultTag);
    links = GetLinks(record);
    FrdResult result;
    result.value = record.Number<double>();
    result.analysis = record.Number<std::int32_t>();
    result.step = record.Number<std::int32_t>();
    result.layout = static_cast<FrdLayout>(record.Number<std::uint32_t>());
    result.name = record.Text();
    for (auto left = record.Number<std::uint32_t>(); left > 0; --left) {
        FrdComponent component;
        component.name = record.Text();
        component.unit = record.Text();
        component.stored = record.Number<std::uint32_t>() != 0;
        component.record = record.Text();
        result.components.push_back(std::move(component));
    }
    result.before = record.Lines();
    result.header = record.Text();
    result.nameRecord = record.Text();
    const auto count = record.Number<std::uint64_t>();
    result.values = record.Array<double>(count);
    result.spellings = record.Spellings();
    return result;
}

void WriteResultEnd(const VUKSimRpm_Pool& pool, const ResultEnd& end)
{
    RecordWriter record(pool, kEndTag);
    record.Locator(end.mesh);
    record.Locator(end.last);
    record.Number(end.count);
    record.Lines(end.trailing);
    record.Locator(record.Start());
    record.Finish();
}

ResultEnd ReadResultEnd(const VUKSimRpm_Pool& pool)
{
    if (pool.Length() < kLocatorBytes) {
        throw RecordError("the file of results has no end record: it is not whole");
    }
    VUKSimRpm_BStreamReadLocator tail(pool.End() - kLocatorBytes, kLocatorBytes, kLocatorBytes);
    VUKSimRpm_Locator place;
    place.InternalizeImpl(tail);
    RecordReader record(place, kEndTag);
    ResultEnd end;
    end.mesh = record.Locator();
    end.last = record.Locator();
    end.count = record.Number<std::uint64_t>();
    end.trailing = record.Lines();
    return end;
}

} // namespace fe
