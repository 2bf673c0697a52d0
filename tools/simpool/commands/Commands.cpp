#include "Commands.h"

#include "Build.h"
#include "Copy.h"
#include "Diff.h"
#include "Dump.h"
#include "Extract.h"
#include "Graph.h"
#include "Hexdump.h"
#include "Ls.h"
#include "Map.h"
#include "Merge.h"
#include "New.h"
#include "Repack.h"
#include "SalvageCommand.h"
#include "Stat.h"
#include "VerifyCommand.h"

namespace simpool {

CommandList AllCommands()
{
    CommandList commands;
    commands.push_back(std::make_unique<Ls>());
    commands.push_back(std::make_unique<VerifyCommand>());
    commands.push_back(std::make_unique<SalvageCommand>());
    commands.push_back(std::make_unique<Stat>());
    commands.push_back(std::make_unique<Dump>());
    commands.push_back(std::make_unique<Build>());
    commands.push_back(std::make_unique<Hexdump>());
    commands.push_back(std::make_unique<Extract>());
    commands.push_back(std::make_unique<Copy>());
    commands.push_back(std::make_unique<New>());
    commands.push_back(std::make_unique<Merge>());
    commands.push_back(std::make_unique<Repack>());
    commands.push_back(std::make_unique<Diff>());
    commands.push_back(std::make_unique<Graph>());
    commands.push_back(std::make_unique<Map>());
    return commands;
}
} // namespace simpool
