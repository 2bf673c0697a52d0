// The operations of the public interfaces, each with what it must leave when one of its calls
// fails.
#pragma once

#include "Operation.h"

#include <vector>

/// Documents: making them, adding and creating files.
[[nodiscard]] std::vector<OperationEntry> DocumentOperations();

/// Flushing, closing and dropping files and documents.
[[nodiscard]] std::vector<OperationEntry> ClosingOperations();

/// New pools and room in them.
[[nodiscard]] std::vector<OperationEntry> PoolOperations();

/// Pools copied from another document.
[[nodiscard]] std::vector<OperationEntry> ImportOperations();

/// Locators, direct locators, memory pools.
[[nodiscard]] std::vector<OperationEntry> LocatorOperations();

[[nodiscard]] std::vector<OperationEntry> ReadStreamOperations();
[[nodiscard]] std::vector<OperationEntry> WriteStreamOperations();

/// What only asks: versions, handles, modules, UUIDs.
[[nodiscard]] std::vector<OperationEntry> QueryOperations();

/// The platform's OS files and file helpers.
[[nodiscard]] std::vector<OperationEntry> OSFileOperations();

/// The same, of files that are served from memory.
[[nodiscard]] std::vector<OperationEntry> MappedFileOperations();

/// Those of the above that go on after a failure or can be tried again, for two faults at once.
[[nodiscard]] std::vector<OperationEntry> RecoveringOperations();
