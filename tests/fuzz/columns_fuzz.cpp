// Labels, and columns under a header.
#include "archive_check.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    trelm::fuzz::checkArchive(trelm::readColumns, trelm::fuzz::asText(data, size));
    return 0;
}
