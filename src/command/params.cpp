#include "command/params.h"

#include "command/cmndargs.h"
#include "command/help.h"
#include "report/modes.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <type_traits>
#include <utility>

namespace trelm {
namespace {

// A mode flag fills the mode, and what the mode implies.
constexpr OptionRow modeFlagRows[] = {
    {"-stTrelm", &TrelmInfo::trelmMode, modeStTrelm},
    {"-stTrelm", &ChargeOptions::elFlag, 0},
    {"-stTrelmFree", &TrelmInfo::trelmMode, modeStTrelmFree},
    {"-stTrelmFree", &ChargeOptions::elFlag, 0},
    {"-stTrelmGrid", &TrelmInfo::trelmMode, modeStTrelmGrid},
    {"-stTrelmGrid", &ChargeOptions::elFlag, 0},
    {"-elTrelm", &TrelmInfo::trelmMode, modeElTrelm},
    {"-elTrelm", &ChargeOptions::elFlag, 1},
    {"-elTrelmFree", &TrelmInfo::trelmMode, modeElTrelmFree},
    {"-elTrelmFree", &ChargeOptions::elFlag, 1},
    {"-elTrelmGrid", &TrelmInfo::trelmMode, modeElTrelmGrid},
    {"-elTrelmGrid", &ChargeOptions::elFlag, 1},
    {"-bestFit", &TrelmInfo::trelmMode, modeBestFit},
    {"-csSim", &TrelmInfo::trelmMode, modeCsSim},
    {"-daHist", &TrelmInfo::trelmMode, modeDaHist},
    {"-daFlex", &TrelmInfo::trelmMode, modeDaFlex},
    {"-daMl", &TrelmInfo::trelmMode, modeDaMl},
    {"-asRan", &TrelmInfo::trelmMode, modeAsRan},
    {"-anA", &TrelmInfo::trelmMode, modeAnA},
    {"-anA", &TrelmInfo::opCode, opSub},
    {"-anA", &TrelmInfo::c1, 1.0},
    {"-anDc", &TrelmInfo::trelmMode, modeAnDc},
    {"-anDc", &TrelmInfo::opCode, opAdd},
    {"-anDc", &TrelmInfo::c1, 0.0},
    {"-anDc", &TrelmInfo::c2, 1.0},
    {"-anPdb", &TrelmInfo::trelmMode, modeAnPdb},
    {"-conv", &TrelmInfo::trelmMode, modeConv},
    {"-struc", &TrelmInfo::trelmMode, modeStruc},
};

constexpr OptionRow fitKindRows[] = {
    {"-idum", &TrelmInfo::idum},
    {"-rand", &TrelmInfo::spreadMode, spreadRand},
    {"-exhaust", &TrelmInfo::spreadMode, spreadExhaust},
    {"-exhaustSel", &TrelmInfo::spreadMode, spreadExhaustSel},
    {"-dcOpt", &AssignmentOptions::dcSelOpt, 1},
    {"-nodcOpt", &AssignmentOptions::dcSelOpt, 0},
    {"-single", &TrelmInfo::spreadMode, spreadSingle},
    {"-jack", &TrelmInfo::spreadMode, spreadJack},
    {"-mcDc", &TrelmInfo::spreadMode, spreadMcDc},
    {"-mcStruc", &TrelmInfo::spreadMode, spreadMcStruc},
    {"-map", &RunOptions::mapCount},
    {"-outFail", &RunOptions::outDFailName},
    {"-dFrac", &TrelmInfo::mapFrac},
    {"-nDfixed", &TrelmInfo::mapFixCount, 1},
    {"-nonDfixed", &TrelmInfo::mapFixCount, 0},
    {"-vecNoise", &TrelmInfo::noiseMode, 1},
    {"-angNoise", &TrelmInfo::noiseMode, 0},
    {"-stdCone", &TrelmInfo::coneWidth},
    {"-fixCone", &TrelmInfo::coneFix, 1},
    {"-nofixCone", &TrelmInfo::coneFix, 0},
    {"-digCone", &TrelmInfo::coneDig},
    {"-autoCone", &TrelmInfo::nConeFlag, 1},
    {"-noautoCone", &TrelmInfo::nConeFlag, 0},
    {"-nCone", &TrelmInfo::nConeAdjust},
    {"-lCone", &TrelmInfo::nConeStart},
    {"-incCone", &TrelmInfo::nConeInc},
    {"-autoMc", &TrelmInfo::mcAdjustFlag, 1},
    {"-noautoMc", &TrelmInfo::mcAdjustFlag, 0},
    {"-nAdjustMc", &TrelmInfo::nAdjustMc},
    {"-fracAdjustMc", &TrelmInfo::mcAdjustFrac},
    {"-kAdjustMc", &TrelmInfo::kSigma},
    {"-kLAdjustMc", &TrelmInfo::kLSigma},
    {"-incAdjustMc", &TrelmInfo::incSigma},
};

constexpr OptionRow reportRows[] = {
    {"-verb", &TrelmInfo::verbFlag, 1},
    {"-noverb", &TrelmInfo::verbFlag, 0},
    {"-qDa", &TrelmInfo::qFlag, qOfOrderMatrix},
    {"-qRms", &TrelmInfo::qFlag, qOfRms},
    {"-qStd", &TrelmInfo::qFlag, standardDeviation},
    {"-err", &TrelmInfo::mapMode, 1},
    {"-noerr", &TrelmInfo::mapMode, 0},
};

constexpr OptionRow fileRows[] = {
    {"-in", &RunOptions::inDName},
    {"-inD", &RunOptions::inDName},
    {"-inCS", &RunOptions::inCSName},
    {"-out", &RunOptions::outDName},
    {"-outD", &RunOptions::outDName},
    {"-outS", &RunOptions::outSName},
    {"-outPka", &RunOptions::outPkaName},
    {"-outCS", &RunOptions::outCSName},
    {"-pdb", &RunOptions::pdbName},
    {"-ref", &RunOptions::refName},
    {"-path", &RunOptions::pdbPath},
    {"-list", &RunOptions::pdbList},
    {"-sPath", &RunOptions::surfPath},
    {"-sList", &RunOptions::atomNames},
    {"-rList", &RunOptions::resNames},
    {"-dStep", &DcInfo::segStep},
    {"-sStep", &DcInfo::segStep},
    {"-d1", &DcInfo::segFirst},
    {"-s1", &DcInfo::segFirst},
    {"-dN", &DcInfo::segLast},
    {"-sN", &DcInfo::segLast},
    {"-sID", &DcInfo::segID},
    {"-a1", &DcInfo::aFirst},
    {"-csThresh", &RunOptions::csThresh},
    {"-vcThresh", &RunOptions::validThresh},
    {"-excl", &DcInfo::excludeMode, bothInside},
    {"-inc", &DcInfo::excludeMode, oneInside},
    {"-fit", &RunOptions::fitFlag, 1},
    {"-nofit", &RunOptions::fitFlag, 0},
    {"-fixedDI", &TrelmInfo::allowFixedDI, 1},
    {"-nofixedDI", &TrelmInfo::allowFixedDI, 0},
    {"-rem", &RunOptions::remark},
    {"-yzInv", &TrelmInfo::yzFlag, 1},
    {"-noyzInv", &TrelmInfo::yzFlag, 0},
    {"-inp", &RunOptions::inpName},
    {"-outDa", &RunOptions::outDaName},
    {"-outMap", &RunOptions::outMapName},
    {"-outAng", &RunOptions::outAngName},
    {"-pot", &RunOptions::potName},
    {"-pot3D", &RunOptions::pot3DName},
    {"-pka", &RunOptions::pkaName},
    {"-inE", &RunOptions::inEName},
    {"-outE", &RunOptions::outEName},
    {"-flex", &RunOptions::flexName},
    {"-dcEns", &RunOptions::oDcEName},
    {"-ave", &RunOptions::aveName, {}, true}, // also a bare flag of the magnitude analyses
    {"-pdbF", &RunOptions::pdbFName},
    {"-pdbRot", &RunOptions::pRotName},
    {"-rotID", &TrelmInfo::rotN},
    {"-outEAx", &RunOptions::outEAxName},
    {"-aD1", &RunOptions::atomNameS1},
    {"-aD2", &RunOptions::atomNameS2},
    {"-inD1", &RunOptions::inD1Name},
    {"-inD2", &RunOptions::inD2Name},
};

constexpr OptionRow simulationRows[] = {
    {"-bic", &TrelmInfo::lcType, 1},
    {"-bic", &TrelmInfo::radiusModel, 20.0},
    {"-pf1", &TrelmInfo::lcType, 2},
    {"-pf1", &TrelmInfo::radiusModel, 33.5},
    {"-3D", &TrelmInfo::lcType, 3},
    {"-3D", &TrelmInfo::radiusModel, 0.0},
    {"-wv", &TrelmInfo::concentration},
    {"-vol", &TrelmInfo::volSample},
    {"-mwLC", &TrelmInfo::mwLC},
    {"-massLC", &TrelmInfo::massLC},
    {"-unitLC", &TrelmInfo::unitLengthLC},
    {"-polyLC", &TrelmInfo::polymerDeg},
    {"-dot", &TrelmInfo::densityNSC},
    {"-digPsi", &TrelmInfo::digPsiNSC},
    {"-dGrid", &TrelmInfo::gridSpacing},
    {"-dX", &TrelmInfo::grid3DdeltaX},
    {"-dY", &TrelmInfo::grid3DdeltaY},
    {"-dZ", &TrelmInfo::grid3DdeltaZ},
    {"-nX", &TrelmInfo::grid3DnX},
    {"-nY", &TrelmInfo::grid3DnY},
    {"-nZ", &TrelmInfo::grid3DnZ},
    {"-maxPot", &Grid3DOptions::maxPot},
    {"-z1", &Grid3DOptions::z1},
    {"-zN", &Grid3DOptions::zN},
    {"-rM", &TrelmInfo::radiusModel}, // behind the liquid crystals, whose radius it overrides
    {"-lcS", &TrelmInfo::lcOrder},
    {"-rA", &TrelmInfo::radiusAtom},
    {"-rim", &TrelmInfo::includeRim},
    {"-pRatio", &TrelmInfo::molarRatio},
    {"-lM", &TrelmInfo::lengthModel},
    {"-rimDisc", &TrelmInfo::orderDiscRim},
    {"-H", &TrelmInfo::Hflag, 1},
    {"-noH", &TrelmInfo::Hflag, 0},
    {"-surf", &TrelmInfo::surfFlag, 1},
    {"-nosurf", &TrelmInfo::surfFlag, 0},
    {"-pH", &ChargeOptions::pH},
    {"-nacl", &FieldOptions::concNaCl},
    {"-chSurf", &FieldOptions::chDensSurf},
    {"-dIFace", &FieldOptions::iFace},
    {"-elInfo", &FieldOptions::chFlag, 1},
    {"-noelInfo", &FieldOptions::chFlag, 0},
    {"-dipole", &ChargeOptions::dipoleFlag, 1},
    {"-nodipole", &ChargeOptions::dipoleFlag, 0},
    {"-chSel", &ChargeOptions::chSelFlag, 1},
    {"-nochSel", &ChargeOptions::chSelFlag, 0},
    {"-pkaDef", &ChargeOptions::pkaFlag, 1},
    {"-nopkaDef", &ChargeOptions::pkaFlag, 0},
    {"-chTerm", &ChargeOptions::chTerminiFlag, 1},
    {"-nochTerm", &ChargeOptions::chTerminiFlag, 0},
    {"-charmm", &ChargeOptions::charmm, 1},
    {"-charmm22", &ChargeOptions::charmm, 2},
    {"-nocharmm", &ChargeOptions::charmm, 0},
    {"-kEne", &FieldOptions::kEnergy},
    {"-kPot", &FieldOptions::kPot},
    {"-kMono", &ChargeOptions::kMonoCh},
    {"-kDipo", &ChargeOptions::kDipoCh},
    {"-kQuad", &ChargeOptions::kQuadCh},
    {"-temp", &FieldOptions::temperaturePot},
    {"-kAtt", &FieldOptions::kAtt},
    {"-pow", &FieldOptions::pow},
};

constexpr OptionRow conversionRows[] = {
    {"-dcHH", &TrelmInfo::dcProton, 1},   {"-nodcHH", &TrelmInfo::dcProton, 0},
    {"-scale", &TrelmInfo::normDc, 1},    {"-unscale", &TrelmInfo::normDc, 0},
    {"-xplor", &TrelmInfo::outFormat, 0}, {"-cns", &TrelmInfo::outFormat, 1},
    {"-tbl", &TrelmInfo::outFormat, 2},   {"-dyana", &TrelmInfo::outFormat, 3},
    {"-trelm", &TrelmInfo::outFormat, 4}, {"-rosetta", &TrelmInfo::outFormat, 5},
    {"-dcNoise", &TrelmInfo::dcNoise, 1}, {"-tensID", &TrelmInfo::dcID},
};

constexpr OptionRow comparisonRows[] = {
    {"-outA", &RunOptions::outAName},
    {"-add", &TrelmInfo::opCode, opAdd},
    {"-sub", &TrelmInfo::opCode, opSub},
    {"-mul", &TrelmInfo::opCode, opMul},
    {"-div", &TrelmInfo::opCode, opDiv},
    {"-max", &TrelmInfo::opCode, opMax},
    {"-c1", &TrelmInfo::c1},
    {"-c2", &TrelmInfo::c2},
    {"-outP", &RunOptions::outPName},
};

constexpr OptionRow magnitudeRows[] = {
    {"-user", &TrelmInfo::elPdbFlag, 2},
    {"-ster", &TrelmInfo::elPdbFlag, 0},
    {"-el", &TrelmInfo::elPdbFlag, 1},
    {"-el", &ChargeOptions::elFlag, 1},
    {"-noave", &MagnitudeOptions::optExtrem, 0},
    {"-ave", &MagnitudeOptions::optExtrem, 1},
    {"-bin", &MagnitudeOptions::nBinIn},
    {"-nFit", &MagnitudeOptions::modeFit},
    {"-sdevDzz", &MagnitudeOptions::sdevDzz},
    {"-sdevDyy", &MagnitudeOptions::sdevDyy},
    {"-daLo", &MagnitudeOptions::daLo},
    {"-daHi", &MagnitudeOptions::daHi},
    {"-rhLo", &MagnitudeOptions::rhLo},
    {"-rhHi", &MagnitudeOptions::rhHi},
    {"-nSel", &TrelmInfo::sCount},
    {"-nRun", &TrelmInfo::histRan},
    {"-outCol", &RunOptions::outColName},
    {"-outSc", &RunOptions::outScName},
    {"-lDa", &MagnitudeOptions::lDaMl},
    {"-hDa", &MagnitudeOptions::hDaMl},
    {"-incDa", &MagnitudeOptions::incDaMl},
    {"-lR", &MagnitudeOptions::lRMl},
    {"-hR", &MagnitudeOptions::hRMl},
    {"-incR", &MagnitudeOptions::incRMl},
    {"-nomapMl", &MagnitudeOptions::mlMap, 0},
    {"-mapMl", &MagnitudeOptions::mlMap, 1},
    {"-noclearMl", &MagnitudeOptions::mlClear, 0},
    {"-clearMl", &MagnitudeOptions::mlClear, 1},
    {"-nSel", &AssignmentOptions::nSel, {}, true},
    {"-lDa", &TensorWindow::lowDa, {}, true},
    {"-hDa", &TensorWindow::highDa, {}, true},
    {"-lR", &TensorWindow::lowR, {}, true},
    {"-hR", &TensorWindow::highR, {}, true},
};

constexpr std::string_view specialFlagList[] = {
    "-help",  "-dbg",   "-w",      "-cut",  "-inS1", "-inS2", "-inS", "-hinge",
    "-twist", "-fixAa", "-fixRes", "-dcID", "-res",  "-r1",   "-rN",  "-version",
};

/// The words of the command line.
struct CommandLine {
    int argc;
    char **argv;
};

void tellMissing(const CommandLine &line, const OptionRow &row)
{
    if (!row.quiet && flagLoc(line.argc, line.argv, row.flag) != 0)
        warnNoValue(row.flag);
}

const char *wordOf(const CommandLine &line, const OptionRow &row)
{
    const char *word = nullptr;
    if (ptrArgD(line.argc, line.argv, row.flag, &word) == 0)
        tellMissing(line, row);
    return word;
}

bool readValue(const CommandLine &line, const OptionRow &row, int &value)
{
    const char *word = wordOf(line, row);
    if (word == nullptr)
        return false;
    if (!row.quiet)
        warnIntWord(row.flag, word);
    value = intWord(word);
    return true;
}

bool readValue(const CommandLine &line, const OptionRow &row, float &value)
{
    const char *word = wordOf(line, row);
    if (word == nullptr)
        return false;
    if (!row.quiet)
        warnFltWord(row.flag, word);
    value = fltWord(word);
    return true;
}

bool readValue(const CommandLine &line, const OptionRow &row, double &value)
{
    float single = 0.0f;
    if (!readValue(line, row, single))
        return false;
    value = static_cast<double>(single);
    return true;
}

bool readValue(const CommandLine &line, const OptionRow &row, std::string &value)
{
    const char *word = wordOf(line, row);
    if (word != nullptr)
        value = word;
    return word != nullptr;
}

bool readValue(const CommandLine &line, const OptionRow &row, const char *&value)
{
    const char *word = wordOf(line, row);
    if (word != nullptr)
        value = word;
    return word != nullptr;
}

bool readRow(const CommandLine &line, const OptionRow &row, const OptionRecords &records)
{
    const auto fill = [&](auto target) {
        auto &field = fieldOf(records, target);
        using Value = std::remove_reference_t<decltype(field)>;
        if (!row.preset)
            return readValue(line, row, field);
        if (flagLoc(line.argc, line.argv, row.flag) == 0)
            return false;
        if constexpr (std::is_arithmetic_v<Value>)
            field = static_cast<Value>(*row.preset);
        return true;
    };
    return std::visit(fill, row.target);
}

void readDebugLevel(const CommandLine &line, RunOptions &options)
{
    const int loc = flagLoc(line.argc, line.argv, "-dbg");
    if (loc == 0)
        return;
    options.dbgFlag = 1;
    if (intArgD(line.argc, line.argv, "-dbg", &options.dbgFlag) == 0)
        return;
    // A flag behind -dbg makes the level 0, like any word that is no number; the user meant no value at all.
    const char *word = line.argv[loc + 1];
    if (isFlag(word) == 0)
        warnIntWord("-dbg", word);
}

void readEnvironment(RunOptions &options)
{
    const std::pair<const char *, std::string RunOptions::*> variables[] = {
        {"PDBH_DIR", &RunOptions::pdbPath},
        {"PDBH_LIST", &RunOptions::pdbList},
        {"SURF_DIR", &RunOptions::surfPath},
    };
    for (const auto &[name, field] : variables)
        if (const char *value = std::getenv(name); value != nullptr)
            options.*field = value;
}

void readWeights(const CommandLine &line, RunOptions &options)
{
    options.wList = rListArg(line.argc, line.argv, "-w", &options.wCount);
    if (flagLoc(line.argc, line.argv, "-w") == 0)
        return;
    if (options.wCount == 0)
        warnNoValue("-w");
    for (const char *word : listWords(line.argc, line.argv, "-w"))
        warnFltWord("-w", word);
}

void expandNameLists(RunOptions &options)
{
    if (equalNoCase(options.atomNames, "All"))
        options.atomNames = "HA CA CB C N";
    if (equalNoCase(options.resNames, "All"))
        options.resNames = "ALA ARG ASN ASP CYS GLN GLU GLY HIS ILE "
                           "LEU LYS MET PHE PRO SER THR TRP TYR VAL xPRO";
}

int readCutoff(const CommandLine &line, FieldOptions &elInfo)
{
    const int loc = flagLoc(line.argc, line.argv, "-cut");
    if (loc == 0)
        return 0;
    if (nextFlag(line.argc, line.argv, loc) - loc != 2)
        return complain("GORVAT Error: -cut option requires 1 value only.\n");
    const char *word = getNthArg(line.argc, line.argv, loc + 1);
    warnDblWord("-cut", word);
    elInfo.cutoffPot = dblWord(word);
    return 0;
}

int readAxis(const CommandLine &line, std::string_view flag, std::array<float, 3> &axis)
{
    std::array<double, 3> values = {};
    const int status = readValues(line.argc, line.argv, flag, flag, values);
    std::ranges::transform(values, axis.begin(), boundedFloat);
    return status;
}

/// The order matrices to compare, and the axes of the comparison. Stops at the first fault.
int readMatrices(const CommandLine &line, RunOptions &options)
{
    int status = readValues(line.argc, line.argv, "-inS1", "-inS1", options.userSaupe1);
    if (status == 0)
        status = readValues(line.argc, line.argv, "-inS2", "-inS2", options.userSaupe2);
    if (status == 0)
        status = readAxis(line, "-hinge", options.hingeAxis);
    return status == 0 ? readAxis(line, "-twist", options.twistAxis) : status;
}

int tooMany(std::string_view flag, std::size_t found, std::size_t limit)
{
    return complain("GORVAT Error: option %s takes at most %zu values, %zu were given.\n",
                    std::string(flag).c_str(), limit, found);
}

/// Reads a list of integers; without the option it stays empty. Returns 0, or 1 after a message.
int readIntList(const CommandLine &line, std::string_view flag, std::size_t limit,
                std::optional<std::vector<int>> &list)
{
    if (flagLoc(line.argc, line.argv, flag) == 0)
        return 0;
    const std::vector<const char *> words = listWords(line.argc, line.argv, flag);
    if (words.size() > limit)
        return tooMany(flag, words.size(), limit);
    if (words.empty())
        warnNoValue(flag);
    list.emplace();
    for (const char *word : words) {
        warnIntWord(flag, word);
        list->push_back(intWord(word));
    }
    return 0;
}

int readPeakLists(const CommandLine &line, AssignmentOptions &assignment)
{
    std::optional<std::vector<int>> classes, residues;
    if (readIntList(line, "-fixAa", maxClasses, classes) != 0 ||
        readIntList(line, "-fixRes", maxFixedResidues, residues) != 0)
        return 1;
    // One counter serves all lists: without -fixRes it shows the length of the list that was read last, and
    // the assignment search has always seen that.
    const std::size_t otherLists = flagLoc(line.argc, line.argv, "-inS") != 0 ? 5 : 3;
    assignment.classes = classes.value_or(std::vector<int>());
    assignment.fixedResidues =
        residues.value_or(std::vector<int>(classes ? classes->size() : otherLists, noFixedResidue));
    return 0;
}

int readMedia(const CommandLine &line, AssignmentOptions &assignment)
{
    if (flagLoc(line.argc, line.argv, "-dcID") == 0)
        return 0;
    const std::vector<const char *> words = listWords(line.argc, line.argv, "-dcID");
    if (words.size() > maxMedia)
        return tooMany("-dcID", words.size(), maxMedia);
    if (words.empty())
        warnNoValue("-dcID");
    else
        assignment.media.assign(words.begin(), words.end());
    return 0;
}

void readTensor(const CommandLine &line, TrelmInfo &trelmInfo, DTensor &dTensor)
{
    getDCTensorParams(line.argc, line.argv, &dTensor); // a bad vector was told, and the run goes on
    trelmInfo.eulerFlag = dTensor.eulerFlag;
}

/// All options behind the selection and the tensor, in look-up order.
int readMainOptions(const CommandLine &line, const OptionRecords &records)
{
    const auto rows = [&](std::span<const OptionRow> table) {
        readRows(line.argc, line.argv, table, records);
    };
    RunOptions &options = *records.options;
    TrelmInfo &trelmInfo = *records.trelmInfo;
    readDebugLevel(line, options);
    rows(reportRows);
    readEnvironment(options);
    readWeights(line, options);
    rows(fileRows);
    expandNameLists(options);
    rows(simulationRows);
    if (readCutoff(line, trelmInfo) != 0)
        return 1;
    rows(conversionRows);
    if (readMatrices(line, options) != 0)
        return 1;
    rows(comparisonRows);
    if (readValues(line.argc, line.argv, "-inS", "-inS", options.userSaupe1) != 0)
        return 1;
    rows(magnitudeRows);
    if (readPeakLists(line, trelmInfo) != 0)
        return 1;
    return readMedia(line, trelmInfo);
}

} // namespace

int readRows(int argc, char **argv, std::span<const OptionRow> rows, const OptionRecords &records)
{
    const CommandLine line = {argc, argv};
    return static_cast<int>(
        std::ranges::count_if(rows, [&](const OptionRow &row) { return readRow(line, row, records); }));
}

std::vector<const char *> listWords(int argc, char **argv, std::string_view flag)
{
    std::vector<const char *> words;
    const int loc = flagLoc(argc, argv, flag);
    if (loc == 0)
        return words;
    const int end = nextFlag(argc, argv, loc);
    for (int i = loc + 1; i < end; ++i)
        words.push_back(getNthArg(argc, argv, i));
    return words;
}

int readValues(int argc, char **argv, std::string_view flag, std::string_view name, std::span<double> values)
{
    if (flagLoc(argc, argv, flag) == 0)
        return 0;
    const std::vector<const char *> words = listWords(argc, argv, flag);
    if (words.size() != values.size())
        return complain("GORVAT Error: %s option requires %zu values.\n", std::string(name).c_str(),
                        values.size());
    for (std::size_t i = 0; i < words.size(); ++i) {
        warnDblWord(flag, words[i]);
        values[i] = dblWord(words[i]);
    }
    return 0;
}

std::vector<std::span<const OptionRow>> optionTables()
{
    std::vector<std::span<const OptionRow>> tables = {modeFlagRows, fitKindRows};
    for (const auto &more : {selectionTables(), tensorTables()})
        tables.insert(tables.end(), more.begin(), more.end());
    for (const std::span<const OptionRow> table :
         {std::span<const OptionRow>(reportRows), std::span<const OptionRow>(fileRows),
          std::span<const OptionRow>(simulationRows), std::span<const OptionRow>(conversionRows),
          std::span<const OptionRow>(comparisonRows), std::span<const OptionRow>(magnitudeRows)})
        tables.push_back(table);
    return tables;
}

std::span<const std::string_view> specialFlags()
{
    return specialFlagList;
}

int getparams(int argc, char **argv, RunOptions &options, TrelmInfo &trelmInfo, DcInfo &dcInfo,
              PDBSelectInfo &sInfo, DTensor &dTensor)
{
    const CommandLine line = {argc, argv};
    const OptionRecords records = {&options, &trelmInfo, &dcInfo, &sInfo, &dTensor};
    if (argc <= 1 || flagLoc(argc, argv, "-help") != 0) {
        printInfo();
        return 1;
    }
    readRows(argc, argv, modeFlagRows, records);
    readRows(argc, argv, fitKindRows, records);
    options.fitFlag = flagLoc(argc, argv, "-pdb") != 0 ? 1 : 0;
    if (options.fitFlag != 0)
        getPDBSelectArgs(argc, argv, &sInfo);
    readTensor(line, trelmInfo, dTensor);
    return readMainOptions(line, records);
}

} // namespace trelm
