// Matrix toolkit over the leading irow x iline block of Matrix (up to 4) and Matrix7 (up to 7).
#include <algorithm>
#include <cmath>

#include "qman_mathfuncs.h"

namespace {

template <class M>
constexpr int capacity = static_cast<int>(sizeof(M::data) / sizeof(M::data[0]));

template <class M>
int clamp_size(int n) {
    return std::clamp(n, 0, capacity<M>);
}

template <class M>
M make_zero(int rows, int cols) {
    M m{};
    m.irow = static_cast<int16_t>(clamp_size<M>(rows));
    m.iline = static_cast<int16_t>(clamp_size<M>(cols));
    return m;
}

template <class M>
M make_unit(int n) {
    M m = make_zero<M>(n, n);
    for (int i = 0; i < m.irow; ++i) m.data[i][i] = 1.0f;
    return m;
}

template <class M>
M multiply(const M& a, const M& b) {
    M r = make_zero<M>(a.irow, b.iline);
    const int inner = clamp_size<M>(a.iline);
    for (int i = 0; i < r.irow; ++i)
        for (int j = 0; j < r.iline; ++j) {
            float sum = 0.0f;
            for (int k = 0; k < inner; ++k) sum += a.data[i][k] * b.data[k][j];
            r.data[i][j] = sum;
        }
    return r;
}

template <class M>
M transpose(const M& a) {
    M r = make_zero<M>(a.iline, a.irow);
    for (int i = 0; i < r.irow; ++i)
        for (int j = 0; j < r.iline; ++j) r.data[i][j] = a.data[j][i];
    return r;
}

template <class M>
M add(const M& a, const M& b) {
    M r = make_zero<M>(a.irow, a.iline);
    for (int i = 0; i < r.irow; ++i)
        for (int j = 0; j < r.iline; ++j) r.data[i][j] = a.data[i][j] + b.data[i][j];
    return r;
}

template <class M>
M scale(const M& a, float k) {
    M r = make_zero<M>(a.irow, a.iline);
    for (int i = 0; i < r.irow; ++i)
        for (int j = 0; j < r.iline; ++j) r.data[i][j] = a.data[i][j] * k;
    return r;
}

constexpr float kSingularPivot = 1e-12f;

// Gauss-Jordan with partial pivoting; a zero matrix signals a singular input.
template <class M>
M invert_square(const M& a) {
    const int n = clamp_size<M>(a.irow);
    M work = a;
    M inv = make_unit<M>(n);
    for (int col = 0; col < n; ++col) {
        int pivot = col;
        for (int r = col + 1; r < n; ++r)
            if (std::fabs(work.data[r][col]) > std::fabs(work.data[pivot][col])) pivot = r;
        if (std::fabs(work.data[pivot][col]) < kSingularPivot) return make_zero<M>(n, n);
        if (pivot != col)
            for (int k = 0; k < n; ++k) {
                std::swap(work.data[pivot][k], work.data[col][k]);
                std::swap(inv.data[pivot][k], inv.data[col][k]);
            }
        const float p = work.data[col][col];
        for (int k = 0; k < n; ++k) {
            work.data[col][k] /= p;
            inv.data[col][k] /= p;
        }
        for (int r = 0; r < n; ++r) {
            if (r == col) continue;
            const float f = work.data[r][col];
            if (f == 0.0f) continue;
            for (int k = 0; k < n; ++k) {
                work.data[r][k] -= f * work.data[col][k];
                inv.data[r][k] -= f * inv.data[col][k];
            }
        }
    }
    return inv;
}

// Square: plain inverse. Wide: A^T (A A^T)^-1. Tall: (A^T A)^-1 A^T.
template <class M>
M pseudo_invert(const M& a) {
    if (a.irow == a.iline) return invert_square(a);
    const M at = transpose(a);
    if (a.irow < a.iline) {
        return multiply(at, invert_square(multiply(a, at)));
    }
    return multiply(invert_square(multiply(at, a)), at);
}

}  // namespace

extern "C" {

Matrix zero_matrix(int rows, int cols) { return make_zero<Matrix>(rows, cols); }
Matrix unit_matrix(int n) { return make_unit<Matrix>(n); }
Matrix matrix_m(Matrix a, Matrix b) { return multiply(a, b); }
Matrix matrix_t(Matrix a) { return transpose(a); }
Matrix matrix_a(Matrix a, Matrix b) { return add(a, b); }
Matrix matrix_m_num(Matrix a, float k) { return scale(a, k); }
Matrix matrix_inv(Matrix a) { return pseudo_invert(a); }
Matrix matrix_inv_full_rank(Matrix a) { return invert_square(a); }

Matrix matrix_inv_coordinate_system(Matrix t) {
    Matrix r = make_unit<Matrix>(4);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) r.data[i][j] = t.data[j][i];
    for (int i = 0; i < 3; ++i)
        r.data[i][3] = -(r.data[i][0] * t.data[0][3] + r.data[i][1] * t.data[1][3] + r.data[i][2] * t.data[2][3]);
    return r;
}

Matrix7 zero_matrix_dim7(int rows, int cols) { return make_zero<Matrix7>(rows, cols); }
Matrix7 unit_matrix_dim7(int n) { return make_unit<Matrix7>(n); }
Matrix7 matrix_m_dim7(const Matrix7* a, const Matrix7* b) { return multiply(*a, *b); }
Matrix7 matrix_t_dim7(const Matrix7* a) { return transpose(*a); }
Matrix7 matrix_a_dim7(const Matrix7* a, const Matrix7* b) { return add(*a, *b); }
Matrix7 matrix_m_num_dim7(const Matrix7* a, float k) { return scale(*a, k); }
Matrix7 matrix_inv_dim7(const Matrix7* a) { return pseudo_invert(*a); }
Matrix7 matrix_inv_full_rank_dim7(const Matrix7* a) { return invert_square(*a); }

void cross(const float* a, const float* b, float* out) {
    const float x = a[1] * b[2] - a[2] * b[1];
    const float y = a[2] * b[0] - a[0] * b[2];
    const float z = a[0] * b[1] - a[1] * b[0];
    out[0] = x;
    out[1] = y;
    out[2] = z;
}

float my_atan2f(float y, float x) {
    constexpr float kTiny = 1e-9f;
    if (std::fabs(y) < kTiny && std::fabs(x) < kTiny) return 0.0f;
    return std::atan2(y, x);
}

float qm_sign(float x) {
    if (x > 0.0f) return 1.0f;
    if (x < 0.0f) return -1.0f;
    return 0.0f;
}

}  // extern "C"
