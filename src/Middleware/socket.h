// TCP client socket of one arm connection, with its table of operations.
#ifndef QM_SOCKET_H
#define QM_SOCKET_H

#include <atomic>
#include <memory>

struct qm_socket_handle;
using qm_socket_op = int (*)(qm_socket_handle* handle);
using qm_socket_io = int (*)(qm_socket_handle* handle, char* buf, int len);
using qm_socket_send_op = int (*)(qm_socket_handle* handle, const char* buf, int len);

struct qm_socket_handle {
    // -1 when not connected, after close, or after the peer closed the connection.
    std::atomic<int> socket_id{-1};
    char ip[20]{};
    int port = 0;
    char udp_ip[20]{};
    int udp_port = 0;
    qm_socket_op init = nullptr;  // connect
    qm_socket_send_op send = nullptr;
    qm_socket_send_op block_send = nullptr;
    qm_socket_io receive = nullptr;
    qm_socket_io block_receive = nullptr;
    qm_socket_op close = nullptr;

    // The descriptor stays open until the record dies, so a receive that raced a close
    // can never read from a descriptor number that was reused elsewhere.
    int fd = -1;
    ~qm_socket_handle();
};

struct SocketDeleter {
    void operator()(qm_socket_handle* handle) const noexcept;
};
using SocketPtr = std::unique_ptr<qm_socket_handle, SocketDeleter>;

// Refuses a null ip, an ip of 21 characters or more and a port below 1; does not connect.
qm_socket_handle* qm_socket_handle_init(const char* ip, int port);
// Closes the socket when connected and releases the record.
void qm_socket_handle_destroy(qm_socket_handle* handle);

int socket_connect(qm_socket_handle* handle);
int socket_send(qm_socket_handle* handle, const char* buf, int len);
int socket_block_send(qm_socket_handle* handle, const char* buf, int len);
int socket_receive(qm_socket_handle* handle, char* buf, int len);
int socket_blocking_recive(qm_socket_handle* handle, char* buf, int len);
int socket_close(qm_socket_handle* handle);

#endif
