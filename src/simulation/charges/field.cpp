#include "simulation/charges/field.h"

#include "simulation/charges/options.h"
#include "support/numerics/numbers.h"
#include "support/text/text.h"

#include <cmath>
#include <cstdio>

namespace trelm {

FieldConstants fieldConstants(const FieldOptions &options)
{
    FieldConstants field;
    field.rho = static_cast<float>(number(options.concNaCl) * 0.6022);
    const auto kappaSquare = static_cast<float>(number(field.rho) * 25.132742 * 138.935 /
                                                (number(options.temperaturePot) * 0.6509039));
    field.kappa = std::sqrt(number(kappaSquare));
    field.u = field.kappa * number(options.chDensSurf) / (number(field.rho) * 4.0);
    field.y0 = static_cast<float>(2.0 * std::log(std::sqrt(field.u * field.u + 1.0) + field.u));
    field.gamma = static_cast<float>(std::tanh(0.25 * number(field.y0)));
    return field;
}

double surfacePotential(const FieldConstants &field, double distance)
{
    const double decayed = static_cast<double>(field.gamma) * std::exp(-field.kappa * distance / 10.0);
    return 2.0 * std::log((1.0 + decayed) / (1.0 - decayed));
}

void reportField(const FieldConstants &field, Messages &messages)
{
    messages.out("REMARK Equilibrium density of ion pairs %e [1/nm_3].\n", static_cast<double>(field.rho));
    messages.out("REMARK Debye length %e nm.\n", 1.0 / field.kappa);
    messages.out("REMARK Potential at surface %e [e/kB*T].\n", static_cast<double>(field.y0));
}

void checkField(const FieldOptions &options, Messages &messages)
{
    const FieldConstants field = fieldConstants(options);
    if (!(field.kappa > 0.0) || !std::isfinite(field.kappa) || std::isnan(field.gamma) ||
        !std::isfinite(field.y0))
        messages.warn("Warning: -nacl %g, -temp %g, -chSurf %g: the field of the surface is no number.\n",
                      number(options.concNaCl), number(options.temperaturePot), number(options.chDensSurf));
    if (options.kPot == 0.0f)
        messages.warn("Warning: -kPot 0: the potential is divided by 0.\n");
    if (options.cutoffPot < 0.0)
        messages.warn("Warning: -cut %g: the cutoff is negative.\n", options.cutoffPot);
}

} // namespace trelm
