#include "HeatSolver.h"
#include "RodCheck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace heat {
namespace {

Model Strip(unsigned cells)
{
    Model model;
    model.mesh = MeshStrip(1.0, 0.5, cells, 2);
    model.material = {"unit", 2.0, 1.0, 1.0};
    model.conditions = {Condition{}, Condition{}};
    model.timeStep = 0.1;
    model.steps = 1;
    return model;
}

std::string Refusal(const Model& model)
{
    try {
        const HeatSolver solver(model);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

TEST(HeatSolver, StaysWithinOnePercentOfTheExactFieldOfARod)
{
    const RodCheckResult result = CheckAgainstRod(60, 200);

    EXPECT_NEAR(result.peak, 0.36787944, 1e-8); // 1/e
    EXPECT_LT(result.largestError, 0.01);
    EXPECT_GT(result.largestError, 0.0); // a check that never errs checks nothing
}

TEST(HeatSolver, ErrsHalfAsMuchWithStepsHalfAsLong)
{
    const double coarse = CheckAgainstRod(240, 50).largestError;
    const double fine = CheckAgainstRod(240, 100).largestError;
    EXPECT_NEAR(coarse / fine, 2.0, 0.1);
}

TEST(HeatSolver, ErrsAQuarterAsMuchWithCellsHalfAsLong)
{
    const double coarse = CheckAgainstRod(8, 10000).largestError;
    const double fine = CheckAgainstRod(16, 10000).largestError;
    EXPECT_NEAR(coarse / fine, 4.0, 0.2);
}

TEST(HeatSolver, ReachesTheSteadyFieldOfAWallThatAirCools)
{
    Model model = Strip(10);
    model.conditions = {{ConditionKind::FixedTemperature, 100.0, 0.0},
                        {ConditionKind::Convection, 20.0, 4.0}};
    model.initialTemperature = 50.0;
    model.timeStep = 1e6;
    HeatSolver solver(model);
    std::vector<double> field = solver.InitialField();
    for (int step = 0; step < 3; ++step) {
        solver.Advance(field);
    }

    // Flux 80 / (1/2 + 1/4) = 106.67 W/m2; the air sees 20 + 106.67 / 4; linear in between.
    for (std::size_t i = 0; i < field.size(); ++i) {
        EXPECT_NEAR(field[i], 100.0 - 53.3333333 * model.mesh.nodes[i].x, 1e-4);
    }
}

TEST(HeatSolver, KeepsTheHeatOfAnInsulatedBody)
{
    const Model model = Strip(4);
    HeatSolver solver(model);
    std::vector<double> field(15, 0.0);
    field[4] = 8.0; // in the middle of the second column

    // A node's share of the heat is the area around it: half as much at each side.
    const auto heat = [&] {
        double sum = 0.0;
        for (std::size_t i = 0; i < field.size(); ++i) {
            const bool end = i < 3 || i >= 12;
            const bool side = i % 3 != 1;
            sum += field[i] * (end ? 0.5 : 1.0) * (side ? 0.5 : 1.0);
        }
        return sum;
    };
    for (int step = 0; step < 5; ++step) {
        solver.Advance(field);
        EXPECT_NEAR(heat(), 8.0, 1e-7);
    }
    EXPECT_LT(*std::max_element(field.begin(), field.end()), 2.0);
}

TEST(HeatSolver, StartsFixedEdgesAtTheirTemperature)
{
    Model model = Strip(1);
    model.conditions[0] = {ConditionKind::FixedTemperature, 100.0, 0.0};
    model.initialTemperature = 20.0;

    EXPECT_EQ(HeatSolver(model).InitialField(),
              (std::vector<double>{100.0, 100.0, 100.0, 20.0, 20.0, 20.0}));
}

TEST(HeatSolver, ShowsNoTemperatureBeyondThoseThatWereGiven)
{
    const Model model = PlateModel({12, 8, 6, 20});
    HeatSolver solver(model);
    std::vector<double> field = solver.InitialField();
    for (std::uint32_t step = 0; step < model.steps; ++step) {
        solver.Advance(field);
        const auto [low, high] = std::minmax_element(field.begin(), field.end());
        EXPECT_GE(*low, 20.0 - 1e-6);
        EXPECT_LE(*high, 300.0);
    }
}

TEST(HeatSolver, GoesOnFromAnyFieldWithTheSameBits)
{
    const Model model = PlateModel({12, 8, 6, 10});
    HeatSolver first(model);
    std::vector<double> field = first.InitialField();
    std::vector<double> halfWay;
    for (std::uint32_t step = 1; step <= 10; ++step) {
        first.Advance(field);
        if (step == 5) {
            halfWay = field;
        }
    }
    HeatSolver second(model);
    for (std::uint32_t step = 6; step <= 10; ++step) {
        second.Advance(halfWay);
    }
    EXPECT_EQ(field, halfWay);
}

TEST(HeatSolver, RefusesModelsThatContradictThemselves)
{
    Model model = Strip(2);
    EXPECT_EQ(Refusal(model), "");

    model.conditions.pop_back();
    EXPECT_EQ(Refusal(model), "heat model: there are 2 boundaries and 1 conditions");

    model = Strip(2);
    model.timeStep = 0.0;
    EXPECT_EQ(Refusal(model), "heat model: material values and time step must be above zero");

    model = Strip(2);
    model.mesh.elements[3].corner[2] = 9;
    EXPECT_EQ(Refusal(model), "heat model: element 3 names node 9 of 9");

    model = Strip(2);
    std::swap(model.mesh.elements[1].corner[0], model.mesh.elements[1].corner[2]);
    std::swap(model.mesh.elements[1].corner[0], model.mesh.elements[1].corner[1]);
    EXPECT_EQ(Refusal(model), "heat model: element 1 is flat or turned over");

    model = Strip(2);
    model.mesh.boundaries[1].edges[0].end[1] = 9;
    EXPECT_EQ(Refusal(model), "heat model: boundary \"right end\" names a node that is not there");
}

TEST(HeatSolver, RefusesAFieldOfAnotherMesh)
{
    HeatSolver solver(Strip(2));
    std::vector<double> field(8, 0.0);
    EXPECT_THROW(solver.Advance(field), std::invalid_argument);
}

} // namespace
} // namespace heat
