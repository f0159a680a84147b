// The names of all options, and the one that a mistyped word probably meant.
#pragma once

#include <string_view>
#include <vector>

namespace trelm {

/// The name of every option, once, in look-up order; those that are read by steps of their own come last.
std::vector<std::string_view> knownFlags();

/// The option nearest to a word that is none: one letter apart (missing, in excess, another, or two
/// neighbours exchanged) and a letter in the wrong case, two letters apart from six letters on, and in the
/// wrong case only below three. Of equally near ones the first in look-up order. Empty if the word is an
/// option, and if none is near.
std::string_view nearestFlag(std::string_view word);

} // namespace trelm
