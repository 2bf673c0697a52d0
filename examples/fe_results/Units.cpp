#include "Units.h"

#include <array>

namespace fe {

namespace {

struct Unit
{
    std::string_view quantity;
    std::string_view unit;
};

constexpr std::string_view kStress = "force/length^2";

constexpr std::array kUnits{
    Unit{"CURR", "current/length^2"},
    Unit{"DISP", "length"},
    Unit{"ELPOT", "voltage"},
    Unit{"EMFB", "voltage*time/length^2"},
    Unit{"EMFE", "voltage/length"},
    Unit{"ENER", "energy/length^3"},
    Unit{"FLUX", "power/length^2"},
    Unit{"FORC", "force"},
    Unit{"HCRIT", "length"},
    Unit{"MAFLOW", "mass/time"},
    Unit{"MESTRAIN", "1"},
    Unit{"NDTEMP", "temperature"},
    Unit{"PE", "1"},
    Unit{"PS3DF", kStress},
    Unit{"PT3DF", kStress},
    Unit{"RFL", "power"},
    Unit{"STPRES", kStress},
    Unit{"STRESS", kStress},
    Unit{"TOPRES", kStress},
    Unit{"TOSTRAIN", "1"},
    Unit{"TOSTRAII", "1"}, // the imaginary part, cut to 8 characters
    Unit{"TOTEMP", "temperature"},
    Unit{"TT3DF", "temperature"},
    Unit{"TS3DF", "temperature"},
    Unit{"V3DF", "length/time"},
    Unit{"VELO", "length/time"},
};

std::string_view Find(std::string_view quantity)
{
    for (const Unit& unit : kUnits) {
        if (unit.quantity == quantity) {
            return unit.unit;
        }
    }
    return {};
}

bool StartsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

// Gaps, slips and tractions share one block.
std::string_view UnitOfContact(std::string_view component)
{
    const bool traction = component == "CPRESS" || StartsWith(component, "CSHEAR");
    return traction ? kStress : "length";
}

} // namespace

std::string UnitOf(std::string_view quantity, std::string_view component)
{
    if (StartsWith(component, "PHA")) {
        return "degree"; // of a complex value, beside its amplitude
    }
    if (StartsWith(quantity, "ERROR")) {
        return "percent";
    }
    if (StartsWith(quantity, "CONTACT")) {
        return std::string(UnitOfContact(component));
    }
    std::string_view unit = Find(quantity);
    if (unit.empty() && !quantity.empty() && quantity.back() == 'I') {
        unit = Find(quantity.substr(0, quantity.size() - 1)); // the imaginary part
    }
    if (unit.empty() && !quantity.empty() && quantity.front() == 'P') {
        unit = Find(quantity.substr(1)); // as amplitude and phase
    }
    return std::string(unit);
}

} // namespace fe
