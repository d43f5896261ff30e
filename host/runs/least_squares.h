// Weighted linear least squares of few terms, by normal equations: for bases that are scaled to about 1. It
// keeps no data, so a million points cost no memory.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace banddesk::host::runs {

class LeastSquares {
 public:
  explicit LeastSquares(std::size_t terms);

  void add(std::span<const double> basis, double value, double weight);

  /// False when the points do not determine the terms; then the coefficients are 0.
  bool solve();
  /// After solve(), by term.
  const std::vector<double>& coefficients() const { return coefficients_; }
  double at(std::span<const double> basis) const;
  /// a' (X'WX)^-1 b: with a = b the variance of the fit there, for residuals of variance 1.
  double quadraticForm(std::span<const double> a, std::span<const double> b);

 private:
  bool factorise();
  /// Solves with the factor; `values` becomes the solution.
  void backSubstitute(std::vector<double>& values) const;
  double& matrix(std::vector<double>& of, std::size_t row, std::size_t column) const {
    return of[row * terms_ + column];
  }

  std::size_t terms_;
  std::vector<double> products_;  // X'WX
  std::vector<double> values_;    // X'Wy
  std::vector<double> factor_;    // of Cholesky, lower
  std::vector<double> coefficients_;
  bool isFactorised_ = false;
};

}  // namespace banddesk::host::runs
