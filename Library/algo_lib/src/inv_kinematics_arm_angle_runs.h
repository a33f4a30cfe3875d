#ifndef INV_KINEMATICS_ARM_ANGLE_RUNS_H
#define INV_KINEMATICS_ARM_ANGLE_RUNS_H

// Runs of consecutive steps of the arm-angle grid on one side of the reference's arm angle,
// each with a floor under the cost of every branch at its arm angles, waiting to be looked at
// cheapest floor first. Not part of the library's interface.

#include <algorithm>
#include <array>
#include <cstdint>

namespace algo::ik {

struct GridRun {
    float key;       // the lesser of the floors
    float floor[2];  // per elbow sign
    int16_t first;   // grid step of the arm angle nearest the reference's
    int16_t count;   // of steps
    int8_t side;     // +1 above the reference's arm angle, -1 below
};

template <int Capacity>
class RunQueue {
public:
    bool empty() const { return size_ == 0; }
    const GridRun& top() const { return runs_[0]; }
    void push(const GridRun& run) {
        runs_[size_++] = run;
        std::push_heap(runs_.begin(), runs_.begin() + size_, later);
    }
    void clear() { size_ = 0; }
    GridRun pop() {
        std::pop_heap(runs_.begin(), runs_.begin() + size_, later);
        return runs_[--size_];
    }

private:
    static bool later(const GridRun& a, const GridRun& b) { return a.key > b.key; }
    std::array<GridRun, Capacity> runs_;
    int size_ = 0;
};

}  // namespace algo::ik

#endif
