#pragma once

namespace heat {

struct RodCheckResult
{
    unsigned steps = 0;
    double peak = 0.0;         // of the exact field at the end; 1 at the beginning
    double largestError = 0.0; // over all nodes and steps, as a share of the peak at that step
};

/// Holds the solver against a rod of 1 m whose ends are kept at 0 while a half sine wave of height
/// 1 decays: the exact field is sin(pi x) exp(-pi^2 t) for a diffusivity of 1 m2/s. The time goes
/// on until the peak has fallen to 1/e.
[[nodiscard]] RodCheckResult CheckAgainstRod(unsigned cells, unsigned steps);

} // namespace heat
