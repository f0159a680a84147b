// Faults that the system can be told to have: one request for memory, one read, one write ... that fails, in
// a process made for it. Nothing fails, and nothing is counted, before startFaults.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

enum class Fault {
    block,  ///< the program's own allocation layer
    memory, ///< operator new: texts, lists, trees of the standard library
    open,   ///< fopen
    read,   ///< a piece of a file or of standard input
    write,  ///< a piece of a file or of standard output; half of it arrives
    close,  ///< the close of a file that was written
    tell,   ///< a piece of the standard error stream
    rename, ///< a whole result takes its place
    kill,   ///< at a write the process is killed; half of the piece arrives
};

constexpr std::array faultNames = {"block", "memory", "open",   "read", "write",
                                   "close", "tell",   "rename", "kill"};
constexpr std::size_t faultCount = faultNames.size();

constexpr std::size_t placeCount = 4096; ///< requests of a kind whose places are noted; later ones are not

/// What a process writes down for the one that started it.
struct FaultRecord {
    std::array<long, faultCount> counts; ///< requests of each kind
    bool hasFailed;                      ///< the chosen one was reached
    bool mayGoOn;     ///< by its form nothing depends on it: memory that is a favour, a stream to nowhere
    long openFiles;   ///< files opened and not closed
    bool notesPlaces; ///< set by the one who starts the process: fill `places`
    std::array<std::array<std::uint64_t, placeCount>, faultCount> places; ///< who made request n, at n - 1
    char stream[4096]; ///< the file that failed, (stdin), (stdout) or (stderr)
};

/// From now on requests are counted, and number `n` of a kind fails; 0 lets all pass. Puts the layer under
/// the three standard streams.
void startFaults(Fault fault, long n, FaultRecord &record);

/// Counts a request of a kind. True if it is the one that has to fail.
bool mustFail(Fault fault);

/// The record of this process, null before startFaults.
FaultRecord *faultRecord();

/// Part of startFaults.
void layStandardStreams();
