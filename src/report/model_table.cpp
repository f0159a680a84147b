#include "report/model_table.h"

#include "support/text/text.h"

namespace trelm {
namespace {

void appendMean(const char *name, const MeanValue &value, std::string &text)
{
    appendf(text, "DATA MODEL_MEAN %-5s %10.4f %10.4f\n", name, value.mean, value.deviation);
}

} // namespace

std::string modelTable(const ModelFits &fits, std::string_view remark)
{
    std::string text =
        "REMARK A tensor for each model; Da in Hz, of N-H; Q: rms of observed minus calculated over "
        "that of observed.\n";
    text += remark;
    text += "REMARK Z_AXIS to X_AXIS: angle to the axis of the mean tensor, degrees.\n\n";
    const ModelFit &best = fits.models[fits.best];
    appendf(text, "DATA MODELS          %zu\n", fits.models.size());
    appendf(text, "DATA BEST_MODEL      %d\n", best.number);
    appendf(text, "DATA BEST_Q          %.4f\n", best.q);
    appendf(text, "DATA MEAN_TENSOR     Da_HN %.4f R %.4f\n", fits.meanDa, fits.meanR);
    appendf(text, "DATA Q_OF_MEANS      %.4f\n\n", fits.qOfMeans);
    text += "DATA MODEL_MEAN_VARS NAME MEAN SD\n";
    appendMean("Da_HN", fits.da, text);
    appendMean("R", fits.r, text);
    appendMean("Q", fits.q, text);
    text += "\nVARS   MODEL N Da_HN R Q Z_AXIS Y_AXIS X_AXIS\n"
            "FORMAT %6d %5d %9.4f %7.4f %7.4f %7.3f %7.3f %7.3f\n\n";
    for (const ModelFit &model : fits.models)
        appendf(text, "%6d %5d %9.4f %7.4f %7.4f %7.3f %7.3f %7.3f\n", model.number, model.count, model.da,
                model.r, model.q, model.angles[0], model.angles[1], model.angles[2]);
    return text;
}

} // namespace trelm
