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
    float floor[2];  // per elbow sign
    int16_t low;     // signed grid step of its lowest arm angle: negative below the reference's
    int16_t count;   // of steps
};

// A binary heap of runs with their keys (each run's least floor, or a cheaper bound), sixteen
// bytes an entry. Capacity bounds the runs waiting at once.
template <int Capacity>
class RunQueue {
public:
    bool empty() const { return size_ == 0; }
    const GridRun& top() const { return heap_[0].run; }
    float top_key() const { return heap_[0].key; }
    void push(const GridRun& run, float key) {
        const Entry entry{key, run};
        int hole = size_++;
        while (hole > 0) {
            const int parent = (hole - 1) / 2;
            if (heap_[parent].key <= entry.key) break;
            heap_[hole] = heap_[parent];
            hole = parent;
        }
        heap_[hole] = entry;
    }
    void clear() { size_ = 0; }
    GridRun pop() {
        const GridRun run = heap_[0].run;
        const Entry last = heap_[--size_];
        int hole = 0;
        for (int child = 1; child < size_; child = 2 * hole + 1) {
            if (child + 1 < size_ && heap_[child + 1].key < heap_[child].key) ++child;
            if (last.key <= heap_[child].key) break;
            heap_[hole] = heap_[child];
            hole = child;
        }
        heap_[hole] = last;
        return run;
    }

private:
    struct Entry {
        float key;
        GridRun run;
    };
    std::array<Entry, Capacity> heap_;
    int size_ = 0;
};

}  // namespace algo::ik

#endif
