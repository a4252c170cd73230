// The peer of the adjustment: what one writes with Eigen in an hour and compiles for one's own machine.
#include "eigen_fit.h"

#include <Eigen/Dense>
#include <cmath>

namespace {

using Eigen::Matrix3d;
using Eigen::Vector3d;

Matrix3d About(int axis, double angle) {  // passive
    const double s = std::sin(angle), c = std::cos(angle);
    Matrix3d R = Matrix3d::Identity();
    const int i = (axis + 1) % 3, j = (axis + 2) % 3;
    R(i, i) = R(j, j) = c;
    R(i, j) = s;
    R(j, i) = -s;
    return R;
}

Matrix3d AboutDerivative(int axis, double angle) {
    const double s = std::sin(angle), c = std::cos(angle);
    Matrix3d R = Matrix3d::Zero();
    const int i = (axis + 1) % 3, j = (axis + 2) % 3;
    R(i, i) = R(j, j) = -s;
    R(i, j) = c;
    R(j, i) = -c;
    return R;
}

struct Model {
    Matrix3d M;
    std::array<Matrix3d, 9> D;  // with respect to the angles, the scales (or their one), the frame's angles
};

Model Linearise(const std::array<double, 12>& p, int parameters) {
    Matrix3d X = About(0, p[3]), Y = About(1, p[4]), Z = About(2, p[5]), K, S, dK[3];
    const double xy = p[9], az = p[10], zt = p[11];
    K << 1, std::sin(xy), std::cos(az) * std::sin(zt),  //
        0, std::cos(xy), std::sin(az) * std::sin(zt),   //
        0, 0, std::cos(zt);
    for (Matrix3d& d : dK) d.setZero();
    dK[0](0, 1) = std::cos(xy);
    dK[0](1, 1) = -std::sin(xy);
    dK[1](0, 2) = -std::sin(az) * std::sin(zt);
    dK[1](1, 2) = std::cos(az) * std::sin(zt);
    dK[2](0, 2) = std::cos(az) * std::cos(zt);
    dK[2](1, 2) = std::sin(az) * std::cos(zt);
    dK[2](2, 2) = -std::sin(zt);
    S = Vector3d(p[6], p[7], p[8]).asDiagonal();
    const Matrix3d R = Z * Y * X;
    Model model;
    model.M = R * K * S;
    model.D[0] = Z * Y * AboutDerivative(0, p[3]) * K * S;
    model.D[1] = Z * AboutDerivative(1, p[4]) * X * K * S;
    model.D[2] = AboutDerivative(2, p[5]) * Y * X * K * S;
    if (parameters == 7) {
        model.D[3] = R * K;
        return model;
    }
    for (int j = 0; j < 3; ++j) {
        model.D[3 + j].setZero();
        model.D[3 + j].col(j) = (R * K).col(j);
        model.D[6 + j] = R * dK[j] * S;
    }
    return model;
}

template <int U, bool Weighted>
void Fit(const FitData& data, const std::array<double, 12>& begin, EigenFitResult& result,
         const std::vector<std::array<double, 3>>* weights) {
    std::array<double, 12> p = begin;
    result.Residuals.resize(data.Start.size());
    Model model;
    for (result.Iterations = 1; result.Iterations <= 50; ++result.Iterations) {
        model = Linearise(p, U);
        const Vector3d T(p[0], p[1], p[2]);
        Eigen::Matrix<double, U, U> N = Eigen::Matrix<double, U, U>::Zero();
        Eigen::Matrix<double, U, 1> w = Eigen::Matrix<double, U, 1>::Zero();
        Eigen::Matrix<double, 3, U> J;
        J.template leftCols<3>().setIdentity();
        for (std::size_t i = 0; i < data.Start.size(); ++i) {
            const Vector3d s = Eigen::Map<const Vector3d>(data.Start[i].data());
            const Vector3d t = Eigen::Map<const Vector3d>(data.Target[i].data());
            for (int k = 0; k < U - 3; ++k) J.col(3 + k) = model.D[static_cast<std::size_t>(k)] * s;
            const Vector3d l = t - (T + model.M * s);
            if constexpr (Weighted) {
                const Vector3d weight = Eigen::Map<const Vector3d>((*weights)[i].data());
                const Eigen::Matrix<double, 3, U> WJ = weight.asDiagonal() * J;
                N.noalias() += J.transpose() * WJ;
                w.noalias() += WJ.transpose() * l;
            } else {
                N.noalias() += J.transpose() * J;
                w.noalias() += J.transpose() * l;
            }
        }
        const Eigen::Matrix<double, U, 1> x = N.ldlt().solve(w);
        for (int k = 0; k < 6; ++k) p[static_cast<std::size_t>(k)] += x(k);
        if (U == 7) {
            p[6] = p[7] = p[8] = p[6] + x(6);
        } else {
            for (int k = 6; k < U; ++k) p[static_cast<std::size_t>(k)] += x(k);
        }
        if (x.cwiseAbs().maxCoeff() < 1e-9) break;
    }
    model = Linearise(p, U);
    const Vector3d T(p[0], p[1], p[2]);
    for (std::size_t i = 0; i < data.Start.size(); ++i) {
        const Vector3d s = Eigen::Map<const Vector3d>(data.Start[i].data());
        const Vector3d t = Eigen::Map<const Vector3d>(data.Target[i].data());
        Eigen::Map<Vector3d>(result.Residuals[i].data()) = T + model.M * s - t;
    }
    result.Parameters.assign(p.begin(), p.end());
}

}  // namespace

void EigenFit(const FitData& data, int parameters, const std::array<double, 12>& begin,
              EigenFitResult& result, const std::vector<std::array<double, 3>>* weights) {
    if (weights == nullptr) {
        parameters == 7 ? Fit<7, false>(data, begin, result, weights)
                        : Fit<12, false>(data, begin, result, weights);
    } else {
        parameters == 7 ? Fit<7, true>(data, begin, result, weights)
                        : Fit<12, true>(data, begin, result, weights);
    }
}

int EigenL1(const FitData& data, int parameters, const std::array<double, 12>& begin,
            EigenFitResult& result) {
    std::vector<std::array<double, 3>> weights(data.Start.size(), {1, 1, 1});
    double sum = 1e12, before = 0;
    int fits = 0;
    do {
        EigenFit(data, parameters, begin, result, &weights);
        ++fits;
        before = sum;
        sum = 0;
        for (std::size_t i = 0; i < weights.size(); ++i)
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const double size = std::fabs(result.Residuals[i][axis]);
                weights[i][axis] = 1 / (1e-12 + size);
                sum += size;
            }
    } while (std::fabs(sum - before) >= 1e-3 && fits < 500);
    return fits;
}
