// The text forms that the tables of a molecule are keyed by.
#pragma once

#include <string>
#include <string_view>

namespace trelm {

/// Number, atom name left-justified in 4, two columns of chain, segment left-justified in 4. The two columns
/// are the insertion code and the chain name where the atom enters the table, the chain name right-justified
/// where it is looked for. A look-up by a chain name of one letter so never finds an atom with an insertion
/// code.
void buildAtomText(int resID, std::string_view atomName, std::string_view icode, std::string_view chainName,
                   std::string_view segName, std::string &atomText);

/// The same key for a look-up, without an insertion code.
void buildLookupText(int resID, std::string_view atomName, std::string_view chainName,
                     std::string_view segName, std::string &atomText);

/// Number, chain left-justified in 2, segment left-justified in 4. The insertion code has no part in it.
void buildResText(int resID, std::string_view chainName, std::string_view segName, std::string &text);

void buildChainText(std::string_view chainName, std::string_view segName, std::string &text);
void buildSegText(std::string_view segName, std::string_view chainName, std::string &text);

} // namespace trelm
