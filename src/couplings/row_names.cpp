#include "couplings/row_names.h"

#include <functional>
#include <string_view>

namespace trelm {

std::size_t NameStore::Hash::operator()(const RowNames &names) const
{
    std::size_t hash = 0;
    for (const Name *name : {&names.resNameI, &names.resNameJ, &names.atomNameI, &names.atomNameJ,
                             &names.chainNameI, &names.chainNameJ, &names.segNameI, &names.segNameJ})
        hash = hash * 31 + std::hash<std::string_view>{}(name->view());
    return hash;
}

} // namespace trelm
