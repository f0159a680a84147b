#include "couplings/type_check.h"

#include "support/numerics/statistics.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace trelm {
namespace {

constexpr int fewestOfType = 3;
constexpr double nearOne = 1.25; ///< constants up to this ratio apart: normalised or not cannot be told

/// Each type with the factor of its couplings.
using Factors = std::vector<double>;

NormalSums summed(const TypeSums &types, const Factors &factors, std::size_t without)
{
    NormalSums whole;
    for (std::size_t t = 0; t < types.sums.size(); ++t)
        if (t != without)
            whole.add(types.sums[t], factors[t]);
    return whole;
}

constexpr std::size_t nothing = std::numeric_limits<std::size_t>::max();

/// Chi-square of the types with their factors; infinite where they do not determine the tensor. By the root
/// of Cholesky (Golub and Van Loan, Matrix Computations, chapter 4): hundreds of combinations are tried.
double chiSquareOf(const TypeSums &types, const Factors &factors)
{
    constexpr double smallest = 1e-10; // of the diagonal: what is left of it where rows are dependent
    const NormalSums sums = summed(types, factors, nothing);
    SaupeMatrix root = {};
    Saupe solved = {};
    double explained = 0.0;
    for (std::size_t i = 0; i < saupeCount; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            double rest = sums.products[i * saupeCount + j];
            for (std::size_t k = 0; k < j; ++k)
                rest -= root[i * saupeCount + k] * root[j * saupeCount + k];
            if (i == j && !(rest > smallest * sums.products[i * saupeCount + i]))
                return std::numeric_limits<double>::infinity();
            root[i * saupeCount + j] = i == j ? std::sqrt(rest) : rest / root[j * saupeCount + j];
        }
        solved[i] = sums.sides[i];
        for (std::size_t k = 0; k < i; ++k)
            solved[i] -= root[i * saupeCount + k] * solved[k];
        solved[i] /= root[i * saupeCount + i];
        explained += solved[i] * solved[i];
    }
    return std::max(0.0, sums.squares - explained);
}

/// A type that is tried, and the factors it is tried with; the first is 1.
struct TriedType {
    std::size_t type = 0;
    std::vector<double> factors;
};

std::vector<TriedType> triedTypes(const TypeSums &types, const TypeCheck &check)
{
    constexpr std::size_t most = 6; // 4^5 fits
    std::vector<TriedType> tried;
    for (std::size_t t = 0; t < types.sums.size(); ++t) {
        if (types.sums[t].count < fewestOfType || tried.size() == most)
            continue;
        const double ratio = amideScale / check.types[t].constant;
        TriedType &row = tried.emplace_back(TriedType{t, {1.0, -1.0}});
        if (ratio > nearOne || ratio < 1.0 / nearOne)
            row.factors.insert(row.factors.end(), {ratio, -ratio});
    }
    return tried;
}

/// The combination of the smallest chi-square. The sign of all types together is that of the tensor, so that
/// of the first one is held.
Factors bestFactors(const TypeSums &types, const std::vector<TriedType> &tried)
{
    Factors best(types.sums.size(), 1.0), now = best;
    double least = chiSquareOf(types, best);
    std::vector<std::size_t> choice(tried.size(), 0);
    for (;;) {
        std::size_t place = 0; // the next combination, counted as an odometer does
        while (place < tried.size() && ++choice[place] == tried[place].factors.size())
            choice[place++] = 0;
        if (place == tried.size())
            return best;
        if (tried[0].factors[choice[0]] < 0.0)
            continue;
        for (std::size_t k = 0; k < tried.size(); ++k)
            now[tried[k].type] = tried[k].factors[choice[k]];
        const double chiSquare = chiSquareOf(types, now);
        if (chiSquare < least * (1.0 - 1e-9)) {
            least = chiSquare;
            best = now;
        }
    }
}

bool hasNitrogen(std::string_view type)
{
    return type.find('N') != std::string_view::npos;
}

/// Settles which of two sides is told as turned: the types without N, if these are one side; else the smaller
/// side; else the one without N-H, or that of fewer couplings.
void settleSigns(const TypeSums &types, const std::vector<TriedType> &tried, Factors &factors,
                 TypeCheck &check)
{
    int balance = 0, rows = 0;
    bool splitsByNitrogen = true, hasBoth = false, amideIsTurned = false, hasAmide = false;
    const double ofNitrogen = [&] {
        for (const TriedType &row : tried)
            if (hasNitrogen(check.types[row.type].name))
                return factors[row.type];
        return 1.0;
    }();
    for (const TriedType &row : tried) {
        const bool isTurned = factors[row.type] < 0.0;
        balance += isTurned ? 1 : -1;
        rows += (isTurned ? 1 : -1) * types.sums[row.type].count;
        const std::string &name = check.types[row.type].name;
        splitsByNitrogen = splitsByNitrogen && (hasNitrogen(name) == (isTurned == (ofNitrogen < 0.0)));
        hasBoth = hasBoth || isTurned != (factors[tried[0].type] < 0.0);
        hasAmide = hasAmide || name == "N-H";
        amideIsTurned = amideIsTurned || (name == "N-H" && isTurned);
    }
    const bool turnsNitrogen = ofNitrogen < 0.0;
    check.signsArePhysical = hasBoth && splitsByNitrogen;
    const bool isTie = balance == 0;
    const bool flips = check.signsArePhysical ? turnsNitrogen
                       : isTie                ? (hasAmide ? amideIsTurned : rows > 0)
                                              : balance > 0;
    if (flips)
        for (const TriedType &row : tried)
            factors[row.type] = -factors[row.type];
}

/// How a type is predicted by the others, which are taken with their factors.
void predictType(const TypeSums &types, const Factors &factors, std::size_t t, TypeQuality &type)
{
    constexpr double largestCondition = 30.0; // beyond it parts of the tensor are hardly determined
    const NormalSums rest = summed(types, factors, t);
    const NormalSolution solution = solveNormal(rest);
    const int spare = rest.count - static_cast<int>(saupeCount);
    type.isPredicted = solution.isDetermined && solution.condition <= largestCondition && spare >= 1;
    if (!type.isPredicted)
        return;
    type.rest = solution.saupe;
    // With p = design . S of the rest: sums of p p, p observed, and of the variance of p, all weighted.
    const NormalSums &own = types.sums[t];
    double square = 0.0, product = 0.0, variance = 0.0;
    for (std::size_t k = 0; k < own.products.size(); ++k) {
        square += solution.saupe[k / saupeCount] * own.products[k] * solution.saupe[k % saupeCount];
        variance += own.products[k] * solution.inverse[k];
    }
    for (std::size_t k = 0; k < saupeCount; ++k)
        product += solution.saupe[k] * own.sides[k];
    type.isPredicted = square > 0.0;
    if (!type.isPredicted)
        return;
    type.leftOutSlope = product / square;
    const double scatter =
        std::max(0.0, own.squares - product * product / square) / std::max(1, own.count - 1);
    const double ofRest = solution.chiSquare / spare * variance / std::max(1, own.count);
    type.leftOutSlopeError =
        std::sqrt(scatter / square + type.leftOutSlope * type.leftOutSlope * ofRest * own.count / square);
}

TypeVerdict verdictOfFactor(double factor)
{
    const bool isScaled = std::fabs(factor) != 1.0;
    if (factor < 0.0)
        return isScaled ? TypeVerdict::turnedNormalised : TypeVerdict::turned;
    return isScaled ? TypeVerdict::normalised : TypeVerdict::agrees;
}

/// Whether the rest says what the factor says, too.
bool isConfirmed(const TypeQuality &type, double factor)
{
    constexpr double widest = 1.6;
    const double share = type.leftOutSlope / factor;
    return type.isPredicted && share < widest && share > 1.0 / widest;
}

/// A slope that is none of the known ones.
bool isOtherSlope(const TypeQuality &type)
{
    constexpr double step = 0.3, deviations = 6.0;
    const double off = std::fabs(type.leftOutSlope - 1.0);
    return off > step && off > deviations * type.leftOutSlopeError;
}

/// Takes back what changes too little: chi-square without the change has to grow by many times the square of
/// the standard deviation of unit weight.
void keepCertain(const TypeSums &types, const std::vector<TriedType> &tried, Factors &factors)
{
    constexpr double fewest = 36.0; // six standard deviations
    int count = 0;
    for (const NormalSums &sums : types.sums)
        count += sums.count;
    const double best = chiSquareOf(types, factors);
    const double unit = best / std::max(1, count - static_cast<int>(saupeCount));
    for (const TriedType &row : tried) {
        Factors without = factors;
        without[row.type] = 1.0;
        if (factors[row.type] != 1.0 && !(chiSquareOf(types, without) - best > fewest * unit))
            factors[row.type] = 1.0;
    }
}

} // namespace

bool isDoubtful(TypeVerdict verdict)
{
    return verdict == TypeVerdict::turned || verdict == TypeVerdict::normalised ||
           verdict == TypeVerdict::turnedNormalised || verdict == TypeVerdict::scaled;
}

void TypeSums::add(const QualityRow &row)
{
    sums.resize(std::max(sums.size(), row.type + 1));
    constantSums.resize(sums.size());
    if (!row.isFitted)
        return;
    sums[row.type].add(row);
    constantSums[row.type] += row.constant;
}

TypeCheck checkTypes(const TypeSums &types, std::span<const std::string> names)
{
    TypeCheck check;
    for (std::size_t t = 0; t < types.sums.size(); ++t)
        check.types.push_back({.name = names[t],
                               .constant = types.constantSums[t] / std::max(1, types.sums[t].count),
                               .count = types.sums[t].count});
    const std::vector<TriedType> tried = triedTypes(types, check);
    Factors factors(types.sums.size(), 1.0);
    if (tried.size() > 1) {
        factors = bestFactors(types, tried);
        settleSigns(types, tried, factors, check);
        keepCertain(types, tried, factors);
    }
    for (std::size_t t = 0; t < check.types.size(); ++t) {
        TypeQuality &type = check.types[t];
        predictType(types, factors, t, type);
        if (type.count < fewestOfType)
            continue;
        if (tried.size() < 2)
            type.verdict = TypeVerdict::onlyType;
        else if (!type.isPredicted)
            type.verdict = TypeVerdict::notPredicted;
        else if (factors[t] != 1.0 && isConfirmed(type, factors[t])) {
            type.factor = factors[t];
            type.verdict = verdictOfFactor(factors[t]);
        } else
            type.verdict = isOtherSlope(type) ? TypeVerdict::scaled : TypeVerdict::agrees;
    }
    const auto isTurned = [](const TypeQuality &type) { return type.factor < 0.0; };
    const auto keepsSize = [](const TypeQuality &type) { return std::fabs(type.factor) == 1.0; };
    const auto canBeScaled = [&](const TriedType &row) { return row.factors.size() > 2; };
    check.signsArePhysical = check.signsArePhysical && std::ranges::any_of(check.types, isTurned);
    check.areAllNormalised =
        std::ranges::any_of(tried, canBeScaled) && std::ranges::none_of(tried, [&](const TriedType &row) {
            return canBeScaled(row) && keepsSize(check.types[row.type]);
        });
    return check;
}

void addTypeStatistics(std::span<const QualityRow> rows, TypeCheck &check)
{
    for (std::size_t t = 0; t < check.types.size(); ++t) {
        TypeQuality &type = check.types[t];
        double observed = 0.0, residual = 0.0, leftOut = 0.0;
        std::vector<float> x, y;
        for (const QualityRow &row : rows) {
            if (!row.isFitted || row.type != t)
                continue;
            x.push_back(static_cast<float>(row.calculated));
            y.push_back(static_cast<float>(row.observed));
            const double left = row.observed - couplingOf(row.design, type.rest);
            observed += row.observed * row.observed;
            residual += row.residual() * row.residual();
            leftOut += left * left;
        }
        const LineFit line = fit(x, y);
        type.slope = double{line.b};
        type.offset = double{line.a};
        if (type.count == 0)
            continue;
        type.rms = std::sqrt(residual / type.count);
        type.q = observed > 0.0 ? std::sqrt(residual / observed) : 0.0;
        type.leftOutRms = type.isPredicted ? std::sqrt(leftOut / type.count) : 0.0;
        type.leftOutQ = type.isPredicted && observed > 0.0 ? std::sqrt(leftOut / observed) : 0.0;
    }
}

std::string verdictText(const TypeCheck &check, const TypeQuality &type)
{
    std::string text;
    const char *turned = check.signsArePhysical ? "sign turned against the rest, as all types without N"
                                                : "sign turned against the rest";
    const char *signRemedy = check.signsArePhysical ? "-rdcSign physical" : "turn its values";
    const char *scaleRemedy = check.areAllNormalised ? "-rdcScale nh" : "divide its values";
    const double factor = std::fabs(type.factor);
    switch (type.verdict) {
    case TypeVerdict::agrees:
        return "agrees";
    case TypeVerdict::turned:
        appendf(text, "%s (%s)", turned, signRemedy);
        return text;
    case TypeVerdict::normalised:
        appendf(text, "normalised to N-H, %.2f times the rest (%s)", factor, scaleRemedy);
        return text;
    case TypeVerdict::turnedNormalised:
        appendf(text, "%s, and normalised to N-H, %.2f times the rest (%s, %s)", turned, factor, signRemedy,
                scaleRemedy);
        return text;
    case TypeVerdict::scaled:
        appendf(text, "%.2f times what the rest predicts (look at its values and constant)",
                type.leftOutSlope);
        return text;
    case TypeVerdict::onlyType:
        return "no other type to compare with";
    case TypeVerdict::tooFew:
        return "too few couplings to say";
    case TypeVerdict::notPredicted:
        return "the rest cannot predict it";
    }
    return text;
}

} // namespace trelm
