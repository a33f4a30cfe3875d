// Receive threads: placeholder loops until the exchange lands.
#include "log.h"
#include "qm_handle.h"
#include "qm_receive.h"

void tcp_receive_thread_main() {
    while (!should_exit) sleep_cp(1);
}

void udp_receive_thread_main() {
    while (!should_exit) sleep_cp(1);
}
