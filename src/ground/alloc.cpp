#include "ground/alloc.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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

/// Asks for `length` elements of `size` bytes, which count as `accountSize` bytes each.
void *request(const char *kind, const char *caller, std::size_t length, std::size_t size,
              std::size_t accountSize)
{
    const bool possible = isPossible(length, size); // a size beyond all numbers has no place in the account
    const std::int64_t add = possible ? static_cast<std::int64_t>(length * accountSize) : 0;
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

int showAlloc()
{
    std::fprintf(stderr, "REMARK Memory Allocation Status. Reused: %" PRId64 " In Use: %" PRId64 "\n",
                 bytesReused, bytesUsed);
    return 0;
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
    return static_cast<float *>(request("FLT_ALLOC", caller, length, sizeof(float), sizeof(float)));
}

int *intAlloc(const char *caller, std::size_t length)
{
    return static_cast<int *>(request("INT_ALLOC", caller, length, sizeof(int), sizeof(int)));
}

double *dFltAlloc(const char *caller, std::size_t length)
{
    return static_cast<double *>(request("DBL_ALLOC", caller, length, sizeof(double), sizeof(double)));
}

long *dIntAlloc(const char *caller, std::size_t length)
{
    return static_cast<long *>(request("INT_ALLOC", caller, length, sizeof(long), sizeof(long)));
}

char *charMalloc(const char *caller, std::size_t length)
{
    return static_cast<char *>(request("CHR_ALLOC", caller, length, sizeof(char), sizeof(char)));
}

void *voidMalloc(const char *caller, std::size_t length)
{
    return request("VOI_ALLOC", caller, length, 1, 1);
}

char *strDup(const char *string)
{
    return strDup2("strDup", string);
}

char *strDup2(const char *caller, const char *string)
{
    const std::size_t size = std::strlen(string) + 1;
    char *copy = charMalloc(caller, size);
    if (copy == nullptr) {
        std::fprintf(stderr, "Memory allocation failure.\n"); // the second of two: the request printed one
        return nullptr;
    }
    std::memcpy(copy, string, size);
    return copy;
}

int strFree(char *string)
{
    if (string != nullptr)
        unAlloc("strDup", string, std::strlen(string) + 1);
    return 0;
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

char *charReMalloc(const char *caller, char *ptr, std::size_t newLength, std::size_t oldLength)
{
    return static_cast<char *>(voidReMalloc(caller, ptr, newLength, oldLength));
}

float **mat2Ptr(float *matrix, std::size_t xSize, std::size_t ySize)
{
    // The account of row pointers is told in floats.
    auto **rows =
        static_cast<float **>(request("VOI_ALLOC", "mat2ptr", ySize, sizeof(float *), sizeof(float)));
    if (rows == nullptr)
        return nullptr;
    for (std::size_t y = 0; y < ySize; ++y)
        rows[y] = matrix + y * xSize;
    return rows;
}

float **matAlloc(const char *caller, std::size_t xLength, std::size_t yLength)
{
    if (yLength != 0 && !isPossible(xLength, yLength * sizeof(float))) {
        tellFailure();
        return nullptr;
    }
    // Counted here and once more by the two requests below: the balance stays high on purpose.
    bytesUsed += static_cast<std::int64_t>((xLength * yLength + yLength) * sizeof(float));
    float *data = fltAlloc(caller, xLength * yLength);
    if (data == nullptr)
        return nullptr;
    float **rows = mat2Ptr(data, xLength, yLength);
    if (rows == nullptr || yLength == 0) // without a row nothing points to the data
        unAlloc(caller, data, xLength * yLength * sizeof(float));
    return rows;
}

int matFree(float **matrixPtr, std::size_t xSize, std::size_t ySize)
{
    if (matrixPtr == nullptr)
        return 0;
    if (ySize > 0)
        unAlloc("matFree", matrixPtr[0], xSize * ySize * sizeof(float));
    unAlloc("matFree", matrixPtr, ySize * sizeof(float));
    return 0;
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
