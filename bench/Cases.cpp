#include "Cases.h"

namespace {

constexpr long long kMiB = 1024LL * 1024;

class CaseList
{
public:
    explicit CaseList(const Scale& scale) : mScale(scale) {}

    void Records(const std::string& name, Workload work, const std::string& title)
    {
        for (const long long size : {12, 64, 1024, 65536}) {
            Add(name, work, title, size, mScale.bulk / size, size);
        }
    }
    void Sizes(const std::string& name, Workload work, const std::string& title,
               std::initializer_list<long long> sizes)
    {
        for (const long long size : sizes) {
            Add(name, work, title, size, mScale.count, 0);
        }
    }
    void Add(const std::string& name, Workload work, const std::string& title, long long size,
             long long count, long long moved)
    {
        mCases.push_back(
            {.id = name + "/" + std::to_string(size),
             .title = title,
             .moved = moved,
             .job = {
                 .work = work, .size = size, .count = count, .bulk = mScale.bulk, .folder = {}}});
    }

    [[nodiscard]] std::vector<Case> Take() { return std::move(mCases); }

private:
    Scale mScale;
    std::vector<Case> mCases;
};
} // namespace

Scale FullScale()
{
    return {.name = "full", .bulk = 256 * kMiB, .count = 1'000'000, .rounds = 5};
}

Scale QuickScale()
{
    return {.name = "quick", .bulk = 16 * kMiB, .count = 100'000, .rounds = 3};
}

Scale SmokeScale()
{
    return {.name = "smoke", .bulk = kMiB, .count = 2'000, .rounds = 1};
}

std::vector<Case> Cases(const Scale& scale)
{
    CaseList list(scale);
    list.Records("W1", Workload::Append, "append a record of N bytes");
    list.Records("W1o", Workload::Overwrite, "write a record of N bytes over those that are there");
    list.Records("W2", Workload::Decode, "decode a record of N bytes, in order");
    list.Sizes("W3", Workload::ReadRandom, "read N bytes at random", {8, 64, 4096});
    list.Sizes("W3m", Workload::ReadImage, "read N bytes at random from an image in memory",
               {8, 64, 4096});
    list.Sizes("W4", Workload::Chase, "one step along stored locators in N files", {1, 2});
    const bool smoke = scale.name == "smoke";
    for (const long long pools : {100, 1000, 4000, 10000}) {
        if (!smoke || pools == 100) {
            list.Add("W5c", Workload::CreatePools, "create one of N pools", pools, pools, 0);
        }
    }
    for (const long long pools : {100, 1000, 4000, 10000}) {
        if (!smoke || pools == 100) {
            list.Add("W5o", Workload::OpenPools, "open N pools and read one by UUID", pools, pools,
                     0);
        }
    }
    list.Add("W6", Workload::Import, "import N bytes from another file", scale.bulk, 1, scale.bulk);
    list.Sizes("W8", Workload::WriteRandom, "write N bytes at random, in place", {12, 64});
    list.Sizes("W9s", Workload::StoreLocators, "store a locator to one of N pools", {1, 64, 1000});
    list.Sizes("W9l", Workload::LoadLocators, "load a locator to one of N pools", {1, 64, 1000});
    list.Add("W10w", Workload::WriteStrings, "write a text of 5 to N bytes", 40, scale.count, 0);
    list.Add("W10r", Workload::ReadStrings, "read a text of 5 to N bytes", 40, scale.count, 0);
    return list.Take();
}

std::vector<Case> MemoryCases(const Scale& scale)
{
    CaseList list(scale);
    list.Sizes("W7-W3", Workload::ReadRandom, "read N bytes at random", {64});
    const long long pools = scale.name == "smoke" ? 100 : 10000;
    list.Add("W7-W5o", Workload::OpenPools, "open N pools and read one by UUID", pools, pools, 0);
    if (scale.name != "smoke") {
        list.Add("W7-W5o", Workload::OpenPools, "open N pools and read one by UUID", 32000, 32000,
                 0);
    }
    return list.Take();
}
