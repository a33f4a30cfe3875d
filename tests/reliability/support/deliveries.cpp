#include "deliveries.h"

#include <atomic>

#include "qm_interface.h"

namespace rel {
namespace {

std::atomic<std::uint64_t> g_records{0};
std::atomic<std::uint64_t> g_bad_records{0};
std::atomic<std::uint64_t> g_events{0};

void on_record(qm_realtime_arm_joint_state_t record) {
    ++g_records;
    if (record.errCode != 0) ++g_bad_records;
}

void on_event(qm_event_push_data_t) { ++g_events; }

}  // namespace

void count_deliveries() {
    qm_realtime_arm_state_call_back(on_record);
    qm_get_arm_event_call_back(on_event);
}

void reset_deliveries() {
    g_records = 0;
    g_bad_records = 0;
    g_events = 0;
}

std::uint64_t records_delivered() { return g_records; }
std::uint64_t events_delivered() { return g_events; }
std::uint64_t bad_records_delivered() { return g_bad_records; }

}  // namespace rel
