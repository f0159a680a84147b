// The lines of the help text.
#include "command/help.h"

namespace trelm {
namespace {

// Defaults stand as the records have them. Where a line differs from what the run does, a comment says so
// here, or a correction in option_guide_sections.cpp tells the readers of the guides.
// clang-format off

constexpr HelpEntry stericInput[] = {
    {"-stTrelm", "",        "on",     "Predict Alignment and Couplings by Steric Obstruction."},
    {"-pdb",     "pdbName", "None",   "PDB Input Structure."},
    {"-inD",     "inName",  "None",   "Dipolar Coupling Table Input."},
    {"-outD",    "outName", "stdout", "Report and Dipolar Coupling Table Output."},
    {"-pdbRot",  "pdbName", "None", "PDB Output, in the Frame of the Alignment Tensor."},
    {"-rem",     "text",    "None",   "Remark for the Output."},
};

constexpr HelpEntry crystal[] = {
    {"-bic",    "",        "on",   "Wall Model, Bicelles; Sets -rM 20.0."},
    {"-pf1",    "",        "off",  "Rod Model, Pf1 Phage; Sets -rM 33.5."},
    {"-3D",     "",        "off",  "General 3D Potential; Sets -rM 0.0."},
    {"-wv",     "conc",    "0.05", "Liquid Crystal Concentration [mg/ml]."},
    {"-rM",     "radius",  "20.0", "Half Thickness of the Liquid Crystal Model [A]."},
    {"-lcS",    "order",   "0.8",  "Liquid Crystal Order, 0 to 1."},
    {"-dot",    "density", "100",  "Orientations on the Sphere."},
    {"-digPsi", "steps",   "18",   "Steps of the Third Angle."},
    {"-dGrid",  "spacing", "0.2",  "Grid Spacing along the Obstacle Normal [A]."},
    {"-rA",     "radius",  "0.0",  "Atom Radius [A]."},
};

constexpr HelpEntry atoms[] = {
    {"-surf",   "", "on",  "Use Surface Accessible Atoms Only."},
    {"-nosurf", "", "off", "Use All Selected Atoms."},
    {"-H",      "", "off", "Keep Hydrogens in the Selection."},
    {"-noH",    "", "on",  "Drop Hydrogens from the Selection."},
};

constexpr HelpEntry selection[] = {
    {"-res",      "resID", "all", "Single Residue for Selection."},
    {"-r1",       "res1",  "all", "First Residue in Segment."},
    {"-rN",       "resN",  "all", "Last Residue in Segment."},
    {"-atom",     "aList", "*",   "Atom Name List."},
    {"-atomName", "aList", "*",   "Atom Name List, the Same as -atom."},
    {"-resName",  "rList", "*",   "Residue Name List; Wants a Matching Mode."},
    {"-chain",    "cList", "*",   "Chain Name List; Wants a Matching Mode."},
    {"-seg",      "sList", "*",   "Segment Name List; Wants a Matching Mode."},
    {"-id",       "sID",   "1",   "Selection ID."},
    {"-inv",      "",      "off", "Invert Selection; Not with a Range or List."},
    {"-protein",  "",      "off", "Select Only Canonical Amino Acids."},
    {"-hetatm",   "",      "off", "Interpret HETATM Records as ATOMs."},
    {"-nohetatm", "",      "on",  "Ignore HETATM Records."},
};

constexpr HelpEntry special[] = {
    {"-clear", "", "off", "Clear Selection for All Atoms."},
    {"-set",   "", "on",  "Set Selection for All Atoms."},
};

constexpr HelpEntry matching[] = {
    {"-exact",  "", "off", "Match Names of All Four Lists Exactly."},
    {"-regex",  "", "off", "Regular Expression Matching of All Four Lists."},
    {"-glob",   "", "off", "Glob-style Matching of All Four Lists."},
    {"-aExact", "", "on",  "Match Atom Names Exactly."},
    {"-aRegex", "", "off", "Regular Expression Matching of Atom Names."},
    {"-aGlob",  "", "off", "Glob-style Matching of Atom Names."},
    {"-rExact", "", "off", "Match Residue Names Exactly."},
    {"-rRegex", "", "off", "Regular Expression Matching of Residue Names."},
    {"-rGlob",  "", "off", "Glob-style Matching of Residue Names."},
    {"-cExact", "", "off", "Match Chain Names Exactly."},
    {"-cRegex", "", "off", "Regular Expression Matching of Chain Names."},
    {"-cGlob",  "", "off", "Glob-style Matching of Chain Names."},
    {"-sExact", "", "off", "Match Segment Names Exactly."},
    {"-sRegex", "", "off", "Regular Expression Matching of Segment Names."},
    {"-sGlob",  "", "off", "Glob-style Matching of Segment Names."},
};

// The flag that works is -inc.
constexpr HelpEntry window[] = {
    {"-s1",   "res1",  "first", "First Residue of the Couplings."},
    {"-sN",   "resN",  "last",  "Last Residue of the Couplings."},
    {"-a1",   "res1",  "s1",    "Residue of the PDB that Corresponds to -s1."},
    {"-excl", "",      "off",   "Use Couplings with Both Residues in the Range."},
    {"-incl", "",      "off",   "Use Couplings with One Residue in the Range."},
    {"-aD1",  "atom",  "All",   "Name of the First Atom of the Couplings."},
    {"-aD2",  "atom",  "All",   "Name of the Second Atom of the Couplings."},
    {"-w",    "wList", "1.0",   "Weights by Residue, from the First Residue on."},
};

constexpr HelpEntry interaction[] = {
    {"-fixedDI",   "", "on",  "Use Fixed Interaction Values where Possible."},
    {"-nofixedDI", "", "off", "Take All Distances from the PDB."},
};

constexpr HelpEntry elInput[] = {
    {"-elTrelm", "",        "off",    "Predict Alignment and Couplings by Electrostatics."},
    {"-pdb",     "pdbName", "None",   "PDB Input Structure."},
    {"-inD",     "inName",  "None",   "Dipolar Coupling Table Input."},
    {"-outD",    "outName", "stdout", "Report and Dipolar Coupling Table Output."},
    {"-pdbRot",  "pdbName", "None", "PDB Output, in the Frame of the Alignment Tensor."},
    {"-pka",     "pkaName", "None",   "Charge Input."},
    {"-outPka",  "pkaName", "None",   "Charge Output."},
    {"-pot",     "potName", "None",   "1D Potential Input, for -bic and -pf1."},
    {"-pot3D",   "potName", "None",   "3D Potential Input, for -3D."},
    {"-rem",     "text",    "None",   "Remark for the Output."},
};

// Both lines on the report have the same words; it is -elInfo that reports.
constexpr HelpEntry charges[] = {
    {"-pH",       "pH",    "7.0",    "pH of the Sample."},
    {"-nacl",     "conc",  "0.2",    "NaCl Concentration [M]."},
    {"-temp",     "temp",  "298.15", "Boltzmann Temperature [K]."},
    {"-pkaDef",   "",      "on",     "Use Default pKa Values."},
    {"-nopkaDef", "",      "off",    "Don't Use Default pKa Values."},
    {"-chTerm",   "",      "on",     "Put Charges at the Termini."},
    {"-nochTerm", "",      "off",    "Don't Put Charges at the Termini."},
    {"-charmm",   "",      "off",    "Apply CHARMM Partial Charges."},
    {"-charmm22", "",      "off",    "Apply CHARMM22 Partial Charges."},
    {"-nocharmm", "",      "on",     "Don't Apply CHARMM Partial Charges."},
    {"-dipole",   "",      "off",    "Consider the Molecule as a Dipole."},
    {"-nodipole", "",      "on",     "Consider All Charges."},
    {"-chSel",    "",      "off",    "Use Charged Atoms Only."},
    {"-nochSel",  "",      "on",     "Use Charged and Uncharged Atoms."},
    {"-kMono",    "scale", "1.0",    "Scale of Monopole Charges."},
    {"-kDipo",    "scale", "1.0",    "Scale of Dipole Charges."},
    {"-kQuad",    "scale", "1.0",    "Scale of Quadrupole Charges."},
    {"-elInfo",   "",      "off",    "Report Electrostatic Info."},
    {"-noelInfo", "",      "on",     "Report Electrostatic Info."},
};

// The default of -cut is an old one; a run starts from 6e-6.
constexpr HelpEntry potential[] = {
    {"-chSurf", "dens",    "-0.47",    "Surface Charge Density [e/nm^2]."},
    {"-cut",    "cutoff",  "400.0",    "Cutoff for Electrostatics."},
    {"-maxPot", "pot",     "5.0",      "Maximum (+/-) Used Potential [kT/e]."},
    {"-kEne",   "scale",   "1.0",      "Scale of the Energy."},
    {"-kPot",   "scale",   "1.0",      "Scale of the Potential."},
    {"-nX",     "count",   "1",        "Grid Positions of the 3D Potential along X."},
    {"-nY",     "count",   "1",        "Grid Positions of the 3D Potential along Y."},
    {"-nZ",     "count",   "1",        "Grid Positions of the 3D Potential along Z."},
    {"-dX",     "spacing", "0.2",      "Grid Spacing of the 3D Potential along X [A]."},
    {"-dY",     "spacing", "0.2",      "Grid Spacing of the 3D Potential along Y [A]."},
    {"-dZ",     "spacing", "0.2",      "Grid Spacing of the 3D Potential along Z [A]."},
    {"-z1",     "pos",     "0",        "First Z Position Used in the 3D Grid."},
    {"-zN",     "pos",     "0",        "Last Z Position Used in the 3D Grid."},
    {"-vol",    "volume",  "515.0",    "Sample Volume, for the Cell Size [ul]."},
    {"-mwLC",   "mass",    "268000.0", "Liquid Crystal Molecular Weight [g/mol]."},
    {"-massLC", "mass",    "0.05",     "Liquid Crystal Mass [g]."},
    {"-unitLC", "length",  "1.574",    "Liquid Crystal Unit Height [A]."},
    {"-polyLC", "degree",  "1707.0",   "Liquid Crystal Polymerization Degree."},
};

constexpr HelpEntry freeInput[] = {
    {"-stTrelmFree", "",        "off",    "Predict Alignment from Free-Format Coordinates."},
    {"-pdbF",        "name",    "None",   "Free-Format Coordinate Input."},
    {"-outA",        "outName", "stdout", "Order Matrix Output."},
};

constexpr HelpEntry fitInput[] = {
    {"-bestFit", "",        "off",    "Best-Fit of Dipolar Couplings to a Structure."},
    {"-pdb",     "pdbName", "None",   "PDB Input Structure."},
    {"-inD",     "inName",  "None",   "Dipolar Coupling Table Input."},
    {"-outD",    "outName", "stdout", "Report and Dipolar Coupling Table Output."},
    {"-pdbRot",  "pdbName", "None", "PDB Output, One File for each Euler Solution."},
    {"-rotID",   "id",      "0",      "Euler Solution for -pdbRot Itself, 0 to 3."},
    {"-rem",     "text",    "None",   "Remark for the Output."},
};

// The default of -nAdjustMc is an old one; a run starts from 100.
constexpr HelpEntry mapping[] = {
    {"-single",       "",        "on",     "Single Best-Fit, No Error Mapping."},
    {"-jack",         "",        "off",    "Mapping by Leaving Out Couplings (Jackknife)."},
    {"-mcDc",         "",        "off",    "Mapping by Monte-Carlo Noise on Couplings."},
    {"-mcStruc",      "",        "off",    "Mapping by Monte-Carlo Noise on the Structure."},
    {"-map",          "count",   "0",      "Number of Samples."},
    {"-err",          "",        "on",     "Keep Only Best-Fits within Experimental Errors."},
    {"-noerr",        "",        "off",    "Keep All Best-Fits."},
    {"-outDa",        "outName", "stdout", "Da and R of the Samples."},
    {"-outMap",       "outName", "stdout", "Orientations of the Principal Axes."},
    {"-outAng",       "outName", "stdout", "Deviations from the Average Orientation."},
    {"-outA",         "outName", "stdout", "Order Matrices of the Samples."},
    {"-outFail",      "outName", "stdout", "Couplings, with Counts of Failed Predictions."},
    {"-dFrac",        "frac",    "0.2",    "Fraction of Couplings in Jackknifing."},
    {"-nDfixed",      "",        "off",    "Take -dFrac as a Number of Couplings."},
    {"-nonDfixed",    "",        "on",     "Take -dFrac as a Fraction."},
    {"-autoMc",       "",        "on",     "Adjust Scaling of Coupling Errors."},
    {"-noautoMc",     "",        "off",    "Don't Adjust Scaling of Coupling Errors."},
    {"-nAdjustMc",    "steps",   "1000",   "Best-Fits for each Scaling of Coupling Errors."},
    {"-fracAdjustMc", "frac",    "0.7",    "Required Fraction of Self-Consistent Best-Fits."},
    {"-kAdjustMc",    "scale",   "1.0",    "Scaling of Coupling Errors."},
    {"-kLAdjustMc",   "scale",   "1.0",    "Starting Scaling of Coupling Errors."},
    {"-incAdjustMc",  "inc",     "0.2",    "Increment of the Scaling of Coupling Errors."},
};

// The default of -stdCone is an old one; a run starts from 5.0.
constexpr HelpEntry cone[] = {
    {"-vecNoise",   "",      "on",   "Noise on Internuclear Vectors."},
    {"-angNoise",   "",      "off",  "Noise on Dihedral Angles."},
    {"-stdCone",    "width", "10.0", "Standard Deviation of the Cone Angle [deg]."},
    {"-digCone",    "steps", "360",  "Digitization of the Cone."},
    {"-autoCone",   "",      "on",   "Adjust Structural Noise."},
    {"-noautoCone", "",      "off",  "Don't Adjust Structural Noise."},
    {"-nCone",      "steps", "100",  "Steps in Structural Noise Determination."},
    {"-lCone",      "width", "0.0",  "Starting Structural Noise [deg]."},
    {"-incCone",    "inc",   "0.25", "Structural Noise Increment [deg]."},
};

constexpr HelpEntry coneFit[] = {
    {"-nofixCone", "", "on",  "Don't Fix Size of Cone."},
    {"-fixCone",   "", "off", "Fix Size of Cone."},
};

// The words of the two are exchanged here; -fixCone fixes the size, as in the best-fit section.
constexpr HelpEntry coneNoise[] = {
    {"-nofixCone", "", "on",  "Fix Size of Cone."},
    {"-fixCone",   "", "off", "Don't Fix Size of Cone."},
};

constexpr HelpEntry methods[] = {
    {"-svd",     "",     "on",   "Singular Value Decomposition."},
    {"-saupe",   "list", "None", "Fixed Saupe Vector: Szz Sxx-yy Sxy Sxz Syz."},
    {"-align",   "list", "None", "The Same as -saupe."},
    {"-fixed",   "",     "off",  "Fixed Da and Dr, Fixed Rotations."},
    {"-nofixed", "",     "off",  "Variable Da and Dr, Variable Rotations."},
    {"-dadr",    "",     "off",  "Fixed Da and Dr, Variable Rotations."},
    {"-euler",   "",     "on",   "Solve for Euler Angles."},
    {"-noeuler", "",     "off",  "Don't Solve for Euler Angles."},
};

constexpr HelpEntry tensorLimits[] = {
    {"-da",    "Da", "0.001",  "Starting or Fixed Magnitude."},
    {"-daMin", "Da", "-0.01",  "Lower Limit of the Magnitude."},
    {"-daMax", "Da", "0.01",   "Upper Limit of the Magnitude."},
    {"-dr",    "Dr", "0.0001", "Starting or Fixed Rhombic Component."},
    {"-drMin", "Dr", "-0.01",  "Lower Limit of the Rhombic Component."},
    {"-drMax", "Dr", "0.01",   "Upper Limit of the Rhombic Component."},
};

constexpr HelpEntry rotationLimits[] = {
    {"-psi",      "angle", "45.0",   "Starting or Fixed Rotation about X [deg]."},
    {"-psiMin",   "angle", "-360.0", "Lower Limit of psi."},
    {"-psiMax",   "angle", "360.0",  "Upper Limit of psi."},
    {"-theta",    "angle", "45.0",   "Starting or Fixed Rotation about Y [deg]."},
    {"-thetaMin", "angle", "-360.0", "Lower Limit of theta."},
    {"-thetaMax", "angle", "360.0",  "Upper Limit of theta."},
    {"-phi",      "angle", "45.0",   "Starting or Fixed Rotation about Z [deg]."},
    {"-phiMin",   "angle", "-360.0", "Lower Limit of phi."},
    {"-phiMax",   "angle", "360.0",  "Upper Limit of phi."},
};

constexpr HelpEntry quality[] = {
    {"-qDa",     "", "on",  "Q from RMS and Order Matrix."},
    {"-qRms",    "", "off", "Q from RMS and Observed Couplings."},
    {"-qStd",    "", "off", "Standard Deviation instead of Q."},
    {"-yzInv",   "", "off", "Exchange the Ordering of the Y and Z Axes."},
    {"-noyzInv", "", "on",  "Don't Exchange the Ordering of the Axes."},
};

constexpr HelpEntry exhaustInput[] = {
    {"-bestFit",    "",        "off",    "Best-Fit; Takes One of the Three Searches Below."},
    {"-rand",       "",        "off",    "Random Assignments."},
    {"-exhaust",    "",        "off",    "All Assignments."},
    {"-exhaustSel", "",        "off",    "All Assignments of Selected Peaks."},
    {"-pdb",        "pdbName", "None",   "PDB Input Structure."},
    {"-inD",        "inName",  "None",   "Dipolar Coupling Table Input, One Row a Peak."},
    {"-outD",       "outName", "stdout", "Report and Dipolar Coupling Table Output."},
    {"-pdbRot",     "pdbName", "None", "PDB Output, in the Frame of the Alignment Tensor."},
    {"-rem",        "text",    "None",   "Remark for the Output."},
};

constexpr HelpEntry exhaustOther[] = {
    {"-map",     "count", "0",    "Number of Random Assignments."},
    {"-nSel",    "count", "0",    "Number of Peaks to Select for -exhaustSel."},
    {"-dcOpt",   "",      "on",   "Optimize the Peak Selection."},
    {"-nodcOpt", "",      "off",  "Don't Optimize the Peak Selection."},
    {"-fixAa",   "list",  "None", "Number of Peaks of each Amino Acid Type, 25 at Most."},
    {"-fixRes",  "list",  "None", "Residues with Known Assignment, 800 at Most."},
    {"-dcID",    "list",  "None", "Alignment Media, Segment Names; 3 at Most."},
};

constexpr HelpEntry exhaustLimits[] = {
    {"-lDa", "Da", "-25.0", "Lowest Accepted Da [Hz]."},
    {"-hDa", "Da", "-3.0",  "Highest Accepted Da [Hz]."},
    {"-lR",  "R",  "0.0",   "Lowest Accepted R."},
    {"-hR",  "R",  "0.7",   "Highest Accepted R."},
};

constexpr HelpEntry noiseInput[] = {
    {"-struc",  "",        "off",    "Add Structural Noise to a PDB File."},
    {"-pdb",    "pdbName", "None",   "PDB Input Structure."},
    {"-inD",    "inName",  "None",   "Dipolar Coupling Table Input; Names the Vectors."},
    {"-pdbRot", "pdbName", "stdout", "PDB Output with Noise."},
    {"-rem",    "text",    "None",   "Remark for the Output."},
};

constexpr HelpEntry matrixInput[] = {
    {"-anA",  "",        "off",    "Compare Two Order Matrices."},
    {"-inS1", "list",    "0.0",    "First Saupe Vector: Szz Sxx-yy Sxy Sxz Syz."},
    {"-inS2", "list",    "0.0",    "Second Saupe Vector."},
    {"-outA", "outName", "stdout", "Report Output."},
    {"-rem",  "text",    "None",   "Remark for the Output."},
};

constexpr HelpEntry action[] = {
    {"-add", "",      "off", "Add: c1*A + c2*B."},
    {"-sub", "",      "on",  "Subtract: c1*A - c2*B; -anDc Starts with -add."},
    {"-mul", "",      "off", "Multiply."},
    {"-div", "",      "off", "Divide."},
    {"-max", "",      "off", "Take the Larger."},
    {"-c1",  "scale", "1.0", "Scale of the First; -anDc Starts with 0.0."},
    {"-c2",  "scale", "1.0", "Scale of the Second."},
};

constexpr HelpEntry matrixOther[] = {
    {"-hinge",   "list", "0.0", "Hinge Axis: x y z."},
    {"-twist",   "list", "0.0", "Twist Axis: x y z."},
    {"-rotID",   "id",   "0",   "Solution that Gives the Hinge Axis, 0 to 3."},
    {"-yzInv",   "",     "off", "Exchange the Ordering of the Y and Z Axes."},
    {"-noyzInv", "",     "on",  "Don't Exchange the Ordering of the Axes."},
};

constexpr HelpEntry couplingInput[] = {
    {"-anDc", "",        "off",    "Compare or Combine Two Coupling Tables."},
    {"-inD1", "inName",  "None",   "First Dipolar Coupling Table Input."},
    {"-inD2", "inName",  "None",   "Second Dipolar Coupling Table Input."},
    {"-outD", "outName", "stdout", "Report and Dipolar Coupling Table Output."},
};

constexpr HelpEntry pdbInput[] = {
    {"-anPdb",  "",        "off",    "Analyze a PDB File."},
    {"-pdb",    "pdbName", "None",   "PDB Input Structure."},
    {"-pdbRot", "pdbName", "stdout", "PDB Output, Turned."},
    {"-outP",   "outName", "stdout", "Report Output."},
    {"-ster",   "",        "on",     "Analyze by Steric Shape."},
    {"-el",     "",        "off",    "Analyze by Charges."},
    {"-user",   "",        "off",    "Turn by the Order Matrix of -inS."},
    {"-inS",    "list",    "0.0",    "Saupe Vector: Szz Sxx-yy Sxy Sxz Syz."},
    {"-rem",    "text",    "None",   "Remark for the Output."},
};

// The partial charges of -charmm22 are those of CHARMM22 here as well.
constexpr HelpEntry pdbCharges[] = {
    {"-pka",      "pkaName", "None", "Charge Input."},
    {"-outPka",   "pkaName", "None", "Charge Output."},
    {"-pH",       "pH",      "7.0",  "pH of the Sample."},
    {"-pkaDef",   "",        "on",   "Use Default pKa Values."},
    {"-nopkaDef", "",        "off",  "Don't Use Default pKa Values."},
    {"-chTerm",   "",        "on",   "Put Charges at the Termini."},
    {"-nochTerm", "",        "off",  "Don't Put Charges at the Termini."},
    {"-charmm",   "",        "off",  "Apply CHARMM Partial Charges."},
    {"-charmm22", "",        "off",  "Apply CHARMM Partial Charges."},
    {"-nocharmm", "",        "on",   "Don't Apply CHARMM Partial Charges."},
    {"-dIFace",   "dist",    "50.0", "Surface Distance of the Interaction Face [A]."},
};

constexpr HelpEntry histInput[] = {
    {"-daHist", "",        "off",    "Da and R from the Histogram of Couplings."},
    {"-inD",    "inName",  "None",   "Dipolar Coupling Table Input."},
    {"-outD",   "outName", "stdout", "Report and Dipolar Coupling Table Output."},
};

constexpr HelpEntry histParams[] = {
    {"-bin",     "count",  "0",   "Number of Bins, Zero is Automatic."},
    {"-nFit",    "degree", "3",   "Fit Dzz and Dyy (2), or Dxx as Well (3)."},
    {"-ave",     "",       "on",  "Average Minimum and Maximum Coupling."},
    {"-noave",   "",       "off", "Don't Average Minimum and Maximum Coupling."},
    {"-sdevDzz", "scale",  "0.4", "Scaling of the Dzz Error."},
    {"-sdevDyy", "scale",  "0.9", "Scaling of the Dyy Error."},
};

constexpr HelpEntry histLimits[] = {
    {"-daLo", "Da", "-1000.0", "Lower Limit of Da [Hz]."},
    {"-daHi", "Da", "1000.0",  "Upper Limit of Da [Hz]."},
    {"-rhLo", "R",  "0.0",     "Lower Limit of R."},
    {"-rhHi", "R",  "0.667",   "Upper Limit of R."},
};

constexpr HelpEntry mlInput[] = {
    {"-daMl",  "",        "off",    "Da and R by Maximum Likelihood."},
    {"-inD",   "inName",  "None",   "Dipolar Coupling Table Input."},
    {"-outD",  "outName", "stdout", "Report and Dipolar Coupling Table Output."},
    {"-outSc", "outName", "stdout", "Scores of the Da and R Grid."},
};

constexpr HelpEntry mlParams[] = {
    {"-lDa",     "Da",  "-25.0", "Lowest Da of the Grid [Hz]."},
    {"-hDa",     "Da",  "-3.0",  "Highest Da of the Grid [Hz]."},
    {"-incDa",   "inc", "0.1",   "Increment of Da [Hz]."},
    {"-lR",      "R",   "0.0",   "Lowest R of the Grid."},
    {"-hR",      "R",   "0.7",   "Highest R of the Grid."},
    {"-incR",    "inc", "0.01",  "Increment of R."},
    {"-mapMl",   "",    "off",   "Transform Couplings by the Result."},
    {"-nomapMl", "",    "on",    "Don't Transform Couplings."},
};

constexpr HelpEntry convInput[] = {
    {"-conv", "",        "off",    "Convert a Dipolar Coupling Table."},
    {"-inD",  "inName",  "None",   "Dipolar Coupling Table Input."},
    {"-outD", "outName", "stdout", "Converted Table Output."},
};

constexpr HelpEntry convParams[] = {
    {"-xplor",   "",   "off", "Write an XPLOR Table."},
    {"-cns",     "",   "off", "Write a CNS Table."},
    {"-tbl",     "",   "on",  "Write a Plain Restraint Table."},
    {"-dyana",   "",   "off", "Write a DYANA Table."},
    {"-trelm",   "",   "off", "Write a Table for This Program."},
    {"-rosetta", "",   "off", "Write a ROSETTA Table."},
    {"-tensID",  "id", "500", "Residue Number of the Tensor Axes."},
    {"-dcHH",    "",   "off", "Include Proton-Proton Couplings."},
    {"-nodcHH",  "",   "on",  "Don't Include Proton-Proton Couplings."},
    {"-scale",   "",   "off", "Normalize Couplings."},
    {"-unscale", "",   "on",  "Don't Normalize Couplings."},
    {"-dcNoise", "",   "off", "Add Gaussian Noise to the Couplings."},
};

constexpr HelpEntry commonEntries[] = {
    {"-help",   "",     "",    "Print This Text and Stop."},
    {"-verb",   "",     "on",  "Report and Coupling Table."},
    {"-noverb", "",     "off", "Coupling Table Only."},
    {"-idum",   "seed", "-1",  "Seed of the Random Generators."},
};

constexpr HelpBlock stericBlocks[] = {
    {"", stericInput},
    {"Simulation Parameters:", crystal},
    {"", atoms},
    {"PDB Selection Flags:", selection},
    {"PDB Special Selection; No Other Selection Performed:", special},
    {"PDB Name Matching Modes:", matching},
    {"DC Selection Flags:", window},
    {"Dipolar Interaction Value Calculation:", interaction},
};

constexpr HelpBlock electrostaticBlocks[] = {
    {"", elInput},
    {"Simulation Parameters:", crystal},
    {"", atoms},
    {"Electrostatic Simulation Parameters:", charges},
    {"", potential},
    {"PDB Selection Flags:", selection},
    {"PDB Special Selection; No Other Selection Performed:", special},
    {"PDB Name Matching Modes:", matching},
    {"DC Selection Flags:", window},
    {"Dipolar Interaction Value Calculation:", interaction},
};

constexpr HelpBlock freeFormatBlocks[] = {
    {"", freeInput},
    {"Simulation Parameters:", crystal},
};

constexpr HelpBlock bestFitBlocks[] = {
    {"", fitInput},
    {"Error Mapping Specifications:", mapping},
    {"", cone},
    {"", coneFit},
    {"Alignment Tensor Specification Methods:", methods},
    {"Alignment Tensor Magnitude and Rhombicity Limits:", tensorLimits},
    {"Rotation Angle Starting Values and Limits:", rotationLimits},
    {"Other Options:", quality},
    {"PDB Selection Flags:", selection},
    {"PDB Special Selection; No Other Selection Performed:", special},
    {"PDB Name Matching Modes:", matching},
    {"DC Selection Flags:", window},
    {"Dipolar Interaction Value Calculation:", interaction},
};

constexpr HelpBlock exhaustBlocks[] = {
    {"", exhaustInput},
    {"Other Options:", exhaustOther},
    {"", quality},
    {"Limits for Alignment Magnitude and Rhombicity:", exhaustLimits},
    {"PDB Selection Flags:", selection},
    {"PDB Special Selection; No Other Selection Performed:", special},
    {"PDB Name Matching Modes:", matching},
    {"DC Selection Flags:", window},
    {"Dipolar Interaction Value Calculation:", interaction},
};

constexpr HelpBlock noiseBlocks[] = {
    {"", noiseInput},
    {"Simulation Parameters:", cone},
    {"", coneNoise},
    {"PDB Selection Flags:", selection},
    {"PDB Special Selection; No Other Selection Performed:", special},
    {"PDB Name Matching Modes:", matching},
    {"DC Selection Flags:", window},
};

constexpr HelpBlock matrixBlocks[] = {
    {"", matrixInput},
    {"Action Flags:", action},
    {"Other Options:", matrixOther},
};

constexpr HelpBlock couplingBlocks[] = {
    {"", couplingInput},
    {"Action Flags:", action},
    {"Selection Flags:", window},
};

constexpr HelpBlock pdbBlocks[] = {
    {"", pdbInput},
    {"Electrostatic Simulation Parameters:", pdbCharges},
    {"PDB Selection Flags:", selection},
    {"PDB Special Selection; No Other Selection Performed:", special},
    {"PDB Name Matching Modes:", matching},
};

constexpr HelpBlock histogramBlocks[] = {
    {"", histInput},
    {"Histogram Parameters:", histParams},
    {"Limits for Alignment Magnitude and Rhombicity:", histLimits},
    {"Selection Flags:", window},
};

constexpr HelpBlock likelihoodBlocks[] = {
    {"", mlInput},
    {"Maximum Likelihood Parameters:", mlParams},
    {"Selection Flags:", window},
};

constexpr HelpBlock conversionBlocks[] = {
    {"", convInput},
    {"Conversion parameters:", convParams},
    {"Selection Flags:", window},
};

constexpr HelpBlock commonBlocks[] = {
    {"", commonEntries},
};

constexpr HelpSection sections[] = {
    {"ARGUMENTS FOR STERIC TRELM", stericBlocks},
    {"ARGUMENTS FOR ELECTROSTATIC TRELM", electrostaticBlocks},
    {"ARGUMENTS FOR FREE FORMAT, STERIC TRELM", freeFormatBlocks},
    {"ARGUMENTS FOR BEST-FIT (SVD/POWELL)", bestFitBlocks},
    {"ARGUMENTS FOR UNASSIGNED BEST-FIT (exhSVD)", exhaustBlocks},
    {"ARGUMENTS FOR ADDITiON OF STRUCTURAL NOISE", noiseBlocks},
    {"ARGUMENTS FOR ANALYSIS OF ORDER MATRIX", matrixBlocks},
    {"ARGUMENTS FOR ANALYSIS OF DIPOLAR COUPLINGS", couplingBlocks},
    {"ARGUMENTS FOR ANALYSIS OF PDB FILE", pdbBlocks},
    {"ARGUMENTS FOR Da & R HISTOGRAM DETERMINATION", histogramBlocks},
    {"ARGUMENTS FOR Da & R LIKELIHOOD DETERMINATION", likelihoodBlocks},
    {"ARGUMENTS FOR CONVERSION OF DIPOLAR COUPLING TABLE", conversionBlocks},
    {"COMMOM ARGUMENTS", commonBlocks},
};

// clang-format on

} // namespace

std::span<const HelpSection> helpSections()
{
    return sections;
}

} // namespace trelm
