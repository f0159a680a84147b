#include "simulation/field.h"

#include "support/numbers.h"
#include "support/text.h"

#include <cmath>
#include <cstdio>

namespace trelm {

FieldConstants fieldConstants(const ElInfo &elInfo)
{
    FieldConstants field;
    field.rho = static_cast<float>(number(elInfo.concNaCl) * 0.6022);
    const auto kappaSquare = static_cast<float>(number(field.rho) * 25.132742 * 138.935 /
                                                (number(elInfo.temperaturePot) * 0.6509039));
    field.kappa = std::sqrt(number(kappaSquare));
    field.u = field.kappa * number(elInfo.chDensSurf) / (number(field.rho) * 4.0);
    field.y0 = static_cast<float>(2.0 * std::log(std::sqrt(field.u * field.u + 1.0) + field.u));
    field.gamma = static_cast<float>(std::tanh(0.25 * number(field.y0)));
    return field;
}

double surfacePotential(const FieldConstants &field, double distance)
{
    const double decayed = static_cast<double>(field.gamma) * std::exp(-field.kappa * distance / 10.0);
    return 2.0 * std::log((1.0 + decayed) / (1.0 - decayed));
}

void reportField(const FieldConstants &field)
{
    std::printf("REMARK Equilibrium density of ion pairs %e [1/nm_3].\n", static_cast<double>(field.rho));
    std::printf("REMARK Debye length %e nm.\n", 1.0 / field.kappa);
    std::printf("REMARK Potential at surface %e [e/kB*T].\n", static_cast<double>(field.y0));
}

int checkField(const ElInfo &elInfo)
{
    const auto refuse = [](const char *option, float value, const char *rule) {
        return complain("trelm: %s %g: %s.\n", option, static_cast<double>(value), rule);
    };
    if (!(elInfo.concNaCl > 1e-20f) || !std::isfinite(elInfo.concNaCl)) // less is no number of ions
        return refuse("-nacl", elInfo.concNaCl, "the salt concentration must be positive");
    if (!(elInfo.temperaturePot > 0.0f) || !std::isfinite(elInfo.temperaturePot))
        return refuse("-temp", elInfo.temperaturePot, "the temperature must be positive");
    if (elInfo.kPot == 0.0f || !std::isfinite(elInfo.kPot))
        return refuse("-kPot", elInfo.kPot, "the scale of the potential must not be 0");
    if (!(elInfo.cutoffPot >= 0.0) || !std::isfinite(elInfo.cutoffPot))
        return complain("trelm: -cut %g: the cutoff must not be negative.\n", elInfo.cutoffPot);
    if (!std::isfinite(fieldConstants(elInfo).u))
        return refuse("-chSurf", elInfo.chDensSurf, "the surface charge is no finite number");
    return 0;
}

} // namespace trelm
