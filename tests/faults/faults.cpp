#include "faults/faults.h"

namespace {

FaultRecord *current = nullptr;
Fault failingKind = Fault::memory;
long failingNumber = 0;

} // namespace

void startFaults(Fault fault, long n, FaultRecord &record)
{
    layStandardStreams();
    failingKind = fault;
    failingNumber = n;
    current = &record;
}

bool mustFail(Fault fault)
{
    if (current == nullptr)
        return false;
    const long number = ++current->counts[static_cast<std::size_t>(fault)];
    const bool fails = fault == failingKind && number == failingNumber;
    current->hasFailed = current->hasFailed || fails;
    return fails;
}

FaultRecord *faultRecord()
{
    return current;
}
