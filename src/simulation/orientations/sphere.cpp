#include "simulation/orientations/sphere.h"

#include "ground/trelm.h"
#include "simulation/orientations/rotation.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace trelm {
namespace {

constexpr int typeDodecahedron = 9;
constexpr int typeIcosahedron = 10;
constexpr int cubeEdge = 4; ///< cells an edge of do_unsp
/// Of a set; a round number not far below those whose arcs are too short to divide.
constexpr int mostDots = 10000000;
constexpr int vertexCount = 12; ///< of the icosahedron
constexpr int centreCount = 20; ///< of its faces
constexpr int baseCount = vertexCount + centreCount;
constexpr double sameDistance = 0.001; ///< tolerance of squared distances of neighbours

// The angles have this precision on purpose: the dots of a run are the same everywhere.
constexpr double degree = 0.017453293;

using Vec = Axis;

// The set at hand. Not of the allocation layer: it lives as long as the program, outside any run's balance.
std::unique_ptr<double[]> xpunsp; ///< the dots, three values each
std::unique_ptr<int[]> ico_wk;    ///< dots of each cell, and in its second half the first dot of each cell
int n_dot = 0;
int ico_cube = 0;      ///< cells an edge
double del_cube = 0.0; ///< width of a cell
int last_densit = 0, last_unsp = 0, last_n_dot = 0, last_cubus = 0;
double rh = 0.0, rg = 0.0; ///< radius and height of the rings of vertices

/// Ends the program: a tessellation that fails has no remedy.
[[noreturn, gnu::format(printf, 1, 2)]] void fatal(const char *format, ...)
{
    std::array<char, 160> text;
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    mzerror(text.data());
}

template <class T>
std::unique_ptr<T[]> zeroed(std::size_t length, int line)
{
    std::unique_ptr<T[]> block(new (std::nothrow) T[length]());
    if (!block)
        fatal("CALLOC : failed in file %s at line %d", "sphere.cpp", line);
    return block;
}

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

Vec dotAt(int i)
{
    const double *place = &xpunsp[static_cast<std::size_t>(3 * i)];
    return {place[0], place[1], place[2]};
}

void storeDot(int i, const Vec &v)
{
    std::copy(v.begin(), v.end(), &xpunsp[static_cast<std::size_t>(3 * i)]);
}

/// The dots under construction: `count` of them so far.
struct Builder {
    int count = 0;

    void append(const Vec &v)
    {
        if (count >= n_dot)
            fatal("ico_dot: tn exceeds dimension of xus");
        storeDot(count++, v);
    }
};

/// arcsin for arcs below 90 degrees. A sine may exceed 1 by rounding only.
double arcSine(double sine)
{
    constexpr double tolerance = 1e-12;
    if (std::fabs(sine) < 1.0)
        return std::asin(sine);
    if (std::fabs(sine) - 1.0 > tolerance)
        fatal("ASIN : invalid argument %f", sine);
    return 1.5707963267948966;
}

/// The point that lies the fraction div1 / div2 of the way from one unit vector to another on the great arc,
/// by Rodrigues' formula.
Vec divarc(const Vec &v1, const Vec &v2, int div1, int div2)
{
    Vec axis = cross(v1, v2);
    const double length = std::sqrt(dot(axis, axis));
    const double d1 = dot(v1, v1), d2 = dot(v2, v2);
    if (length < 0.001)
        fatal("divarc: rotation axis of length %f", length);
    if (d1 < 0.5)
        fatal("divarc: vector 1 of sq.length %f", d1);
    if (d2 < 0.5)
        fatal("divarc: vector 2 of sq.length %f", d2);
    const double phi = arcSine(length / std::sqrt(d1 * d2)) * div1 / div2;
    const double cosPhi = std::cos(phi), sinPhi = std::sin(phi);
    axis = scaled(axis, 1.0 / length);
    return normalised(sum(scaled(v1, cosPhi), scaled(cross(axis, v1), sinPhi),
                          scaled(axis, dot(axis, v1) * (1.0 - cosPhi))));
}

/// The twelve vertices: two poles and two rings of five.
void icosaeder_vertices(Builder &dots)
{
    const double c = std::cos(72.0 * degree);
    rh = std::sqrt(1.0 - 2.0 * c) / (1.0 - c);
    rg = c / (1.0 - c);
    const auto ring = [&dots](int firstAngle, double height) {
        for (int angle = firstAngle; angle < 360; angle += 72)
            dots.append({rh * std::cos(angle * degree), rh * std::sin(angle * degree), height});
    };
    dots.append({0.0, 0.0, 1.0});
    ring(0, rg);
    ring(36, -rg);
    dots.append({0.0, 0.0, -1.0});
}

/// The squared edge of the icosahedron.
double squaredEdge()
{
    return 2.0 * rh * rh * (1.0 - std::cos(72.0 * degree));
}

bool isNeighbour(int i, int j, double squared)
{
    return std::fabs(squaredDistance(dotAt(i), dotAt(j)) - squared) <= sameDistance;
}

void divideEdge(Builder &dots, int i, int j, int tess)
{
    for (int s = 1; s < tess; ++s)
        dots.append(divarc(dotAt(i), dotAt(j), s, tess));
}

/// A dot inside a face is the mean of the crossings of three pairs of arcs that run beside its edges.
void fillFace(Builder &dots, int i, int j, int k, int tess)
{
    const Vec vi = dotAt(i), vj = dotAt(j), vk = dotAt(k);
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
void forEachFace(double edge, Face face)
{
    for (int i = 0; i < vertexCount - 2; ++i)
        for (int j = i + 1; j < vertexCount - 1; ++j)
            for (int k = j + 1; isNeighbour(i, j, edge) && k < vertexCount; ++k)
                if (isNeighbour(j, k, edge) && isNeighbour(k, i, edge))
                    face(i, j, k);
}

/// The level, 1 at least, at which step * level^2 + 2 reaches the density.
double levelOf(int densit, int step)
{
    // In double: a density near the range of int must not overflow.
    return densit > 2 ? std::ceil(std::sqrt((static_cast<double>(densit) - 2.0) / step)) : 1.0;
}

/// Sets the number of dots and asks for their room. Returns the level.
int startBuild(int densit, int step, const char *name)
{
    const int tess = static_cast<int>(levelOf(densit, step));
    n_dot = step * tess * tess + 2;
    if (n_dot < densit) // never: the level reaches the density
        fatal("%s: error in formula for tessalation level (%d->%d, %d)", name, tess, n_dot, densit);
    xpunsp = zeroed<double>(std::size_t{3} * static_cast<std::size_t>(n_dot), __LINE__);
    return tess;
}

int endBuild(const Builder &dots)
{
    if (dots.count != n_dot)
        fatal("ico_dot: n_dot(%d) and tn(%d) differ", n_dot, dots.count);
    return dots.count;
}

int ico_dot_arc(int densit)
{
    const int tess = startBuild(densit, 10, "ico_dot_arc");
    Builder dots;
    icosaeder_vertices(dots);
    if (tess > 1) {
        const double edge = squaredEdge();
        for (int i = 0; i < vertexCount - 1; ++i)
            for (int j = i + 1; j < vertexCount; ++j)
                if (isNeighbour(i, j, edge))
                    divideEdge(dots, i, j, tess);
        forEachFace(edge, [&](int i, int j, int k) { fillFace(dots, i, j, k, tess); });
    }
    return endBuild(dots);
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
            if (isNeighbour(i, j, isVertex ? toCentre : betweenCentres))
                divideEdge(dots, i, j, tess);
    }
    for (int i = 0; i < vertexCount; ++i)
        for (int j = vertexCount; j < baseCount - 1; ++j)
            for (int k = j + 1; isNeighbour(i, j, toCentre) && k < baseCount; ++k)
                if (isNeighbour(j, k, betweenCentres) && isNeighbour(k, i, toCentre))
                    fillFace(dots, i, j, k, tess);
}

int ico_dot_dod(int densit)
{
    const int tess = startBuild(densit, 30, "ico_dot_dod");
    Builder dots;
    icosaeder_vertices(dots);
    const double edge = squaredEdge();
    forEachFace(edge,
                [&](int i, int j, int k) { dots.append(normalised(sum(dotAt(i), dotAt(j), dotAt(k)))); });
    if (tess > 1)
        divideCentred(dots, edge, tess);
    return endBuild(dots);
}

int cellOf(int i)
{
    const Vec v = dotAt(i);
    std::array<int, 3> place;
    for (std::size_t axis = 0; axis < 3; ++axis)
        place[axis] = std::clamp(static_cast<int>(std::floor((v[axis] + 1.0) / del_cube)), 0, ico_cube - 1);
    return (place[2] * ico_cube + place[1]) * ico_cube + place[0];
}

/// Sorts the dots by cell, x outermost and z innermost, and notes where each cell begins.
void sortIntoCube(int cubus)
{
    if (cubus == 0) {
        while (2 * cubus * cubus * cubus < n_dot)
            ++cubus;
        cubus = std::max(1, cubus - 1);
    }
    ico_cube = cubus;
    del_cube = 2.0 / cubus;
    const int cells = cubus * cubus * cubus;
    ico_wk = zeroed<int>(std::size_t{2} * static_cast<std::size_t>(cells), __LINE__);
    int *const ico_pt = &ico_wk[static_cast<std::size_t>(cells)];
    auto cell = zeroed<int>(static_cast<std::size_t>(n_dot), __LINE__);
    for (int i = 0; i < n_dot; ++i)
        cell[static_cast<std::size_t>(i)] = cellOf(i);

    int placed = 0;
    for (int rank = 0; rank < cells; ++rank) {
        const int ix = rank / (cubus * cubus), iy = rank / cubus % cubus, iz = rank % cubus;
        const int wanted = (iz * cubus + iy) * cubus + ix;
        ico_pt[wanted] = placed;
        for (int i = placed; i < n_dot; ++i) {
            if (cell[static_cast<std::size_t>(i)] != wanted)
                continue;
            const Vec moved = dotAt(i);
            storeDot(i, dotAt(placed));
            storeDot(placed, moved);
            std::swap(cell[static_cast<std::size_t>(i)], cell[static_cast<std::size_t>(placed)]);
            ++placed;
        }
        ico_wk[static_cast<std::size_t>(wanted)] = placed - ico_pt[wanted];
    }
}

} // namespace

int unsp_type(int densit)
{
    const double arc = levelOf(densit, 10), dod = levelOf(densit, 30);
    return 10.0 * arc * arc < 30.0 * dod * dod ? typeIcosahedron : typeDodecahedron;
}

int dotCount(int densit)
{
    const int step = unsp_type(densit) == typeIcosahedron ? 10 : 30;
    const double level = levelOf(densit, step);
    const double count = step * level * level + 2.0;
    constexpr int limit = std::numeric_limits<int>::max();
    return count < limit ? static_cast<int>(count) : limit;
}

int make_unsp(int densit, int mode, int &num_dot, int cubus)
{
    xpunsp.reset();
    ico_wk.reset();
    last_unsp = 0;
    const int type = std::abs(mode);
    if (type == typeIcosahedron)
        num_dot = ico_dot_arc(densit);
    else if (type == typeDodecahedron)
        num_dot = ico_dot_dod(densit);
    else
        return complain("make_unsp: mode %c%d not allowed\n", mode < 0 ? '-' : '+', type);
    last_n_dot = num_dot;
    last_densit = densit;
    last_unsp = mode;
    last_cubus = cubus;
    if (mode < 0)
        sortIntoCube(cubus);
    return 0;
}

int do_unsp(int densit, std::span<const double> &dots)
{
    int count = 0;
    if (dotCount(densit) > mostDots || make_unsp(densit, -unsp_type(densit), count, cubeEdge) != 0)
        return 1;
    dots = {xpunsp.get(), std::size_t{3} * static_cast<std::size_t>(count)};
    return 0;
}

void surfaceDots(int densit, std::span<const double> &dots, DotCells &cells)
{
    const bool isAtHand = last_unsp == -unsp_type(densit) && last_cubus == cubeEdge &&
                          (densit == last_densit || densit == last_n_dot);
    int count = last_n_dot;
    if (!isAtHand)
        make_unsp(densit, -unsp_type(densit), count, cubeEdge);
    dots = {xpunsp.get(), std::size_t{3} * static_cast<std::size_t>(count)};
    const auto cellCount = static_cast<std::size_t>(ico_cube * ico_cube * ico_cube);
    cells = {{ico_wk.get(), cellCount}, {ico_wk.get() + cellCount, cellCount}};
}

} // namespace trelm
