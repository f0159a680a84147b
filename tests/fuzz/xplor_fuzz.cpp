// Restraints of Xplor and CNS.
#include "archive_check.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    trelm::fuzz::checkArchive(trelm::readXplor, trelm::fuzz::asText(data, size));
    return 0;
}
