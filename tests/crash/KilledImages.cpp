#include "CrashImage.h"

namespace {

constexpr std::size_t kCutEverywhere = 2048; // bytes; longer writes are cut at fewer places
constexpr std::size_t kCutAtFirst = 128;
constexpr std::size_t kCutStep = 4096;

// How much of a write may be there when it was cut after `cut` bytes; the next place to cut it.
std::size_t NextCut(std::size_t cut, std::size_t length)
{
    if (length <= kCutEverywhere || cut < kCutAtFirst) {
        return cut + 1;
    }
    return (cut / kCutStep + 1) * kCutStep;
}

void Advance(DiskState& state, const DiskEvent& event)
{
    if (event.kind != DiskEvent::Kind::NameSync) {
        Apply(state[static_cast<std::size_t>(event.file)], event);
    }
}
} // namespace

const char* NameOf(CrashModel model)
{
    switch (model) {
    case CrashModel::Killed:
        return "killed";
    case CrashModel::KilledInCall:
        return "killed in a write";
    case CrashModel::PowerLost:
        break;
    }
    return "power loss";
}

void VisitKilled(const DiskLog& log, const CrashVisitor& visit)
{
    CrashImage image{log.Start(), CrashModel::Killed, 0, {}};
    visit(image);
    for (const DiskEvent& event : log.Events()) {
        Advance(image.files, event);
        ++image.moment;
        visit(image);
    }
}

void VisitKilledInCall(const DiskLog& log, const CrashVisitor& visit)
{
    CrashImage image{log.Start(), CrashModel::KilledInCall, 0, {}};
    for (const DiskEvent& event : log.Events()) {
        if (event.kind == DiskEvent::Kind::Write) {
            DiskFile& file = image.files[static_cast<std::size_t>(event.file)];
            const DiskFile before = file;
            for (std::size_t cut = 1; cut < event.bytes.size();
                 cut = NextCut(cut, event.bytes.size())) {
                Apply(file, event, cut);
                image.choices = std::to_string(cut) + " of " + std::to_string(event.bytes.size()) +
                                " bytes at " + std::to_string(event.position) + " of " +
                                log.Names()[static_cast<std::size_t>(event.file)];
                visit(image);
            }
            file = before;
        }
        Advance(image.files, event);
        ++image.moment;
    }
}
