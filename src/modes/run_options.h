// What a command line sets beside the records of the branches: file names, lists, and a few numbers.
#pragma once

#include "couplings/window.h"
#include "ground/alloc.h"
#include <array>
#include <string>
#include <vector>

namespace trelm {

/// The options that belong to no other record. An empty name means that there is no such file. Of a report or
/// table it means standard output; charges, states and axes are then not written, and the structures of a fit
/// or a steric prediction go to the files .0 to .3.
struct RunOptions {
    std::string inDName;               ///< couplings: input
    std::string outDName;              ///< couplings: result
    std::string inD1Name, inD2Name;    ///< the two coupling tables of a comparison
    std::string pdbName;               ///< structure
    std::string pdbFName;              ///< free-format coordinates
    std::string pRotName;              ///< structure turned into the frame of the tensor
    std::string inpName;               ///< configuration
    std::string pkaName, outPkaName;   ///< charges: input, output
    std::string potName, pot3DName;    ///< potential along one axis, in space
    std::string outAName, outPName;    ///< result of a comparison, report of a structure analysis
    std::string outDaName, outMapName; ///< mapping: Da and Dr, orientation of the axes
    std::string outAngName;            ///< mapping: Euler angles
    std::string outDFailName;          ///< mapping: couplings that the fits fail to reproduce
    std::string outScName, outColName; ///< scores, columns of the scores
    std::string outQName;              ///< what a fit is worth; empty: no such file
    std::string outAssName;            ///< how sure an assignment is; empty: not asked
    std::string outJName;              ///< the result as JSON; empty: no such file
    std::string inEName, outEName;     ///< ensemble: input, output
    std::string outEAxName, oDcEName;  ///< ensemble: axes, couplings
    std::string flexName, aveName;     ///< ensemble: log of the domain angles, averaged couplings
    std::string atomNameS1 = "All";    ///< atoms of the couplings to use; "All": any
    std::string atomNameS2 = "All";
    const char *remark = nullptr; ///< remark for the results; lives as long as the arguments

    // Read and kept for scripts that pass them; no mode looks at them.
    std::string inCSName, outCSName, outSName, refName;
    std::string pdbPath, pdbList = "pdb.list", surfPath;
    std::string atomNames = "All", resNames = "None";
    std::string rcName = "rc.tab", homoName = "homo.tab";
    float csThresh = 2.0f;
    float validThresh = 0.95f;
    int fitFlag = 0; ///< 1 with a structure

    std::string inForm = "auto";     ///< form of the coupling files: a word of wordOfForm
    std::string medium;              ///< of a coupling file of several; empty: the first
    std::string rdcSign, rdcScale;   ///< "physical", "nh": conventions of the values; empty: as written
    int useLabels = 0;               ///< 1: label numbers of archive files, not the author's
    std::string names;               ///< "auto": names of hydrogens are mapped to those of the structure
    std::string model;               ///< number of the model to read, "all" or "mean"; empty: the first
    std::string outMName;            ///< table of a fit for each model
    std::string fitAtoms = "N CA C"; ///< by which models are laid on the first
    int fitFirst = unsetResID, fitLast = unsetResID; ///< residues of these atoms; unset: those with couplings
    int keepsFrames = 0;                             ///< 1: models stay where they are
    int buildsHydrogens = 0;                         ///< 1: those of the backbone, where they lack
    float hydrogenDistance = 1.041f;                 ///< of a built amide hydrogen, angstrom
    std::string freeKind;    ///< how Q free is found: "one", "type" or a number of random parts
    int freeSeed = 1;        ///< of the random parts, above 0
    int dropsOutliers = 0;   ///< 1: a fit is made again without its outliers
    int hasNoStructures = 0; ///< 1: no structure is written
    int isStrict = 0;        ///< 1: a warning makes the run fail
    int isQuiet = 0;         ///< 1: no banner, remarks, progress and balance

    std::vector<std::string> words; ///< the command line, the program first
    const char *version = "";       ///< of the program

    int mapCount = 0; ///< samples of an error mapping
    int dbgFlag = 0;  ///< debug level; above 1 every request for memory is traced

    Block<float> wList; ///< weights by residue, tag "listArg"; empty: none
    int wCount = 0;     ///< their number

    std::array<double, 5> userSaupe1 = {}, userSaupe2 = {}; ///< order matrices to compare
    std::string saupeName1, saupeName2;                     ///< reports that have them instead; empty: none
    std::array<float, 3> hingeAxis = {}, twistAxis = {};
};

} // namespace trelm
