#include "host/runs/least_squares.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace banddesk::host::runs {

LeastSquares::LeastSquares(std::size_t terms)
    : terms_(terms), products_(terms * terms), values_(terms), coefficients_(terms) {}

void LeastSquares::add(std::span<const double> basis, double value, double weight) {
  for (std::size_t row = 0; row < terms_; ++row) {
    for (std::size_t column = 0; column <= row; ++column)
      matrix(products_, row, column) += weight * basis[row] * basis[column];
    values_[row] += weight * basis[row] * value;
  }
  isFactorised_ = false;
}

bool LeastSquares::factorise() {
  factor_.assign(terms_ * terms_, 0.0);
  for (std::size_t row = 0; row < terms_; ++row) {
    for (std::size_t column = 0; column <= row; ++column) {
      double sum = matrix(products_, row, column);
      for (std::size_t k = 0; k < column; ++k) sum -= matrix(factor_, row, k) * matrix(factor_, column, k);
      if (row != column) {
        matrix(factor_, row, column) = sum / matrix(factor_, column, column);
        continue;
      }
      // Against the diagonal itself, so that scale does not matter.
      if (!(sum > 1e-12 * matrix(products_, row, row))) return false;
      matrix(factor_, row, row) = std::sqrt(sum);
    }
  }
  isFactorised_ = true;
  return true;
}

void LeastSquares::backSubstitute(std::vector<double>& values) const {
  for (std::size_t row = 0; row < terms_; ++row) {
    for (std::size_t k = 0; k < row; ++k) values[row] -= factor_[row * terms_ + k] * values[k];
    values[row] /= factor_[row * terms_ + row];
  }
  for (std::size_t row = terms_; row-- > 0;) {
    for (std::size_t k = row + 1; k < terms_; ++k) values[row] -= factor_[k * terms_ + row] * values[k];
    values[row] /= factor_[row * terms_ + row];
  }
}

bool LeastSquares::solve() {
  coefficients_.assign(terms_, 0.0);
  if (!factorise()) return false;
  coefficients_ = values_;
  backSubstitute(coefficients_);
  return std::ranges::all_of(coefficients_, [](double value) { return std::isfinite(value); });
}

double LeastSquares::at(std::span<const double> basis) const {
  return std::inner_product(basis.begin(), basis.end(), coefficients_.begin(), 0.0);
}

double LeastSquares::quadraticForm(std::span<const double> a, std::span<const double> b) {
  if (!isFactorised_ && !factorise()) return 0;
  std::vector<double> solution(b.begin(), b.end());
  backSubstitute(solution);
  return std::inner_product(a.begin(), a.end(), solution.begin(), 0.0);
}

}  // namespace banddesk::host::runs
