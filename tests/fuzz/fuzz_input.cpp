#include "fuzz_input.h"

#include <cstdio>
#include <cstdlib>

#include <sys/mman.h>
#include <unistd.h>

namespace trelm::fuzz {
namespace {

constexpr std::string_view moleculeText =
    "ATOM      1  N   MET A   1      27.340  24.430   2.614  1.00  9.67           N\n"
    "ATOM      2  CA  MET A   1      26.266  25.413   2.842  1.00 10.38           C\n"
    "ATOM      3  C   MET A   1      26.913  26.639   3.531  1.00  9.62           C\n"
    "ATOM      4  O   MET A   1      27.886  26.463   4.263  1.00  9.62           O\n"
    "ATOM      5  HA  MET A   1      25.912  25.711   1.866  1.00  9.62           H\n"
    "ATOM      6  N   LYS A   2      26.335  27.770   3.258  1.00  9.27           N\n"
    "ATOM      7  HN  LYS A   2      25.551  27.776   2.670  1.00  9.27           H\n"
    "ATOM      8  CA  LYS A   2      26.850  29.021   3.898  1.00  9.07           C\n"
    "ATOM      9  HA  LYS A   2      27.861  28.851   4.239  1.00  9.07           H\n"
    "ATOM     10  NZ  LYS A   2      25.112  33.010   4.877  1.00 18.16           N\n"
    "ATOM     11  C   LYS A   2      26.100  29.253   5.202  1.00  8.72           C\n"
    "ATOM     12  N   ASP A   3      26.801  29.721   6.215  1.00  5.87           N\n"
    "ATOM     13  HN  ASP A   3      27.765  29.834   6.133  1.00  5.87           H\n"
    "ATOM     14  CA  ASP A   3      26.195  30.134   7.478  1.00  5.07           C\n"
    "ATOM     15  HA1 ASP A   3      25.200  30.500   7.301  1.00  5.07           H\n"
    "ATOM     16  OD1 ASP A   3      26.550  27.100   9.190  1.00  7.10           O\n"
    "ATOM     17  OD2 ASP A   3      28.120  28.350   9.822  1.00  6.30           O\n"
    "ATOM     18  C   ASP A   3      27.011  31.220   8.130  1.00  6.55           C\n"
    "ATOM     19  O   ASP A   3      28.210  31.120   8.331  1.00  4.68           O\n"
    "END\n";

} // namespace

std::string_view asText(const std::uint8_t *data, std::size_t size)
{
    return {reinterpret_cast<const char *>(data), size};
}

std::string fileOf(std::string_view text)
{
    static const int file = ::memfd_create("trelm_fuzz", 0);
    require(file >= 0 && ::ftruncate(file, 0) == 0, "the input file opens");
    require(::pwrite(file, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()),
            "the input file takes all bytes");
    return "/proc/self/fd/" + std::to_string(file);
}

void require(bool holds, const char *promise)
{
    if (holds)
        return;
    // stderr is closed to what the readers say: see LLVMFuzzerInitialize.
    dprintf(STDERR_FILENO, "This does not hold: %s.\n", promise);
    std::abort();
}

PDBInfo &smallMolecule()
{
    static PDBInfo molecule = [] {
        PDBInfo made;
        require(readPDB(fileOf(moleculeText), made, nullptr, standardMessages()) == Status::ok,
                "the molecule is read");
        return made;
    }();
    return molecule;
}

} // namespace trelm::fuzz

/// Called once, before the first input. What the readers print would drown the report of a fault, which goes
/// to the descriptor of standard error and not to the stream.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    std::FILE *nowhere = std::fopen("/dev/null", "w");
    trelm::fuzz::require(nowhere != nullptr, "the null device opens");
    stdout = nowhere;
    stderr = nowhere;
    return 0;
}
