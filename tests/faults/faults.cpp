#include "faults/faults.h"

#include <execinfo.h>

namespace {

FaultRecord *current = nullptr;
Fault failingKind = Fault::memory;
long failingNumber = 0;

/// The innermost calls that led here, as one number: two requests of the same calls have the same one, also
/// in runs of two modes that share a reader.
std::uint64_t placeOfRequest()
{
    std::array<void *, 16> calls;
    const int depth = backtrace(calls.data(), static_cast<int>(calls.size()));
    std::uint64_t place = 14695981039346656037U; // Fowler, Noll and Vo, with words for bytes
    for (int i = 0; i < depth; ++i)
        place =
            (place ^ reinterpret_cast<std::uintptr_t>(calls[static_cast<std::size_t>(i)])) * 1099511628211U;
    return place;
}

void notePlace(Fault fault, long number)
{
    if (current->notesPlaces && number <= static_cast<long>(placeCount))
        current->places[static_cast<std::size_t>(fault)][static_cast<std::size_t>(number - 1)] =
            placeOfRequest();
}

} // namespace

void startFaults(Fault fault, long n, FaultRecord &record)
{
    layStandardStreams();
    placeOfRequest(); // its first call asks for memory itself
    failingKind = fault;
    failingNumber = n;
    current = &record;
}

bool mustFail(Fault fault)
{
    if (current == nullptr)
        return false;
    const long number = ++current->counts[static_cast<std::size_t>(fault)];
    notePlace(fault, number);
    const bool fails = fault == failingKind && number == failingNumber;
    current->hasFailed = current->hasFailed || fails;
    return fails;
}

FaultRecord *faultRecord()
{
    return current;
}
