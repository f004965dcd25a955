// SPDX-License-Identifier: MIT
#include "prediction/thin_plate_spline.h"

#include <Eigen/Cholesky>
#include <Eigen/Core>
#include <Eigen/QR>

#include <cmath>

namespace plyra {
namespace {

// The thin-plate kernel r² log r, written with r² so that no square root is taken.
double kernel(double squaredDistance)
{
    return squaredDistance > 0.0 ? 0.5 * squaredDistance * std::log(squaredDistance) : 0.0;
}

struct Normalisation {
    PlanePoint centre;
    double inverseScale = 0.0;
};

Normalisation normalisationOf(const std::vector<PlanePoint>& nodes)
{
    Normalisation result;
    for (const PlanePoint& p : nodes) {
        result.centre.x += p.x;
        result.centre.y += p.y;
    }
    const double n = static_cast<double>(nodes.size());
    result.centre = {result.centre.x / n, result.centre.y / n};
    double sum = 0.0;
    for (const PlanePoint& p : nodes)
        sum += (p.x - result.centre.x) * (p.x - result.centre.x) + (p.y - result.centre.y) * (p.y - result.centre.y);
    const double rms = std::sqrt(sum / n);
    result.inverseScale = rms > 0.0 ? 1.0 / rms : 0.0;
    return result;
}

struct SmoothingSystem {
    Eigen::MatrixXd kernel; // K + λI over the nodes
    Eigen::MatrixXd polynomial; // P: the rows [1, x, y]
    Eigen::MatrixXd values; // v: the rows [x, y]
};

struct SplineSolution {
    Eigen::MatrixXd weights; // w: one row per node
    Eigen::MatrixXd affine; // a: constant, x and y rows
};

SmoothingSystem systemFor(const std::vector<PlanePoint>& nodes, const std::vector<PlanePoint>& values,
    double regularisation)
{
    const Eigen::Index n = static_cast<Eigen::Index>(nodes.size());
    SmoothingSystem system{Eigen::MatrixXd(n, n), Eigen::MatrixXd(n, 3), Eigen::MatrixXd(n, 2)};
    for (Eigen::Index i = 0; i < n; ++i) {
        const PlanePoint& ni = nodes[static_cast<std::size_t>(i)];
        for (Eigen::Index j = 0; j < i; ++j) {
            const PlanePoint& nj = nodes[static_cast<std::size_t>(j)];
            system.kernel(i, j) = system.kernel(j, i)
                = kernel((ni.x - nj.x) * (ni.x - nj.x) + (ni.y - nj.y) * (ni.y - nj.y));
        }
        system.kernel(i, i) = regularisation;
        system.polynomial.row(i) << 1.0, ni.x, ni.y;
        system.values.row(i) << values[static_cast<std::size_t>(i)].x, values[static_cast<std::size_t>(i)].y;
    }
    return system;
}

// Solves [A P; Pᵀ 0][w; a] = [v; 0]. The weights lie in the null space of Pᵀ, spanned by
// the last n − 3 columns of P's QR factor Q; there A = K + λI is positive definite, so
// the n − 3 weights come from a Cholesky solve, half the work of a pivoted LU of the
// whole system.
std::optional<SplineSolution> solve(SmoothingSystem system)
{
    const Eigen::Index n = system.kernel.rows();
    const Eigen::HouseholderQR<Eigen::MatrixXd> qr(system.polynomial);
    const Eigen::Matrix3d r = qr.matrixQR().topLeftCorner<3, 3>().triangularView<Eigen::Upper>();
    // Nodes on one line leave P without full rank (normalised, a good spread gives
    // diagonal entries near √n).
    if (std::abs(r(1, 1)) < 1e-6 || std::abs(r(2, 2)) < 1e-6)
        return std::nullopt;
    Eigen::MatrixXd& a = system.kernel;
    a.applyOnTheLeft(qr.householderQ().adjoint());
    a.applyOnTheRight(qr.householderQ());
    const Eigen::MatrixXd qtv = qr.householderQ().adjoint() * system.values;
    Eigen::MatrixXd gamma = Eigen::MatrixXd::Zero(n, 2);
    if (n > 3) {
        const Eigen::LLT<Eigen::MatrixXd> llt(a.bottomRightCorner(n - 3, n - 3));
        if (llt.info() != Eigen::Success)
            return std::nullopt;
        gamma.bottomRows(n - 3) = llt.solve(qtv.bottomRows(n - 3));
    }
    SplineSolution solution;
    solution.weights = qr.householderQ() * gamma;
    const Eigen::MatrixXd affineRight = qtv.topRows(3) - a.topRightCorner(3, n - 3) * gamma.bottomRows(n - 3);
    solution.affine = r.triangularView<Eigen::Upper>().solve(affineRight);
    if (!solution.weights.allFinite() || !solution.affine.allFinite())
        return std::nullopt;
    return solution;
}

} // namespace

std::optional<ThinPlateSpline> ThinPlateSpline::fit(const std::vector<PlanePoint>& nodes,
    const std::vector<PlanePoint>& values, double regularisation)
{
    if (nodes.size() < 3 || values.size() != nodes.size())
        return std::nullopt;
    const Normalisation norm = normalisationOf(nodes);
    if (norm.inverseScale == 0.0)
        return std::nullopt;
    ThinPlateSpline spline;
    spline.m_centre = norm.centre;
    spline.m_inverseScale = norm.inverseScale;
    spline.m_nodes.reserve(nodes.size());
    for (const PlanePoint& p : nodes)
        spline.m_nodes.push_back(spline.normalised(p));
    const std::optional<SplineSolution> solution = solve(systemFor(spline.m_nodes, values, regularisation));
    if (!solution)
        return std::nullopt;
    spline.m_weights.reserve(nodes.size());
    for (Eigen::Index i = 0; i < solution->weights.rows(); ++i)
        spline.m_weights.push_back({solution->weights(i, 0), solution->weights(i, 1)});
    for (Eigen::Index k = 0; k < 3; ++k)
        spline.m_affine[k] = {solution->affine(k, 0), solution->affine(k, 1)};
    return spline;
}

PlanePoint ThinPlateSpline::normalised(PlanePoint p) const
{
    return {(p.x - m_centre.x) * m_inverseScale, (p.y - m_centre.y) * m_inverseScale};
}

PlanePoint ThinPlateSpline::value(PlanePoint p) const
{
    const PlanePoint q = normalised(p);
    PlanePoint result{m_affine[0].x + m_affine[1].x * q.x + m_affine[2].x * q.y,
        m_affine[0].y + m_affine[1].y * q.x + m_affine[2].y * q.y};
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        const double dx = q.x - m_nodes[i].x;
        const double dy = q.y - m_nodes[i].y;
        const double u = kernel(dx * dx + dy * dy);
        result.x += m_weights[i].x * u;
        result.y += m_weights[i].y * u;
    }
    return result;
}

} // namespace plyra
