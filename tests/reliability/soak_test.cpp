// A thousand connections made and dropped against the simulator: nothing stays behind. Run
// under LeakSanitizer (scripts/test.sh asan) it also proves that nothing leaks.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "process_usage.h"
#include "qm_interface.h"
#include "restartable_sim.h"

namespace rel {
namespace {

using namespace std::chrono_literals;

// The count once the simulator has closed its side of the last connection too.
int settled_descriptors(int expected) {
    for (int i = 0; i < 100 && open_descriptors() != expected; ++i) std::this_thread::sleep_for(10ms);
    return open_descriptors();
}

TEST(Soak, ThousandCreateDeleteCyclesLeaveNoDescriptorOrMemoryBehind) {
    RestartableSim simulator(quiet_options());
    qm_init(QM_TRIPLE_MODE_E);
    auto cycle = [&] {
        qm_robot_handle* arm = qm_create_robot_arm("127.0.0.1", simulator.port());
        ASSERT_NE(arm, nullptr);
        ASSERT_GT(arm->id, 0);
        ASSERT_EQ(qm_delete_robot_arm(arm), 0);
    };
    // The first connection registers the realtime port and warms up the allocator.
    for (int i = 0; i < 20; ++i) ASSERT_NO_FATAL_FAILURE(cycle());
    std::this_thread::sleep_for(200ms);
    const int descriptors = open_descriptors();
    const long resident = resident_kib();
    for (int i = 0; i < 1000; ++i) ASSERT_NO_FATAL_FAILURE(cycle()) << "cycle " << i;
    EXPECT_EQ(settled_descriptors(descriptors), descriptors);
    if (!sanitized_build()) {
        EXPECT_LT(resident_kib() - resident, 2048);
    }
    qm_destory();
}

}  // namespace
}  // namespace rel
