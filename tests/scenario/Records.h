// Records as an application would store them: a name and a link to another record.
#pragma once

#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamRead.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_BStreamWrite.h"
#include "VUKSimRpm_Locator.h"
#include "VUKSimRpm_Pool.h"
#include "VUKString.h"

#include <string>
#include <vector>

struct Record
{
    std::string name;
    VUKSimRpm_Locator link; // null at the end of a chain
};

/// Stored as a string record and a locator record.
inline void Store(VUKSimRpm_BStreamWrite& stream, const Record& record)
{
    stream.Write(VUKString(record.name.c_str()));
    record.link.ExternalizeImpl(stream);
}

inline Record Load(VUKSimRpm_BStreamRead& stream)
{
    Record record;
    VUKString name;
    stream.Read(name);
    record.name = name.UTF8();
    record.link.InternalizeImpl(stream);
    return record;
}

/// Adds the record at the end of `pool` and returns where it begins.
inline VUKSimRpm_Locator Append(const VUKSimRpm_Pool& pool, const Record& record)
{
    const VUKSimRpm_Locator place = pool.End();
    VUKSimRpm_BStreamAppendToPool stream(pool, 64);
    Store(stream, record);
    return place;
}

inline Record RecordAt(const VUKSimRpm_Locator& place)
{
    VUKSimRpm_BStreamReadLocator stream(place, 0, 64);
    return Load(stream);
}

/// The names along a chain, from the record at `place` to the one without a link.
inline std::vector<std::string> Chain(VUKSimRpm_Locator place)
{
    std::vector<std::string> names;
    while (!place.Null()) {
        const Record record = RecordAt(place);
        names.push_back(record.name);
        place = record.link;
    }
    return names;
}
