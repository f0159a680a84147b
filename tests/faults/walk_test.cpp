// Every request for memory, every open, read, write and close of whole runs fails once. The run must end with
// a message and status 1; it must not crash, leak, leave a file open, or look whole when it is not. Under the
// sanitizers, where a run takes ten times as long, of the requests that come from the same chain of calls one
// fails.
#include "common/line_ends.h"
#include "faults/forked_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <sstream>
#include <string_view>

namespace {

// What a run tells, and goes on from, with status 0 and nothing lost:
// - a coupling table whose file cannot be opened goes to standard output;
// - a numbered copy of the turned structure whose file cannot be opened is passed over.
constexpr std::string_view tableToStdout = "DC Error opening output file ";
constexpr std::string_view copyPassedOver = "PDB Error opening PDB file ";
// And what it need not tell, because the result is the same to the byte: a stream to /dev/null that cannot be
// opened, and memory that a sort of the standard library asks for as a favour.

// Under the sanitizers one process walks all runs, and a place where one run fails need not fail in the next.
#ifdef TRELM_SANITIZED
constexpr bool eachPlaceOnce = true;
#else
constexpr bool eachPlaceOnce = false;
#endif

/// A run and what it leaves behind when nothing fails.
struct Whole {
    const SmallRun &run;
    const WalkFolder &folder;
    ForkedRun ran;
    std::map<std::string, std::string> files;
    std::set<std::string> lines; ///< of the standard error stream
};

std::set<std::string> linesOf(const std::string &text)
{
    std::set<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.insert(line);
    return lines;
}

Whole wholeRun(const SmallRun &run, const WalkFolder &folder)
{
    Whole whole = {run, folder, runForked(folder, run, {.notesPlaces = eachPlaceOnce}), {}, {}};
    whole.files = filesOf(folder);
    whole.lines = linesOf(whole.ran.err);
    return whole;
}

/// Whether the run told of a fault: a line that the run without one does not have.
bool hasTold(const Whole &whole, const std::string &err)
{
    const std::set<std::string> lines = linesOf(err);
    return std::ranges::any_of(lines, [&](const std::string &line) {
        const bool isFault =
            line.find("rror") != std::string::npos || line.find("failure") != std::string::npos;
        return isFault && !whole.lines.contains(line);
    });
}

/// All that a run wrote, whatever the order, and whatever went where.
std::string bytesOf(const std::string &out, const std::map<std::string, std::string> &files)
{
    std::string bytes = out;
    for (const auto &[name, text] : files)
        bytes += text;
    std::ranges::sort(bytes);
    return bytes;
}

/// The file that a stream stands for: a result is written under a name made of its own,
/// ".NAME.PROCESS.NUMBER".
std::string resultOf(std::string name)
{
    if (!name.starts_with('.'))
        return name;
    for (int i = 0; i < 2; ++i)
        name.erase(name.rfind('.'));
    return name.substr(1);
}

/// Whether a run of status 0 has a right to it.
bool mayPass(const Whole &whole, const ForkedRun &ran, Fault fault)
{
    const std::map<std::string, std::string> files = filesOf(whole.folder);
    const std::string lost = resultOf(ran.faults.stream);
    if (ran.faults.mayGoOn)
        return ran.out == whole.ran.out && files == whole.files;
    if (fault != Fault::open)
        return false;
    if (ran.err.find(std::string(tableToStdout) + lost + "\n") != std::string::npos)
        return bytesOf(ran.out, files) == bytesOf(whole.ran.out, whole.files);
    auto expected = whole.files;
    expected.erase(lost);
    const bool isCopy = lost.size() > 1 && lost[lost.size() - 2] == '.' && std::isdigit(lost.back()) != 0;
    return isCopy && ran.err.find(std::string(copyPassedOver) + lost + "\n") != std::string::npos &&
           ran.out == whole.ran.out && files == expected;
}

/// Statuses of a failed run: 1, or the -1 of a numerical routine.
bool isFailure(int status)
{
    return status == 1 || status == 255;
}

void judge(const Whole &whole, const ForkedRun &ran, Fault fault)
{
    if (fault != Fault::tell)
        expectLineEnds(ran.err);
    if (ran.status == 0) {
        EXPECT_TRUE(mayPass(whole, ran, fault)) << ran.err;
        return;
    }
    EXPECT_TRUE(isFailure(ran.status)) << ran.status << "\n" << ran.err;
    EXPECT_TRUE(fault == Fault::tell || hasTold(whole, ran.err)) << ran.err;
    // The fatal end of the numerical code has no tear-down: the system closes its files.
    const bool isTornDown = ran.err.find("REMARK Memory Allocation Status.") != std::string::npos;
    EXPECT_TRUE(!isTornDown || ran.faults.openFiles == 0) << ran.err;
}

/// Places of which a request has failed in this process.
using KnownPlaces = std::array<std::set<std::uint64_t>, faultCount>;

/// The numbers of the requests that have to fail: all, or the first from each place that is not known yet.
std::vector<long> chosenRequests(const FaultRecord &record, std::size_t kind, KnownPlaces &places)
{
    std::vector<long> chosen;
    std::set<std::uint64_t> &known = places[kind];
    for (long n = 1; n <= record.counts[kind]; ++n)
        if (!eachPlaceOnce || n > static_cast<long>(placeCount) ||
            known.insert(record.places[kind][static_cast<std::size_t>(n - 1)]).second)
            chosen.push_back(n);
    return chosen;
}

/// Chosen requests of a kind fail, one a run. Returns how many did.
std::size_t walk(const Whole &whole, Fault fault)
{
    static KnownPlaces known; // of the runs before, where one process makes them all
    const std::vector<long> chosen = chosenRequests(whole.ran.faults, static_cast<std::size_t>(fault), known);
    for (const long n : chosen) {
        SCOPED_TRACE(testing::Message() << faultNames[static_cast<std::size_t>(fault)] << " " << n);
        const ForkedRun ran = runForked(whole.folder, whole.run, {fault, n});
        EXPECT_TRUE(ran.faults.hasFailed);
        SCOPED_TRACE(ran.faults.stream);
        judge(whole, ran, fault);
    }
    return chosen.size();
}

class Walk : public testing::TestWithParam<SmallRun> {};

TEST_P(Walk, EveryFaultIsToldAndEndsTheRun)
{
    const WalkFolder folder;
    ASSERT_NE(folder.shared, nullptr);
    const Whole whole = wholeRun(GetParam(), folder);
    ASSERT_EQ(whole.ran.status, 0) << whole.ran.err << whole.ran.out;
    ASSERT_EQ(whole.ran.faults.openFiles, 0);
    ASSERT_GT(whole.ran.faults.counts[static_cast<std::size_t>(Fault::write)], 0); // the layer is there
    std::string counts;
    for (std::size_t i = 0; i < static_cast<std::size_t>(Fault::kill); ++i)
        counts += std::string(" ") + faultNames[i] + " " + std::to_string(walk(whole, static_cast<Fault>(i)));
    std::printf("%s:%s\n", GetParam().name, counts.c_str());
}

TEST(EarlierResults, StandUntilTheNewOnesAreWhole)
{
    const WalkFolder folder;
    ASSERT_NE(folder.shared, nullptr);
    const SmallRun &run = *std::ranges::find(smallRuns(), std::string_view("mcDc"), &SmallRun::name);
    const Whole whole = wholeRun(run, folder);
    std::vector<std::string> earlier;
    for (const auto &[name, text] : whole.files)
        earlier.push_back(name);
    ASSERT_GT(earlier.size(), 5U);
    for (const Fault fault : {Fault::open, Fault::write, Fault::close, Fault::rename, Fault::kill}) {
        const auto kind = static_cast<std::size_t>(fault);
        ASSERT_GT(whole.ran.faults.counts[kind], 0);
        KnownPlaces known;
        for (const long n : chosenRequests(whole.ran.faults, kind, known)) {
            SCOPED_TRACE(testing::Message() << faultNames[kind] << " " << n);
            const ForkedRun ran = runForked(folder, run, {.kind = fault, .n = n, .earlier = earlier});
            EXPECT_TRUE(ran.faults.hasFailed);
            auto files = filesOf(folder);
            std::erase_if(files, [&](const auto &file) {
                return fault == Fault::kill && file.first.starts_with('.') &&
                       !whole.files.contains(file.first);
            });
            EXPECT_EQ(files.size(), whole.files.size());
            for (const auto &[name, text] : files)
                EXPECT_TRUE(text == earlierResult || text == whole.files.at(name)) << name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, Walk, testing::ValuesIn(smallRuns()),
                         [](const auto &test) { return std::string(test.param.name); });

} // namespace
