#ifndef INV_KINEMATICS_ARM_ANGLE_RUNS_H
#define INV_KINEMATICS_ARM_ANGLE_RUNS_H

// Runs of consecutive steps of the arm-angle grid on one side of the reference's arm angle,
// each with a floor under the cost of every branch at its arm angles, waiting to be looked at
// cheapest floor first. Not part of the library's interface.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "lane_trig.h"

namespace algo::ik {

struct GridRun {
    float floor[2];  // per elbow sign
    int16_t low;     // signed grid step of its lowest arm angle: negative below the reference's
    int16_t count;   // of steps
};

// A binary heap of items with their keys. Capacity bounds the items waiting at once.
template <class Item, int Capacity>
class KeyHeap {
public:
    bool empty() const { return size_ == 0; }
    const Item& top() const { return heap_[0].item; }
    float top_key() const { return heap_[0].key; }
    void push(const Item& item, float key) {
        const Entry entry{key, item};
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
    Item pop() {
        const Item item = heap_[0].item;
        const Entry last = heap_[--size_];
        int hole = 0;
        for (int child = 1; child < size_; child = 2 * hole + 1) {
            if (child + 1 < size_ && heap_[child + 1].key < heap_[child].key) ++child;
            if (last.key <= heap_[child].key) break;
            heap_[hole] = heap_[child];
            hole = child;
        }
        heap_[hole] = last;
        return item;
    }

private:
    struct Entry {
        float key;
        Item item;
    };
    std::array<Entry, Capacity> heap_;
    int size_ = 0;
};

// Runs with their keys (each run's least floor, or a cheaper bound), sixteen bytes an entry.
template <int Capacity>
using RunQueue = KeyHeap<GridRun, Capacity>;

// Runs waiting where the pass that bounded them left them, by lanes of V. Most are never looked
// at again, so each pass waits once, by its least waiting run, rather than each run; and as a
// search makes a few dozen passes at most, the least of those is found by lanes, without a heap.
// MaxPasses bounds the passes in a search.
template <class V, int MaxPasses>
class PassQueue {
public:
    using Steps = algo::lanes::MaskOf<V>;
    struct Pass {
        V key;  // infinite in the lanes not waiting
        V floor[2];  // per elbow sign
        Steps low, count;  // as GridRun's
    };

    PassQueue() { least_.fill(INFINITY); }

    bool empty() const { return !(least_[top_] < INFINITY); }
    float top_key() const { return least_[top_]; }
    GridRun top() const { return run_of(top_); }
    GridRun pop() {
        const int pass = top_;
        const GridRun run = run_of(pass);
        passes_[pass].key[lane_[pass]] = INFINITY;
        wait(pass);
        find_top();
        return run;
    }
    // The next pass's lanes, filled by the caller, then waiting; a pass with none waiting leaves
    // its place to the next. Of equal keys the earlier pass's goes first.
    Pass& next() { return passes_[size_]; }
    void commit() {
        if (!wait(size_)) return;
        if (least_[size_] < least_[top_]) top_ = size_;
        ++size_;
    }

private:
    static constexpr int kLanes = algo::lanes::kLanesOf<V>;
    static constexpr int kSlots = (MaxPasses + kLanes - 1) / kLanes * kLanes;

    GridRun run_of(int pass) const {
        const Pass& p = passes_[pass];
        const int lane = lane_[pass];
        return {{p.floor[0][lane], p.floor[1][lane]},
                static_cast<int16_t>(p.low[lane]),
                static_cast<int16_t>(p.count[lane])};
    }
    // The least of a vector's lanes, in every lane.
    static V least_of(V v) {
        if constexpr (kLanes == 8) {
            v = algo::lanes::min(v, __builtin_shufflevector(v, v, 4, 5, 6, 7, 0, 1, 2, 3));
            v = algo::lanes::min(v, __builtin_shufflevector(v, v, 2, 3, 0, 1, 6, 7, 4, 5));
            return algo::lanes::min(v, __builtin_shufflevector(v, v, 1, 0, 3, 2, 5, 4, 7, 6));
        } else {
            v = algo::lanes::min(v, __builtin_shufflevector(v, v, 2, 3, 0, 1));
            return algo::lanes::min(v, __builtin_shufflevector(v, v, 1, 0, 3, 2));
        }
    }
    V slots(int i) const {
        V v;
        std::memcpy(&v, &least_[i], sizeof(V));
        return v;
    }
    // The pass's least key and its lane (equal keys: the lowest lane); whether any waits.
    bool wait(int pass) {
        const V key = passes_[pass].key;
        const V least = least_of(key);
        least_[pass] = least[0];
        lane_[pass] = static_cast<int8_t>(__builtin_ctz(algo::lanes::lane_bits(key == least)));
        return least[0] < INFINITY;
    }
    // The pass of the least key, the earliest of equal ones; pass 0 when none waits.
    void find_top() {
        V least = slots(0);
        for (int i = kLanes; i < size_; i += kLanes) least = algo::lanes::min(least, slots(i));
        least = least_of(least);
        top_ = 0;
        if (!(least[0] < INFINITY)) return;
        for (int i = 0;; i += kLanes) {
            const int found = algo::lanes::lane_bits(slots(i) == least);
            if (found != 0) {
                top_ = i + __builtin_ctz(found);
                return;
            }
        }
    }

    std::array<Pass, MaxPasses> passes_;
    alignas(sizeof(V)) std::array<float, kSlots> least_;  // per pass; infinite past the last
    std::array<int8_t, MaxPasses> lane_;
    int size_ = 0;
    int top_ = 0;
};

}  // namespace algo::ik

#endif
