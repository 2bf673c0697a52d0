#include "DiskLog.h"

#include <algorithm>
#include <functional>

std::size_t HashOf(const DiskState& files)
{
    std::size_t hash = 0;
    for (const DiskFile& file : files) {
        hash = hash * 1000003U + std::hash<std::string>()(file.bytes) + (file.present ? 1U : 0U);
    }
    return hash;
}

void Apply(DiskFile& file, const DiskEvent& event, std::size_t most)
{
    switch (event.kind) {
    case DiskEvent::Kind::Create:
        file.present = true;
        break;
    case DiskEvent::Kind::Write: {
        const std::size_t length = std::min(event.bytes.size(), most);
        file.bytes.resize(std::max<std::size_t>(file.bytes.size(), event.position + length));
        file.bytes.replace(event.position, length, event.bytes, 0, length);
        break;
    }
    case DiskEvent::Kind::Resize:
        file.bytes.resize(event.position);
        break;
    case DiskEvent::Kind::Remove:
        file = {};
        break;
    case DiskEvent::Kind::Sync:
    case DiskEvent::Kind::NameSync:
        break;
    }
}

int DiskLog::File(const std::string& name)
{
    const auto found = std::ranges::find(mNames, name);
    if (found != mNames.end()) {
        return static_cast<int>(found - mNames.begin());
    }
    mNames.push_back(name);
    return static_cast<int>(mNames.size() - 1);
}

DiskState DiskLog::At(std::size_t moment) const
{
    DiskState state = Start();
    for (std::size_t i = 0; i < moment; ++i) {
        if (mEvents[i].kind != DiskEvent::Kind::NameSync) {
            Apply(state[static_cast<std::size_t>(mEvents[i].file)], mEvents[i]);
        }
    }
    return state;
}
