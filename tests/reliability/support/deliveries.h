// Counts of what the library's callbacks delivered. The callbacks cannot be unregistered,
// so the counters are process-wide.
#ifndef QM_TEST_DELIVERIES_H
#define QM_TEST_DELIVERIES_H

#include <cstdint>

namespace rel {

// Registers the counting event and realtime callbacks; call after qm_init.
void count_deliveries();
void reset_deliveries();
std::uint64_t records_delivered();
std::uint64_t events_delivered();
// Realtime records whose datagram did not parse.
std::uint64_t bad_records_delivered();

}  // namespace rel

#endif
