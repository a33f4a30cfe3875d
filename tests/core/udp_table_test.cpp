// The UDP port table: shared ports, user counts and the five-entry bound.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>

#include "test_io.h"
#include "udp.h"

namespace {

struct UdpTable : ::testing::Test {
    std::unique_ptr<qm_udp_handle> table{qm_udp_init()};
    // Ports high enough not to collide with the other suites' ephemeral ones.
    static constexpr int kBase = 47310;
};

bool is_open(int fd) {
    int type = 0;
    socklen_t len = sizeof type;
    return getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &len) == 0;
}

}  // namespace

TEST_F(UdpTable, SamePortTwiceSharesOneSocketUntilTheLastUserGoes) {
    EXPECT_EQ(table->udp_add_port(table.get(), kBase), 0);
    EXPECT_EQ(table->udp_add_port(table.get(), kBase), 1);
    const auto& entry = table->udp_list[0];
    EXPECT_EQ(entry.user_num, 2);
    EXPECT_EQ(entry.port, kBase);
    const int fd = entry.udp_id;
    EXPECT_GT(fd, 0);

    EXPECT_EQ(table->udp_delete_port(table.get(), kBase), 0);
    EXPECT_EQ(entry.user_num, 1);
    EXPECT_TRUE(is_open(fd));
    table->udp_delete_port(table.get(), kBase);
    EXPECT_EQ(entry.user_num, 0);
    EXPECT_EQ(entry.port, 0);
    EXPECT_FALSE(is_open(fd));
}

TEST_F(UdpTable, SixthDistinctPortIsRefused) {
    for (int i = 0; i < UDP_LIST_MAX; ++i) ASSERT_EQ(table->udp_add_port(table.get(), kBase + 1 + i), 0);
    EXPECT_EQ(table->udp_add_port(table.get(), kBase + 10), -2);
    EXPECT_EQ(table->udp_add_port(table.get(), kBase + 3), 1) << "known ports still count up";
    table->udp_delete_port(table.get(), kBase + 3);
    table->udp_delete_port(table.get(), kBase + 3);
    EXPECT_EQ(table->udp_add_port(table.get(), kBase + 10), 0) << "a freed entry is taken again";
}

TEST_F(UdpTable, PortThatCannotBeBoundLeavesEntryZeroed) {
    // A socket that holds the port without address reuse makes the bind fail.
    const int holder = qm_test::bound_socket(SOCK_DGRAM, kBase + 30);
    ASSERT_GE(holder, 0);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(table->udp_add_port(table.get(), kBase + 30), -1);
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("bind failed"), std::string::npos);
    EXPECT_EQ(table->udp_list[0].user_num, 0);
    EXPECT_EQ(table->udp_list[0].udp_id, 0);
    ::close(holder);
}
