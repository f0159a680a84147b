// Reading: large files, and a whole best-fit against the reading of its input. And numbers as text.
#include "command/run.h"
#include "couplings/dipolar.h"
#include "couplings/fit.h"
#include "couplings/window.h"
#include "modes/coupling_output.h"
#include "structure/pdb.h"
#include "support/text/table.h"
#include "support/text/text.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace trelm;

const std::string structureName = TRELM_EXAMPLES "/ubiquitin/1d3z_model1.pdb";
const std::string backboneName = TRELM_EXAMPLES "/ubiquitin/bicelle_backbone.tab";

/// A structure of about this many atoms: ubiquitin over and over, each copy a chain and segment of its own.
std::string manyAtoms(int atoms)
{
    const fs::path name = fs::temp_directory_path() / ("trelm_bench_" + std::to_string(atoms) + ".pdb");
    std::ifstream in(structureName);
    std::ofstream out(name);
    std::string text;
    int written = 0;
    for (int copy = 0; written < atoms; ++copy) {
        in.clear();
        in.seekg(0);
        char segment[8];
        std::snprintf(segment, sizeof segment, "%4d", copy % 10000);
        for (std::string line; written < atoms && std::getline(in, line);) {
            if (!line.starts_with("ATOM"))
                continue;
            line.replace(21, 1, 1, static_cast<char>('A' + copy % 26));
            line.replace(72, 4, segment);
            out << line << '\n';
            ++written;
        }
    }
    return name.string();
}

std::string manyRows(int rows)
{
    const fs::path name = fs::temp_directory_path() / ("trelm_bench_" + std::to_string(rows) + ".tab");
    std::ofstream out(name);
    out << "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
           "FORMAT %5d %6s %6s %5d %6s %6s %9.3f %9.3f %.2f\n\n";
    for (int row = 0; row < rows; ++row) {
        char line[128];
        std::snprintf(line, sizeof line, "%5d %6s %6s %5d %6s %6s %9.3f %9.3f %.2f\n", row, "GLN", "H", row,
                      "GLN", "N", 0.01 * (row % 2000) - 10.0, 1.0, 1.0);
        out << line;
    }
    return name.string();
}

void readStructure(benchmark::State &state)
{
    const std::string name = manyAtoms(static_cast<int>(state.range(0)));
    for (auto step : state) {
        PDBInfo pdbInfo;
        if (readPDB(name, pdbInfo, nullptr, standardMessages()) != Status::ok ||
            pdbInfo.atomCount != state.range(0))
            return state.SkipWithError("the structure was not read");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    fs::remove(name);
}
BENCHMARK(readStructure)->Arg(10000)->Arg(100000)->Arg(400000)->Unit(benchmark::kMillisecond);

void readCouplings(benchmark::State &state)
{
    const std::string name = manyRows(static_cast<int>(state.range(0)));
    for (auto step : state) {
        DTable dTab;
        if (readDC(name, dTab, standardMessages()) != Status::ok ||
            dTab.dCount != static_cast<std::size_t>(state.range(0)))
            return state.SkipWithError("the table was not read");
        dTab = DTable{};
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    fs::remove(name);
}
BENCHMARK(readCouplings)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

bool readInput(PDBInfo &pdbInfo, DTable &dTab)
{
    return readPDB(structureName, pdbInfo, nullptr, standardMessages()) == Status::ok &&
           readDC(backboneName, dTab, standardMessages()) == Status::ok;
}

void inputAlone(benchmark::State &state)
{
    for (auto step : state) {
        PDBInfo pdbInfo;
        DTable dTab;
        if (!readInput(pdbInfo, dTab))
            return state.SkipWithError("the input was not read");
    }
}
BENCHMARK(inputAlone)->Unit(benchmark::kMicrosecond);

/// Everything of a best-fit but the files it writes.
void inputAndFit(benchmark::State &state)
{
    for (auto step : state) {
        PDBInfo pdbInfo;
        DTable dTab;
        if (!readInput(pdbInfo, dTab))
            return state.SkipWithError("the input was not read");
        selectD(dTab.observed(), dTab.dMinRes, dTab.dMaxRes, largerInside);
        if (buildDC(pdbInfo, dTab, {.wOff = 0}, standardMessages()) != 301 ||
            fitD(pdbInfo.coordinates(), dTab, 0, standardMessages()) != 301)
            return state.SkipWithError("not all couplings were fitted");
    }
}
BENCHMARK(inputAndFit)->Unit(benchmark::kMicrosecond);

/// The whole road with its six result files.
void wholeBestFit(benchmark::State &state)
{
    const fs::path folder = fs::temp_directory_path() / "trelm_bench_out";
    fs::create_directory(folder);
    for (auto step : state) {
        PDBInfo pdbInfo;
        DTable dTab;
        Options options;
        options.trelmMode = modeBestFit;
        options.outDName = (folder / "fit.tab").string();
        options.pRotName = (folder / "turned.pdb").string();
        if (!readInput(pdbInfo, dTab))
            return state.SkipWithError("the input was not read");
        selectD(dTab.observed(), dTab.dMinRes, dTab.dMaxRes, largerInside);
        buildDC(pdbInfo, dTab, {.wOff = 0}, standardMessages());
        Run run{recordsOf(options), {}};
        run.pdbInfo = Block<PDBInfo>("bench", 1);
        run.pdbInfo[0] = std::move(pdbInfo);
        if (!fitD(run.pdbInfo[0].coordinates(), dTab, 1, standardMessages()) ||
            writeFit(run, dTab, "", standardMessages()) != Status::ok)
            return state.SkipWithError("the best-fit failed");
    }
    fs::remove_all(folder);
}
BENCHMARK(wholeBestFit)->Unit(benchmark::kMicrosecond);

/// A million numbers as the lines of samples have them, against printf: the range of orders, angles and
/// couplings.
void numbersAsText(benchmark::State &state, bool plain)
{
    std::mt19937 engine(3);
    std::normal_distribution<double> normal(0.0, 1.0);
    std::vector<double> values(1'000'000);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = normal(engine) * std::pow(10.0, static_cast<int>(i % 13) - 8);
    std::string fast, printed;
    for (const double value : values) {
        fast.clear();
        printed.clear();
        appendScientific(fast, value, 6, SignPlace::none);
        appendFixed(fast, value, 9, 3, SignPlace::blank);
        appendf(printed, "%e% 9.3f", value, value);
        if (fast != printed)
            return state.SkipWithError("differs from printf");
    }
    std::size_t i = 0;
    for (auto step : state) {
        const double value = values[i++ % values.size()];
        fast.clear();
        if (plain) {
            appendf(fast, "%e", value);
            appendf(fast, "% 9.3f", value);
        } else {
            appendScientific(fast, value, 6, SignPlace::none);
            appendFixed(fast, value, 9, 3, SignPlace::blank);
        }
        benchmark::DoNotOptimize(fast);
    }
}
BENCHMARK_CAPTURE(numbersAsText, fast, false);
BENCHMARK_CAPTURE(numbersAsText, plain, true);

} // namespace
