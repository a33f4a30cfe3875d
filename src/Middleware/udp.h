// The table of local UDP ports on which the realtime push is received.
#ifndef QM_UDP_H
#define QM_UDP_H

#include <array>
#include <mutex>

constexpr int UDP_LIST_MAX = 5;

struct qm_udp_info {
    int udp_id = 0;   // socket descriptor
    int port = 0;     // local port
    int user_num = 0; // connections that registered this port
};

struct qm_udp_handle;
using qm_udp_port_op = int (*)(qm_udp_handle* handle, int port);

struct qm_udp_handle {
    std::array<qm_udp_info, UDP_LIST_MAX> udp_list{};
    qm_udp_port_op udp_add_port = nullptr;
    qm_udp_port_op udp_delete_port = nullptr;
    // Caller threads register ports while the UDP thread reads the table.
    mutable std::mutex mutex;
    ~qm_udp_handle();
};

// The table with all entries zeroed.
qm_udp_handle* qm_udp_init();
void qm_udp_destroy(qm_udp_handle* handle);
// A bound UDP socket with a 3 s receive timeout, or -2.
int qm_udp_create_connect(int port);
// 1 port already present (user count raised), 0 added, -1 socket failed, -2 table full.
int qm_udp_add_port(qm_udp_handle* handle, int port);
// Counts the port's users down and resets entries without users; always 0.
int qm_udp_delete_port(qm_udp_handle* handle, int port);
int qm_udp_close(int udp_id);

#endif
