#pragma once

#include "VUKSimRpm_Export.h"

class VUKSimUttOSFile;

/// A byte resolved to its physical place: an open file and an absolute position in it.
///
/// A plain value of two fields. It moves bytes without a look at pools, counts or memory pools, and
/// without any bounds: it reads and writes wherever it points. Positions and lengths are in bytes.
/// It must not be used once its file is closed.
class VUKSIMRPM_EXPORT VUKSimRpm_DirectLocator
{
public:
    /// Reads up to `length` bytes into `buffer` and returns how many; fewer at the file's end.
    /// The position does not move. \throws VUKBasAssertException "0 != mFile" for a default value;
    /// the platform's file errors.
    [[nodiscard]] unsigned long Read(unsigned long length, char* buffer) const;

    /// Writes `length` bytes from `buffer` and returns the count. \throws as Read.
    unsigned long Write(unsigned long length, const char* buffer) const;

private:
    friend class VUKSimRpm_FileImpl; // the one maker of values that point somewhere

    VUKSimUttOSFile* mFile = nullptr; // not owned; null in a default value
    unsigned long long mPosition = 0; // absolute, in bytes
};
