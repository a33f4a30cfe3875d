// The matrix toolkit: sizes, inverses and the 7x7 variants.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "qman_mathfuncs.h"

namespace {

Matrix filled(int rows, int cols, unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> v(-1.0f, 1.0f);
    Matrix m = zero_matrix(rows, cols);
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < cols; ++j) m.data[i][j] = v(rng);
    return m;
}

template <class M>
void expect_identity(const M& m, int n, float tol) {
    ASSERT_EQ(m.irow, n);
    ASSERT_EQ(m.iline, n);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) EXPECT_NEAR(m.data[i][j], i == j ? 1.0f : 0.0f, tol) << i << "," << j;
}

TEST(MatrixProduct, HonoursTheUsedSizes) {
    const Matrix a = filled(2, 3, 1);
    const Matrix b = filled(3, 4, 2);
    const Matrix c = matrix_m(a, b);
    EXPECT_EQ(c.irow, 2);
    EXPECT_EQ(c.iline, 4);
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 4; ++j) {
            float sum = 0.0f;
            for (int k = 0; k < 3; ++k) sum += a.data[i][k] * b.data[k][j];
            EXPECT_FLOAT_EQ(c.data[i][j], sum);
        }
    EXPECT_EQ(c.data[2][0], 0.0f);
}

TEST(MatrixBasics, TransposeSwapsSizesAndEntries) {
    const Matrix a = filled(2, 3, 3);
    const Matrix t = matrix_t(a);
    EXPECT_EQ(t.irow, 3);
    EXPECT_EQ(t.iline, 2);
    EXPECT_EQ(t.data[2][1], a.data[1][2]);
}

TEST(MatrixBasics, SumAndScaling) {
    const Matrix a = filled(3, 3, 4);
    const Matrix s = matrix_a(a, matrix_m_num(a, 2.0f));
    EXPECT_FLOAT_EQ(s.data[1][2], 3.0f * a.data[1][2]);
}

TEST(MatrixBasics, SizesAreClampedToTheStorage) {
    const Matrix z = zero_matrix(9, -1);
    EXPECT_EQ(z.irow, 4);
    EXPECT_EQ(z.iline, 0);
    const Matrix7 u = unit_matrix_dim7(12);
    EXPECT_EQ(u.irow, 7);
}

TEST(MatrixInverse, SquareInverseTimesMatrixIsIdentity) {
    const Matrix a = filled(4, 4, 5);
    expect_identity(matrix_m(matrix_inv_full_rank(a), a), 4, 1e-4f);
    expect_identity(matrix_m(a, matrix_inv(a)), 4, 1e-4f);
}

TEST(MatrixInverse, SingularMatrixGivesZero) {
    Matrix a = filled(3, 3, 6);
    for (int j = 0; j < 3; ++j) a.data[2][j] = a.data[0][j];
    for (const Matrix& m : {a, zero_matrix(3, 3)}) {
        const Matrix inv = matrix_inv_full_rank(m);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) EXPECT_EQ(inv.data[i][j], 0.0f);
    }
}

TEST(MatrixInverse, WideMatrixGetsARightPseudoInverse) {
    const Matrix a = filled(3, 4, 7);
    const Matrix pinv = matrix_inv(a);
    EXPECT_EQ(pinv.irow, 4);
    EXPECT_EQ(pinv.iline, 3);
    expect_identity(matrix_m(a, pinv), 3, 1e-4f);
}

TEST(MatrixInverse, TallMatrixGetsALeftPseudoInverse) {
    const Matrix a = filled(4, 2, 8);
    expect_identity(matrix_m(matrix_inv(a), a), 2, 1e-4f);
}

TEST(MatrixInverse, RigidTransformInverseUndoesTheTransform) {
    Matrix t = matrix_m(rotz(0.7f), matrix_m(roty(-0.3f), rotx(1.2f)));
    t.irow = t.iline = 4;
    t.data[0][3] = 0.2f, t.data[1][3] = -0.5f, t.data[2][3] = 0.9f, t.data[3][3] = 1.0f;
    expect_identity(matrix_m(matrix_inv_coordinate_system(t), t), 4, 1e-6f);
    expect_identity(matrix_m(t, matrix_inv_coordinate_system(t)), 4, 1e-6f);
}

TEST(Matrix7, JacobianPseudoInverseOfASixBySeven) {
    std::mt19937 rng(10);
    std::uniform_real_distribution<float> v(-1.0f, 1.0f);
    Matrix7 j = zero_matrix_dim7(6, 7);
    for (int r = 0; r < 6; ++r)
        for (int c = 0; c < 7; ++c) j.data[r][c] = v(rng);
    const Matrix7 pinv = matrix_inv_dim7(&j);
    EXPECT_EQ(pinv.irow, 7);
    EXPECT_EQ(pinv.iline, 6);
    const Matrix7 product = matrix_m_dim7(&j, &pinv);
    expect_identity(product, 6, 1e-3f);
}

TEST(Matrix7, SquareInverseAndArithmetic) {
    std::mt19937 rng(11);
    std::uniform_real_distribution<float> v(-1.0f, 1.0f);
    Matrix7 a = unit_matrix_dim7(7);
    for (int r = 0; r < 7; ++r)
        for (int c = 0; c < 7; ++c) a.data[r][c] += 0.3f * v(rng);
    const Matrix7 inv = matrix_inv_full_rank_dim7(&a);
    const Matrix7 product = matrix_m_dim7(&inv, &a);
    expect_identity(product, 7, 1e-4f);
    const Matrix7 t = matrix_t_dim7(&a);
    EXPECT_EQ(t.data[5][2], a.data[2][5]);
    const Matrix7 twice = matrix_m_num_dim7(&a, 2.0f);
    const Matrix7 sum = matrix_a_dim7(&a, &a);
    EXPECT_FLOAT_EQ(sum.data[3][4], twice.data[3][4]);
}

TEST(VectorHelpers, CrossProductIsRightHandedAndMayShareOutput) {
    float x[3] = {1, 0, 0};
    const float y[3] = {0, 1, 0};
    float z[3];
    cross(x, y, z);
    EXPECT_EQ(z[2], 1.0f);
    cross(x, y, x);
    EXPECT_EQ(x[0], 0.0f);
    EXPECT_EQ(x[2], 1.0f);
}

TEST(VectorHelpers, Atan2OfTheOriginIsZero) {
    EXPECT_EQ(my_atan2f(0.0f, -0.0f), 0.0f);
    EXPECT_EQ(my_atan2f(-0.0f, -1e-12f), 0.0f);
    EXPECT_FLOAT_EQ(my_atan2f(1.0f, 0.0f), 1.5707964f);
    EXPECT_FLOAT_EQ(my_atan2f(-0.0f, -1.0f), std::atan2(-0.0f, -1.0f));
}

TEST(ElementaryRotations, RotationPartOfATransform) {
    Matrix t = rotz(0.4f);
    t.irow = t.iline = 4;
    t.data[0][3] = 5.0f;
    const Matrix r = matrix_T2R(t);
    EXPECT_EQ(r.irow, 3);
    EXPECT_EQ(r.data[0][3], 0.0f);
    EXPECT_FLOAT_EQ(r.data[1][0], std::sin(0.4f));
}

}  // namespace
