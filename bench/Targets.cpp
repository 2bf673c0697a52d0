// What the library is held to, each as a ratio or a difference of medians of one run.
#include "Results.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace {

class TargetList
{
public:
    explicit TargetList(const Results& results) : mResults(results) {}

    [[nodiscard]] std::string Lines() const
    {
        std::ostringstream out;
        out << mLines.str() << mMet << " of " << mMet + mMissed << " targets met";
        if (mUnknown > 0) {
            out << ", " << mUnknown << " not measured in this run";
        }
        out << "\n8 no allocation within a chunk or in locators and UUIDs: held by the tests "
               "Costs.* and CostsOfASmallPool.*\n";
        return out.str();
    }

    void AtMost(const std::string& what, std::optional<double> value, double limit)
    {
        Line(what, value, "<=", limit, value && *value <= limit);
    }
    void AtLeast(const std::string& what, std::optional<double> value, double limit)
    {
        Line(what, value, ">=", limit, value && *value >= limit);
    }

    [[nodiscard]] std::optional<double> Ratio(const std::string& id, const std::string& one,
                                              const std::string& other) const
    {
        return Divided(mResults.Of(id, one), mResults.Of(id, other));
    }
    [[nodiscard]] std::optional<double> Difference(const std::string& id, const std::string& one,
                                                   const std::string& other) const
    {
        const auto first = mResults.Of(id, one);
        const auto second = mResults.Of(id, other);
        return first && second ? std::optional(*first - *second) : std::nullopt;
    }

    // The library against whichever peer or floor is the fastest.
    [[nodiscard]] std::optional<double> ToBestOfAll(const std::string& id) const
    {
        auto best = mResults.BestOf(id, Kind::Peer);
        const auto floor = mResults.BestOf(id, Kind::Floor);
        if (!best || (floor && floor->median < best->median)) {
            best = floor;
        }
        return best ? Divided(mResults.Of(id, "library"), best->median) : std::nullopt;
    }

    [[nodiscard]] static std::optional<double> Divided(std::optional<double> one,
                                                       std::optional<double> other)
    {
        return one && other ? std::optional(*one / *other) : std::nullopt;
    }

private:
    void Line(const std::string& what, std::optional<double> value, const char* relation,
              double limit, bool met)
    {
        mLines << (!value ? "not measured"
                   : met  ? "met         "
                          : "NOT MET     ")
               << "  " << what << ": ";
        if (value) {
            mLines << std::fixed << std::setprecision(2) << *value << " ";
        }
        mLines << std::fixed << std::setprecision(2) << relation << " " << limit << "\n";
        ++(!value ? mUnknown : met ? mMet : mMissed);
    }

    const Results& mResults;
    std::ostringstream mLines;
    int mMet = 0;
    int mMissed = 0;
    int mUnknown = 0;
};

void Records(TargetList& list, const Results& results)
{
    for (const std::string size : {"12", "64", "1024", "65536"}) {
        list.AtMost("4 append stream to the best of all, " + size + " bytes",
                    list.ToBestOfAll("W1/" + size), 1);
    }
    list.AtMost("4 append stream, ns for 12 bytes", results.Of("W1/12", "library"), 4);
    for (const std::string size : {"12", "64", "1024", "65536"}) {
        list.AtMost("4 write-locator stream to the best of all, " + size + " bytes",
                    list.ToBestOfAll("W1o/" + size), 1);
    }
    list.AtMost("4 write-locator stream, ns for 12 bytes", results.Of("W1o/12", "library"), 4);
    list.AtMost("4 read stream to mapping, 12 bytes", list.Ratio("W2/12", "library", "mapping"),
                1.3);
    for (const std::string size : {"12", "64", "1024", "65536"}) {
        list.AtMost("4 read stream to chunked pread, " + size + " bytes",
                    list.Ratio("W2/" + size, "library", "pread/pwrite"), 1);
    }
    list.AtMost("4 ns more through the abstract base, 12 bytes",
                list.Difference("W2/12", "library-base", "library"), 1);
}

void Pools(TargetList& list, const Results& results)
{
    const auto mebibytes = [&](const std::string& id) -> std::optional<double> {
        const Memory* memory = results.MemoryOf(id, "library");
        return memory ? std::optional(static_cast<double>(memory->peak) / 1048576) : std::nullopt;
    };
    list.AtMost("5 open and read 10,000 pools, to LMDB", list.Ratio("W5o/10000", "library", "lmdb"),
                1);
    list.AtMost("5 MiB to open 10,000 pools", mebibytes("W7-W5o/10000"), 16);
    list.AtMost("5 create 1,000 pools, to LMDB", list.Ratio("W5c/1000", "library", "lmdb"), 1);
    list.AtMost("5 create 10,000 pools, to SQLite", list.Ratio("W5c/10000", "library", "sqlite"),
                1);
    // Flat: what is spent once for a file may weigh on the small ones, so that less is no matter.
    list.AtMost(
        "5 a pool's creation among 10,000, to one among 100",
        TargetList::Divided(results.Of("W5c/10000", "library"), results.Of("W5c/100", "library")),
        1.2);
    list.AtMost(
        "5 a pool's opening among 10,000, to one among 100",
        TargetList::Divided(results.Of("W5o/10000", "library"), results.Of("W5o/100", "library")),
        1.2);
    list.AtMost("5 MiB to open 32,000 pools", mebibytes("W7-W5o/32000"), 64);
}
} // namespace

std::string TargetLines(const Results& results)
{
    TargetList list(results);
    for (const std::string size : {"8", "64", "4096"}) {
        const std::string id = "W3/" + size;
        list.AtMost("1 random read to mapping, " + size + " bytes",
                    list.Ratio(id, "library", "mapping"), 2);
        list.AtMost("1 random read to PMDK, " + size + " bytes", list.Ratio(id, "library", "pmdk"),
                    1);
        list.AtLeast("1 pread to random read, " + size + " bytes",
                     list.Ratio(id, "pread/pwrite", "library"), 10);
    }
    list.AtMost("1 chase to mapping, one file", list.Ratio("W4/1", "library", "mapping"), 1.3);
    list.AtMost("1 chase to mapping, two files", list.Ratio("W4/2", "library", "mapping"), 1.3);
    for (const std::string size : {"12", "64"}) {
        list.AtLeast("2 pwrite to in-place write, " + size + " bytes",
                     list.Ratio("W8/" + size, "pread/pwrite", "library"), 20);
    }
    list.AtMost("3 ns beyond memcpy for 8 bytes from a memory pool",
                list.Difference("W3m/8", "library", "memcpy"), 5);
    Records(list, results);
    Pools(list, results);
    for (const Measured& each : results.measured) {
        if (each.caseId.starts_with("W6/") && each.contender == "library") {
            list.AtMost("6 import to sendfile", list.Ratio(each.caseId, "library", "sendfile"),
                        1.1);
            list.AtMost("6 import to cp --reflink=never", list.Ratio(each.caseId, "library", "cp"),
                        1);
        }
    }
    for (const std::string pools : {"1", "64", "1000"}) {
        list.AtMost("7 ns beyond 12 copied bytes to store a locator, pools: " + pools,
                    list.Difference("W9s/" + pools, "library", "memcpy"), 3);
        list.AtMost("7 ns beyond 12 copied bytes to load a locator, pools: " + pools,
                    list.Difference("W9l/" + pools, "library", "memcpy"), 3);
    }
    return list.Lines();
}
