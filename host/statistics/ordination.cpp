#include "host/statistics/ordination.h"

#include <algorithm>
#include <cmath>

#include "host/statistics/symmetric_eigen.h"
#include "plugin/base/error.h"

namespace banddesk::host::statistics {
namespace {

using Eigen::Index;

// What rounding leaves of an eigenvalue that is 0, as a share of the largest.
constexpr double kRounding = 1e-12;

// -1/2 of the squared distances, centred by rows and columns.
Eigen::MatrixXd centred(const DistanceTable& distances, Scale scale) {
  const auto size = static_cast<Index>(distances.samples());
  Eigen::MatrixXd matrix(size, size);
  for (Index i = 0; i < size; ++i) {
    for (Index j = 0; j < size; ++j) {
      const double distance = distances.at(static_cast<std::size_t>(i), static_cast<std::size_t>(j));
      matrix(i, j) = -0.5 * (scale == Scale::SquareRoot ? distance : distance * distance);
    }
  }
  const Eigen::VectorXd means = matrix.rowwise().mean();
  const double mean = means.mean();
  matrix.colwise() -= means;
  matrix.rowwise() -= means.transpose();
  matrix.array() += mean;
  return matrix;
}

std::vector<double> axisOf(const Eigen::VectorXd& direction, double eigenvalue) {
  Index largest = 0;
  direction.cwiseAbs().maxCoeff(&largest);
  const double factor = std::sqrt(eigenvalue) * (direction(largest) < 0 ? -1 : 1);
  std::vector<double> axis(static_cast<std::size_t>(direction.size()));
  for (Index i = 0; i < direction.size(); ++i) axis[static_cast<std::size_t>(i)] = direction(i) * factor;
  return axis;
}

}  // namespace

Ordination principalCoordinates(const DistanceTable& distances, Scale scale, std::size_t axes,
                                const Progress& progress) {
  if (distances.samples() < 2)
    raise(ErrorNumber::InvalidArgument, "Statistics", "Principal coordinates need at least two samples.");
  const SymmetricEigen eigen(centred(distances, scale), progress);

  Ordination result;
  const auto& ascending = eigen.values();
  result.eigenvalues.assign(ascending.data(), ascending.data() + ascending.size());
  std::ranges::reverse(result.eigenvalues);
  const double largest = std::max(result.eigenvalues.front(), -result.eigenvalues.back());
  const double zero = kRounding * largest * static_cast<double>(distances.samples());
  for (const double value : result.eigenvalues) {
    result.positive += value > zero ? 1U : 0U;
    result.negative += value < -zero ? 1U : 0U;
    result.positiveSum += value > zero ? value : 0;
  }
  if (result.positive == 0)
    raise(ErrorNumber::InvalidArgument, "Statistics", "All samples are equal: there is no axis to find.");
  const Eigen::MatrixXd vectors = eigen.vectorsOfLargest(static_cast<Index>(std::min(axes, result.positive)));
  for (Index axis = 0; axis < vectors.cols(); ++axis)
    result.axes.push_back(axisOf(vectors.col(axis), result.eigenvalues[static_cast<std::size_t>(axis)]));
  return result;
}

}  // namespace banddesk::host::statistics
