// The configuration file: the domains of a molecule and the settings of the ensemble.
#pragma once

#include "ground/messages.h"
#include "simulation/domains/options.h"

#include <string>

namespace trelm {

/// Reads a configuration file: lines of a key with its colon and a number. It fills the
/// options (angles in degrees, distances in angstrom); what no line names stays as it is. An empty name does
/// nothing. An unknown key is told and skipped. Fails after a message for a file that cannot be read,
/// a line without a key and a number, or a number that is not finite. The lines before that one have been
/// applied then.
Status readConfig(const std::string &inName, DomainOptions &options, Messages &messages);

} // namespace trelm
