#include "reference/likelihood_reference.h"

#include "reference/fft.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace trelm {
namespace {

constexpr float exactPart = 1e-2f; // of the largest value: what is below is lost in the transforms' rounding

/// The response as it lies in its array: counted from 1; place 0 is written, and not read.
using Response = std::array<float, 1024>;

Response responsePlain(double delta)
{
    Response resp = {};
    std::size_t i = 0;
    for (double x = 0.0; x <= 3.0 * delta; x += axisStep, ++i) {
        const auto g =
            static_cast<float>(std::exp(-0.5 * std::pow(x / delta, 2)) / (std::sqrt(6.28318) * delta));
        resp[i] = g;
        resp[1023 - i] = g;
    }
    return resp;
}

void fillPlain(double Dab, double R, std::vector<float> &data)
{
    std::size_t k = 0;
    for (double x = 0.0; x <= -2.0 * Dab; x += axisStep)
        data[k++] = static_cast<float>(analytical(Dab, R, x));
    k = data.size();
    for (double x = -axisStep; x >= (1.5 * R + 1.0) * Dab; x -= axisStep)
        data[--k] = static_cast<float>(analytical(Dab, R, x));
}

/// The broadened pattern at a place: the first 512 values of the response are its times 0, 1, ..., the others
/// from the end on -1, -2, ...
double sumPlain(const Response &resp, const std::vector<float> &data, std::size_t place)
{
    double sum = 0.0;
    for (std::size_t t = 0; t < 512; ++t)
        sum += double{resp[1 + t]} * double{data[(place + axisPlaces - t) % axisPlaces]};
    for (std::size_t t = 1; t < 512; ++t)
        sum += double{resp[1024 - t]} * double{data[(place + t) % axisPlaces]};
    return sum;
}

/// The sum of the logarithms of `valueAt` a coupling's place; 0.0 if one is not above 0.
template <class ValueAt>
double sumOfLogs(std::span<const float> couplings, ValueAt valueAt)
{
    double score = 0.0;
    for (const float coupling : couplings) {
        const int k = static_cast<int>(std::floor(static_cast<double>(coupling) * 100.0));
        const double value = valueAt(static_cast<std::size_t>(k < 0 ? k + axisPlaces : k));
        if (!(value > 0.0))
            return 0.0;
        score += std::log10(value);
    }
    return score;
}

double ellipticSeries(double m)
{
    const double m2 = m * m;
    return (1.0 + m2 * (0.25 + m2 * (0.1406 + m2 * 0.0977))) * 1.570795;
}

} // namespace

double analytical(double Dab, double R, double Fi)
{
    const double a = -2.0 * Dab, b = Dab * (1.0 - 1.5 * R), c = Dab * (1.0 + 1.5 * R);
    const double x = Fi == b ? Fi - 0.001 : Fi; // beside the singularity
    if (x <= a && x > (R == 0.0 ? b + axisStep : b)) {
        const double B = (a - b) * (x - c);
        return ellipticSeries((b - c) * (a - x) / B) / (std::sqrt(B) * 3.14159);
    }
    if (x < b && x >= c) {
        const double B = (b - c) * (a - x);
        return ellipticSeries((x - c) * (a - b) / B) / (std::sqrt(B) * 3.14159);
    }
    return 0.0;
}

double dip_coup(double theta, double phi, double Dab, double R)
{
    const double sine = std::sin(theta), cosine = std::cos(theta);
    return Dab * static_cast<double>(static_cast<float>((1.0 - 3.0 * cosine * cosine) -
                                                        std::cos(2.0 * phi) * 1.5 * R * sine * sine));
}

double scorePlain(std::span<const float> couplings, double delta, const MlPoint &point, bool clear,
                  std::vector<float> &data)
{
    if (clear)
        std::ranges::fill(data, 0.0f);
    fillPlain(point.Dab, point.R, data);
    const Response resp = responsePlain(delta);
    return sumOfLogs(couplings, [&](std::size_t place) { return sumPlain(resp, data, place); });
}

double scoreByTransform(std::span<const float> couplings, double delta, const MlPoint &point, bool clear,
                        std::vector<float> &data)
{
    if (clear)
        std::ranges::fill(data, 0.0f);
    fillPlain(point.Dab, point.R, data);
    const Response resp = responsePlain(delta);
    std::vector<float> ans(2 * data.size());
    convlv(data, std::span<const float>(resp).subspan(1), 1, ans);
    ans.resize(data.size());
    const float least = exactPart * std::ranges::max(ans);
    return sumOfLogs(couplings, [&](std::size_t place) {
        return ans[place] >= least ? double{ans[place]} : sumPlain(resp, data, place);
    });
}

std::vector<MlPoint> mlMagTensorPlain(const MlCouplings &couplings, const MlGrid &grid, bool clear)
{
    const auto steps = [](double low, double high, double inc) {
        return std::max(1, static_cast<int>(std::ceil((high - low) / inc - 1e-2)));
    };
    std::vector<float> data(axisPlaces);
    std::vector<MlPoint> list;
    for (int i = 0; i < steps(grid.lowR, grid.highR, grid.incR); ++i) {
        for (int k = 0; k < steps(grid.lowDab, grid.highDab, grid.incDa); ++k) {
            MlPoint point = {.Dab = grid.highDab - k * grid.incDa, .R = grid.lowR + i * grid.incR};
            point.score = scoreByTransform(couplings.coup_mat, couplings.delta, point, clear, data);
            list.push_back(point);
        }
    }
    return list;
}

void mapMagToDcPlain(const MagnitudeRange &range, double coup, double coupErr, double &coupAve,
                     double &coupAveErr)
{
    const double lo = coup - coupErr, hi = coup + coupErr;
    double dMax = coup, dMin = coup;
    for (double theta = 0.0; theta <= 1.570795; theta += 0.01) {
        for (double phi = 0.0; phi <= 3.14159; phi += 0.01) {
            for (const int sign : {3, 2, 1, 0}) { // high Da in the first bit, high R in the second
                const double Dab = (sign & 1) != 0 ? range.Dab + range.DabErr : range.Dab - range.DabErr;
                const double R = (sign & 2) != 0 ? range.R + range.RErr : range.R - range.RErr;
                const double corner = dip_coup(theta, phi, Dab, R);
                if (!(corner > lo && corner < hi))
                    continue;
                const double centre = dip_coup(theta, phi, range.Dab, range.R);
                dMax = std::max(dMax, centre);
                dMin = std::min(dMin, centre);
            }
        }
    }
    coupAve = (dMax + dMin) * 0.5;
    coupAveErr = std::fabs(dMax - coupAve);
}

} // namespace trelm
