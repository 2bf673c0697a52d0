#include "ConjugateGradient.h"
#include "SparseMatrix.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace heat {
namespace {

using Values = std::vector<double>;

TEST(SparseMatrix, AddsEntriesAtOnePlaceWhereverTheyStandInTheList)
{
    const SparseMatrix matrix(3, {{2, 2, 5.0}, {0, 1, 2.0}, {0, 0, 1.0}, {0, 1, 3.0}});

    Values product(3);
    matrix.Multiply({1.0, 10.0, 100.0}, product);
    EXPECT_EQ(product, (Values{51.0, 0.0, 500.0})); // row 1 has no entries
    EXPECT_EQ(matrix.Diagonal(), (Values{1.0, 0.0, 5.0}));
}

TEST(SparseMatrix, FixingAnUnknownMovesItsShareToTheRightSide)
{
    SparseMatrix matrix(3, {{0, 0, 4.0},
                            {0, 1, -1.0},
                            {1, 0, -1.0},
                            {1, 1, 4.0},
                            {1, 2, -2.0},
                            {2, 1, -2.0},
                            {2, 2, 4.0}});

    const Values gain = matrix.Fix({false, true, false}, {0.0, 10.0, 0.0});

    EXPECT_EQ(gain, (Values{10.0, 0.0, 20.0}));
    Values product(3);
    matrix.Multiply({1.0, 1.0, 1.0}, product);
    EXPECT_EQ(product, (Values{4.0, 1.0, 4.0}));
}

TEST(ConjugateGradient, SolvesASystemSolvedByHand)
{
    const SparseMatrix matrix(2, {{0, 0, 4.0}, {0, 1, 1.0}, {1, 0, 1.0}, {1, 1, 3.0}});
    ConjugateGradient solver(matrix, 1e-12);
    Values solution{2.0, 1.0};

    EXPECT_LE(solver.Solve({1.0, 2.0}, solution), 3u);
    EXPECT_NEAR(solution[0], 1.0 / 11.0, 1e-12);
    EXPECT_NEAR(solution[1], 7.0 / 11.0, 1e-12);
}

TEST(ConjugateGradient, LeavesASolutionAlone)
{
    const SparseMatrix matrix(2, {{0, 0, 2.0}, {1, 1, 4.0}});
    ConjugateGradient solver(matrix, 1e-12);
    Values solution{3.0, 0.5};

    EXPECT_EQ(solver.Solve({6.0, 2.0}, solution), 0u);
    EXPECT_EQ(solution, (Values{3.0, 0.5}));
}

TEST(ConjugateGradient, SaysSoWhenItDoesNotArrive)
{
    const SparseMatrix matrix(2, {{0, 0, 2.0}, {1, 1, 4.0}});
    ConjugateGradient solver(matrix, 1e-12);
    Values solution{0.0, 0.0};

    try {
        solver.Solve({std::numeric_limits<double>::quiet_NaN(), 1.0}, solution);
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "conjugate gradient: no solution after 30 iterations");
    }
}

TEST(ConjugateGradient, RefusesADiagonalThatIsNotAboveZero)
{
    const SparseMatrix matrix(2, {{0, 0, 2.0}});
    EXPECT_THROW(ConjugateGradient(matrix, 1e-12), std::invalid_argument);
}

} // namespace
} // namespace heat
