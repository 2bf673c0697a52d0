// What the tests of files, pools and documents share.
#pragma once

#include "VUKBasSharedPtr.h"
#include "VUKSimRpm_DocumentImpl.h"
#include "VUKSimRpm_FileImpl.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_PoolImpl.h"
#include "VUKSimRpm_PoolMap.h"

#include "Bytes.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <string>

/// What a pool delivers for `length` bytes at `offset` of its data.
inline std::string ReadPool(const VUKSimRpm_PoolImpl& pool, unsigned long long offset,
                            unsigned long length)
{
    std::string bytes(length, '?');
    bytes.resize(pool.Read(offset, length, bytes.data()));
    return bytes;
}

/// A document for the user signature `TEST`, which stored pools carry unless they say otherwise,
/// and a folder for its files. Files that a test makes itself die before both.
class FileFixture : public testing::Test
{
protected:
    [[nodiscard]] VUKBasSharedPtr<VUKSimRpm_PoolMap> Map() const
    {
        return mDocument.PoolMap().lock();
    }

    /// The open pool in `slot`; null when there is none.
    [[nodiscard]] VUKBasSharedPtr<VUKSimRpm_PoolImpl> PoolIn(int slot) const
    {
        return Map()->Pool(slot).lock();
    }

    /// A locator into this document, without a memory pool.
    [[nodiscard]] VUKSimRpm_Locator LocatorTo(int slot, unsigned long long offset) const
    {
        return {mDocument.PoolMap(), slot, offset, nullptr};
    }

    TemporaryFolder mFolder;
    VUKSimRpm_DocumentImpl mDocument{"TEST"};
};
