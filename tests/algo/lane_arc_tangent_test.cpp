// The seven-joint search's floors read their angles from the one-polynomial arc tangent: their
// slack allows for it only within its stated error of the C library's, and with the library's signs.

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include "lane_trig.h"

namespace {

using algo::lanes::F4;

TEST(LaneArcTangent, DirectFormStaysWithinItsErrorOfTheLibrary) {
    std::vector<std::pair<float, float>> inputs = {
        // (y, x): zeros, axes, octant edges, tiny parts
        {0.0f, 1.0f},        {-0.0f, 1.0f},   {0.0f, -1.0f},  {-0.0f, -1.0f}, {0.0f, 0.0f},
        {-0.0f, -0.0f},      {1.0f, 0.0f},    {-1.0f, -0.0f}, {1.0f, 1.0f},   {-1.0f, -1.0f},
        {0.41421356f, 1.0f}, {1e-30f, -1.0f}, {-3.0f, 1e-7f}, {2e-8f, 3e-8f}};
    std::mt19937 rng(11);
    std::uniform_real_distribution<float> coordinate(-2.0f, 2.0f);
    for (int i = 0; i < 40000; ++i) inputs.emplace_back(coordinate(rng), coordinate(rng));
    while (inputs.size() % 4 != 0) inputs.push_back(inputs.back());
    for (size_t i = 0; i < inputs.size(); i += 4) {
        F4 y, x;
        for (int k = 0; k < 4; ++k) {
            y[k] = inputs[i + k].first;
            x[k] = inputs[i + k].second;
        }
        const F4 a = algo::lanes::atan2_finite_direct(y, x);
        for (int k = 0; k < 4; ++k) {
            const double library = std::atan2(double(y[k]), double(x[k]));
            ASSERT_NEAR(a[k], library, 4e-7) << "y " << y[k] << " x " << x[k];
            ASSERT_EQ(std::signbit(a[k]), std::signbit(library)) << "y " << y[k] << " x " << x[k];
        }
    }
}

}  // namespace
