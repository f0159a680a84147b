#include "support/numerics/jacobi.h"

#include "support/text/text.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace trelm {

namespace {

constexpr int maxSweeps =
    50; ///< a 3 by 3 matrix takes 3 to 6; 50 is there to end on values that are no numbers

/// A matrix on its way to the diagonal.
template <class T>
struct Rotating {
    std::array<T, 9> a;      ///< the part above the diagonal is in use
    std::array<T, 3> d;      ///< the diagonal
    std::array<T, 3> change; ///< what this sweep added to the diagonal
    std::array<T, 9> v;      ///< the rotations so far
};

constexpr std::size_t at(std::size_t row, std::size_t column)
{
    return 3 * row + column;
}

template <class T>
void rotatePair(T &first, T &second, T s, T tau)
{
    const T g = first, h = second;
    first = g - s * (h + g * tau);
    second = h + s * (g - h * tau);
}

/// The tangent of the angle that clears `element`, from it and the difference of its diagonal values.
template <class T>
T tangent(T element, T difference, T g)
{
    if (std::fabs(difference) + g == std::fabs(difference))
        return element / difference;
    const double theta = 0.5 * difference / element;
    const double t = 1.0 / (std::fabs(theta) + std::sqrt(1.0 + theta * theta));
    return static_cast<T>(theta < 0.0 ? -t : t);
}

/// Clears the element (p, q) by a rotation; r is the third axis.
template <class T>
inline void rotate(Rotating<T> &m, std::size_t p, std::size_t q, T g)
{
    T &element = m.a[at(p, q)];
    const T t = tangent<T>(element, m.d[q] - m.d[p], g);
    const auto c = static_cast<T>(1.0 / std::sqrt(1.0 + double{t} * t));
    const T s = t * c;
    const T tau = s / (T{1} + c);
    const T h = t * element;
    m.change[p] -= h;
    m.change[q] += h;
    m.d[p] -= h;
    m.d[q] += h;
    element = T{0};
    const std::size_t r = 3 - p - q;
    rotatePair(m.a[r < p ? at(r, p) : at(p, r)], m.a[r < q ? at(r, q) : at(q, r)], s, tau);
    for (std::size_t row = 0; row < 3; ++row)
        rotatePair(m.v[at(row, p)], m.v[at(row, q)], s, tau);
}

/// One sweep: elements above the threshold are cleared by a rotation, and from the fifth sweep on those that
/// do not show beside their diagonal values are dropped.
template <class T>
void sweepOnce(Rotating<T> &m, int sweep, T threshold)
{
    const auto visit = [&](std::size_t p, std::size_t q) {
        const T size = std::fabs(m.a[at(p, q)]);
        const T g = T{100} * size;
        const auto hides = [g](T value) { return std::fabs(value) + g == std::fabs(value); };
        if (sweep > 4 && hides(m.d[p]) && hides(m.d[q]))
            m.a[at(p, q)] = T{0};
        else if (size > threshold)
            rotate(m, p, q, g);
    };
    visit(0, 1); // one by one: with places that are known the matrix stays in registers
    visit(0, 2);
    visit(1, 2);
}

/// Cyclic Jacobi rotations. Source: Rutishauser, Numer. Math. 9 (1966) 1. Fails after 50 sweeps.
template <class T>
Status diagonalise(Rotating<T> &m)
{
    std::array<T, 3> base = m.d;
    for (int sweep = 1; sweep <= maxSweeps; ++sweep) {
        const T sum = std::fabs(m.a[1]) + std::fabs(m.a[2]) + std::fabs(m.a[5]);
        if (sum == T{0})
            return Status::ok;
        m.change = {};
        sweepOnce(m, sweep, sweep < 4 ? static_cast<T>(0.2 * sum / 9.0) : T{0});
        // The diagonal is made of the sums of whole sweeps, which lose less to rounding.
        for (std::size_t i = 0; i < 3; ++i)
            m.d[i] = base[i] = base[i] + m.change[i];
    }
    return Status::failed;
}

template <class T>
Rotating<T> start(const std::array<T, 9> &a)
{
    return {a, {a[0], a[4], a[8]}, {}, {1, 0, 0, 0, 1, 0, 0, 0, 1}};
}

} // namespace

Status diag3By3(const Matrix3f &aOrig, std::array<float, 3> &dd, Matrix3f &vv)
{
    Rotating<float> m = start(aOrig);
    const Status status = diagonalise(m);
    dd = m.d;
    vv = m.v;
    return status;
}

void eigsrt3By3NegRevTP(std::array<float, 3> &dOrig, Matrix3f &vOrig)
{
    for (std::size_t i = 0; i < 2; ++i)
        for (std::size_t j = i + 1; j < 3; ++j) {
            if (!(std::fabs(dOrig[i]) >= std::fabs(dOrig[j])))
                continue;
            std::swap(dOrig[i], dOrig[j]);
            for (std::size_t row = 0; row < 3; ++row) {
                const float old = vOrig[at(row, i)];
                vOrig[at(row, i)] = -vOrig[at(row, j)];
                vOrig[at(row, j)] = old;
            }
        }
    for (std::size_t i = 0; i < 2; ++i)
        for (std::size_t j = i + 1; j < 3; ++j)
            std::swap(vOrig[at(i, j)], vOrig[at(j, i)]);
}

Status jacobimz(const Matrix3d &a, std::array<double, 3> &d, Matrix3d &v, Messages &messages)
{
    Rotating<double> m = start(a);
    const Status status = diagonalise(m);
    d = m.d;
    v = m.v;
    return status == Status::ok ? status : nrerror("Too many iterations in routine jacobi", messages);
}

} // namespace trelm
