// Entry points of the two receive threads started by qm_init.
#ifndef QM_RECEIVE_H
#define QM_RECEIVE_H

#include <chrono>

struct qm_handle_t;

// Runs until should_exit: reads every connection's socket and files its lines.
void tcp_receive_thread_main();
// Runs until should_exit: receives realtime datagrams on every registered port.
void udp_receive_thread_main();

// Single-thread mode: the waiting command reads the socket itself for up to `wait` and
// returns the length of the first line whose key is `command` (copied with its "\r\n"
// into buf), or -1. Other lines are dropped; drag-teach points are recorded.
int single_mode_receive(qm_handle_t& record, const char* command, char* buf, int buf_len,
                        std::chrono::milliseconds wait);

#endif
