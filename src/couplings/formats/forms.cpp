#include "couplings/formats/forms.h"

namespace trelm {
namespace {

/// A reader that is not there yet.
Status readNothing(const ArchiveText &file, Archive &, Messages &messages)
{
    return messages.fail("trelm: %s: this form is not read yet.\n", file.name.c_str());
}

struct FormRow {
    CouplingForm form;
    ArchiveReader read;
};

constexpr FormRow formRows[] = {
    {CouplingForm::table, nullptr},     {CouplingForm::star, readStar},
    {CouplingForm::nef, readStar},      {CouplingForm::xplor, readNothing},
    {CouplingForm::cyana, readNothing}, {CouplingForm::rosetta, readNothing},
    {CouplingForm::csv, readNothing},
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
