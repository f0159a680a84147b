#include "command/params.h"

#include "command/command_line.h"
#include "command/help.h"
#include "report/modes.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <cstdlib>
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
    {"-needVector", &AssignmentOptions::needsVector, 1},
    {"-outAss", &RunOptions::outAssName},
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
    {"-vecNoise", &TrelmInfo::noiseMode, noiseOnVectors},
    {"-angNoise", &TrelmInfo::noiseMode, noiseOnAngles},
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

constexpr OptionRow inputRows[] = {
    {"-names", &RunOptions::names},
    {"-model", &RunOptions::model},
    {"-outM", &RunOptions::outMName},
    {"-fit1", &RunOptions::fitFirst},
    {"-fitN", &RunOptions::fitLast},
    {"-noSuper", &RunOptions::keepsFrames, 1},
    {"-inF", &RunOptions::inForm},
    {"-medium", &RunOptions::medium},
    {"-rdcSign", &RunOptions::rdcSign},
    {"-rdcScale", &RunOptions::rdcScale},
    {"-label", &RunOptions::useLabels, 1},
    {"-addH", &RunOptions::buildsHydrogens, 1},
    {"-outQ", &RunOptions::outQName},
    {"-outJ", &RunOptions::outJName},
    {"-free", &RunOptions::freeKind},
    {"-freeSeed", &RunOptions::freeSeed},
    {"-dropOut", &RunOptions::dropsOutliers, 1},
    {"-nopdbRot", &RunOptions::hasNoStructures, 1},
    {"-strict", &RunOptions::isStrict, 1},
    {"-quiet", &RunOptions::isQuiet, 1},
};

constexpr OptionRow reportRows[] = {
    {"-verb", &TrelmInfo::verbFlag, 1},
    {"-noverb", &TrelmInfo::verbFlag, 0},
    {"-qDa", &TrelmInfo::qFlag, qOfOrderMatrix},
    {"-qRms", &TrelmInfo::qFlag, qOfRms},
    {"-qStd", &TrelmInfo::qFlag, standardDeviation},
    {"-err", &TrelmInfo::mapMode, fitsWithinErrors},
    {"-noerr", &TrelmInfo::mapMode, everyFit},
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
    {"-bic", &TrelmInfo::lcType, lcWall},
    {"-bic", &TrelmInfo::radiusModel, 20.0},
    {"-pf1", &TrelmInfo::lcType, lcRod},
    {"-pf1", &TrelmInfo::radiusModel, 33.5},
    {"-3D", &TrelmInfo::lcType, lcGrid},
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
    {"-charmm", &ChargeOptions::charmm, charmm19},
    {"-charmm22", &ChargeOptions::charmm, charmm22},
    {"-nocharmm", &ChargeOptions::charmm, charmmNone},
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
    {"-dcHH", &TrelmInfo::dcProton, 1},
    {"-nodcHH", &TrelmInfo::dcProton, 0},
    {"-scale", &TrelmInfo::normDc, 1},
    {"-unscale", &TrelmInfo::normDc, 0},
    {"-xplor", &TrelmInfo::outFormat, formatXplor},
    {"-cns", &TrelmInfo::outFormat, formatCns},
    {"-tbl", &TrelmInfo::outFormat, formatTbl},
    {"-dyana", &TrelmInfo::outFormat, formatDyana},
    {"-trelm", &TrelmInfo::outFormat, formatTrelm},
    {"-rosetta", &TrelmInfo::outFormat, formatRosetta},
    {"-star", &TrelmInfo::outFormat, formatStar},
    {"-nef", &TrelmInfo::outFormat, formatNef},
    {"-cyana", &TrelmInfo::outFormat, formatCyana},
    {"-rosettaList", &TrelmInfo::outFormat, formatRosettaList},
    {"-csv", &TrelmInfo::outFormat, formatCsv},
    {"-dcNoise", &TrelmInfo::dcNoise, 1},
    {"-tensID", &TrelmInfo::dcID},
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
    {"-user", &TrelmInfo::elPdbFlag, asUserFrame},
    {"-ster", &TrelmInfo::elPdbFlag, asShape},
    {"-el", &TrelmInfo::elPdbFlag, asCharged},
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
    "-help",  "-dbg",    "-w",    "-cut", "-inS1", "-inS2", "-inS",     "-hinge",    "-twist",
    "-fixAa", "-fixRes", "-dcID", "-res", "-r1",   "-rN",   "-version", "-fitAtoms",
};

void readDebugLevel(CommandLine &line, RunOptions &options)
{
    if (!line.has("-dbg"))
        return;
    options.dbgFlag = 1;
    const char *word = line.valueOf("-dbg");
    if (word == nullptr)
        return;
    options.dbgFlag = intWord(word);
    // A flag behind -dbg makes the level 0, like any word that is no number; the user meant no value at all.
    if (!isFlag(word))
        line.warnInt("-dbg", word);
}

/// The value of -addH, which may be missing.
void readHydrogenDistance(CommandLine &line, RunOptions &options)
{
    const int loc = line.flagLoc("-addH");
    if (loc == 0 || line.nextFlag(loc) == loc + 1)
        return;
    const char *word = line.word(loc + 1);
    line.warnFloat("-addH", word);
    options.hydrogenDistance = fltWord(word);
}

/// Names as words of their own, or in one word.
void readFitAtoms(CommandLine &line, RunOptions &options)
{
    if (!line.has("-fitAtoms"))
        return;
    std::string names;
    for (const char *word : line.listOf("-fitAtoms"))
        names += (names.empty() ? "" : " ") + std::string(word);
    if (names.empty())
        line.warnNoValue("-fitAtoms");
    else
        options.fitAtoms = names;
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

void readWeights(CommandLine &line, RunOptions &options)
{
    options.wList = line.numbersOf("-w", options.wCount);
    if (!line.has("-w"))
        return;
    if (options.wCount == 0)
        line.warnNoValue("-w");
    for (const char *word : line.listOf("-w"))
        line.warnFloat("-w", word);
}

void expandNameLists(RunOptions &options)
{
    if (equalNoCase(options.atomNames, "All"))
        options.atomNames = "HA CA CB C N";
    if (equalNoCase(options.resNames, "All"))
        options.resNames = "ALA ARG ASN ASP CYS GLN GLU GLY HIS ILE "
                           "LEU LYS MET PHE PRO SER THR TRP TYR VAL xPRO";
}

Status readCutoff(CommandLine &line, FieldOptions &elInfo)
{
    const int loc = line.flagLoc("-cut");
    if (loc == 0)
        return Status::ok;
    if (line.nextFlag(loc) - loc != 2)
        return line.messages.fail("GORVAT Error: -cut option requires 1 value only.\n");
    const char *word = line.word(loc + 1);
    line.warnDouble("-cut", word);
    elInfo.cutoffPot = dblWord(word);
    return Status::ok;
}

Status readAxis(CommandLine &line, std::string_view flag, std::array<float, 3> &axis)
{
    std::array<double, 3> values = {};
    const Status status = readValues(line, flag, flag, values);
    std::ranges::transform(values, axis.begin(), boundedFloat);
    return status;
}

/// Five numbers, or the name of a report.
Status readMatrix(CommandLine &line, std::string_view flag, std::array<double, 5> &saupe, std::string &name)
{
    const std::vector<const char *> words = line.listOf(flag);
    if (words.size() != 1 || isNumber(words[0]))
        return readValues(line, flag, flag, saupe);
    name = words[0];
    return Status::ok;
}

/// The order matrices to compare, and the axes of the comparison. Stops at the first fault.
Status readMatrices(CommandLine &line, RunOptions &options)
{
    Status status = readMatrix(line, "-inS1", options.userSaupe1, options.saupeName1);
    if (status == Status::ok)
        status = readMatrix(line, "-inS2", options.userSaupe2, options.saupeName2);
    if (status == Status::ok)
        status = readAxis(line, "-hinge", options.hingeAxis);
    return status == Status::ok ? readAxis(line, "-twist", options.twistAxis) : status;
}

Status tooMany(CommandLine &line, std::string_view flag, std::size_t found, std::size_t limit)
{
    return line.messages.fail("GORVAT Error: option %s takes at most %zu values, %zu were given.\n",
                              std::string(flag).c_str(), limit, found);
}

/// Reads a list of integers; without the option it stays empty. Returns 0, or 1 after a message.
Status readIntList(CommandLine &line, std::string_view flag, std::size_t limit,
                   std::optional<std::vector<int>> &list)
{
    if (!line.has(flag))
        return Status::ok;
    const std::vector<const char *> words = line.listOf(flag);
    if (words.size() > limit)
        return tooMany(line, flag, words.size(), limit);
    if (words.empty())
        line.warnNoValue(flag);
    list.emplace();
    for (const char *word : words) {
        line.warnInt(flag, word);
        list->push_back(intWord(word));
    }
    return Status::ok;
}

Status readPeakLists(CommandLine &line, AssignmentOptions &assignment)
{
    std::optional<std::vector<int>> classes, residues;
    if (readIntList(line, "-fixAa", maxClasses, classes) != Status::ok ||
        readIntList(line, "-fixRes", maxFixedResidues, residues) != Status::ok)
        return Status::failed;
    // One counter serves all lists: without -fixRes it shows the length of the list that was read last, and
    // the assignment search has always seen that.
    const std::size_t otherLists = line.has("-inS") ? 5 : 3;
    assignment.classes = classes.value_or(std::vector<int>());
    assignment.fixedResidues =
        residues.value_or(std::vector<int>(classes ? classes->size() : otherLists, noFixedResidue));
    return Status::ok;
}

Status readMedia(CommandLine &line, AssignmentOptions &assignment)
{
    if (!line.has("-dcID"))
        return Status::ok;
    const std::vector<const char *> words = line.listOf("-dcID");
    if (words.size() > maxMedia)
        return tooMany(line, "-dcID", words.size(), maxMedia);
    if (words.empty())
        line.warnNoValue("-dcID");
    else
        assignment.media.assign(words.begin(), words.end());
    return Status::ok;
}

void readTensor(CommandLine &line, Options &options)
{
    // A bad vector was told, and the run goes on.
    static_cast<void>(getDCTensorParams(line, options));
    options.TrelmInfo::eulerFlag = options.DTensor::eulerFlag;
}

/// All options behind the selection and the tensor, in look-up order.
Status readMainOptions(CommandLine &line, Options &options)
{
    const auto rows = [&](std::span<const OptionRow> table) { readRows(line, table, options); };
    readDebugLevel(line, options);
    rows(reportRows);
    readEnvironment(options);
    readWeights(line, options);
    rows(fileRows);
    expandNameLists(options);
    rows(simulationRows);
    if (readCutoff(line, options) != Status::ok)
        return Status::failed;
    rows(conversionRows);
    if (readMatrices(line, options) != Status::ok)
        return Status::failed;
    rows(comparisonRows);
    if (readValues(line, "-inS", "-inS", options.userSaupe1) != Status::ok)
        return Status::failed;
    rows(magnitudeRows);
    if (readPeakLists(line, options) != Status::ok)
        return Status::failed;
    return readMedia(line, options);
}

} // namespace

std::vector<std::span<const OptionRow>> optionTables()
{
    std::vector<std::span<const OptionRow>> tables = {inputRows, modeFlagRows, fitKindRows};
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

Status getparams(CommandLine &line, Options &options)
{
    if (line.count() <= 1 || line.has("-help")) {
        printInfo(line.messages);
        return Status::failed;
    }
    readRows(line, inputRows, options);
    readHydrogenDistance(line, options);
    readFitAtoms(line, options);
    readRows(line, modeFlagRows, options);
    readRows(line, fitKindRows, options);
    options.fitFlag = line.has("-pdb") ? 1 : 0;
    if (options.fitFlag != 0)
        getPDBSelectArgs(line, options);
    readTensor(line, options);
    return readMainOptions(line, options);
}

} // namespace trelm
