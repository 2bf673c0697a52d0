#include "Model.h"

namespace heat {

Model PlateModel(const PlateSize& size)
{
    PlateShape shape;
    shape.width = 0.300;
    shape.height = 0.200;
    shape.holeCentre = {0.165, 0.105};
    shape.holeRadius = 0.040;
    shape.cellsAlongWidth = size.cellsAlongWidth;
    shape.cellsAlongHeight = size.cellsAlongHeight;
    shape.cellsToHole = size.cellsToHole;
    shape.innermostCell = 0.4;

    const Condition insulated;
    const Condition furnace{ConditionKind::FixedTemperature, 300.0, 0.0};
    const Condition air{ConditionKind::Convection, 20.0, 60.0};
    const Condition water{ConditionKind::Convection, 20.0, 2000.0};

    Model model;
    model.title = "Aluminium plate with a cooled hole";
    model.fieldName = "temperature";
    model.fieldUnit = "\xC2\xB0"
                      "C";
    model.mesh = MeshPlateWithHole(shape);
    model.material = {"aluminium alloy", 170.0, 2700.0, 900.0};
    // In the order of the boundaries: bottom, right, top, left, hole.
    model.conditions = {insulated, air, insulated, furnace, water};
    model.initialTemperature = 20.0;
    model.timeStep = 2.5;
    model.steps = size.steps;
    return model;
}

} // namespace heat
