// All eigenvalues of a symmetric matrix and the eigenvectors of the largest alone, in steps between which the
// work can be cancelled:
//   reduction to a tridiagonal matrix by reflections   Householder 1958, J. ACM 5: 339
//   vectors by inverse iteration                       Wilkinson 1965, The Algebraic Eigenvalue Problem
#pragma once

#include <Eigen/Core>

#include "host/statistics/progress.h"

namespace banddesk::host::statistics {

class SymmetricEigen {
 public:
  // Only the lower triangle counts. Raises an Error where the eigenvalues cannot be found.
  explicit SymmetricEigen(Eigen::MatrixXd matrix, const Progress& progress = {});

  const Eigen::VectorXd& values() const { return values_; }  // ascending
  // A column each, of length 1 and orthogonal, that of the largest eigenvalue first.
  Eigen::MatrixXd vectorsOfLargest(Eigen::Index count) const;

 private:
  void reduce(const Progress& progress);
  Eigen::VectorXd product(const Eigen::VectorXd& vector) const;
  Eigen::VectorXd reflected(Eigen::VectorXd vector) const;

  Eigen::MatrixXd reflectors_;  // below the diagonal, a column each, without their first entry, which is 1
  Eigen::VectorXd factors_;     // of the reflectors
  Eigen::VectorXd diagonal_, below_;
  Eigen::VectorXd values_;
};

}  // namespace banddesk::host::statistics
