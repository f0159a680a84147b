#include "errors/jackknife.h"

#include "ground/out_of_memory.h"
#include "support/numerics/numbers.h"

#include <algorithm>
#include <new>
#include <vector>

namespace trelm {
namespace {

struct JackknifeRun {
    const MappingInput &input;
    const JackknifeOptions &options;
    const MappingWatch &watch;
    Messages &messages;
    JackknifeResult &result;
    RandomStream random = RandomStream(); ///< the draws do not follow the seed of the run
    int nDSel = 0;                        ///< couplings of the last sample
};

Status fitAll(JackknifeRun &run)
{
    if (fitTable(run.input, run.result.fit, run.messages) != Status::ok)
        return Status::failed;
    run.result.samples.orig = eulerSolution(run.result.fit.last.tensor, 0);
    return Status::ok;
}

Status samplePart(JackknifeRun &run, int n)
{
    const auto rows = run.input.dTab.calculated();
    std::vector<unsigned char> &use = run.result.fit.columns.use;
    std::ranges::transform(rows, use.begin(), [](const DCalc &calc) { return calc.valid != 0 ? 1 : 0; });
    run.nDSel = selectDcFrac(run.random, use, run.options.mapFrac, run.options.mapFixCount, run.messages);
    for (std::size_t i = 0; i < use.size(); ++i)
        if (rows[i].w == 0.0f) // it can be drawn, and yet is not fitted
            use[i] = 0;
    if (fitAgain(run.input, run.result.fit, run.messages) != Status::ok)
        return Status::failed;
    return isWithoutTensor(run.result.fit.last)
               ? Status::ok
               : takeSample(run.result.samples, run.input, run.result.fit, n, run.watch, run.messages);
}

void tellParts(const JackknifeRun &run)
{
    if (run.input.mapCount > 0 && run.nDSel < static_cast<int>(fewestCouplings))
        run.messages.warn("trelm: -dFrac %g picks %d couplings: a tensor has five unknowns.\n",
                          number(run.options.mapFrac), run.nDSel);
    run.messages.out("REMARK %d DC of %zu picked.\n", run.nDSel, run.input.dTab.dCount);
    run.messages.out("REMARK %d SVD runs of %d succesful.\n", run.result.samples.count, run.input.mapCount);
}

} // namespace

int selectDcFrac(RandomStream &random, std::span<unsigned char> marks, float frac, int fixed,
                 Messages &messages)
{
    std::vector<std::size_t> indexTab;
    try {
        indexTab.reserve(marks.size());
    } catch (const std::bad_alloc &) { // the callers know no way to go on without a selection
        endWithoutMemory("allocation failure for indexTab", messages);
    }
    for (std::size_t i = 0; i < marks.size(); ++i) {
        if (marks[i] == 0)
            continue;
        marks[i] = 0;
        indexTab.push_back(i);
    }
    const float wanted = fixed != 0 ? frac : static_cast<float>(indexTab.size()) * frac;
    if (!(wanted >= 1.0f) || indexTab.empty())
        return 0;
    const std::size_t target =
        wanted >= static_cast<float>(indexTab.size()) ? indexTab.size() : static_cast<std::size_t>(wanted);
    for (std::size_t count = 0; count < target;) {
        unsigned char &mark = marks[indexTab[random.place(indexTab.size())]];
        if (mark != 0)
            continue; // drawn before
        mark = 1;
        ++count;
    }
    return static_cast<int>(target);
}

void warnOfFraction(const JackknifeOptions &options, Messages &messages)
{
    if (options.mapFixCount == 0 && options.mapFrac > 1.0f)
        messages.warn("Warning: -dFrac %g: above 1 each fit takes all couplings; -nDfixed takes a number.\n",
                      number(options.mapFrac));
}

Status aeraSimDC(const MappingInput &input, const JackknifeOptions &options, const MappingWatch &watch,
                 Messages &messages, JackknifeResult &result)
{
    JackknifeRun run = {input, options, watch, messages, result};
    if (fitAll(run) != Status::ok)
        return Status::failed;
    watch.start();
    if (sampleAll(
            input.mapCount, [&](int n) { return samplePart(run, n); }, messages) != Status::ok)
        return Status::failed;
    tellParts(run);
    averageSamples(result.samples);
    takeColumns(input.dTab, result.fit.columns);
    return compareWithMean(result.samples, input.fit, messages);
}

} // namespace trelm
