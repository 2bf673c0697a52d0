#include "SalvageJudge.h"

#include "Salvage.h"
#include "VUKBasException.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Locator.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>

namespace {

// Of the pool in which the byte at `position` of the damaged file went on; all pools: nowhere.
std::size_t PoolAt(const simpool::Salvage& salvage, unsigned long long position)
{
    const auto found = std::ranges::find_if(salvage.pools, [&](const auto& pool) {
        return position >= pool.position && position - pool.position < pool.length;
    });
    return static_cast<std::size_t>(found - salvage.pools.begin());
}

// What is certain of a pool begins with its UUID, in its header: counted from the data, that is a
// negative offset, which a locator takes.
void JudgeBytes(const simpool::Salvage& salvage, const VUKSimRpm_File& file,
                const ExactBytes& exact, Outcome& outcome)
{
    const std::string where = std::to_string(exact.bytes.size()) + " bytes from position " +
                              std::to_string(exact.position);
    const std::size_t index = PoolAt(salvage, exact.position);
    if (index == salvage.pools.size()) {
        outcome.broken.push_back("P4: " + where + " were not salvaged");
        return;
    }
    const VUKSimRpm_Pool pool = file.Pool(static_cast<unsigned>(index));
    const simpool::SalvagedPool& salvaged = salvage.pools[index];
    const auto dataBegin = salvaged.position + (salvaged.IsMade() ? 0 : salvaged.header.FullSize());
    std::string found(exact.bytes.size(), '\0');
    found.resize((pool.Start() + (exact.position - dataBegin)).Read(found.size(), found.data()));
    if (found != exact.bytes) {
        outcome.broken.push_back("P4: " + where + " are not what they were once salvaged");
    }
}
} // namespace

void SalvageJudge::Judge(const VUKString& name, const FileExpectation& expected, Outcome& outcome)
{
    simpool::FileBytes damaged;
    if (damaged.Open(name.UTF8()) != 0) {
        throw std::runtime_error("cannot open a crash image");
    }
    const simpool::Salvage salvage = simpool::PlanSalvage(damaged, {});
    ++sFiles;
    if (salvage.pools.empty()) {
        if (!expected.exact.empty()) {
            outcome.broken.emplace_back("P4: no pool was salvaged");
        }
        return;
    }
    VUKString opened = name; // a file that was whole would only be written once more
    std::optional<simpool::NewFile> salvaged;
    if (!salvage.WasWhole()) {
        salvaged.emplace(mFolder.Path("salvaged.sim"), simpool::NewFile::Existing::Refuse);
        simpool::WriteSalvage(damaged, salvage, *salvaged);
        opened = salvaged->TemporaryName().c_str();
    }
    try {
        VUKSimRpm_Document document("TEST");
        const VUKSimRpm_File file = document.AddFile(opened, VUKSimRpm_Document::Read);
        for (const ExactBytes& exact : expected.exact) {
            JudgeBytes(salvage, file, exact, outcome);
        }
    } catch (const VUKBasException& raised) {
        outcome.broken.push_back(std::string("P4: what was salvaged: ") + raised.what());
    }
}
