#include "couplings/table_input.h"

#include <utility>

namespace trelm {

Status readTable(const std::string &inDName, DTable &dTab, Messages &messages)
{
    const Status status = readDC(inDName, dTab, messages);
    if (status != Status::ok) {
        messages.err("Error reading DC input %s\n", inDName.c_str());
        return status;
    }
    messages.note("%s, %zu Couplings, Residues %d to %d.\n", inDName.c_str(), dTab.dCount, dTab.dMinRes,
                  dTab.dMaxRes);
    return Status::ok;
}

void settleWindow(DcInfo &dcInfo, const DTable &dTab)
{
    if (dcInfo.segFirst < unsetResID)
        dcInfo.segFirst = dTab.dMinRes;
    if (dcInfo.segLast < unsetResID)
        dcInfo.segLast = dTab.dMaxRes;
    if (dcInfo.segFirst > dcInfo.segLast)
        std::swap(dcInfo.segFirst, dcInfo.segLast);
    if (dcInfo.aFirst < unsetResID)
        dcInfo.aFirst = dcInfo.segFirst;
}

int chooseRows(DTable &dTab, const DcInfo &dcInfo, std::string_view atomNameS1, std::string_view atomNameS2)
{
    selectD(dTab.observed(), dcInfo.segFirst, dcInfo.segLast, dcInfo.excludeMode);
    return selTypDC(dTab.observed(), atomNameS1, atomNameS2);
}

void tellRows(int count, const char *deed, WindowKind excludeMode, Messages &messages)
{
    messages.out("REMARK %d couplings %s (%s%s).\n", count, deed,
                 excludeMode == bothInside ? "exclusive" : "inclusive",
                 excludeMode == largerInside ? " max" : "");
}

} // namespace trelm
