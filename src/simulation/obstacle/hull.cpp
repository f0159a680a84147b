#include "simulation/obstacle/hull.h"

#include "simulation/orientations/rotation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <vector>

// The library's header comes last: it is C, with macros.
extern "C" {
#include <libqhull_r/qhull_ra.h>
}

namespace trelm {
namespace {

/// Below this number the search for a hull costs more than it spares.
constexpr std::size_t fewAtoms = 24;

/// A coordinate turned in single precision is off by at most three roundings, 2e-7 of the distance from the
/// origin. An atom deeper than twice that below every face is never the outermost; this leaves room.
constexpr double relativeMargin = 1e-5;

/// A face: points with normal . p + offset <= 0 are inside.
struct Plane {
    Axis normal;
    double offset;
};

struct CloseFile {
    void operator()(std::FILE *fp) const { std::fclose(fp); }
};

/// The library at work. Its memory is given back on every road, also when the list of faces finds none.
struct HullWork {
    qhT state;

    explicit HullWork(std::FILE *messages) { qh_zero(&state, messages); }
    HullWork(const HullWork &) = delete;
    HullWork &operator=(const HullWork &) = delete;
    ~HullWork()
    {
        qh_freeqhull(&state, !qh_ALL);
        int shortLeft = 0, longLeft = 0;
        qh_memfreeshort(&state, &shortLeft, &longLeft);
    }
};

/// True if no point is above a face: what the faces enclose is then all inside the hull.
bool isConvex(const std::vector<Plane> &planes, const std::vector<double> &points, double tolerance)
{
    for (std::size_t i = 0; i + 2 < points.size(); i += 3)
        for (const Plane &plane : planes)
            if (dot(plane.normal, {points[i], points[i + 1], points[i + 2]}) + plane.offset > tolerance)
                return false;
    return true;
}

/// The faces of the hull, three values a point, by the quickhull method (Barber, Dobkin, Huhdanpaa, ACM
/// Trans. Math. Softw. 22 (1996) 469); none if the points span no volume.
std::vector<Plane> hullPlanes(std::vector<double> &points, double tolerance)
{
    // The library tells of flat input at length; for us that is no error.
    const std::unique_ptr<std::FILE, CloseFile> silence(std::fopen("/dev/null", "w"));
    std::vector<Plane> planes;
    if (!silence)
        return planes;
    HullWork work(silence.get());
    qhT *qh = &work.state;          // the library's macros go by this name
    char command[] = "qhull Q0 Pp"; // faces are not merged: that takes half as long, and isConvex sees to it
    const int count = static_cast<int>(points.size() / 3);
    if (qh_new_qhull(qh, 3, count, points.data(), False, command, nullptr, silence.get()) == 0) {
        const facetT *facet = nullptr;
        FORALLfacets planes.push_back(
            {{facet->normal[0], facet->normal[1], facet->normal[2]}, facet->offset});
    }
    if (!isConvex(planes, points, tolerance))
        planes.clear();
    return planes;
}

/// Atoms that follow each other in the molecule lie near each other: a sphere around each run of them decides
/// for most runs as a whole.
struct Cluster {
    std::size_t first, count;
    Axis centre;
    double radius;
};

Axis placeOf(const Coordinates &atoms, std::size_t i)
{
    return {atoms.x[i], atoms.y[i], atoms.z[i]};
}

Cluster makeCluster(const Coordinates &atoms, std::size_t first, std::size_t count)
{
    Cluster cluster{first, count, {}, 0.0};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto column = (axis == 0 ? atoms.x : axis == 1 ? atoms.y : atoms.z).subspan(first, count);
        const auto [low, high] = std::ranges::minmax(column);
        cluster.centre[axis] = 0.5 * (low + high);
    }
    double square = 0.0;
    for (std::size_t i = first; i < first + count; ++i) {
        const Axis p = placeOf(atoms, i);
        const Axis d = {p[0] - cluster.centre[0], p[1] - cluster.centre[1], p[2] - cluster.centre[2]};
        square = std::max(square, dot(d, d));
    }
    cluster.radius = std::sqrt(square) * (1.0 + 1e-9);
    return cluster;
}

std::vector<Cluster> makeClusters(const Coordinates &atoms)
{
    constexpr std::size_t clusterSize = 32;
    std::vector<Cluster> clusters;
    for (std::size_t first = 0; first < atoms.count(); first += clusterSize)
        clusters.push_back(makeCluster(atoms, first, std::min(clusterSize, atoms.count() - first)));
    return clusters;
}

/// The farthest that any atom can be from the origin.
double reachOf(const std::vector<Cluster> &clusters)
{
    double reach = 0.0;
    for (const Cluster &cluster : clusters)
        reach = std::max(reach, std::sqrt(dot(cluster.centre, cluster.centre)) + cluster.radius);
    return reach;
}

/// The outermost atom in a direction.
std::size_t outermost(const Coordinates &atoms, const std::vector<Cluster> &clusters, const Axis &direction)
{
    std::size_t found = 0;
    double highest = -HUGE_VAL;
    for (const Cluster &cluster : clusters) {
        if (dot(cluster.centre, direction) + cluster.radius <= highest)
            continue;
        for (std::size_t i = cluster.first; i < cluster.first + cluster.count; ++i) {
            const double height = dot(placeOf(atoms, i), direction);
            if (height > highest) {
                highest = height;
                found = i;
            }
        }
    }
    return found;
}

/// Some atoms of the hull: the outermost in directions that spiral evenly over the sphere.
std::vector<double> someOfHull(const Coordinates &atoms, const std::vector<Cluster> &clusters)
{
    constexpr int directions = 48;
    constexpr double goldenAngle = 2.399963229728653;
    std::vector<std::size_t> found;
    for (int i = 0; i < directions; ++i) {
        const double z = 1.0 - (2.0 * i + 1.0) / directions, ring = std::sqrt(1.0 - z * z);
        found.push_back(outermost(atoms, clusters,
                                  {ring * std::cos(goldenAngle * i), ring * std::sin(goldenAngle * i), z}));
    }
    std::ranges::sort(found);
    found.erase(std::unique(found.begin(), found.end()), found.end());
    std::vector<double> points;
    for (const std::size_t i : found) {
        const Axis p = placeOf(atoms, i);
        points.insert(points.end(), p.begin(), p.end());
    }
    return points;
}

/// The atoms that are not deeper than the margin below every face.
AtomColumns notInside(const Coordinates &atoms, const std::vector<Cluster> &clusters,
                      const std::vector<Plane> &planes, double margin)
{
    AtomColumns kept;
    std::vector<Plane> near;
    for (const Cluster &cluster : clusters) {
        near.clear(); // the faces that the cluster is not surely below
        for (const Plane &plane : planes)
            if (dot(plane.normal, cluster.centre) + plane.offset + cluster.radius > -margin)
                near.push_back(plane);
        for (std::size_t i = cluster.first; !near.empty() && i < cluster.first + cluster.count; ++i)
            if (std::ranges::any_of(near, [&, p = placeOf(atoms, i)](const Plane &plane) {
                    return dot(plane.normal, p) + plane.offset > -margin;
                }))
                kept.append(atoms, i);
    }
    return kept;
}

AtomColumns allAtoms(const Coordinates &atoms)
{
    return {
        {atoms.x.begin(), atoms.x.end()}, {atoms.y.begin(), atoms.y.end()}, {atoms.z.begin(), atoms.z.end()}};
}

} // namespace

AtomColumns hullAtoms(const Coordinates &atoms)
{
    if (atoms.count() < fewAtoms)
        return allAtoms(atoms);
    // What lies deep inside the hull of any of the atoms lies deep inside that of all. A hull of a few dozen
    // atoms leaves a few hundred of many thousands, and only theirs is then made in full.
    const std::vector<Cluster> clusters = makeClusters(atoms);
    const double margin = relativeMargin * reachOf(clusters);
    std::vector<double> points = someOfHull(atoms, clusters);
    std::vector<Plane> planes = hullPlanes(points, 0.01 * margin);
    if (planes.empty())
        return allAtoms(atoms);
    const AtomColumns outer = notInside(atoms, clusters, planes, margin);
    points.clear();
    for (std::size_t i = 0; i < outer.x.size(); ++i)
        points.insert(points.end(), {outer.x[i], outer.y[i], outer.z[i]});
    planes = hullPlanes(points, 0.01 * margin);
    return planes.empty() ? outer : notInside(outer.view(), makeClusters(outer.view()), planes, margin);
}

} // namespace trelm
