#include "RodCheck.h"

#include "HeatSolver.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace heat {

namespace {

constexpr double kDecay = std::numbers::pi * std::numbers::pi; // 1/s, of the first mode

Model RodModel(unsigned cells, unsigned steps)
{
    const Condition kept{ConditionKind::FixedTemperature, 0.0, 0.0};
    Model model;
    model.title = "Rod with fixed ends";
    model.mesh = MeshStrip(1.0, 0.02, cells, 1);
    model.material = {"unit", 1.0, 1.0, 1.0};
    model.conditions = {kept, kept};
    model.timeStep = 1.0 / kDecay / steps;
    model.steps = steps;
    return model;
}

} // namespace

RodCheckResult CheckAgainstRod(unsigned cells, unsigned steps)
{
    const Model model = RodModel(cells, steps);
    HeatSolver solver(model);
    std::vector<double> field;
    for (const Point& node : model.mesh.nodes) {
        field.push_back(std::sin(std::numbers::pi * node.x));
    }

    RodCheckResult result;
    result.steps = steps;
    for (unsigned step = 1; step <= steps; ++step) {
        solver.Advance(field);
        result.peak = std::exp(-kDecay * model.timeStep * step);
        for (std::size_t i = 0; i < field.size(); ++i) {
            const double exact = result.peak * std::sin(std::numbers::pi * model.mesh.nodes[i].x);
            const double error = std::abs(field[i] - exact) / result.peak;
            result.largestError = std::max(result.largestError, error);
        }
    }
    return result;
}

} // namespace heat
