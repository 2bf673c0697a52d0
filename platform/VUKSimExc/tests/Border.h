// A library of its own, which throws exceptions for the test and catches those of the test: both
// cross the border between two shared objects.
#pragma once

/// Throws the VUKSimExc class, or platform exception, of this name, with the values 1, 2, 3, the
/// file name "run.sim" and the text "a < b" as the class has them, from path "border/Border" and
/// line 17. An unknown name throws nothing.
__attribute__((visibility("default"))) void ThrowBeyondTheBorder(const char* className);

/// Calls `raise` and says as what the exception was caught: "VUKSimExcNeedUpgrade",
/// "VUKBasException", "std::exception" or "other"; "nothing" when there was none.
__attribute__((visibility("default"))) const char* CatchBeyondTheBorder(void (*raise)());
