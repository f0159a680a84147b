// The operators new and delete of the whole program, so that a request can fail. All forms are here: a form
// of the standard library's, or of a sanitizer's, would not go with ours.
#include "faults/faults.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace trelm {
bool requestMayPass();
}

namespace {

void *blockOf(std::size_t size)
{
    return mustFail(Fault::memory) ? nullptr : std::malloc(std::max<std::size_t>(size, 1));
}

void *blockOf(std::size_t size, std::align_val_t alignment)
{
    const auto step = static_cast<std::size_t>(alignment);
    return mustFail(Fault::memory) ? nullptr : std::aligned_alloc(step, (size / step + 1) * step);
}

void *orThrow(void *block)
{
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

/// Who asks in this form has another way to go, as the sorts of the standard library do.
void *orNull(void *block)
{
    if (block == nullptr && faultRecord() != nullptr)
        faultRecord()->mayGoOn = true;
    return block;
}

} // namespace

/// Asked by the program's allocation layer.
bool trelm::requestMayPass()
{
    return !mustFail(Fault::block);
}

// clang-format off
void *operator new(std::size_t size) { return orThrow(blockOf(size)); }
void *operator new[](std::size_t size) { return orThrow(blockOf(size)); }
void *operator new(std::size_t size, std::align_val_t step) { return orThrow(blockOf(size, step)); }
void *operator new[](std::size_t size, std::align_val_t step) { return orThrow(blockOf(size, step)); }
void *operator new(std::size_t size, const std::nothrow_t &) noexcept { return orNull(blockOf(size)); }
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept { return orNull(blockOf(size)); }
void *operator new(std::size_t size, std::align_val_t step, const std::nothrow_t &) noexcept { return orNull(blockOf(size, step)); }
void *operator new[](std::size_t size, std::align_val_t step, const std::nothrow_t &) noexcept { return orNull(blockOf(size, step)); }

void operator delete(void *block) noexcept { std::free(block); }
void operator delete[](void *block) noexcept { std::free(block); }
void operator delete(void *block, std::size_t) noexcept { std::free(block); }
void operator delete[](void *block, std::size_t) noexcept { std::free(block); }
void operator delete(void *block, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void *block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void *block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void *block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete(void *block, const std::nothrow_t &) noexcept { std::free(block); }
void operator delete[](void *block, const std::nothrow_t &) noexcept { std::free(block); }
void operator delete(void *block, std::align_val_t, const std::nothrow_t &) noexcept { std::free(block); }
void operator delete[](void *block, std::align_val_t, const std::nothrow_t &) noexcept { std::free(block); }
// clang-format on
