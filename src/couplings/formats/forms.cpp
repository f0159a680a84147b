#include "couplings/formats/forms.h"

namespace trelm {
namespace {

struct FormRow {
    CouplingForm form;
    ArchiveReader read;
};

constexpr FormRow formRows[] = {
    {CouplingForm::table, nullptr},   {CouplingForm::star, readStar},   {CouplingForm::nef, readStar},
    {CouplingForm::xplor, readXplor}, {CouplingForm::cyana, readCyana}, {CouplingForm::rosetta, readRosetta},
    {CouplingForm::csv, readColumns},
};

} // namespace

ArchiveReader readerOf(CouplingForm form)
{
    for (const FormRow &row : formRows)
        if (row.form == form)
            return row.read;
    return nullptr;
}

} // namespace trelm
