#include "couplings/table_input.h"

#include "couplings/formats/forms.h"
#include "support/text/table.h"
#include "support/text/token.h"

#include <utility>

namespace trelm {
namespace {

/// The tensor of a report that is read back; nothing in a table without one.
std::optional<StatedTensor> reportedTensor(std::string_view text)
{
    const auto isThere = [text](std::string_view label, double &value) {
        const std::size_t place = text.find(label);
        return place != std::string_view::npos &&
               readNumber(firstWord(text.substr(place + label.size())), value);
    };
    StatedTensor tensor;
    const bool hasBoth =
        isThere("\nDATA Da_HN ", tensor.da) && isThere("\nDATA Rhombicity ", tensor.rhombicity);
    return hasBoth ? std::optional(tensor) : std::nullopt;
}

/// Reads a file of any form.
Status readForm(const std::string &inDName, const CouplingReading &reading, DTable &dTab, Messages &messages)
{
    TextInput input;
    if (openTable(inDName, input, messages) != Status::ok)
        return Status::failed;
    const CouplingForm form = reading.form ? *reading.form : detectForm(input.text);
    const ArchiveReader read = readerOf(form);
    if (read == nullptr && !reading.medium.empty())
        return messages.fail("trelm: -medium %s: %s is a table of one medium.\n", reading.medium.c_str(),
                             inDName.c_str());
    if (read == nullptr) {
        dTab.origin.tensor = reportedTensor(input.text);
        return parseDC(inDName, input, dTab, messages);
    }
    const std::string shownName = inDName == "-" ? "(stdin)" : inDName;
    Archive archive;
    if (read({input.text, shownName, reading.useLabels}, archive, messages) != Status::ok)
        return Status::failed;
    std::string().swap(input.text); // the table takes its room: an assignment would keep it
    return takeArchive(shownName, reading, archive, dTab, messages);
}

} // namespace

Status readTable(const std::string &inDName, const CouplingReading &reading, DTable &dTab, Messages &messages)
{
    const Status status = namesNoTable(inDName) ? Status::ok : readForm(inDName, reading, dTab, messages);
    if (status != Status::ok) {
        messages.err("Error reading DC input %s\n", inDName.c_str());
        return status;
    }
    applyConventions(inDName, reading, dTab, messages);
    messages.note("%s, %zu Couplings, Residues %d to %d.\n", inDName.c_str(), dTab.dCount, dTab.dMinRes,
                  dTab.dMaxRes);
    return Status::ok;
}

DcInfo settledWindow(DcInfo dcInfo, const DTable &dTab)
{
    if (dcInfo.segFirst < unsetResID)
        dcInfo.segFirst = dTab.dMinRes;
    if (dcInfo.segLast < unsetResID)
        dcInfo.segLast = dTab.dMaxRes;
    if (dcInfo.segFirst > dcInfo.segLast)
        std::swap(dcInfo.segFirst, dcInfo.segLast);
    if (dcInfo.aFirst < unsetResID)
        dcInfo.aFirst = dcInfo.segFirst;
    return dcInfo;
}

int residueOffset(const DcInfo &window)
{
    return shiftedRes(window.aFirst, -std::int64_t{window.segFirst});
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
