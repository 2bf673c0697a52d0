#include "VUKSimExc.h"

#include "Failures.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Example";

template <class Exception>
class PlainFailureContract : public testing::Test
{};

using PlainFailures =
    testing::Types<VUKSimExcValidationFailure, VUKSimExcNotSimFile, VUKSimExcCantGetFile,
                   VUKSimExcWriteReadOnly, VUKSimExcAllocReadOnly, VUKSimExcNewPoolReadOnly,
                   VUKSimExcPoolAlreadyInDoc, VUKSimExcShortPool, VUKSimExcUserSigMismatch,
                   VUKSimExcCorruptHeader, VUKSimExcCorruptDirectory, VUKSimExcImmutablePool,
                   VUKSimExcInvalidGUID, VUKSimExcCantExternalizeLoc, VUKSimExcCantDerefLocator,
                   VUKSimExcBrokenStream>;
TYPED_TEST_SUITE(PlainFailureContract, PlainFailures);

constexpr unsigned int kMax = std::numeric_limits<unsigned int>::max();
constexpr unsigned long long kMax64 = std::numeric_limits<unsigned long long>::max();
} // namespace

TYPED_TEST(PlainFailureContract, IsThrownAsItselfFromItsPlace)
{
    EXPECT_TRUE(Raises<TypeParam>([] { TypeParam().Throw(kSource, 17); }, kSource, 17));
    EXPECT_THROW(TypeParam().Throw(kSource, 17), VUKBasException);
}

TEST(FailureContract, CarriesTheNameOfAFileThatCannotBeCreated)
{
    const VUKSimUttExceptionString<1024> name("a.sim");
    EXPECT_TRUE(RaisesCantCreateFile([&] { VUKSimExcCantCreateFile(name).Throw(kSource, 1); },
                                     "a.sim", kSource, 1));
    EXPECT_TRUE(
        RaisesCantCreateFile([] { VUKSimExcCantCreateFile().Throw(kSource, 1); }, "", kSource, 1));
}

TEST(FailureContract, CarriesTheVersionsExpectedAndFoundAndTheFile)
{
    const VUKSimUttExceptionString<1024> name("a.sim");
    EXPECT_TRUE(RaisesNeedUpgrade([&] { VUKSimExcNeedUpgrade(6, kMax, name).Throw(kSource, 1); }, 6,
                                  4294967295U, "a.sim", kSource, 1));
    EXPECT_TRUE(
        RaisesNeedUpgrade([] { VUKSimExcNeedUpgrade().Throw(kSource, 1); }, 0, 0, "", kSource, 1));
}

TEST(FailureContract, CarriesBoundsOf64Bits)
{
    EXPECT_TRUE(RaisesIOBounds([] { VUKSimExcIOBounds(1, kMax64, 3).Throw(kSource, 1); }, 1,
                               18446744073709551615ULL, 3, kSource, 1));
    EXPECT_TRUE(RaisesIOBounds([] { VUKSimExcIOBounds().Throw(kSource, 1); }, 0, 0, 0, kSource, 1));
}

TEST(FailureContract, CarriesWhatWasRequestedAndWhatThereIs)
{
    EXPECT_TRUE(RaisesShortBuffer([] { VUKSimExcShortBuffer(kMax, 2).Throw(kSource, 1); },
                                  4294967295U, 2, kSource, 1));
    EXPECT_TRUE(
        RaisesShortBuffer([] { VUKSimExcShortBuffer().Throw(kSource, 1); }, 0, 0, kSource, 1));
    EXPECT_TRUE(RaisesRequestTooBig([] { VUKSimExcRequestTooBig(kMax, 2).Throw(kSource, 1); },
                                    4294967295U, 2, kSource, 1));
    EXPECT_TRUE(
        RaisesRequestTooBig([] { VUKSimExcRequestTooBig().Throw(kSource, 1); }, 0, 0, kSource, 1));
}
