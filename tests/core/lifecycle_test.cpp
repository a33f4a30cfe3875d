// Connection slots, handles and library start/stop against real loopback sockets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <string>
#include <vector>

#include "log_texts.h"
#include "qm_handle.h"
#include "qm_interface.h"
#include "test_io.h"

namespace {

class Lifecycle : public ::testing::TestWithParam<qm_thread_mode_e> {
protected:
    void SetUp() override {
        ::listen(listener_, 16);  // the kernel completes connections from the backlog
        ASSERT_EQ(qm_init(GetParam()), 0);
        qm_set_timeout(20);  // synchronisation queries get no answer here
    }
    void TearDown() override {
        EXPECT_EQ(qm_destory(), 0);
        qm_set_timeout(500);
        ::close(listener_);
    }
    qm_robot_handle* create() { return qm_create_robot_arm("127.0.0.1", port_); }

    int listener_ = qm_test::bound_socket(SOCK_STREAM);
    int port_ = qm_test::port_of(listener_);
};

}  // namespace

TEST_P(Lifecycle, FiveSlotsThenNullAndLowestFreedSlotIsReused) {
    // Records that cannot be made leave their slot empty.
    EXPECT_EQ(qm_create_robot_arm(nullptr, port_), nullptr);
    EXPECT_EQ(qm_create_robot_arm("127.000.000.000000001", port_), nullptr);  // 21 characters
    EXPECT_EQ(qm_create_robot_arm("127.0.0.1", 0), nullptr);
    std::vector<qm_robot_handle*> handles;
    for (int i = 0; i < 5; ++i) {
        handles.push_back(create());
        ASSERT_NE(handles.back(), nullptr);
    }
    EXPECT_EQ(create(), nullptr);

    ASSERT_EQ(qm_delete_robot_arm(handles[3]), 0);
    ASSERT_EQ(qm_delete_robot_arm(handles[1]), 0);
    qm_robot_handle* again = create();
    ASSERT_NE(again, nullptr);
    TableReadLock lock;
    const qm_handle_t* record = qm_get_qm_handle_by_robot_handle(again);
    EXPECT_EQ(record ? record->id : 0, 2) << "the lowest free slot is taken first; ids count from 1";
}

TEST_P(Lifecycle, RefusedConnectGivesIdMinusOneQuicklyAndOccupiesASlot) {
    auto start = std::chrono::steady_clock::now();
    qm_robot_handle* handle = qm_create_robot_arm("127.0.0.1", qm_test::free_port(SOCK_STREAM));
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle->id, -1);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(3500));
    for (int i = 0; i < 4; ++i) ASSERT_NE(create(), nullptr);
    EXPECT_EQ(create(), nullptr) << "the failed one holds a slot";
    EXPECT_EQ(qm_delete_robot_arm(handle), 0);
    EXPECT_NE(create(), nullptr);
}

TEST_P(Lifecycle, DeleteOfUnknownHandleFails) {
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_delete_robot_arm(&stranger), -1);
    EXPECT_EQ(qm_delete_robot_arm(nullptr), -1);
    qm_robot_handle* handle = create();
    ASSERT_EQ(qm_delete_robot_arm(handle), 0);
    EXPECT_EQ(qm_delete_robot_arm(handle), -1) << "deleted twice";
}

TEST_P(Lifecycle, RobotDofIsBoundedAndLookupsReleaseTheReadLock) {
    qm_robot_handle* handle = create();
    ASSERT_NE(handle, nullptr);
    qm_robot_info_t info{};
    int dof = 0;
    EXPECT_EQ(qm_get_robot_info(handle, &info), -2) << "dof not known yet";
    EXPECT_EQ(qm_get_arm_dof(handle, &dof), -1);
    // Would deadlock if either lookup left the read lock held.
    qm_wrlock_lock();
    qm_wrlock_unlock();
    EXPECT_EQ(qm_set_robot_dof(handle, 0), -2);
    EXPECT_EQ(qm_set_robot_dof(handle, 11), -2);
    EXPECT_EQ(qm_set_robot_dof(handle, 7), 0);
    EXPECT_EQ(qm_set_robot_dof(handle, 10), 0);
    ASSERT_EQ(qm_get_robot_info(handle, &info), 0);
    EXPECT_EQ(info.arm_dof, 10);
    EXPECT_EQ(qm_get_arm_dof(handle, &dof), 0);
    EXPECT_EQ(dof, 10);

    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_set_robot_dof(&stranger, 6), -1);
    EXPECT_EQ(qm_get_robot_info(&stranger, &info), -1);
    EXPECT_EQ(qm_get_arm_dof(&stranger, &dof), -1);
}

TEST_P(Lifecycle, ExitingWithoutDestroyIsQuietAndClean) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            qm_set_log_call_back(qm_test::noting_sink, LOG_LEVEL_DEBUG);  // the failed syncs' errors
            for (int i = 0; i < 2; ++i) create();
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), ::testing::IsEmpty());
}

TEST_P(Lifecycle, DestroyThenInitStartsClean) {
    for (int i = 0; i < 5; ++i) ASSERT_NE(create(), nullptr);
    EXPECT_EQ(qm_destory(), 0);
    ASSERT_EQ(qm_init(GetParam()), 0);
    for (int i = 0; i < 5; ++i) EXPECT_NE(create(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(AllThreadModes, Lifecycle,
                         ::testing::Values(QM_SINGLE_MODE_E, QM_DUAL_MODE_E, QM_TRIPLE_MODE_E),
                         [](const auto& info) {
                             return std::string(std::array{"single", "dual", "triple"}[info.param]);
                         });

TEST(Timeouts, SetTimeoutChangesQueryAndSetTimeoutsButNotModbus) {
    qm_set_timeout(200);
    EXPECT_EQ(m_nOutTime.load(), 200u);
    EXPECT_EQ(m_nOutTime_max.load(), 200u);
    EXPECT_EQ(m_nOutTime_modbus.load(), 1000u);
    qm_set_timeout(500);
    m_nOutTime_max = 1000;
}

TEST(Version, ApiVersionText) {
    EXPECT_STREQ(qm_api_version(), "1.1.0");
}
