#include "Operations.h"

#include <algorithm>
#include <stdexcept>

namespace {

void Take(const std::vector<OperationEntry>& from, const std::vector<std::string>& names,
          std::vector<OperationEntry>& to)
{
    for (const std::string& name : names) {
        const auto found = std::find_if(from.begin(), from.end(),
                                        [&](const auto& entry) { return entry.name == name; });
        if (found == from.end()) {
            throw std::logic_error("there is no operation " + name);
        }
        to.push_back(*found);
    }
}
} // namespace

std::vector<OperationEntry> RecoveringOperations()
{
    std::vector<OperationEntry> taken;
    Take(DocumentOperations(), {"AddAFileForUpdate", "AddAFileForWriting", "CreateATemporaryFile"},
         taken);
    Take(PoolOperations(),
         {"NewPoolBehindData", "NewPoolBehindAnUnwrittenTail", "NewPoolInPlaceOfAnEmptyOne"},
         taken);
    Take(ImportOperations(), {"ImportBehindData", "ImportInPlaceOfAnEmptyPool"}, taken);
    Take(ClosingOperations(),
         {"FlushACreatedFile", "CloseAFile", "CloseADocument", "CloseATemporaryFile"}, taken);
    Take(LocatorOperations(), {"WriteAcrossTheEnd", "WriteAtTheEnd", "WriteBehindTheEnd"}, taken);
    Take(OSFileOperations(),
         {"OpenWithoutStandardInput", "CreateWithoutStandardInput", "WriteToAFile",
          "WriteBehindAFile", "CloseATemporaryOSFile"},
         taken);
    return taken;
}
