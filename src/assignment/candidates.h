// How many candidates a search has, and how many of them it has settled.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace trelm {

/// A number of candidates: exact as long as it has no more than 63 bits, else about.
struct CandidateCount {
    long double about = 0.0L; ///< 500! has 1135 digits
    std::uint64_t exact = 0;
    bool isExact = true;
};

CandidateCount operator*(const CandidateCount &count, std::size_t factor);
CandidateCount &operator+=(CandidateCount &count, const CandidateCount &other);

/// items! / (items - taken)!: the ways to put `taken` peaks on `items` residues.
CandidateCount arrangements(std::size_t items, std::size_t taken);

/// In full, or as a power of ten.
std::string countText(const CandidateCount &count);

} // namespace trelm
