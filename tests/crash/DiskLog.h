#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// What one call did to one file.
struct DiskEvent
{
    enum class Kind
    {
        Create,  // the file has come into being, empty
        Write,   // `bytes` at `position`
        Resize,  // the file is `position` bytes long
        Remove,  // the name of the file is gone, and what it held with it
        Sync,    // all that was done to the file is durable, but for its name
        NameSync // the names of all files are durable; `file` means nothing
    };

    Kind kind;
    int file; // as DiskLog numbers them
    unsigned long long position = 0;
    std::string bytes = {};
};

/// A file at some moment.
struct DiskFile
{
    bool present = false;
    std::string bytes = {};

    bool operator==(const DiskFile&) const = default;
};

/// All files of a log at some moment, by number.
using DiskState = std::vector<DiskFile>;

/// Tells states apart by what their files hold.
[[nodiscard]] std::size_t HashOf(const DiskState& files);

/// Makes the first `most` bytes of a write, or the whole of any other event, happen to `file`.
void Apply(DiskFile& file, const DiskEvent& event, std::size_t most = std::string::npos);

/// All that a run did to its files, in order, from an empty disk on.
///
/// A moment of the run is a number of events: moment 0 comes before the first of them, moment
/// Events().size() after the last.
class DiskLog
{
public:
    /// The number of the file `name`, which gets one if it has none.
    int File(const std::string& name);

    void Add(DiskEvent event) { mEvents.push_back(std::move(event)); }

    [[nodiscard]] const std::vector<DiskEvent>& Events() const noexcept { return mEvents; }
    [[nodiscard]] const std::vector<std::string>& Names() const noexcept { return mNames; }

    /// The disk before the first event: every file missing.
    [[nodiscard]] DiskState Start() const { return DiskState(mNames.size()); }

    /// The disk at a moment.
    [[nodiscard]] DiskState At(std::size_t moment) const;

private:
    std::vector<std::string> mNames; // by file number
    std::vector<DiskEvent> mEvents;
};
