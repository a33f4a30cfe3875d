#ifndef INV_KINEMATICS_ARM_ANGLE_RUNS_H
#define INV_KINEMATICS_ARM_ANGLE_RUNS_H

// Runs of consecutive steps of the arm-angle grid on one side of the reference's arm angle,
// each with a floor under the cost of every branch at its arm angles, waiting to be looked at
// cheapest floor first. Not part of the library's interface.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

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
        --size_;
        sift_down(heap_[size_]);
        return item;
    }
    // pop() and push() in one: the new item goes down from the top.
    void replace_top(const Item& item, float key) { sift_down({key, item}); }

private:
    struct Entry {
        float key;
        Item item;
    };
    void sift_down(const Entry entry) {
        int hole = 0;
        for (int child = 1; child < size_; child = 2 * hole + 1) {
            if (child + 1 < size_ && heap_[child + 1].key < heap_[child].key) ++child;
            if (entry.key <= heap_[child].key) break;
            heap_[hole] = heap_[child];
            hole = child;
        }
        heap_[hole] = entry;
    }
    std::array<Entry, Capacity> heap_;
    int size_ = 0;
};

// Runs with their keys (each run's least floor, or a cheaper bound), sixteen bytes an entry.
template <int Capacity>
using RunQueue = KeyHeap<GridRun, Capacity>;

// Runs waiting where the pass that bounded them left them, by lanes of V. Most are never looked
// at again, so the heap holds each pass once, keyed by its least waiting run, rather than each
// run. MaxPasses bounds the passes in a search.
template <class V, int MaxPasses>
class PassQueue {
public:
    using Steps = algo::lanes::MaskOf<V>;
    struct Pass {
        V key;  // infinite in the lanes not waiting
        V floor[2];  // per elbow sign
        Steps low, count;  // as GridRun's
    };

    bool empty() const { return heap_.empty(); }
    float top_key() const { return heap_.top_key(); }
    GridRun top() const { return run_of(heap_.top()); }
    // The run in a pass's lane.
    static GridRun run_of(const Pass& p, int lane) {
        return {{p.floor[0][lane], p.floor[1][lane]},
                static_cast<int16_t>(p.low[lane]),
                static_cast<int16_t>(p.count[lane])};
    }
    // The least of a pass's keys and its lane, if any waits; equal keys go lowest lane first.
    static bool least_of(const V& key, float& least_key, int& lane) {
        V least = key;
        if constexpr (algo::lanes::kLanesOf<V> == 8) {
            least = algo::lanes::min(least, __builtin_shufflevector(least, least, 4, 5, 6, 7, 0, 1, 2, 3));
            least = algo::lanes::min(least, __builtin_shufflevector(least, least, 2, 3, 0, 1, 6, 7, 4, 5));
            least = algo::lanes::min(least, __builtin_shufflevector(least, least, 1, 0, 3, 2, 5, 4, 7, 6));
        } else {
            least = algo::lanes::min(least, __builtin_shufflevector(least, least, 2, 3, 0, 1));
            least = algo::lanes::min(least, __builtin_shufflevector(least, least, 1, 0, 3, 2));
        }
        least_key = least[0];
        lane = __builtin_ctz(algo::lanes::lane_bits(key == least));
        return least_key < INFINITY;
    }
    // The pass waits on in the heap by its next least key, if any is left.
    GridRun pop() {
        const Waiting w = heap_.top();
        // The whole key at once: the next pop waits on it, and a lane's store would stall its load.
        V& key = passes_[w.pass].key;
        key = algo::lanes::select(algo::lanes::lane_numbers<V>() == w.lane, algo::lanes::splat<V>(INFINITY),
                                  key);
        float least;
        int lane;
        if (least_of(key, least, lane)) {
            heap_.replace_top({w.pass, lane}, least);
        } else {
            heap_.pop();
        }
        return run_of(w);
    }
    // The next pass's lanes, filled by the caller, then waiting; a pass with none waiting leaves
    // its place to the next.
    Pass& next() { return passes_[size_]; }
    void commit() {
        float least;
        int lane;
        if (!least_of(passes_[size_].key, least, lane)) return;
        heap_.push({size_, lane}, least);
        ++size_;
    }

private:
    struct Waiting {
        int pass, lane;
    };
    GridRun run_of(const Waiting& w) const { return run_of(passes_[w.pass], w.lane); }

    std::array<Pass, MaxPasses> passes_;
    KeyHeap<Waiting, MaxPasses> heap_;
    int size_ = 0;
};

}  // namespace algo::ik

#endif
