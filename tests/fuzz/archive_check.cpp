#include "archive_check.h"

#include "fuzz_input.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <string>

namespace trelm::fuzz {
namespace {

void checkRow(const ArchiveRow &row, const Archive &archive, std::size_t lines)
{
    require(row.medium < archive.media.size(), "a row belongs to a medium");
    require(row.line >= 1 && row.line <= lines, "a row has its line");
    require(std::isfinite(row.value) && std::isfinite(row.scale), "a value is a number");
    require(!row.error || (*row.error > 0.0 && std::isfinite(*row.error)), "an error is above 0, or none");
    require(row.weight >= 0.0 && std::isfinite(row.weight), "no weight is below 0");
    require(!row.i.atomName.empty() && !row.j.atomName.empty(), "both atoms have a name");
    require(row.alternatives >= 1, "a row means at least one pair");
}

/// "trelm: in, line 7: why.\n", and nothing else.
void checkMessage(const std::string &said, std::size_t lines)
{
    constexpr std::string_view start = "trelm: in, line ";
    require(said.starts_with(start) && said.ends_with(".\n"), "a failure names its line");
    require(std::ranges::count(said, '\n') == 1, "a failure is told in one line");
    const auto line = std::strtoull(said.c_str() + start.size(), nullptr, 10);
    require(line >= 1 && line <= lines, "the line is one of the file");
}

} // namespace

void checkArchive(ArchiveReader read, std::string_view text)
{
    if (text.find('\0') != std::string_view::npos) // refused before: see readText
        return;
    std::string said;
    Messages messages([&](Messages::Stream, std::string_view piece) { said += piece; });
    Archive archive;
    const std::size_t lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
    if (read({text, "in"}, archive, messages) != Status::ok) {
        checkMessage(said, lines);
        return;
    }
    require(said.empty(), "a reader that does not fail says nothing");
    for (const ArchiveRow &row : archive.rows)
        checkRow(row, archive, lines);
    const std::size_t counted =
        std::accumulate(archive.media.begin(), archive.media.end(), std::size_t{0},
                        [](std::size_t sum, const Medium &medium) { return sum + medium.rows; });
    require(counted == archive.rows.size(), "the media count their rows");
    for (const LeftOutRow &row : archive.leftOut)
        require(row.line >= 1 && row.line <= lines && !row.reason.empty(),
                "what is left out has place and reason");
}

} // namespace trelm::fuzz
