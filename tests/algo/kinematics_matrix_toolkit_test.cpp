// The matrix toolkit's edge cases; plain products and inverses are exercised by the kinematics.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "qman_mathfuncs.h"

namespace {

template <class M>
M filled(M m, int rows, int cols, unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> v(-1.0f, 1.0f);
    m.irow = rows, m.iline = cols;
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < cols; ++j) m.data[i][j] = v(rng);
    return m;
}

template <class M>
void expect_identity(const M& m, int n, float tol) {
    ASSERT_TRUE(m.irow == n && m.iline == n) << m.irow << "x" << m.iline;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) EXPECT_NEAR(m.data[i][j], i == j ? 1.0f : 0.0f, tol) << i << "," << j;
}

TEST(MatrixToolkit, SizesAreClampedToTheStorage) {
    const Matrix z = zero_matrix(9, -1);
    EXPECT_EQ(z.irow, 4);
    EXPECT_EQ(z.iline, 0);
    EXPECT_EQ(unit_matrix_dim7(12).irow, 7);
}

TEST(MatrixToolkit, SingularMatrixInvertsToZero) {
    Matrix a = filled(zero_matrix(3, 3), 3, 3, 6);
    for (int j = 0; j < 3; ++j) a.data[2][j] = a.data[0][j];
    for (const Matrix& m : {a, zero_matrix(3, 3)}) {
        const Matrix inv = matrix_inv_full_rank(m);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) EXPECT_EQ(inv.data[i][j], 0.0f);
    }
}

TEST(MatrixToolkit, NonSquareMatricesGetPseudoInverses) {
    const Matrix wide = filled(zero_matrix(3, 4), 3, 4, 7);
    expect_identity(matrix_m(wide, matrix_inv(wide)), 3, 1e-4f);
    const Matrix tall = filled(zero_matrix(4, 2), 4, 2, 8);
    expect_identity(matrix_m(matrix_inv(tall), tall), 2, 1e-4f);
    Matrix7 jacobian = filled(zero_matrix_dim7(6, 7), 6, 7, 10);
    const Matrix7 pinv = matrix_inv_dim7(&jacobian);
    expect_identity(matrix_m_dim7(&jacobian, &pinv), 6, 1e-3f);
}

TEST(VectorHelpers, CrossProductMayShareItsOutput) {
    float x[3] = {1, 0, 0};
    const float y[3] = {0, 1, 0};
    cross(x, y, x);
    EXPECT_EQ(x[0], 0.0f);
    EXPECT_EQ(x[2], 1.0f);
}

TEST(VectorHelpers, Atan2OfTheOriginIsZero) {
    EXPECT_EQ(my_atan2f(0.0f, -0.0f), 0.0f);
    EXPECT_EQ(my_atan2f(-0.0f, -1e-12f), 0.0f);
    EXPECT_FLOAT_EQ(my_atan2f(-0.0f, -1.0f), std::atan2(-0.0f, -1.0f));
}

TEST(VectorHelpers, SignIsZeroOnlyForExactZero) {
    EXPECT_EQ(qm_sign(-1e-30f), -1.0f);
    EXPECT_EQ(qm_sign(1e-30f), 1.0f);
    EXPECT_EQ(qm_sign(-0.0f), 0.0f);
}

}  // namespace
