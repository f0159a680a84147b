// NMR-STAR and NEF.
#include "archive_check.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    trelm::fuzz::checkArchive(trelm::readStar, trelm::fuzz::asText(data, size));
    return 0;
}
