#include "ground/alloc.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace trelm {
#ifdef TRELM_ALLOC_FAULTS
bool requestMayPass(); // of the tests that let requests fail
#endif
namespace {

std::int64_t bytesUsed = 0;
std::int64_t bytesReused = 0;
int verboseAlloc = 0;
bool hasFailed = false;

#ifndef TRELM_ALLOC_FAULTS
constexpr bool requestMayPass()
{
    return true;
}
#endif

void tellFailure()
{
    hasFailed = true;
    std::fprintf(stderr, "Memory allocation failure.\n");
}

/// True if length elements of this size can be named at all.
bool isPossible(std::size_t length, std::size_t size)
{
    return length <= static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) / size;
}

/// Asks for `length` elements of `size` bytes.
void *request(const char *kind, const char *caller, std::size_t length, std::size_t size)
{
    const bool possible = isPossible(length, size); // a size beyond all numbers has no place in the account
    const std::int64_t add = possible ? static_cast<std::int64_t>(length * size) : 0;
    bytesUsed += add;
    void *block = possible && requestMayPass() ? std::malloc(length * size) : nullptr;
    if (verboseAlloc != 0)
        std::fprintf(stderr, "\n_MEM %s Name: %s Alloc: %p Add: %" PRId64 " Now: %" PRId64 "\n", kind, caller,
                     block, add, bytesUsed);
    if (block == nullptr)
        tellFailure();
    return block;
}

} // namespace

void setAlloc(int verboseFlag)
{
    verboseAlloc = verboseFlag;
}

void showAlloc()
{
    std::fprintf(stderr, "REMARK Memory Allocation Status. Reused: %" PRId64 " In Use: %" PRId64 "\n",
                 bytesReused, bytesUsed);
}

std::int64_t allocBytesUsed()
{
    return bytesUsed;
}
std::int64_t allocBytesReused()
{
    return bytesReused;
}
bool allocHasFailed()
{
    return hasFailed;
}

float *fltAlloc(const char *caller, std::size_t length)
{
    return static_cast<float *>(request("FLT_ALLOC", caller, length, sizeof(float)));
}

int *intAlloc(const char *caller, std::size_t length)
{
    return static_cast<int *>(request("INT_ALLOC", caller, length, sizeof(int)));
}

double *dFltAlloc(const char *caller, std::size_t length)
{
    return static_cast<double *>(request("DBL_ALLOC", caller, length, sizeof(double)));
}

char *charMalloc(const char *caller, std::size_t length)
{
    return static_cast<char *>(request("CHR_ALLOC", caller, length, sizeof(char)));
}

void *voidMalloc(const char *caller, std::size_t length)
{
    return request("VOI_ALLOC", caller, length, 1);
}

void *voidReMalloc(const char *caller, void *ptr, std::size_t newLength, std::size_t oldLength)
{
    const std::size_t known = ptr == nullptr ? 0 : oldLength;
    bytesReused += static_cast<std::int64_t>(known);
    bytesUsed += static_cast<std::int64_t>(newLength) - static_cast<std::int64_t>(known);
    const bool possible = isPossible(newLength, 1) && requestMayPass();
    if (verboseAlloc != 0)
        std::fprintf(stderr, "\n_MEM CHR_RE_AL Name: %s Free: %p", caller, ptr);
    // At least one byte: a length of 0 would release the old block and look like a failure.
    void *block = possible ? std::realloc(ptr, std::max<std::size_t>(newLength, 1)) : nullptr;
    if (verboseAlloc != 0)
        std::fprintf(stderr, " Alloc: %p Add: %zu Delete: %zu Now: %" PRId64 "\n", block, newLength, known,
                     bytesUsed);
    if (block == nullptr)
        tellFailure();
    return block;
}

void unAlloc(const char *caller, void *ptr, std::size_t length)
{
    if (ptr != nullptr)
        bytesUsed -= static_cast<std::int64_t>(length);
    if (verboseAlloc != 0)
        std::fprintf(stderr, "\n_MEM %s Name: %s Free: %p Delete: %zu Now: %" PRId64 " Reused: %" PRId64 "\n",
                     ptr != nullptr ? "DEALLOC" : "NOOP_AL", caller, ptr, length, bytesUsed, bytesReused);
    std::free(ptr);
}

} // namespace trelm
