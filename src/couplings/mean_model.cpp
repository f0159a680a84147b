// The fit of one tensor to several models: each coupling goes by the mean of its geometry over them.
#include "couplings/fit.h"

#include <algorithm>

namespace trelm {
namespace {

/// Adds the geometry of one more model to sums, entry by entry.
struct GeometrySums {
    std::vector<double> terms, x;

    void add(const RepeatedFit &model)
    {
        terms.resize(model.entries.size() * saupeCount);
        x.resize(model.x.size());
        for (std::size_t k = 0; k < terms.size(); ++k)
            terms[k] += double{model.entries[k / saupeCount].terms[k % saupeCount]};
        for (std::size_t k = 0; k < x.size(); ++k)
            x[k] += double{model.x[k]};
    }
    void putMeans(double models, RepeatedFit &fit) const
    {
        for (std::size_t k = 0; k < terms.size(); ++k)
            fit.entries[k / saupeCount].terms[k % saupeCount] = static_cast<float>(terms[k] / models);
        std::ranges::transform(x, fit.x.begin(),
                               [=](double sum) { return static_cast<float>(sum / models); });
    }
};

} // namespace

Status fitMeanModel(const FitInput &input, FitWork &work, FitResult &result, Messages &messages)
{
    RepeatedFit fit;
    GeometrySums sums;
    for (const std::vector<Coord3D> &model : input.models) {
        prepareRepeatedFit({model, input.dTab, input.columns, input.verbose}, result.tensor, fit);
        sums.add(fit);
    }
    sums.putMeans(static_cast<double>(input.models.size()), fit);
    const FitInput first = {input.coords, input.dTab, input.columns, input.verbose};
    return refitColumns(fit, first, work, result, messages);
}

} // namespace trelm
