// The UDP thread: receives the realtime push on every registered port and hands each
// decoded record to the realtime callback.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cstdio>
#include <cstring>

#include "log.h"
#include "qm_handle.h"
#include "qm_interface.h"
#include "qm_realtime.h"
#include "qm_receive.h"

std::atomic<qm_realtime_arm_state_callback_ptr> qm_arm_state_callback{nullptr};

namespace {

constexpr int kDatagramMax = 2048;
constexpr int kPassPauseMs = 1;

struct Datagram {
    char text[kDatagramMax + 1];
    char sender[INET_ADDRSTRLEN];
};

// One datagram from each port that has one. Receives only under the table's lock, so a
// socket is never used after its port was removed.
int receive_pass(qm_udp_handle& table, std::array<Datagram, UDP_LIST_MAX>& out) {
    int count = 0;
    std::lock_guard lock(table.mutex);
    for (const qm_udp_info& entry : table.udp_list) {
        if (entry.user_num <= 0 || entry.udp_id <= 0) continue;
        Datagram& datagram = out[count];
        sockaddr_in from{};
        socklen_t from_len = sizeof from;
        ssize_t n = ::recvfrom(entry.udp_id, datagram.text, kDatagramMax, MSG_DONTWAIT,
                               reinterpret_cast<sockaddr*>(&from), &from_len);
        if (n <= 0) continue;
        datagram.text[n] = '\0';
        if (!inet_ntop(AF_INET, &from.sin_addr, datagram.sender, sizeof datagram.sender))
            datagram.sender[0] = '\0';
        ++count;
    }
    return count;
}

// Sleeps until a registered port has a datagram, for at most pause_ms: new ports and the exit
// are seen within that. The descriptors are copied under the table's lock; one closed meanwhile
// only ends the wait early.
void wait_for_datagram(const qm_udp_handle& table, int pause_ms) {
    std::array<pollfd, UDP_LIST_MAX> fds{};
    nfds_t count = 0;
    {
        std::lock_guard lock(table.mutex);
        for (const qm_udp_info& entry : table.udp_list)
            if (entry.user_num > 0 && entry.udp_id > 0) fds[count++] = {entry.udp_id, POLLIN, 0};
    }
    if (count == 0 || ::poll(fds.data(), count, pause_ms) < 0) sleep_cp(pause_ms);
}

void deliver(const Datagram& datagram) {
    qm_realtime_arm_joint_state_t state;
    state.errCode = parse_qm_realtime_arm_joint_state(datagram.text, &state);
    std::snprintf(state.arm_ip, sizeof state.arm_ip, "%.15s", datagram.sender);
    // A record that failed to parse is delivered too, with errCode -3.
    if (qm_realtime_arm_state_callback_ptr callback = qm_arm_state_callback.load()) {
        qm_log_debug("qm_arm_state_callback qm_arm_state_callback qm_arm_state_callback\n");
        callback(state);
    }
}

// On the way out every connection gives up its port (once per port still in use, as the
// table counts users per registration).
void release_ports(qm_udp_handle& table) {
    const HandleTable handles = qm_snapshot_handles();
    for (int entry = 0; entry < UDP_LIST_MAX; ++entry) {
        {
            std::lock_guard lock(table.mutex);
            if (table.udp_list[entry].user_num <= 0) continue;
        }
        for (const HandlePtr& record : handles)
            if (record) qm_udp_delete_port(&table, record->udp_port);
    }
}

}  // namespace

void udp_receive_thread_main() {
    qm_udp_handle* table = gUdpHandle.get();
    if (!table) return;
    std::array<Datagram, UDP_LIST_MAX> datagrams;
    while (!should_exit) {
        int count = receive_pass(*table, datagrams);
        for (int i = 0; i < count; ++i) deliver(datagrams[i]);
        // A pass that found datagrams goes round again at once, so a busy port is drained.
        if (count == 0) wait_for_datagram(*table, kPassPauseMs);
    }
    release_ports(*table);
}

extern "C" void qm_realtime_arm_state_call_back(qm_realtime_arm_state_callback_ptr realtime_callback) {
    if (realtime_callback) qm_arm_state_callback = realtime_callback;
}
