// The values of TrelmInfo that choose what a run does.
#pragma once

namespace trelm {

/// trelmMode, named after its flag.
constexpr int modeStTrelm = 1;
constexpr int modeStTrelmFree = 2;
constexpr int modeStTrelmGrid = 3;
constexpr int modeElTrelm = 4;
constexpr int modeElTrelmFree = 5;
constexpr int modeElTrelmGrid = 6;
constexpr int modeBestFit = 7;
constexpr int modeCsSim = 8;
constexpr int modeDaHist = 9;
constexpr int modeDaMl = 10;
constexpr int modeDaFlex = 11;
constexpr int modeAsRan = 12;
constexpr int modeAnDc = 13;
constexpr int modeAnA = 14;
constexpr int modeAnPdb = 15;
constexpr int modeStruc = 16;
constexpr int modeConv = 17;

/// spreadMode of -bestFit.
constexpr int spreadSingle = 0;
constexpr int spreadJack = 1;
constexpr int spreadMcDc = 2;
constexpr int spreadMcStruc = 3;
constexpr int spreadRand = 4;
constexpr int spreadExhaust = 5;
constexpr int spreadExhaustSel = 6;

} // namespace trelm
