// Connection slots, handles and library start/stop against real loopback sockets.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <vector>

#include "qm_handle.h"
#include "qm_interface.h"

namespace {

// A loopback port that accepts connections (the kernel completes them from the backlog).
class Listener {
public:
    Listener() {
        fd_ = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in addr{};
        addr.sin_family = AF_INET;
        addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::bind(fd_, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
        ::listen(fd_, 16);
        socklen_t len = sizeof addr;
        ::getsockname(fd_, reinterpret_cast<sockaddr*>(&addr), &len);
        port_ = ntohs(addr.sin_port);
    }
    ~Listener() { ::close(fd_); }
    int port() const { return port_; }

private:
    int fd_ = -1;
    int port_ = 0;
};

// A port on which nothing listens: bound, then released.
int closed_port() {
    int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
    socklen_t len = sizeof addr;
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len);
    ::close(fd);
    return ntohs(addr.sin_port);
}

class Lifecycle : public ::testing::TestWithParam<qm_thread_mode_e> {
protected:
    void SetUp() override {
        qm_set_log_call_back(nullptr, LOG_LEVEL_ERROR + 1);  // silence expected errors
        ASSERT_EQ(qm_init(GetParam()), 0);
        qm_set_timeout(20);  // synchronisation queries get no answer here
    }
    void TearDown() override {
        EXPECT_EQ(qm_destory(), 0);
        qm_set_timeout(500);
        qm_set_log_call_back(nullptr, LOG_LEVEL_ERROR);
    }
    Listener listener_;
};

}  // namespace

TEST_P(Lifecycle, FiveSlotsThenNullAndLowestFreedSlotIsReused) {
    std::vector<qm_robot_handle*> handles;
    for (int i = 0; i < 5; ++i) {
        handles.push_back(qm_create_robot_arm("127.0.0.1", listener_.port()));
        ASSERT_NE(handles.back(), nullptr);
    }
    EXPECT_EQ(qm_create_robot_arm("127.0.0.1", listener_.port()), nullptr);

    ASSERT_EQ(qm_delete_robot_arm(handles[3]), 0);
    ASSERT_EQ(qm_delete_robot_arm(handles[1]), 0);
    qm_robot_handle* again = qm_create_robot_arm("127.0.0.1", listener_.port());
    ASSERT_NE(again, nullptr);
    qm_rdlock_lock();
    qm_handle_t* record = qm_get_qm_handle_by_robot_handle(again);
    qm_rdlock_unlock();
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->id, 2) << "the lowest free slot is taken first";
}

TEST_P(Lifecycle, ConnectedHandleCarriesSlotIdUntilSynchronisationFails) {
    qm_robot_handle* handle = qm_create_robot_arm("127.0.0.1", listener_.port());
    ASSERT_NE(handle, nullptr);
    // With synchronisation queries unanswered the handle is marked failed but keeps its slot.
    qm_rdlock_lock();
    qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle);
    int slot_id = record ? record->id : 0;
    qm_rdlock_unlock();
    EXPECT_EQ(slot_id, 1);
    EXPECT_TRUE(handle->id == 1 || handle->id == -1);
}

TEST_P(Lifecycle, RefusedConnectGivesIdMinusOneQuicklyAndOccupiesASlot) {
    auto start = std::chrono::steady_clock::now();
    qm_robot_handle* handle = qm_create_robot_arm("127.0.0.1", closed_port());
    auto elapsed = std::chrono::steady_clock::now() - start;
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle->id, -1);
    EXPECT_LT(elapsed, std::chrono::milliseconds(3500));
    for (int i = 0; i < 4; ++i) ASSERT_NE(qm_create_robot_arm("127.0.0.1", listener_.port()), nullptr);
    EXPECT_EQ(qm_create_robot_arm("127.0.0.1", listener_.port()), nullptr) << "the failed one holds a slot";
    EXPECT_EQ(qm_delete_robot_arm(handle), 0);
    EXPECT_NE(qm_create_robot_arm("127.0.0.1", listener_.port()), nullptr);
}

TEST_P(Lifecycle, RecordThatCannotBeMadeLeavesTheSlotEmpty) {
    EXPECT_EQ(qm_create_robot_arm(nullptr, listener_.port()), nullptr);
    EXPECT_EQ(qm_create_robot_arm("127.000.000.000000001", listener_.port()), nullptr);  // 21 characters
    EXPECT_EQ(qm_create_robot_arm("127.0.0.1", 0), nullptr);
    for (int i = 0; i < 5; ++i) EXPECT_NE(qm_create_robot_arm("127.0.0.1", listener_.port()), nullptr);
}

TEST_P(Lifecycle, DeleteOfUnknownHandleFails) {
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_delete_robot_arm(&stranger), -1);
    EXPECT_EQ(qm_delete_robot_arm(nullptr), -1);
    qm_robot_handle* handle = qm_create_robot_arm("127.0.0.1", listener_.port());
    ASSERT_EQ(qm_delete_robot_arm(handle), 0);
    EXPECT_EQ(qm_delete_robot_arm(handle), -1) << "deleted twice";
}

TEST_P(Lifecycle, RobotDofIsBoundedAndReportedThroughRobotInfo) {
    qm_robot_handle* handle = qm_create_robot_arm("127.0.0.1", listener_.port());
    ASSERT_NE(handle, nullptr);
    qm_robot_info_t info{};
    EXPECT_EQ(qm_get_robot_info(handle, &info), -2) << "dof not known yet";
    EXPECT_EQ(qm_set_robot_dof(handle, 0), -2);
    EXPECT_EQ(qm_set_robot_dof(handle, 11), -2);
    EXPECT_EQ(qm_set_robot_dof(handle, 7), 0);
    EXPECT_EQ(qm_set_robot_dof(handle, 10), 0);
    ASSERT_EQ(qm_get_robot_info(handle, &info), 0);
    EXPECT_EQ(info.arm_dof, 10);
    int dof = 0;
    EXPECT_EQ(qm_get_arm_dof(handle, &dof), 0);
    EXPECT_EQ(dof, 10);

    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_set_robot_dof(&stranger, 6), -1);
    EXPECT_EQ(qm_get_robot_info(&stranger, &info), -1);
    EXPECT_EQ(qm_get_arm_dof(&stranger, &dof), -1);
}

TEST_P(Lifecycle, LookupsReleaseTheReadLockOnEveryPath) {
    qm_robot_handle* handle = qm_create_robot_arm("127.0.0.1", listener_.port());
    qm_robot_info_t info{};
    int dof = 0;
    EXPECT_EQ(qm_get_robot_info(handle, &info), -2);
    EXPECT_EQ(qm_get_arm_dof(handle, &dof), -1);
    // Would deadlock if either left the read lock held.
    qm_wrlock_lock();
    qm_wrlock_unlock();
    EXPECT_EQ(qm_delete_robot_arm(handle), 0);
}

TEST_P(Lifecycle, DestroyThenInitStartsClean) {
    for (int i = 0; i < 5; ++i) ASSERT_NE(qm_create_robot_arm("127.0.0.1", listener_.port()), nullptr);
    EXPECT_EQ(qm_destory(), 0);
    ASSERT_EQ(qm_init(GetParam()), 0);
    for (int i = 0; i < 5; ++i) EXPECT_NE(qm_create_robot_arm("127.0.0.1", listener_.port()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(AllThreadModes, Lifecycle,
                         ::testing::Values(QM_SINGLE_MODE_E, QM_DUAL_MODE_E, QM_TRIPLE_MODE_E),
                         [](const auto& info) {
                             switch (info.param) {
                                 case QM_SINGLE_MODE_E: return "single";
                                 case QM_DUAL_MODE_E: return "dual";
                                 default: return "triple";
                             }
                         });

TEST(Timeouts, SetTimeoutChangesQueryAndSetTimeoutsButNotModbus) {
    qm_set_timeout(200);
    EXPECT_EQ(m_nOutTime.load(), 200u);
    EXPECT_EQ(m_nOutTime_max.load(), 200u);
    EXPECT_EQ(m_nOutTime_modbus.load(), 1000u);
    qm_set_timeout(500);
    m_nOutTime_max = 1000;
}

TEST(Version, ApiVersionText) { EXPECT_STREQ(qm_api_version(), "1.1.0"); }
