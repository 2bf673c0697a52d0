#include "HeatSolver.h"

#include <stdexcept>
#include <string>

namespace heat {

namespace {

constexpr double kTolerance = 1e-10;

} // namespace

HeatSolver::HeatSolver(const Model& model)
    : mInitialTemperature(model.initialTemperature), mSystem(Assemble(model)),
      mConjugateGradient(mSystem.matrix, kTolerance), mRightSide(model.mesh.nodes.size())
{}

std::vector<double> HeatSolver::InitialField() const
{
    std::vector<double> field(mRightSide.size(), mInitialTemperature);
    for (std::size_t node = 0; node < field.size(); ++node) {
        if (mSystem.fixed[node]) {
            field[node] = mSystem.fixedTemperature[node];
        }
    }
    return field;
}

unsigned HeatSolver::Advance(std::vector<double>& field)
{
    if (field.size() != mRightSide.size()) {
        throw std::invalid_argument("heat solver: a field of " + std::to_string(field.size()) +
                                    " values for " + std::to_string(mRightSide.size()) + " nodes");
    }
    for (std::size_t node = 0; node < field.size(); ++node) {
        mRightSide[node] = mSystem.fixed[node]
                               ? mSystem.fixedTemperature[node]
                               : mSystem.capacityRate[node] * field[node] + mSystem.load[node];
    }
    return mConjugateGradient.Solve(mRightSide, field);
}

} // namespace heat
