// The charge file, in and out, and the list of charges that it fills.
#pragma once

#include "ground/messages.h"
#include "simulation/charges/charges.h"

#include <string>
#include <string_view>
#include <unordered_set>

namespace trelm {

/// The words that stand for atoms in a charge file.
constexpr std::string_view terminusWord = "terminus"; ///< the chain end at the residue
constexpr std::string_view defaultWord = "default";   ///< the atoms of the residue's ionisable group

/// Appends a charge, in e, on an atom by its place in the atom list. Fails after a message when the
/// count reaches maxCharges - 1.
Status addCharge(ChargeSet &set, std::size_t atom, float charge, Messages &messages);

/// The residue numbers that the report of a pKa file shows: the lowest of its lines, 999 at most, and the
/// highest, -1 at least. The model numbers residues within these limits; a file with others only above 999
/// is reported from 999 on, and one without lines as 999 to -1.
struct ResidueRange {
    int first = 999, last = -1;
};

/// The lines of a charge file under construction, and those that were read.
struct ChargeLines {
    std::string text;
    std::unordered_set<std::string> known;
    ResidueRange range;    ///< of the lines read
    bool isWanted = false; ///< they are written in the end
};

/// Whether a set takes no more charges in a run that does not use them: one line says so. A run that does
/// use them is refused by addCharge.
bool isFullForNothing(const ChargeSet &set, const ChargeOptions &elInfo, const ChargeLines &lines,
                      Messages &messages);

/// Appends a line, unless it stands already: a line holds for the residue number in every chain, and a second
/// one would double the charges of the chains when the file is read.
void addLine(ChargeLines &lines, int resID, std::string_view name, float charge);

/// Reads a pKa file: on each line a residue number, "pKa" (else the value is a charge), an atom name,
/// "default" or "terminus", and the value; the second and third field may be exchanged, as they are in the
/// lines that are written. Places the charges at `pH` and appends them to `lines`, atom by atom. A line that
/// finds no atom warns. Fails after a message for a file or line that cannot be read or too many
/// charges or lines.
Status readChargeFile(const std::string &name, const SelectedAtoms &selected, float pH, ChargeSet &set,
                      ChargeLines &lines, Messages &messages);

} // namespace trelm
