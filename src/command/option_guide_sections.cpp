// The sections of the guides, and the options that the help text leaves out.
#include "command/option_guide.h"

namespace trelm {
namespace {

// clang-format off

constexpr HelpEntry bicelle[] = {
    {"-pRatio",  "ratio",    "3.0",   "Molar Ratio of the Bicelle Lipids; Changes Only What -rim Reports."},
    {"-rim",     "value",    "0.0",   "Not 0: Report the Geometry of the Bicelles."},
    {"-lM",      "length",   "200.0", "Read; the Length is Computed from the Composition."},
    {"-rimDisc", "fraction", "0.25",  "Read; the Fraction is Computed from the Composition."},
};

constexpr HelpEntry elTerms[] = {
    {"-kAtt", "term",  "0.0", "Attraction Term; Reported, Not Used."},
    {"-pow",  "power", "1.0", "Power of the Potential; Read, Not Used."},
};

constexpr HelpEntry inputModes[] = {
    {"-elTrelmFree", "", "off", "Read Structure, Couplings and Charges, and End."},
    {"-elTrelmGrid", "", "off", "Read Structure, Couplings and Charges, and End."},
    {"-csSim",       "", "off", "Read Structure, Couplings and Charges, and End."},
    {"-asRan",       "", "off", "Read Structure, Couplings and Charges, and End."},
};

constexpr HelpEntry gridInput[] = {
    {"-stTrelmGrid", "",        "off",    "Simulate an Ensemble of Domain Orientations."},
    {"-pdb",         "pdbName", "None",   "PDB Input Structure."},
    {"-inp",         "inpName", "None",   "Configuration Input."},
    {"-inD",         "inName",  "None",   "Dipolar Coupling Table Input."},
    {"-inE",         "inName",  "None",   "Ensemble Input, instead of a Generated One."},
    {"-outE",        "outName", "None",   "Output of the Generated States."},
    {"-outEAx",      "outName", "None",   "Output of the Axes of the Generated States."},
    {"-pdbRot",      "pdbName", "None",   "PDB Output, Starting Position."},
    {"-flex",        "outName", "stdout", "Log of the States."},
    {"-dcEns",       "outName", "stdout", "Report and Couplings of Each State, Appended."},
    {"-ave",         "outName", "stdout", "Report and Averaged Couplings."},
    {"-el",          "",        "off",    "Simulate by Electrostatics."},
};

constexpr HelpEntry likelihoodPattern[] = {
    {"-clearMl",   "", "off", "Clear the Pattern before Each Point of the Grid."},
    {"-noclearMl", "", "on",  "Keep What the Point before Left in the Pattern."},
};

constexpr HelpEntry flexInput[] = {
    {"-daFlex", "",        "off",    "Da and R of Random Sets of Residues."},
    {"-inD",    "inName",  "None",   "Dipolar Coupling Table Input."},
    {"-outSc",  "outName", "stdout", "Table of the Sets."},
    {"-outCol", "outName", "stdout", "Map over Da and R."},
    {"-outD",   "outName", "stdout", "Dipolar Coupling Table Output."},
    {"-nSel",   "count",   "30",     "Residues in a Set, Zero is All."},
    {"-nRun",   "count",   "1000",   "Number of Sets."},
};

constexpr HelpEntry fitWorth[] = {
    {"-outQ",     "outName", "None", "What the Fit is Worth: Errors, Types, Outliers, Free Q."},
    {"-free",     "K|type|one", "one", "The Free Q: K Random Parts, Types, or Couplings One by One."},
    {"-freeSeed", "seed",    "1",    "Seed of the Random Parts."},
    {"-dropOut",  "",        "off",  "Fit Again without the Outliers."},
};

constexpr HelpEntry severalModels[] = {
    {"-outM",     "outName", "stdout", "Table of the Models, with -model all."},
    {"-fitAtoms", "names",   "N CA C", "Atoms by Which Models Are Laid on the First."},
    {"-fit1",     "res1",    "first",  "First Residue of These Atoms, of Those with Couplings."},
    {"-fitN",     "resN",    "last",   "Last Residue of These Atoms, of Those with Couplings."},
    {"-noSuper",  "",        "off",    "Models Stay Where the File Has Them."},
};

constexpr HelpEntry commonMore[] = {
    {"-version", "",      "",  "Print Name and Version and Stop."},
    {"-names",   "auto",  "off", "Map Names of Hydrogens to Those of the Structure."},
    {"-model",   "N|all|mean", "first", "The Model to Read; All of a Best-Fit: One by One, or Averaged."},
    {"-inF",     "form",  "auto", "Form of the Couplings: table star nef xplor cyana rosetta csv, or by Content."},
    {"-medium",  "id",    "first", "The Medium to Read of a Coupling File of Several."},
    {"-rdcSign", "physical", "as written", "Signs are Physical: Couplings without N are Turned."},
    {"-rdcScale", "nh",   "as written", "Couplings are Normalised to N-H: it is Undone."},
    {"-label",   "",      "off", "Label Numbers and Names of Archive Files, not the Author's."},
    {"-addH",    "[length]", "1.041", "Build the Hydrogens H and HA of the Backbone; N-H Distance [A]."},
    {"-nopdbRot", "",     "off", "No Structure is Written, neither that of -pdbRot nor .0 to .3."},
    {"-outJ",    "outName", "None", "The Result as JSON, with All its Digits."},
    {"-strict",  "",      "off", "A Warning Makes the Run Fail, and No Result is Written."},
    {"-quiet",   "",      "off", "No Banner, Remarks, Progress and Memory Balance; Warnings and Errors Stay."},
    {"-dbg",     "level", "0", "Debug Level, 1 without a Value; 2 Traces Every Request for Memory."},
};

constexpr HelpEntry archiveForms[] = {
    {"-star",        "", "off", "Write the Loop of Measured Couplings of NMR-STAR."},
    {"-nef",         "", "off", "Write a NEF File."},
    {"-cyana",       "", "off", "Write a CYANA List of Two Atoms a Row, with the Tensor of a Report."},
    {"-rosettaList", "", "off", "Write the List that Rosetta Reads, with Parentheses."},
    {"-csv",         "", "off", "Write Comma-Separated Values under a Header Line."},
};

constexpr HelpEntry otherNames[] = {
    {"-in",  "inName",  "None",   "The Same as -inD, which Wins."},
    {"-out", "outName", "stdout", "The Same as -outD, which Wins."},
    {"-d1",  "res1",    "first",  "The Same as -s1, which Wins."},
    {"-dN",  "resN",    "last",   "The Same as -sN, which Wins."},
};

constexpr HelpEntry unused[] = {
    {"-fit",      "",        "off",      "A Structure is Fitted; on with -pdb."},
    {"-nofit",    "",        "on",       "No Structure is Fitted."},
    {"-dStep",    "step",    "0",        "Step of the Couplings."},
    {"-sStep",    "step",    "0",        "The Same as -dStep, which Loses."},
    {"-sID",      "id",      "1",        "Segment ID of the Couplings."},
    {"-inCS",     "inName",  "None",     "Chemical Shift Input."},
    {"-outCS",    "outName", "None",     "Chemical Shift Output."},
    {"-outS",     "outName", "None",     "Shift Output."},
    {"-ref",      "pdbName", "None",     "Reference Structure."},
    {"-path",     "dir",     "None",     "Folder of Structures."},
    {"-list",     "inName",  "pdb.list", "List of Structures."},
    {"-sPath",    "dir",     "None",     "Folder of Surfaces."},
    {"-sList",    "list",    "All",      "Atom Names, One Argument."},
    {"-rList",    "list",    "None",     "Residue Names, One Argument."},
    {"-csThresh", "value",   "2.0",      "Threshold of Chemical Shifts."},
    {"-vcThresh", "value",   "0.95",     "Threshold of Valid Couplings."},
};

constexpr HelpEntry exhaustMore[] = {
    {"-outAss", "outName", "None", "Table of How Sure Each Peak Is, with -exhaust."},
    {"-needVector", "",    "off",  "No Coupling Comes to a Residue without its Vector."},
};

constexpr HelpBlock stericMore[] = {{"Bicelles:", bicelle}};
constexpr HelpBlock elMore[] = {
    {"Terms without Effect:", elTerms},
    {"Modes that End after Their Inputs:", inputModes},
};
constexpr HelpBlock certaintyBlocks[] = {{"How Sure, and How Strict:", exhaustMore}};
constexpr HelpBlock gridMore[] = {{"", gridInput}};
constexpr HelpBlock likelihoodMore[] = {{"The Pattern of the Search:", likelihoodPattern}};
constexpr HelpBlock fitMore[] = {
    {"What the Fit is Worth, of a Single Fit:", fitWorth},
    {"Several Models, with -model all or mean:", severalModels},
};
constexpr HelpBlock flexMore[] = {{"", flexInput}};
constexpr HelpBlock convMore[] = {{"Forms of Archives and Other Programs:", archiveForms}};
constexpr HelpBlock commonOptions[] = {
    {"", commonMore},
    {"Other Names:", otherNames},
    {"Read for Older Scripts, without Effect:", unused},
};

constexpr std::string_view needsHydrogens =
    "Give -H with a structure that has hydrogens: without it the written structures hold hydrogens alone.";

constexpr GuideSection guideSectionRows[] = {
    {"Steric Prediction, -stTrelm", "prediction.md", "ARGUMENTS FOR STERIC TRELM", stericMore, ""},
    {"Electrostatic Prediction, -elTrelm", "electrostatics.md", "ARGUMENTS FOR ELECTROSTATIC TRELM",
     elMore, "The face that is turned to the particle stands off by -dIFace."},
    {"Prediction from Free-Format Coordinates, -stTrelmFree", "prediction.md",
     "ARGUMENTS FOR FREE FORMAT, STERIC TRELM", {}, ""},
    {"Ensembles of Domain Orientations, -stTrelmGrid", "ensembles.md", "", gridMore,
     "The options of the steric and the electrostatic prediction hold as well, but for -pot, which is not read."},
    {"Best-Fit, -bestFit", "bestfit.md", "ARGUMENTS FOR BEST-FIT (SVD/POWELL)", fitMore,
     needsHydrogens},
    {"Best-Fit without an Assignment, -bestFit -exhaust", "assignment.md",
     "ARGUMENTS FOR UNASSIGNED BEST-FIT (exhSVD)", certaintyBlocks,
     "Options of -bestFit that are linked below hold as well, its Other Options among them. Give -H as there."},
    {"Structural Noise, -struc", "errors.md", "ARGUMENTS FOR ADDITiON OF STRUCTURAL NOISE", {},
     needsHydrogens},
    {"Comparison of Order Matrices, -anA", "comparison.md", "ARGUMENTS FOR ANALYSIS OF ORDER MATRIX", {},
     "The option -rem has no effect here."},
    {"Comparison of Couplings, -anDc", "comparison.md", "ARGUMENTS FOR ANALYSIS OF DIPOLAR COUPLINGS",
     {}, ""},
    {"Analysis of a Structure, -anPdb", "structure_analysis.md", "ARGUMENTS FOR ANALYSIS OF PDB FILE",
     {}, needsHydrogens},
    {"Da and R by the Histogram, -daHist", "magnitude.md", "ARGUMENTS FOR Da & R HISTOGRAM DETERMINATION",
     {}, ""},
    {"Da and R by Likelihood, -daMl", "magnitude.md", "ARGUMENTS FOR Da & R LIKELIHOOD DETERMINATION",
     likelihoodMore, ""},
    {"Da and R of Sets of Residues, -daFlex", "magnitude.md", "", flexMore,
     "The parameters and limits of -daHist hold as well."},
    {"Conversion of a Table, -conv", "conversion.md",
     "ARGUMENTS FOR CONVERSION OF DIPOLAR COUPLING TABLE", convMore, ""},
    {"Common Options", "options.md", "COMMOM ARGUMENTS", commonOptions, ""},
};

constexpr Correction correctionRows[] = {
    {"-incl", "Use Couplings with One Residue in the Range.",
     "-inc",  "Use Couplings with One Residue in the Range. (The help text says -incl, which is not read.)"},
    {"-nofixCone", "Fix Size of Cone.",
     "-nofixCone", "Don't Fix Size of Cone. (The help text leaves out the Don't.)"},
    {"-fixCone", "Don't Fix Size of Cone.",
     "-fixCone", "Fix Size of Cone. (The help text says Don't.)"},
    {"-noelInfo", "Report Electrostatic Info.",
     "-noelInfo", "Don't Report Electrostatic Info. (The help text leaves out the Don't.)"},
    {"-charmm22", "Apply CHARMM Partial Charges.", "-charmm22", "Apply CHARMM22 Partial Charges."},
    {"-wv", "Liquid Crystal Concentration [mg/ml].",
     "-wv", "Liquid Crystal Concentration, a Fraction [g/ml]. (The help text says mg/ml.)"},
    {"-id", "Selection ID.", "-id", "Mark of Selected Atoms; Leave at 1, with 0 No Atom is Selected."},
    {"-inv", "Invert Selection; Not with a Range or List.",
     "-inv", "Invert Selection; Without Effect with a Range or List, and without Them No Atom is Selected."},
    {"-protein", "Select Only Canonical Amino Acids.",
     "-protein", "Select Only Canonical Amino Acids; without a Range or List Only in Written Structures."},
    {"-hetatm", "Interpret HETATM Records as ATOMs.",
     "-hetatm", "Read, without Effect: HETATM Records are Always Ignored."},
    {"-kMono", "Scale of Monopole Charges.", "-kMono", "Scale of the First Charge, a Monopole in a pKa File Made for It."},
    {"-kQuad", "Scale of Quadrupole Charges.", "-kQuad", "Scale of the Second to Eighth Charge, a Quadrupole in Such a File."},
    {"-kDipo", "Scale of Dipole Charges.", "-kDipo", "Scale of the Ninth and Tenth Charge, a Dipole in Such a File."},
    {"-dIFace", "Surface Distance of the Interaction Face [A].",
     "-dIFace", "Surface Distance of the Interaction Face [A]; Acts in -elTrelm Alone."},
    {"-idum", "Seed of the Random Generators.",
     "-idum", "Seed of -struc Alone; 0 and Above are the Same as -1."},
};

// clang-format on

} // namespace

std::span<const GuideSection> guideSections()
{
    return guideSectionRows;
}

std::span<const Correction> corrections()
{
    return correctionRows;
}

} // namespace trelm
