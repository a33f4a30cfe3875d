// Entry points of the two receive threads started by qm_init.
#ifndef QM_RECEIVE_H
#define QM_RECEIVE_H

// Runs until should_exit: reads every connection's socket and files its lines.
void tcp_receive_thread_main();
// Runs until should_exit: receives realtime datagrams on every registered port.
void udp_receive_thread_main();

#endif
