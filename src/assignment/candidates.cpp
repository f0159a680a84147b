#include "assignment/candidates.h"

#include "support/text/text.h"

#include <limits>

namespace trelm {
namespace {

constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();

} // namespace

CandidateCount operator*(const CandidateCount &count, std::size_t factor)
{
    CandidateCount product = {count.about * static_cast<long double>(factor), 0, false};
    product.isExact = count.isExact && (factor == 0 || count.exact <= largest / factor);
    if (product.isExact)
        product.exact = count.exact * factor;
    return product;
}

CandidateCount &operator+=(CandidateCount &count, const CandidateCount &other)
{
    count.about += other.about;
    count.isExact = count.isExact && other.isExact && count.exact <= largest - other.exact;
    count.exact = count.isExact ? count.exact + other.exact : 0;
    return count;
}

CandidateCount arrangements(std::size_t items, std::size_t taken)
{
    CandidateCount count = {1.0L, 1, true};
    for (std::size_t i = 0; i < taken; ++i)
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
