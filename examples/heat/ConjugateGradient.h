#pragma once

#include "SparseMatrix.h"

#include <vector>

namespace heat {

/// Solves symmetric positive definite systems of one matrix, preconditioned by its diagonal.
///
/// Every sum runs in one fixed order, so equal input gives equal bits. The matrix must outlive
/// the solver.
class ConjugateGradient
{
public:
    /// Stops when the residual has shrunk to `tolerance` times the right side.
    /// \throws std::invalid_argument when a diagonal entry is not above zero.
    ConjugateGradient(const SparseMatrix& matrix, double tolerance);

    /// Improves `solution`, which holds a first guess, and returns the number of iterations.
    /// \throws std::runtime_error when the tolerance is not reached.
    unsigned Solve(const std::vector<double>& rightSide, std::vector<double>& solution);

private:
    const SparseMatrix& mMatrix;
    double mTolerance;
    std::vector<double> mInverseDiagonal;
    std::vector<double> mResidual;
    std::vector<double> mScaled; // residual times inverse diagonal
    std::vector<double> mDirection;
    std::vector<double> mProduct; // matrix times direction
};

} // namespace heat
