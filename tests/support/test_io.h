// What tests need from the operating system: real loopback sockets (bound or free ports,
// single datagrams) and whole-file reads.
#ifndef QM_TEST_TEST_IO_H
#define QM_TEST_TEST_IO_H

#include <string>

namespace qm_test {

// A socket of `type` (SOCK_STREAM or SOCK_DGRAM) bound to 127.0.0.1:`port` (0: an ephemeral
// port) without address reuse; -1 when the bind fails.
int bound_socket(int type, int port = 0);
// The local port of a bound socket.
int port_of(int fd);
// A loopback port of `type` on which nothing is bound: bound once, then released.
int free_port(int type);
// Sends `text` as one datagram to 127.0.0.1:`port`.
void send_datagram(int port, const std::string& text);
// The whole content of a file; "" when it cannot be read.
std::string read_file(const std::string& path);

}  // namespace qm_test

#endif
