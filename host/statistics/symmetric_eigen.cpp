#include "host/statistics/symmetric_eigen.h"

#include <Eigen/Eigenvalues>
#include <Eigen/Householder>
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "host/simulation/random.h"
#include "plugin/base/error.h"

namespace banddesk::host::statistics {
namespace {

using Eigen::Index;
using Eigen::VectorXd;

constexpr Index kColumnsBetweenReports = 16;
constexpr int kMostRounds = 12;
constexpr double kRounding = std::numeric_limits<double>::epsilon();

[[noreturn]] void raiseNotFound() {
  raise(ErrorNumber::InvalidArgument, "Statistics", "The eigenvalues of this matrix cannot be found.");
}

// A tridiagonal matrix less a multiple of the unit matrix, in triangular factors with exchanged rows.
class ShiftedSolver {
 public:
  ShiftedSolver(const VectorXd& diagonal, const VectorXd& below, double shift, double least)
      : pivot_(diagonal.array() - shift),
        above_(below),
        second_(VectorXd::Zero(diagonal.size())),
        factor_(below) {
    const Index size = diagonal.size();
    isExchanged_.assign(static_cast<std::size_t>(size), false);
    for (Index i = 0; i + 1 < size; ++i) eliminate(i, below(i), least);
    if (std::abs(pivot_(size - 1)) < least) pivot_(size - 1) = least;
  }

  void solve(VectorXd& x) const {
    const Index size = x.size();
    for (Index i = 0; i + 1 < size; ++i) {
      if (isExchanged_[static_cast<std::size_t>(i)]) std::swap(x(i), x(i + 1));
      x(i + 1) -= factor_(i) * x(i);
    }
    for (Index i = size - 1; i >= 0; --i) {
      if (i + 1 < size) x(i) -= above_(i) * x(i + 1);
      if (i + 2 < size) x(i) -= second_(i) * x(i + 2);
      x(i) /= pivot_(i);
    }
  }

 private:
  // `under` is the entry below the pivot; the larger of the two becomes the pivot.
  void eliminate(Index i, double under, double least) {
    const double next = i + 1 < above_.size() ? above_(i + 1) : 0;
    if (std::abs(under) > std::abs(pivot_(i))) {
      isExchanged_[static_cast<std::size_t>(i)] = true;
      factor_(i) = pivot_(i) / under;
      const double above = above_(i);
      pivot_(i) = under;
      above_(i) = pivot_(i + 1);
      second_(i) = next;
      pivot_(i + 1) = above - factor_(i) * above_(i);
      if (i + 1 < above_.size()) above_(i + 1) = -factor_(i) * next;
      return;
    }
    if (std::abs(pivot_(i)) < least) pivot_(i) = least;
    factor_(i) = under / pivot_(i);
    pivot_(i + 1) -= factor_(i) * above_(i);
  }

  VectorXd pivot_, above_, second_, factor_;
  std::vector<bool> isExchanged_;
};

}  // namespace

SymmetricEigen::SymmetricEigen(Eigen::MatrixXd matrix, const Progress& progress)
    : reflectors_(std::move(matrix)) {
  reduce(progress);
  Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver;
  solver.computeFromTridiagonal(diagonal_, below_, Eigen::EigenvaluesOnly);
  if (solver.info() != Eigen::Success) raiseNotFound();
  values_ = solver.eigenvalues();
}

// The work left falls with the square of the columns left.
void SymmetricEigen::reduce(const Progress& progress) {
  const Index size = reflectors_.rows();
  factors_ = VectorXd::Zero(std::max<Index>(size - 1, 0));
  below_ = factors_;
  VectorXd update(size);
  for (Index i = 0; i + 1 < size; ++i) {
    if (i % kColumnsBetweenReports == 0) {
      const double left = static_cast<double>(size - i) / static_cast<double>(size);
      if (progress && !progress(1 - left * left * left)) throw Cancelled();
    }
    const Index rest = size - i - 1;
    auto reflector = reflectors_.col(i).tail(rest);
    auto corner = reflectors_.bottomRightCorner(rest, rest);
    reflector.makeHouseholderInPlace(factors_(i), below_(i));
    reflector(0) = 1;
    auto half = update.head(rest);
    half.noalias() = corner.selfadjointView<Eigen::Lower>() * (factors_(i) * reflector);
    half -= (factors_(i) / 2 * half.dot(reflector)) * reflector;
    corner.selfadjointView<Eigen::Lower>().rankUpdate(reflector, half, -1);
  }
  diagonal_ = reflectors_.diagonal();
  report(progress, 1, 1);
}

VectorXd SymmetricEigen::product(const VectorXd& vector) const {
  VectorXd result = diagonal_.cwiseProduct(vector);
  const Index rest = below_.size();
  result.head(rest) += below_.cwiseProduct(vector.tail(rest));
  result.tail(rest) += below_.cwiseProduct(vector.head(rest));
  return result;
}

VectorXd SymmetricEigen::reflected(VectorXd vector) const {
  for (Index i = factors_.size(); i-- > 0;) {
    const Index rest = factors_.size() - i;
    const auto reflector = reflectors_.col(i).tail(rest);
    auto part = vector.tail(rest);
    part -= factors_(i) * reflector.dot(part) * reflector;
  }
  return vector;
}

// Equal eigenvalues have vectors all the same: each begins elsewhere and stays orthogonal to those before.
Eigen::MatrixXd SymmetricEigen::vectorsOfLargest(Index count) const {
  const Index size = values_.size();
  const double norm = std::max(values_.cwiseAbs().maxCoeff(), std::numeric_limits<double>::min());
  const double enough = 4 * kRounding * norm * std::sqrt(static_cast<double>(size));
  simulation::Random random(1);
  Eigen::MatrixXd found(size, count);
  for (Index at = 0; at < count; ++at) {
    const double value = values_(size - 1 - at);
    const ShiftedSolver solver(diagonal_, below_, value, kRounding * norm);
    const auto before = found.leftCols(at);
    VectorXd vector(size);
    for (double& entry : vector) entry = random.uniform() - 0.5;
    double error = std::numeric_limits<double>::infinity();
    for (int round = 0; round < kMostRounds && error > enough; ++round) {
      solver.solve(vector);
      vector.normalize();
      for (int twice = 0; twice < 2; ++twice) vector -= before * (before.transpose() * vector);
      vector.normalize();
      error = (product(vector) - value * vector).norm();
    }
    if (!(error <= 1000 * enough)) raiseNotFound();
    found.col(at) = vector;
  }
  for (Index at = 0; at < count; ++at) found.col(at) = reflected(found.col(at));
  return found;
}

}  // namespace banddesk::host::statistics
