// Problems with a known answer, made from a tensor, for tests and benchmarks of the assignment search.
#pragma once

#include "assignment/problem.h"
#include "couplings/design.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

/// What a random problem is like. Couplings of some 20 Hz.
struct RandomProblem {
    std::size_t peaks = 5;
    std::vector<std::size_t> columns = {3}; ///< of each medium
    std::vector<std::size_t> fixed = {0};   ///< fixed couplings of each medium
    double noise = 0.5;                     ///< of the couplings, Hz
    double missing = 0.0;                   ///< part of the cells without a coupling
    float otherConstant = 5000.0f;          ///< interaction constant of every second column, Hz
    bool isShuffled = true;                 ///< else peak row i belongs to residue row i
    bool equalWeights = true;               ///< else errors and weights differ from coupling to coupling
};

struct MadeProblem {
    trelm::AssignmentProblem problem;
    std::vector<int> truth; ///< by residue row: the peak row
};

class ProblemMaker {
  public:
    explicit ProblemMaker(unsigned seed) : engine_(seed) {}

    MadeProblem make(const RandomProblem &kind)
    {
        MadeProblem made;
        trelm::AssignmentProblem &problem = made.problem;
        problem.peakCount = kind.peaks;
        problem.nLcType = kind.columns.size();
        problem.colId = std::accumulate(kind.columns.begin(), kind.columns.end(), std::size_t{0});
        const std::size_t cells = problem.at(kind.peaks, 0);
        problem.dcMat.assign(cells, trelm::noPeakCoupling);
        for (auto *matrix :
             {&problem.diValMat, &problem.sigMat, &problem.wMat, &problem.xMat, &problem.yMat, &problem.zMat})
            matrix->assign(cells, 0.0f);
        made.truth.resize(kind.peaks);
        std::iota(made.truth.begin(), made.truth.end(), 0);
        if (kind.isShuffled)
            std::shuffle(made.truth.begin(), made.truth.end(), engine_);
        std::size_t column = 0;
        for (std::size_t n = 0; n < kind.columns.size(); ++n) {
            problem.colIdList[n] = kind.columns[n];
            problem.nDTypList[n] = kind.fixed[n];
            const trelm::SaupeValues saupe = tensor();
            for (std::size_t i = 0; i < kind.fixed[n]; ++i)
                problem.fixed.push_back(coupling(kind, saupe, uniform(0.0, 1.0) < 0.7 ? -21585.2f : 5000.0f));
            for (const std::size_t last = column + kind.columns[n]; column < last; ++column)
                fillColumn(made, kind, saupe, column);
        }
        return made;
    }

  private:
    double uniform(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(engine_);
    }

    /// Da -8 to -14 Hz, R 0.1 to 0.5, turned somehow.
    trelm::SaupeValues tensor()
    {
        const double da = uniform(-14.0, -8.0) / 21585.2, dr = da * uniform(0.1, 0.5);
        const double values[3] = {-da + 1.5 * dr, -da - 1.5 * dr, 2.0 * da};
        const double a = uniform(-3.0, 3.0), b = uniform(0.0, 3.0);
        const double axes[3][3] = {{std::cos(a) * std::cos(b), std::sin(a) * std::cos(b), -std::sin(b)},
                                   {-std::sin(a), std::cos(a), 0.0},
                                   {std::cos(a) * std::sin(b), std::sin(a) * std::sin(b), std::cos(b)}};
        const auto element = [&](int i, int j) {
            double sum = 0.0;
            for (int k = 0; k < 3; ++k)
                sum += axes[k][i] * values[k] * axes[k][j];
            return static_cast<float>(sum);
        };
        return {element(2, 2), element(0, 0) - element(1, 1), element(0, 1), element(0, 2), element(1, 2)};
    }

    trelm::FixedCoupling coupling(const RandomProblem &kind, const trelm::SaupeValues &saupe, float di)
    {
        trelm::FixedCoupling made;
        double length = 0.0;
        do {
            made.x = static_cast<float>(uniform(-1.0, 1.0));
            made.y = static_cast<float>(uniform(-1.0, 1.0));
            made.z = static_cast<float>(uniform(-1.0, 1.0));
            length = std::hypot(made.x, made.y, made.z);
        } while (length < 0.1 || length > 1.0);
        made.di = di;
        made.sigma = kind.equalWeights ? 1.0f : static_cast<float>(uniform(0.3, 3.0));
        made.w = kind.equalWeights ? 1.0f : static_cast<float>(uniform(0.2, 2.0));
        const float origin = 0.0f;
        float value = 0.0f;
        const trelm::FitVectors one = {{&origin, 1},  {&origin, 1}, {&origin, 1},
                                       {&made.x, 1},  {&made.y, 1}, {&made.z, 1},
                                       {&made.di, 1}, {&value, 1},  {&made.sigma, 1}};
        trelm::findD(one, saupe);
        made.d = value + static_cast<float>(std::normal_distribution<double>(0.0, kind.noise)(engine_));
        return made;
    }

    void fillColumn(MadeProblem &made, const RandomProblem &kind, const trelm::SaupeValues &saupe,
                    std::size_t column)
    {
        trelm::AssignmentProblem &problem = made.problem;
        const float di = column % 2 == 0 ? -21585.2f : kind.otherConstant; // one kind of pair a column
        for (std::size_t k = 0; k < kind.peaks; ++k) {
            const trelm::FixedCoupling made1 = coupling(kind, saupe, di);
            const std::size_t residue = problem.at(k, column);
            const std::size_t peak = problem.at(made.truth[k], column);
            problem.xMat[residue] = made1.x;
            problem.yMat[residue] = made1.y;
            problem.zMat[residue] = made1.z;
            if (uniform(0.0, 1.0) < kind.missing)
                continue; // the residue keeps its vector
            problem.dcMat[peak] = made1.d;
            problem.diValMat[peak] = di;
            problem.sigMat[peak] = made1.sigma;
            problem.wMat[peak] = made1.w;
        }
    }

    std::mt19937 engine_;
};
