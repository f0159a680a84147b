// Random deviates. The generators start the same in every process: the same run gives the same numbers.
#pragma once

namespace trelm {

/// Uniform deviate in 0 to 1, both ends included. Never seeded. TT800, period 2^800 - 1.
/// Source: Matsumoto and Kurita, ACM Trans. Model. Comput. Simul. 4 (1994) 254, tempering of 1996.
double genrand();

/// Normal deviate, mean 0, standard deviation 1, on the numbers of genrand. Deviates come in pairs: the
/// first is returned, the second is the result of the next call. Source: polar method of Box, Muller and
/// Marsaglia.
double gauss();

/// Uniform deviate, above 0 and below 1. A seed of 0 or below starts the sequence anew; afterwards the seed
/// holds the generator's state. On the first call of a process every seed starts it: those above 0 all the
/// same sequence, that of -1. Source: Park and Miller, Commun. ACM 31 (1988) 1192, with the shuffle of Bays
/// and Durham.
float ran1(int *idum);

/// Uniform deviate from 0 on. In single precision it can round to 1.0: bound an index taken from it. A
/// negative seed, and any seed on the first call of a process, starts the sequence of its magnitude anew and
/// becomes 1. Source: Knuth, Seminumerical Algorithms, section
/// 3.2.2, subtractive method.
float ran3(int *idum);

/// Puts all four generators back to the state in which the process started.
void resetRandom();

} // namespace trelm
