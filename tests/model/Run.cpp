#include "Run.h"

#include "Duel.h"
#include "Shrink.h"

std::optional<Difference> RunScript(const Script& script, const std::string& folder, Tally& tally)
{
    Duel duel(folder);
    for (std::size_t step = 0; step < script.size(); ++step) {
        auto different = duel.Step(script[step]);
        tally.Count(script[step], duel.Last());
        if (!different && step + 1 == script.size()) {
            different = duel.CompareFiles();
            different = different ? different : duel.CompareFolders();
        }
        if (different) {
            return Difference{step, *different};
        }
    }
    return std::nullopt;
}

Script Shrink(const Script& script, const std::string& folder)
{
    return Shrunk(script, [&](const Script& candidate) {
        Tally ignored;
        return RunScript(candidate, folder, ignored).has_value();
    });
}
