#include "simulation/orientations/sphere.h"

#include "simulation/orientations/rotation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace trelm {
namespace {

constexpr int typeDodecahedron = 9;
constexpr int typeIcosahedron = 10;
constexpr int arcStep = 10, centredStep = 30; ///< dots that each level adds to the square of it
constexpr int cubeEdge = 4;                   ///< cells along an edge
/// Of a set; a round number not far below those whose arcs are too short to divide.
constexpr int mostDots = 10000000;
constexpr int vertexCount = 12; ///< of the icosahedron
constexpr int centreCount = 20; ///< of its faces
constexpr int baseCount = vertexCount + centreCount;
constexpr double sameDistance = 0.001; ///< tolerance of squared distances of neighbours

// The angles have this precision on purpose: the dots of a run are the same everywhere.
constexpr double degree = 0.017453293;

using Vec = Axis;

Vec sum(const Vec &a, const Vec &b, const Vec &c)
{
    return {a[0] + b[0] + c[0], a[1] + b[1] + c[1], a[2] + b[2] + c[2]};
}

Vec normalised(const Vec &v)
{
    return scaled(v, 1.0 / std::sqrt(dot(v, v)));
}

double squaredDistance(const Vec &a, const Vec &b)
{
    const Vec d = {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
    return dot(d, d);
}

/// The dots under construction, three values each.
struct Builder {
    std::vector<double> values;

    [[nodiscard]] Vec at(int i) const
    {
        const double *place = &values[static_cast<std::size_t>(3 * i)];
        return {place[0], place[1], place[2]};
    }
    void append(const Vec &v) { values.insert(values.end(), v.begin(), v.end()); }
};

/// arcsin for arcs below 90 degrees. A sine may exceed 1 by rounding only.
double arcSine(double sine)
{
    return std::fabs(sine) < 1.0 ? std::asin(sine) : 1.5707963267948966;
}

/// The point that lies the fraction div1 / div2 of the way from one unit vector to another on the great arc,
/// by Rodrigues' formula.
Vec divarc(const Vec &v1, const Vec &v2, int div1, int div2)
{
    Vec axis = cross(v1, v2);
    const double length = std::sqrt(dot(axis, axis));
    const double d1 = dot(v1, v1), d2 = dot(v2, v2);
    const double phi = arcSine(length / std::sqrt(d1 * d2)) * div1 / div2;
    const double cosPhi = std::cos(phi), sinPhi = std::sin(phi);
    axis = scaled(axis, 1.0 / length);
    return normalised(sum(scaled(v1, cosPhi), scaled(cross(axis, v1), sinPhi),
                          scaled(axis, dot(axis, v1) * (1.0 - cosPhi))));
}

/// The twelve vertices: two poles and two rings of five. Returns the squared edge of the icosahedron.
double icosaeder_vertices(Builder &dots)
{
    const double c = std::cos(72.0 * degree);
    const double rh = std::sqrt(1.0 - 2.0 * c) / (1.0 - c); // radius and height of the rings
    const double rg = c / (1.0 - c);
    const auto ring = [&](int firstAngle, double height) {
        for (int angle = firstAngle; angle < 360; angle += 72)
            dots.append({rh * std::cos(angle * degree), rh * std::sin(angle * degree), height});
    };
    dots.append({0.0, 0.0, 1.0});
    ring(0, rg);
    ring(36, -rg);
    dots.append({0.0, 0.0, -1.0});
    return 2.0 * rh * rh * (1.0 - c);
}

bool isNeighbour(const Builder &dots, int i, int j, double squared)
{
    return std::fabs(squaredDistance(dots.at(i), dots.at(j)) - squared) <= sameDistance;
}

void divideEdge(Builder &dots, int i, int j, int tess)
{
    for (int s = 1; s < tess; ++s)
        dots.append(divarc(dots.at(i), dots.at(j), s, tess));
}

/// A dot inside a face is the mean of the crossings of three pairs of arcs that run beside its edges.
void fillFace(Builder &dots, int i, int j, int k, int tess)
{
    const Vec vi = dots.at(i), vj = dots.at(j), vk = dots.at(k);
    for (int s = 1; s < tess - 1; ++s) {
        const Vec a = divarc(vj, vi, s, tess), b = divarc(vk, vi, s, tess);
        for (int t = 1; t < tess - s; ++t) {
            const int u = tess - s - t;
            const Vec c = divarc(vi, vj, t, tess), d = divarc(vk, vj, t, tess);
            const Vec e = divarc(vi, vk, u, tess), f = divarc(vj, vk, u, tess);
            dots.append(normalised(
                sum(divarc(b, a, t, tess - s), divarc(d, c, s, tess - t), divarc(f, e, s, s + t))));
        }
    }
}

/// Calls face(i, j, k) for each face of the icosahedron, i < j < k.
template <class Face>
void forEachFace(const Builder &dots, double edge, Face face)
{
    for (int i = 0; i < vertexCount - 2; ++i)
        for (int j = i + 1; j < vertexCount - 1; ++j)
            for (int k = j + 1; isNeighbour(dots, i, j, edge) && k < vertexCount; ++k)
                if (isNeighbour(dots, j, k, edge) && isNeighbour(dots, k, i, edge))
                    face(i, j, k);
}

/// The level, 1 at least, at which step * level^2 + 2 reaches the density.
double levelOf(int densit, int step)
{
    // In double: a density near the range of int must not overflow.
    return densit > 2 ? std::ceil(std::sqrt((static_cast<double>(densit) - 2.0) / step)) : 1.0;
}

/// Room for the dots of a level.
Builder startBuild(int level, int step)
{
    Builder dots;
    dots.values.reserve(std::size_t{3} * static_cast<std::size_t>(step * level * level + 2));
    return dots;
}

Builder ico_dot_arc(int densit)
{
    const int tess = static_cast<int>(levelOf(densit, arcStep));
    Builder dots = startBuild(tess, arcStep);
    const double edge = icosaeder_vertices(dots);
    if (tess > 1) {
        for (int i = 0; i < vertexCount - 1; ++i)
            for (int j = i + 1; j < vertexCount; ++j)
                if (isNeighbour(dots, i, j, edge))
                    divideEdge(dots, i, j, tess);
        forEachFace(dots, edge, [&](int i, int j, int k) { fillFace(dots, i, j, k, tess); });
    }
    return dots;
}

/// Edges and faces between the vertices of the icosahedron and the centres of its faces.
void divideCentred(Builder &dots, double edge, int tess)
{
    constexpr double deg108 = 108.0 * degree, deg120 = 2.0943951600000004;
    const double toCentre = 2.0 * (1.0 - std::sqrt(1.0 - edge / 3.0));
    const double betweenCentres = 4.0 * (std::cos(deg108) - std::cos(deg120)) / (1.0 - std::cos(deg120));
    for (int i = 0; i < baseCount - 1; ++i) {
        const bool isVertex = i < vertexCount;
        for (int j = isVertex ? vertexCount : i + 1; j < baseCount; ++j)
            if (isNeighbour(dots, i, j, isVertex ? toCentre : betweenCentres))
                divideEdge(dots, i, j, tess);
    }
    for (int i = 0; i < vertexCount; ++i)
        for (int j = vertexCount; j < baseCount - 1; ++j)
            for (int k = j + 1; isNeighbour(dots, i, j, toCentre) && k < baseCount; ++k)
                if (isNeighbour(dots, j, k, betweenCentres) && isNeighbour(dots, k, i, toCentre))
                    fillFace(dots, i, j, k, tess);
}

Builder ico_dot_dod(int densit)
{
    const int tess = static_cast<int>(levelOf(densit, centredStep));
    Builder dots = startBuild(tess, centredStep);
    const double edge = icosaeder_vertices(dots);
    forEachFace(dots, edge, [&dots](int i, int j, int k) {
        dots.append(normalised(sum(dots.at(i), dots.at(j), dots.at(k))));
    });
    if (tess > 1)
        divideCentred(dots, edge, tess);
    return dots;
}

int cellOf(const Vec &v, int edge)
{
    std::array<int, 3> place;
    for (std::size_t axis = 0; axis < 3; ++axis)
        place[axis] = std::clamp(static_cast<int>(std::floor((v[axis] + 1.0) / (2.0 / edge))), 0, edge - 1);
    return (place[2] * edge + place[1]) * edge + place[0];
}

/// Sorts the dots by cell, x outermost and z innermost, by exchanges, and notes where each cell begins.
void sortIntoCube(DotSet &set)
{
    constexpr int edge = cubeEdge, cells = edge * edge * edge;
    set.cellCount.assign(cells, 0);
    set.cellFirst.assign(cells, 0);
    const std::size_t count = set.dots.size() / 3;
    std::vector<int> cell;
    for (std::size_t i = 0; i < set.dots.size(); i += 3)
        cell.push_back(cellOf({set.dots[i], set.dots[i + 1], set.dots[i + 2]}, edge));
    std::size_t placed = 0;
    for (int rank = 0; rank < cells; ++rank) {
        const int ix = rank / (edge * edge), iy = rank / edge % edge, iz = rank % edge;
        const int wanted = (iz * edge + iy) * edge + ix;
        const std::size_t first = placed;
        for (std::size_t i = placed; i < count; ++i) {
            if (cell[i] != wanted)
                continue;
            if (i != placed)
                std::swap_ranges(&set.dots[3 * i], &set.dots[3 * i] + 3, &set.dots[3 * placed]);
            std::swap(cell[i], cell[placed]);
            ++placed;
        }
        set.cellFirst[static_cast<std::size_t>(wanted)] = static_cast<int>(first);
        set.cellCount[static_cast<std::size_t>(wanted)] = static_cast<int>(placed - first);
    }
}

} // namespace

int unsp_type(int densit)
{
    const double arc = levelOf(densit, arcStep), dod = levelOf(densit, centredStep);
    return arcStep * arc * arc < centredStep * dod * dod ? typeIcosahedron : typeDodecahedron;
}

int dotCount(int densit)
{
    const int step = unsp_type(densit) == typeIcosahedron ? arcStep : centredStep;
    const double level = levelOf(densit, step);
    const double count = step * level * level + 2.0;
    constexpr int limit = std::numeric_limits<int>::max();
    return count < limit ? static_cast<int>(count) : limit;
}

bool make_unsp(int densit, DotSet &set)
{
    set = {};
    if (dotCount(densit) > mostDots)
        return false;
    Builder made = unsp_type(densit) == typeIcosahedron ? ico_dot_arc(densit) : ico_dot_dod(densit);
    set.dots = std::move(made.values);
    sortIntoCube(set);
    return true;
}

bool do_unsp(int densit, std::vector<double> &dots)
{
    DotSet set;
    const bool isMade = make_unsp(densit, set);
    dots = std::move(set.dots);
    return isMade;
}

} // namespace trelm
