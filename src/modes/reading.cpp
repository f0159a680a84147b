#include "modes/reading.h"

#include "couplings/table_input.h"
#include "modes/models.h"
#include "support/numerics/numbers.h"
#include "support/text/text.h"

namespace trelm {
namespace {

/// An option that takes one word alone. Fails after a message on another.
Status readWord(const char *option, const std::string &value, const char *word, bool &isGiven,
                Messages &messages)
{
    isGiven = value == word;
    if (isGiven || value.empty())
        return Status::ok;
    return messages.fail("trelm: %s %s: %s is the only value.\n", option, value.c_str(), word);
}

Status couplingReading(const RunOptions &options, CouplingReading &reading, Messages &messages)
{
    reading.medium = options.medium;
    reading.useLabels = options.useLabels != 0;
    if (readWord("-rdcSign", options.rdcSign, "physical", reading.isPhysical, messages) != Status::ok ||
        readWord("-rdcScale", options.rdcScale, "nh", reading.isNormalised, messages) != Status::ok)
        return Status::failed;
    reading.form = formOfWord(options.inForm);
    if (!reading.form && options.inForm != "auto")
        return messages.fail("trelm: -inF %s: one of auto, table, star, nef, xplor, cyana, rosetta, csv.\n",
                             options.inForm.c_str());
    return Status::ok;
}

} // namespace

Status readCouplings(const RunOptions &options, const std::string &name, DTable &dTab, Messages &messages)
{
    CouplingReading reading;
    const Status status = couplingReading(options, reading, messages);
    return status == Status::ok ? readTable(name, reading, dTab, messages) : status;
}

Status readingOf(const RunOptions &options, StructureReading &reading, Messages &messages)
{
    reading.model = toInt(options.model);
    reading.useLabels = options.useLabels != 0;
    if (!options.model.empty() && !wantsAllModels(options) && reading.model <= 0)
        return messages.fail("trelm: -model %s: a model has a number above 0.\n", options.model.c_str());
    if (!options.names.empty() && options.names != "auto")
        return messages.fail("trelm: -names %s: auto is the only value.\n", options.names.c_str());
    if (options.buildsHydrogens == 0)
        return Status::ok;
    reading.hydrogens.emplace();
    reading.hydrogens->nitrogen = number(options.hydrogenDistance);
    if (!(reading.hydrogens->nitrogen > 0.0))
        return messages.fail("trelm: -addH %g: a bond has a length above 0.\n", reading.hydrogens->nitrogen);
    return Status::ok;
}

} // namespace trelm
