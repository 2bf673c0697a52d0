#include "ConjugateGradient.h"

#include <cmath>
#include <stdexcept>
#include <string>

namespace heat {

namespace {

double Dot(const std::vector<double>& a, const std::vector<double>& b)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

} // namespace

ConjugateGradient::ConjugateGradient(const SparseMatrix& matrix, double tolerance)
    : mMatrix(matrix), mTolerance(tolerance), mInverseDiagonal(matrix.Diagonal()),
      mResidual(matrix.Size()), mScaled(matrix.Size()), mDirection(matrix.Size()),
      mProduct(matrix.Size())
{
    for (double& value : mInverseDiagonal) {
        if (!(value > 0.0)) {
            throw std::invalid_argument("conjugate gradient: a diagonal entry is not above zero");
        }
        value = 1.0 / value;
    }
}

unsigned ConjugateGradient::Solve(const std::vector<double>& rightSide,
                                  std::vector<double>& solution)
{
    const std::size_t size = solution.size();
    mMatrix.Multiply(solution, mProduct);
    for (std::size_t i = 0; i < size; ++i) {
        mResidual[i] = rightSide[i] - mProduct[i];
        mScaled[i] = mInverseDiagonal[i] * mResidual[i];
        mDirection[i] = mScaled[i];
    }
    const double enough = mTolerance * std::sqrt(Dot(rightSide, rightSide));
    double energy = Dot(mResidual, mScaled);

    const unsigned limit = 10 * mMatrix.Size() + 10;
    for (unsigned iteration = 0; iteration < limit; ++iteration) {
        if (std::sqrt(Dot(mResidual, mResidual)) <= enough) {
            return iteration;
        }
        mMatrix.Multiply(mDirection, mProduct);
        const double step = energy / Dot(mDirection, mProduct);
        for (std::size_t i = 0; i < size; ++i) {
            solution[i] += step * mDirection[i];
            mResidual[i] -= step * mProduct[i];
            mScaled[i] = mInverseDiagonal[i] * mResidual[i];
        }
        const double nextEnergy = Dot(mResidual, mScaled);
        const double share = nextEnergy / energy;
        energy = nextEnergy;
        for (std::size_t i = 0; i < size; ++i) {
            mDirection[i] = mScaled[i] + share * mDirection[i];
        }
    }
    throw std::runtime_error("conjugate gradient: no solution after " + std::to_string(limit) +
                             " iterations");
}

} // namespace heat
