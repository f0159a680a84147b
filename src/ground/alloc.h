// The allocation layer: every block of bulk data is asked for here, under a tag, and given back with its
// size.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>

namespace trelm {

/// Turns the trace of every request and release on the standard error stream on (non-zero) or off.
void setAlloc(int verboseFlag);

/// Prints the balance on the standard error stream.
void showAlloc();

/// Bytes in use by the account of the callers, and the sum of old sizes handed to the reallocating calls.
std::int64_t allocBytesUsed();
std::int64_t allocBytesReused();

/// Whether any request of this run found no memory. A caller may have gone on without the block: such a run
/// is no success.
bool allocHasFailed();

// Requests. `length` counts elements; the block is not initialised. Each returns null, after the line
// "Memory allocation failure.", when the system has no memory. Such a request is on the account all the same,
// unless it is larger than any number of bytes. A length of 0 is left to the system, which may return null.
float *fltAlloc(const char *caller, std::size_t length);
int *intAlloc(const char *caller, std::size_t length);
double *dFltAlloc(const char *caller, std::size_t length);
char *charMalloc(const char *caller, std::size_t length);
void *voidMalloc(const char *caller, std::size_t length);

/// A block of `newLength` bytes with the old contents; a new one if `ptr` is null. On failure null comes back
/// and the old block stays as it was.
void *voidReMalloc(const char *caller, void *ptr, std::size_t newLength, std::size_t oldLength);

/// Releases a block; `length` is its size in bytes. Null is a no-op.
void unAlloc(const char *caller, void *ptr, std::size_t length);

/// An owning array of the layer. Elements start as T{}. It can be empty because there was no memory: the
/// constructor throws nothing but what an element throws, and the owner asks with `if (!block)`.
template <class T>
class Block {
  public:
    Block() = default;
    Block(const char *tag, std::size_t length) : tag_(tag)
    {
        data_ = static_cast<T *>(request(tag, length));
        if (data_ == nullptr)
            return;
        try {
            std::uninitialized_value_construct_n(data_, length);
        } catch (...) { // an element found no memory of its own
            unAlloc(tag, data_, length * sizeof(T));
            throw;
        }
        length_ = length;
    }
    Block(Block &&other) noexcept
        : tag_(other.tag_), data_(std::exchange(other.data_, nullptr)),
          length_(std::exchange(other.length_, 0))
    {
    }
    Block &operator=(Block &&other) noexcept
    {
        if (this != &other) {
            release();
            tag_ = other.tag_;
            data_ = std::exchange(other.data_, nullptr);
            length_ = std::exchange(other.length_, 0);
        }
        return *this;
    }
    Block(const Block &) = delete;
    Block &operator=(const Block &) = delete;
    ~Block() { release(); }

    /// Makes the block longer; the old elements keep their places, the new ones start as T{}.
    /// Returns false, with the block as it was, when there is no memory. Pointers into it are void
    /// afterwards.
    [[nodiscard]] bool grow(const char *tag, std::size_t newLength)
    {
        if (newLength <= length_)
            return true;
        T *larger = nullptr;
        if constexpr (std::is_trivially_copyable_v<T>) {
            larger = static_cast<T *>(voidReMalloc(tag, data_, newLength * sizeof(T), length_ * sizeof(T)));
            if (larger == nullptr)
                return false;
        } else {
            larger = static_cast<T *>(request(tag, newLength));
            if (larger == nullptr)
                return false;
            std::uninitialized_move_n(data_, length_, larger);
            std::destroy_n(data_, length_);
            if (data_ != nullptr)
                unAlloc(tag_, data_, length_ * sizeof(T));
        }
        std::uninitialized_value_construct_n(larger + length_, newLength - length_);
        tag_ = tag;
        data_ = larger;
        length_ = newLength;
        return true;
    }

    /// Gives the block back; it is empty afterwards.
    void release()
    {
        if (data_ == nullptr)
            return;
        std::destroy_n(data_, length_);
        unAlloc(tag_, data_, length_ * sizeof(T));
        data_ = nullptr;
        length_ = 0;
    }

    explicit operator bool() const { return data_ != nullptr; }
    [[nodiscard]] std::size_t length() const { return length_; }
    [[nodiscard]] T *data() { return data_; }
    [[nodiscard]] const T *data() const { return data_; }
    T &operator[](std::size_t i) { return data_[i]; }
    const T &operator[](std::size_t i) const { return data_[i]; }
    [[nodiscard]] std::span<T> span() { return {data_, length_}; }
    [[nodiscard]] std::span<const T> span() const { return {data_, length_}; }

  private:
    static void *request(const char *tag, std::size_t length)
    {
        if constexpr (std::is_same_v<T, float>)
            return fltAlloc(tag, length);
        else if constexpr (std::is_same_v<T, int>)
            return intAlloc(tag, length);
        else if constexpr (std::is_same_v<T, double>)
            return dFltAlloc(tag, length);
        else if constexpr (std::is_same_v<T, char>)
            return charMalloc(tag, length);
        else
            return voidMalloc(tag, length <= SIZE_MAX / sizeof(T) ? length * sizeof(T) : SIZE_MAX);
    }

    const char *tag_ = "";
    T *data_ = nullptr;
    std::size_t length_ = 0;
};

/// Room for `extra` more elements behind the `used` first: `first` elements at the start, twice as many each
/// time it is full, so that a long list costs no more for each element than a short one. Returns false when
/// there is no memory.
template <class T>
[[nodiscard]] bool makeRoom(Block<T> &block, const char *tag, std::size_t used, std::size_t extra,
                            std::size_t first)
{
    if (used + extra <= block.length())
        return true;
    return block.grow(tag, std::max({first, 2 * block.length(), used + extra}));
}

} // namespace trelm
