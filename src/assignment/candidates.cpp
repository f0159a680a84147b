#include "assignment/candidates.h"

#include "support/text/text.h"

#include <limits>

namespace trelm {
namespace {

constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();

} // namespace

CandidateCount operator*(const CandidateCount &count, int factor)
{
    CandidateCount product = {count.about * factor, 0, false};
    const auto by = static_cast<std::uint64_t>(factor);
    product.isExact = count.isExact && (by == 0 || count.exact <= largest / by);
    if (product.isExact)
        product.exact = count.exact * by;
    return product;
}

CandidateCount &operator+=(CandidateCount &count, const CandidateCount &other)
{
    count.about += other.about;
    count.isExact = count.isExact && other.isExact && count.exact <= largest - other.exact;
    count.exact = count.isExact ? count.exact + other.exact : 0;
    return count;
}

CandidateCount arrangements(int items, int taken)
{
    CandidateCount count = {1.0L, 1, true};
    for (int i = 0; i < taken; ++i)
        count = count * (items - i);
    return count;
}

std::string countText(const CandidateCount &count)
{
    std::string text;
    if (count.isExact)
        appendf(text, "%llu", static_cast<unsigned long long>(count.exact));
    else
        appendf(text, "%.6Le", count.about);
    return text;
}

} // namespace trelm
