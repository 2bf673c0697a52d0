#include "HeatSystem.h"

#include <array>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace heat {

namespace {

[[noreturn]] void Refuse(const std::string& why)
{
    throw std::invalid_argument("heat model: " + why);
}

void CheckModel(const Model& model)
{
    const Mesh& mesh = model.mesh;
    if (model.conditions.size() != mesh.boundaries.size()) {
        Refuse("there are " + std::to_string(mesh.boundaries.size()) + " boundaries and " +
               std::to_string(model.conditions.size()) + " conditions");
    }
    const Material& material = model.material;
    if (!(material.conductivity > 0.0) || !(material.density > 0.0) ||
        !(material.specificHeat > 0.0) || !(model.timeStep > 0.0)) {
        Refuse("material values and time step must be above zero");
    }
    for (std::size_t number = 0; number < mesh.elements.size(); ++number) {
        for (const std::uint32_t node : mesh.elements[number].corner) {
            if (node >= mesh.nodes.size()) {
                Refuse("element " + std::to_string(number) + " names node " + std::to_string(node) +
                       " of " + std::to_string(mesh.nodes.size()));
            }
        }
        if (!(Area(mesh, mesh.elements[number]) > 0.0)) {
            Refuse("element " + std::to_string(number) + " is flat or turned over");
        }
    }
    for (const Boundary& boundary : mesh.boundaries) {
        for (const Edge& edge : boundary.edges) {
            if (edge.end[0] >= mesh.nodes.size() || edge.end[1] >= mesh.nodes.size()) {
                Refuse("boundary \"" + boundary.name + "\" names a node that is not there");
            }
        }
    }
}

using Matrix4 = std::array<std::array<double, 4>, 4>;

struct ElementMatrices
{
    Matrix4 conduction{};           // integral of grad N_i . grad N_j
    std::array<double, 4> volume{}; // integral of N_i
};

// Slopes of the four shape functions along the element's own coordinates, each from -1 to 1.
struct Slopes
{
    std::array<double, 4> xi{};
    std::array<double, 4> eta{};
};

Slopes SlopesAt(double xi, double eta)
{
    return {{-(1 - eta) / 4, (1 - eta) / 4, (1 + eta) / 4, -(1 + eta) / 4},
            {-(1 - xi) / 4, -(1 + xi) / 4, (1 + xi) / 4, (1 - xi) / 4}};
}

void AddPoint(const std::array<Point, 4>& corner, double xi, double eta, ElementMatrices& sums)
{
    const Slopes slopes = SlopesAt(xi, eta);
    double xByXi = 0.0, yByXi = 0.0, xByEta = 0.0, yByEta = 0.0;
    for (std::size_t i = 0; i < 4; ++i) {
        xByXi += slopes.xi[i] * corner[i].x;
        yByXi += slopes.xi[i] * corner[i].y;
        xByEta += slopes.eta[i] * corner[i].x;
        yByEta += slopes.eta[i] * corner[i].y;
    }
    const double jacobian = xByXi * yByEta - yByXi * xByEta;
    std::array<double, 4> byX{}, byY{};
    for (std::size_t i = 0; i < 4; ++i) {
        byX[i] = (slopes.xi[i] * yByEta - slopes.eta[i] * yByXi) / jacobian;
        byY[i] = (slopes.eta[i] * xByXi - slopes.xi[i] * xByEta) / jacobian;
    }
    const std::array<double, 4> shape{(1 - xi) * (1 - eta) / 4, (1 + xi) * (1 - eta) / 4,
                                      (1 + xi) * (1 + eta) / 4, (1 - xi) * (1 + eta) / 4};
    for (std::size_t i = 0; i < 4; ++i) {
        sums.volume[i] += shape[i] * jacobian;
        for (std::size_t j = 0; j < 4; ++j) {
            sums.conduction[i][j] += (byX[i] * byX[j] + byY[i] * byY[j]) * jacobian;
        }
    }
}

// Two by two Gauss points, all of weight 1.
ElementMatrices Integrate(const std::array<Point, 4>& corner)
{
    const double gauss = 1.0 / std::sqrt(3.0);
    ElementMatrices sums;
    for (const double eta : {-gauss, gauss}) {
        for (const double xi : {-gauss, gauss}) {
            AddPoint(corner, xi, eta, sums);
        }
    }
    return sums;
}

using Entries = std::vector<SparseMatrix::Entry>;

void AddElements(const Model& model, HeatSystem& system, Entries& entries)
{
    const Material& material = model.material;
    const double rate = material.density * material.specificHeat / model.timeStep;
    for (const Quad& element : model.mesh.elements) {
        std::array<Point, 4> corner;
        for (std::size_t i = 0; i < 4; ++i) {
            corner[i] = model.mesh.nodes[element.corner[i]];
        }
        const ElementMatrices sums = Integrate(corner);
        for (std::size_t i = 0; i < 4; ++i) {
            const std::uint32_t row = element.corner[i];
            system.capacityRate[row] += rate * sums.volume[i];
            for (std::size_t j = 0; j < 4; ++j) {
                entries.push_back(
                    {row, element.corner[j], material.conductivity * sums.conduction[i][j]});
            }
        }
    }
    for (std::uint32_t node = 0; node < system.capacityRate.size(); ++node) {
        entries.push_back({node, node, system.capacityRate[node]});
    }
}

void AddConvection(const Mesh& mesh, const Boundary& boundary, const Condition& condition,
                   HeatSystem& system, Entries& entries)
{
    for (const Edge& edge : boundary.edges) {
        const Point& a = mesh.nodes[edge.end[0]];
        const Point& b = mesh.nodes[edge.end[1]];
        const double half = condition.filmCoefficient * std::hypot(b.x - a.x, b.y - a.y) / 2.0;
        for (const std::uint32_t node : edge.end) {
            entries.push_back({node, node, half});
            system.load[node] += half * condition.temperature;
        }
    }
}

// A node between two fixed boundaries takes the temperature of the later one.
void FixNodes(const Boundary& boundary, const Condition& condition, HeatSystem& system)
{
    for (const Edge& edge : boundary.edges) {
        for (const std::uint32_t node : edge.end) {
            system.fixed[node] = true;
            system.fixedTemperature[node] = condition.temperature;
        }
    }
}

} // namespace

HeatSystem Assemble(const Model& model)
{
    CheckModel(model);
    const std::size_t size = model.mesh.nodes.size();
    HeatSystem system;
    system.capacityRate.assign(size, 0.0);
    system.load.assign(size, 0.0);
    system.fixed.assign(size, false);
    system.fixedTemperature.assign(size, 0.0);

    Entries entries;
    AddElements(model, system, entries);
    for (std::size_t i = 0; i < model.conditions.size(); ++i) {
        const Condition& condition = model.conditions[i];
        const Boundary& boundary = model.mesh.boundaries[i];
        if (condition.kind == ConditionKind::Convection) {
            AddConvection(model.mesh, boundary, condition, system, entries);
        } else if (condition.kind == ConditionKind::FixedTemperature) {
            FixNodes(boundary, condition, system);
        }
    }
    system.matrix = SparseMatrix(static_cast<std::uint32_t>(size), std::move(entries));

    const std::vector<double> gain = system.matrix.Fix(system.fixed, system.fixedTemperature);
    for (std::size_t node = 0; node < size; ++node) {
        system.load[node] += gain[node];
    }
    return system;
}

} // namespace heat
