#pragma once

#include "Mesh.h"

#include <cstdint>
#include <string>
#include <vector>

namespace heat {

/// All in SI units: W/(m K), kg/m3, J/(kg K).
struct Material
{
    std::string name;
    double conductivity = 0.0;
    double density = 0.0;
    double specificHeat = 0.0;

    bool operator==(const Material&) const = default;
};

/// What happens on one part of the boundary. The numbers are stored in files: keep them.
enum class ConditionKind : std::uint32_t
{
    Insulated = 0,
    FixedTemperature = 1,
    Convection = 2
};

struct Condition
{
    ConditionKind kind = ConditionKind::Insulated;
    double temperature = 0.0;     // degC, of the edge or of the fluid beside it
    double filmCoefficient = 0.0; // W/(m2 K), convection only

    bool operator==(const Condition&) const = default;
};

/// Everything a run needs to know, and all that a stopped run needs to go on: together with the
/// field of one step it determines every later field to the last bit.
struct Model
{
    std::string title;
    std::string fieldName; // for people: what the field is
    std::string fieldUnit; // and what it is counted in
    Mesh mesh;
    Material material;
    std::vector<Condition> conditions; // one for each boundary of the mesh, in the same order
    double initialTemperature = 0.0;   // degC, everywhere but on fixed edges
    double timeStep = 0.0;             // s
    std::uint32_t steps = 0;           // to the end of the run

    bool operator==(const Model&) const = default;
};

/// How finely the plate is cut, and how long it is watched.
struct PlateSize
{
    unsigned cellsAlongWidth = 36;
    unsigned cellsAlongHeight = 24;
    unsigned cellsToHole = 30;
    std::uint32_t steps = 240;
};

/// An aluminium plate of 300 by 200 mm, heated along its left edge and cooled by water in its hole.
[[nodiscard]] Model PlateModel(const PlateSize& size);

} // namespace heat
