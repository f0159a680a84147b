#include "simulation/alignment/grid3d.h"

#include "simulation/alignment/electrostatic.h"
#include "simulation/alignment/options.h"
#include "simulation/orientations/rotation.h"
#include "support/numerics/numbers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace trelm {
namespace {

constexpr const char *prefix = "REMARK  ";

/// The edge of the cell that one particle of the liquid crystal has for itself, angstrom: the square root of
/// the sample's volume per length of all particles, which lie side by side through it. The mass and molecular
/// weight of the particles give their number, the unit length times the degree of polymerisation the length
/// of each.
float cellSize(const Grid3DOptions &info)
{
    return static_cast<float>(1.0e10 *
                              std::sqrt(1.0e-9 * number(info.volSample) * number(info.mwLC) /
                                        (6.0221367 * number(info.massLC) * 1.0e23 *
                                         number(info.unitLengthLC) * 1.0e-10 * number(info.polymerDeg))));
}

bool isNarrow(const Grid3DOptions &info, float cell)
{
    return cell - static_cast<float>(info.grid3DnX) * info.grid3DdeltaX < 0.0f ||
           cell - static_cast<float>(info.grid3DnY) * info.grid3DdeltaY < 0.0f;
}

/// The grid, and the cell of a particle around it.
struct Cell {
    Grid3D grid;
    float edge = 0.0f; ///< angstrom
};

void reportGrid(const AlignmentOptions &info, const Cell &cell, const OrientationSet &set, Messages &messages)
{
    const Grid3D &grid = cell.grid;
    messages.out("REMARK trelmInfo->volSample: %f\n", number(info.volSample));
    messages.out("REMARK trelmInfo->mwLC: %f\n", number(info.mwLC));
    messages.out("REMARK trelmInfo->massLC: %f\n", number(info.massLC));
    messages.out("REMARK trelmInfo->unitLengthLC: %f\n", number(info.unitLengthLC));
    messages.out("REMARK trelmInfo->polymerDeg: %f\n", number(info.polymerDeg));
    messages.out("REMARK trelmInfo->rSingleCell: %e\n", number(cell.edge));
    messages.out("REMARK trelmInfo->elInfo.maxPot: %f\n", number(info.maxPot));
    messages.out("REMARK trelmInfo->grid3DdeltaX: %f\n", number(info.grid3DdeltaX));
    messages.out("REMARK trelmInfo->grid3DdeltaY: %f\n", number(info.grid3DdeltaY));
    messages.out("REMARK trelmInfo->grid3DdeltaZ: %f\n", number(info.grid3DdeltaZ));
    messages.out("REMARK trelmInfo->grid3DnX: %d\n", info.grid3DnX);
    messages.out("REMARK trelmInfo->grid3DnY: %d\n", info.grid3DnY);
    messages.out("REMARK trelmInfo->grid3DnZ: %d\n", info.grid3DnZ);
    messages.out("REMARK trelmInfo->elInfo.z1: %d\n", info.z1);
    messages.out("REMARK trelmInfo->elInfo.zN: %d\n", info.zN);
    messages.out("REMARK nZGridSel: %d\n", grid.planes());
    messages.out("REMARK lengthGrid: %d\n", grid.count[0] * grid.count[1] * grid.planes());
    messages.out("REMARK Digitization of orientations: digPsi = %d    dots = %d   inc_psi = %.1f\n",
                 info.digPsiNSC, static_cast<int>(set.dots.size() / 3), 360.0 / info.digPsiNSC);
    messages.out("REMARK nX2 nY2 nZ2: %d  %d  %d\n", grid.half[0], grid.half[1], grid.half[2]);
    messages.out("REMARK startGrid (x,y,z): %f  %f  %f\n", grid.start[0], grid.start[1], grid.start[2]);
}

/// What both forms do before they look at a position.
Cell startGrid(const AlignmentSetup &setup, const OrientationSet &set)
{
    const AlignmentOptions &info = setup.options;
    Messages &messages = setup.messages;
    reportSetBias(set, prefix, messages);
    const Cell cell = {makeGrid3D(info), cellSize(info)};
    if (!(cell.edge > 0.0f) || !std::isfinite(cell.edge))
        messages.warn("Warning: -vol, -mwLC, -massLC, -unitLC, -polyLC give no size of the cell (%g).\n",
                      number(cell.edge));
    if (isNarrow(info, cell.edge))
        messages.err("WARNING: Potentials between neighbouring cells overlapping!\n"
                     "         ---> Magnitude of alignment tensor might be wrong!\n");
    reportGrid(info, cell, set, messages);
    return cell;
}

/// The orientations at the free positions of the cell beyond the grid.
double freeRest(const Grid3DOptions &info, const Cell &around, int orientations)
{
    const auto &[grid, cell] = around;
    const bool isWider = cell - static_cast<float>(info.grid3DnX) * info.grid3DdeltaX > 0.0f ||
                         cell - static_cast<float>(info.grid3DnY) * info.grid3DdeltaY > 0.0f;
    if (!isWider)
        return 0.0;
    const double inGrid = static_cast<double>(grid.count[0]) * grid.count[1] * grid.planes();
    return std::floor(number(cell) / number(info.grid3DdeltaX) * (number(cell) / number(info.grid3DdeltaY)) -
                      inGrid) *
           orientations;
}

/// Place of an atom relative to the grid's middle, in steps, rounded as the comparison wants it.
float inSteps(double shift, float turnedCoordinate, float spacing)
{
    return static_cast<float>((shift + number(turnedCoordinate)) / number(spacing));
}

/// Where an atom comes to lie along x or y: points from 0, or off the grid. An even count reaches half of it
/// to each side, so that the last half step on the positive side has the number of the count itself: along y
/// that is the first row at the next point of x, along x it is beyond the values.
int pointAlong(const Grid3D &grid, std::size_t axis, double shift, float coordinate)
{
    const float steps = inSteps(shift, coordinate, grid.spacing[axis]);
    if (!(std::fabs(steps) <= static_cast<float>(grid.half[axis])))
        return GridPlaces::off;
    return getGridPoint(steps) + grid.half[axis];
}

/// Where an atom comes to lie along z, where the planes in use repeat, one period to each side: points from
/// 0, those of the neighbouring rows beyond the ends.
int pointAlongZ(const Grid3D &grid, double shift, float coordinate)
{
    constexpr float farthest = 1e9f; // and a number that no grid has
    const float steps = inSteps(shift, coordinate, grid.spacing[2]);
    if (!(std::fabs(steps) <= farthest))
        return std::numeric_limits<int>::max();
    const int point = getGridPoint(steps) + grid.half[2] + 1;
    return (point > grid.zN ? point - grid.planes() : point < grid.z1 ? point + grid.planes() : point) - 1;
}

double shiftAlong(const Grid3D &grid, std::size_t axis, int step)
{
    return step * number(grid.spacing[axis]) + grid.start[axis];
}

/// The entries of x or y.
void placeAlong(const Grid3D &grid, std::size_t axis, std::span<const float> turnedAxis,
                std::vector<int> &points)
{
    const int stride = axis == 0 ? grid.count[1] : 1;
    points.clear();
    for (int step = 0; step < grid.count[axis]; ++step) {
        const double shift = shiftAlong(grid, axis, step);
        for (const float coordinate : turnedAxis) {
            const int point = pointAlong(grid, axis, shift, coordinate);
            points.push_back(point == GridPlaces::off ? GridPlaces::off : point * stride);
        }
    }
}

/// Starts the runs anew.
void clearRuns(GridRuns &runs)
{
    runs.runs.clear();
    runs.firstOf = {0};
}

/// The next atom's point at a position.
void addPoint(GridRuns &runs, std::size_t position, int point)
{
    const bool isFirst = runs.runs.size() == runs.firstOf.back();
    if (!isFirst) {
        GridRun &last = runs.runs.back();
        const auto length = static_cast<std::ptrdiff_t>(last.length);
        if (last.first + last.length == position && last.point + length == point) {
            ++last.length;
            return;
        }
    }
    runs.runs.push_back({position, 1, point});
}

void findRunsAlongY(const Grid3D &grid, GridPlaces &places)
{
    clearRuns(places.yRuns);
    const std::size_t atoms = places.turnedAxis.size();
    for (std::size_t j = 0; j < atoms; ++j) {
        for (std::size_t k = 0; k < static_cast<std::size_t>(std::max(grid.count[1], 0)); ++k)
            if (places.y[k * atoms + j] != GridPlaces::off)
                addPoint(places.yRuns, k, places.y[k * atoms + j]);
        places.yRuns.firstOf.push_back(places.yRuns.runs.size());
    }
}

void placeAlongZ(const Grid3D &grid, GridPlaces &places)
{
    places.z.clear();
    places.isWithin.clear();
    clearRuns(places.zRuns);
    for (const float coordinate : places.turnedAxis) {
        bool isWithin = true;
        for (int step = 0; step < grid.planes(); ++step) {
            places.z.push_back(pointAlongZ(grid, shiftAlong(grid, 2, step), coordinate));
            isWithin = isWithin && places.z.back() >= 0 && places.z.back() < grid.count[2];
            addPoint(places.zRuns, static_cast<std::size_t>(step), places.z.back());
        }
        places.zRuns.firstOf.push_back(places.zRuns.runs.size());
        places.isWithin.push_back(isWithin ? 1 : 0);
    }
}

/// A row of positions along z, and where its atoms lie.
struct Row {
    const Grid3D &grid;
    const GridRows &rows;
    const GridPlaces &places;
    const int *x, *y; ///< entries of the row's shifts along x and y

    [[nodiscard]] std::size_t atoms() const { return places.isWithin.size(); }
    [[nodiscard]] std::size_t length() const { return static_cast<std::size_t>(grid.planes()); }
    [[nodiscard]] bool isOff(std::size_t j) const
    {
        return x[j] == GridPlaces::off || y[j] == GridPlaces::off;
    }
    /// Calls within(run, point) for each run of an atom that is not off the row, with the number of its first
    /// point; or beyond(position) at each of its positions where points of it are beyond the values.
    template <class Within, class Beyond>
    void forEachRun(std::size_t j, Within within, Beyond beyond) const
    {
        const auto first = static_cast<std::ptrdiff_t>(x[j] + y[j]) * grid.count[2];
        const auto size = static_cast<std::ptrdiff_t>(rows.pot3D.size());
        for (const GridRun &run : places.zRuns.of(j)) {
            const std::ptrdiff_t point = first + run.point, length = static_cast<std::ptrdiff_t>(run.length);
            if (point >= 0 && point + length <= size) {
                within(run, static_cast<std::size_t>(point));
                continue;
            }
            for (std::ptrdiff_t k = 0; k < length; ++k) {
                const GridRun one = {run.first + static_cast<std::size_t>(k), 1, 0};
                if (point + k >= 0 && point + k < size)
                    within(one, static_cast<std::size_t>(point + k));
                else
                    beyond(one.first);
            }
        }
    }
};

/// Marks what an atom's points clash with.
[[gnu::target_clones("avx512f", "avx2", "default")]] void addMarks(std::span<const unsigned char> from,
                                                                   unsigned char *to)
{
    for (std::size_t k = 0; k < from.size(); ++k)
        to[k] = static_cast<unsigned char>(to[k] | from[k]);
}

[[gnu::target_clones("avx512f", "avx2", "default")]] void addEnergy(std::span<const double> potential,
                                                                    double charge, double *energy)
{
    for (std::size_t k = 0; k < potential.size(); ++k)
        energy[k] += potential[k] * charge;
}

/// Marks for all rows at one shift along x what their atoms meet, the kinds of an atom's rows combined run by
/// run along y.
void markRows(const GridRows &rows, const GridPlaces &places, const int *x, std::span<unsigned char> marks)
{
    std::ranges::fill(marks, static_cast<unsigned char>(0));
    for (std::size_t j = 0; j < places.isWithin.size(); ++j) {
        if (x[j] == GridPlaces::off)
            continue;
        // Of an atom that leaves its row all that is known is that it may clash.
        const std::span<const unsigned char> of = places.isWithin[j] != 0 ? rows.marks : rows.someMarks;
        for (const GridRun &run : places.yRuns.of(j))
            addMarks(of.subspan(static_cast<std::size_t>(x[j] + run.point), run.length), &marks[run.first]);
    }
}

/// Where no potential is allowed at all, the one beyond the grid, which is 0, is not either: atoms off the
/// grid take their rows.
void markRowsOfAtomsOff(const GridPlaces &places, const int *x, std::span<unsigned char> marks)
{
    const std::size_t atoms = places.isWithin.size();
    for (std::size_t k = 0; k < marks.size(); ++k)
        for (std::size_t j = 0; j < atoms; ++j)
            if (x[j] == GridPlaces::off || places.y[k * atoms + j] == GridPlaces::off)
                marks[k] = GridRows::allClash;
}

/// Marks the positions of a row that atoms take. Returns whether one is free.
bool findTaken(const Row &row, RowSearch &search)
{
    const bool clashesBeyond = row.grid.maxPot <= 0.0f;
    for (std::size_t j = 0; j < row.atoms(); ++j) {
        if (row.isOff(j))
            continue;
        const std::span<const unsigned char> marks =
            row.places.isWithin[j] != 0 ? row.rows.marks : row.rows.someMarks;
        if (marks[static_cast<std::size_t>(row.x[j] + row.y[j])] == 0)
            continue;
        row.forEachRun(
            j,
            [&](const GridRun &run, std::size_t point) {
                addMarks(std::span(row.rows.clashes).subspan(point, run.length), &search.isTaken[run.first]);
            },
            [&](std::size_t k) {
                if (clashesBeyond)
                    search.isTaken[k] = 1;
            });
    }
    return std::ranges::find(search.isTaken, 0) != search.isTaken.end();
}

/// The weights of the free positions of a row.
double weighFree(const Row &row, const ChargeSet &charges, RowSearch &search)
{
    search.energy.assign(row.length(), 0.0);
    for (std::size_t c = 0; c < static_cast<std::size_t>(charges.chCount); ++c) {
        const auto j = static_cast<std::size_t>(charges.chargeAtomID[c]);
        const auto q = number(charges.charges[c]);
        if (!row.isOff(j))
            row.forEachRun(
                j,
                [&](const GridRun &run, std::size_t point) {
                    addEnergy(row.rows.pot3D.subspan(point, run.length), q, &search.energy[run.first]);
                },
                [&](std::size_t k) { search.energy[k] += 0.0 * q; });
    }
    double sum = 0.0;
    for (std::size_t k = 0; k < row.length(); ++k)
        if (search.isTaken[k] == 0)
            sum += std::exp(-search.energy[k]);
    return sum;
}

} // namespace

Grid3D makeGrid3D(const Grid3DOptions &info)
{
    Grid3D grid;
    grid.count = {info.grid3DnX, info.grid3DnY, info.grid3DnZ};
    grid.spacing = {info.grid3DdeltaX, info.grid3DdeltaY, info.grid3DdeltaZ};
    grid.z1 = info.z1;
    grid.zN = info.zN;
    grid.maxPot = info.maxPot;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        grid.half[axis] = static_cast<int>(std::floor(grid.count[axis] / 2.0));
        const int before = axis == 2 ? grid.half[2] - grid.z1 : grid.half[axis];
        grid.start[axis] = -before * number(grid.spacing[axis]);
    }
    return grid;
}

GridRows makeGridRows(const Grid3D &grid, std::span<const double> pot3D)
{
    GridRows rows;
    rows.pot3D = pot3D;
    if (!grid.hasPositions() || grid.count[2] < 1)
        return rows;
    const auto maxPot = number(grid.maxPot);
    for (const double value : pot3D)
        rows.clashes.push_back(std::fabs(value) >= maxPot ? 1 : 0);
    const auto length = static_cast<std::size_t>(grid.count[2]);
    const auto nX = static_cast<std::size_t>(grid.count[0]), nY = static_cast<std::size_t>(grid.count[1]);
    const std::size_t reached =
        (nX + 1) * nY + 1; // the last half step on the positive side has the count's number
    rows.someMarks.assign(reached, GridRows::someClash);
    rows.marks = rows.someMarks;
    for (std::size_t row = 0; row < reached && (row + 1) * length <= pot3D.size(); ++row) {
        const auto points = std::span(rows.clashes).subspan(row * length, length);
        const auto clashing = std::ranges::count(points, 1);
        rows.marks[row] = clashing == 0                                     ? GridRows::noClash
                          : clashing == static_cast<std::ptrdiff_t>(length) ? GridRows::allClash
                                                                            : GridRows::someClash;
    }
    return rows;
}

void placeAtoms(const Grid3D &grid, const Coordinates &atoms, const std::array<Axis, 3> &columns,
                GridPlaces &places)
{
    places.turnedAxis.resize(atoms.count());
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (std::size_t j = 0; j < atoms.count(); ++j)
            places.turnedAxis[j] = turned(atoms, j, columns[axis]);
        if (axis < 2)
            placeAlong(grid, axis, places.turnedAxis, axis == 0 ? places.x : places.y);
        if (axis == 1)
            findRunsAlongY(grid, places);
        if (axis == 2)
            placeAlongZ(grid, places);
    }
}

double weighPositions(const Grid3D &grid, const GridRows &rows, const GridPlaces &places,
                      const ChargeSet &charges, RowSearch &search)
{
    const std::size_t atoms = places.isWithin.size();
    double sum = 0.0;
    if (!grid.hasPositions())
        return sum;
    const auto nX = static_cast<std::size_t>(grid.count[0]), nY = static_cast<std::size_t>(grid.count[1]);
    search.marks.resize(nY);
    for (std::size_t iii = 0; iii < nX; ++iii) {
        const int *const x = &places.x[iii * atoms];
        markRows(rows, places, x, search.marks);
        if (grid.maxPot <= 0.0f)
            markRowsOfAtomsOff(places, x, search.marks);
        for (std::size_t jjj = 0; jjj < nY; ++jjj) {
            if ((search.marks[jjj] & GridRows::allClash) != 0)
                continue;
            const Row row = {grid, rows, places, x, &places.y[jjj * atoms]};
            search.isTaken.assign(row.length(), 0);
            if (search.marks[jjj] == GridRows::noClash || findTaken(row, search))
                sum += weighFree(row, charges, search);
        }
    }
    return sum;
}

Status sma3D(const AlignmentSetup &setup, const Coordinates &atoms, const ChargeSet &charges,
             std::span<const double> pot3D, Saupe &saupe)
{
    saupe = {};
    const OrientationSet set = makeOrientationSet(setup.dots, setup.options.digPsiNSC);
    const Cell cell = startGrid(setup, set);
    const Grid3D &grid = cell.grid;
    const GridRows rows = makeGridRows(grid, pot3D);
    GridPlaces places;
    RowSearch search;
    double total = 0.0;
    forEachTurnShown(set, setup.messages, [&](const Turn &turn) {
        placeAtoms(grid, atoms, {turn.column1, turn.column2, turn.column3}, places);
        const double weight = weighPositions(grid, rows, places, charges, search);
        addWeighted(saupe, turn.saupe, weight);
        total += weight;
    });
    // The free rest of a cell can be less than the grid that it leaves out: the sum may be negative.
    const double rest = freeRest(setup.options, cell, set.count());
    if (std::isinf(rest)) { // a cell without an end, of which no order is left
        saupe = {};
        return Status::ok;
    }
    return divideByWeights("sma3D", total + rest, saupe, setup.messages);
}

Status ssia3D(const AlignmentSetup &setup, Saupe &saupe)
{
    saupe = {};
    const OrientationSet set = makeOrientationSet(setup.dots, setup.options.digPsiNSC);
    const Cell cell = startGrid(setup, set);
    // What the atoms would meet at the first position changes nothing that is seen.
    if (cell.grid.hasPositions())
        return Status::ended;
    if (freeRest(setup.options, cell, set.count()) <= 0.0)
        setup.messages.err("WARNING: Error in simulation\n");
    return Status::ok;
}

} // namespace trelm
