#include "Unextended.h"

#include <vector>

namespace {

// The next event of the same file; null when there is none.
const DiskEvent* NextOf(int file, const std::vector<DiskEvent>& events, std::size_t& index)
{
    while (++index < events.size()) {
        if (events[index].file == file) {
            return &events[index];
        }
    }
    return nullptr;
}

// Whether what follows is the freeze: the old pool's header, then the new one's right behind the
// length that the file was given. An import lengthens its file too, but what it writes ends there.
bool LeadsToANewPool(const std::vector<DiskEvent>& events, std::size_t index)
{
    const DiskEvent& resize = events[index];
    const DiskEvent* frozen = NextOf(resize.file, events, index);
    const DiskEvent* made = frozen == nullptr ? nullptr : NextOf(resize.file, events, index);
    return made != nullptr && frozen->kind == DiskEvent::Kind::Write &&
           frozen->position < resize.position && made->kind == DiskEvent::Kind::Write &&
           made->position == resize.position;
}
} // namespace

std::optional<DiskLog> WithoutExtensions(const DiskLog& log)
{
    DiskLog result;
    for (const std::string& name : log.Names()) {
        result.File(name);
    }
    DiskState state = log.Start();
    bool found = false;
    for (std::size_t i = 0; i < log.Events().size(); ++i) {
        DiskEvent event = log.Events()[i];
        if (event.kind != DiskEvent::Kind::NameSync) {
            DiskFile& file = state[static_cast<std::size_t>(event.file)];
            if (event.kind == DiskEvent::Kind::Resize && event.position > file.bytes.size() &&
                LeadsToANewPool(log.Events(), i)) {
                event.position = file.bytes.size();
                found = true;
            }
            Apply(file, event);
        }
        result.Add(std::move(event));
    }
    return found ? std::optional(std::move(result)) : std::nullopt;
}
