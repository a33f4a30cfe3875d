#include "socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

#include "log.h"

namespace {

constexpr int kSendTimeoutSeconds = 3;

bool valid_io_args(const qm_socket_handle* handle, const void* buf, int len) {
    return handle && buf && len >= 1;
}

}  // namespace

qm_socket_handle::~qm_socket_handle() {
    if (fd >= 0) ::close(fd);
}

void SocketDeleter::operator()(qm_socket_handle* handle) const noexcept {
    qm_socket_handle_destroy(handle);
}

qm_socket_handle* qm_socket_handle_init(const char* ip, int port) {
    if (!ip || port < 1 || std::strlen(ip) >= 21) return nullptr;
    auto* handle = new (std::nothrow) qm_socket_handle;
    if (!handle) return nullptr;
    // 20 bytes hold at most 19 characters and the terminator.
    std::snprintf(handle->ip, sizeof handle->ip, "%s", ip);
    handle->port = port;
    handle->init = socket_connect;
    handle->send = socket_send;
    handle->block_send = socket_block_send;
    handle->receive = socket_receive;
    handle->block_receive = socket_blocking_recive;
    handle->close = socket_close;
    return handle;
}

void qm_socket_handle_destroy(qm_socket_handle* handle) {
    if (!handle) return;
    if (handle->socket_id > 0) socket_close(handle);
    delete handle;
}

int socket_connect(qm_socket_handle* handle) {
    if (!handle) return -1;
    int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 1 || fd > 100000) {
        if (fd >= 0) ::close(fd);
        handle->socket_id = -1;
        return -1;
    }
    // The send timeout also bounds the connect.
    timeval timeout{kSendTimeoutSeconds, 0};
    if (setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout) != 0) {
        std::perror("setsockopt error");
        ::close(fd);
        return -2;
    }
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(static_cast<uint16_t>(handle->port));
    if (inet_pton(AF_INET, handle->ip, &addr.sin_addr) != 1 ||
        ::connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0) {
        handle->socket_id = -1;
        ::close(fd);
        return -3;
    }
    int flags = fcntl(fd, F_GETFL, 0);
    if (flags < 0 || fcntl(fd, F_SETFL, flags | O_NONBLOCK) < 0) {
        std::perror("Error setting non-blocking");
        ::close(fd);
        return -4;
    }
    if (handle->fd >= 0) ::close(handle->fd);
    handle->fd = fd;
    handle->socket_id = fd;
    return fd;
}

int socket_send(qm_socket_handle* handle, const char* buf, int len) {
    if (!valid_io_args(handle, buf, len)) return -1;
    int fd = handle->socket_id;
    if (fd < 0) return -2;
    return ::send(fd, buf, static_cast<size_t>(len), MSG_DONTWAIT | MSG_NOSIGNAL) < 0 ? -2 : 0;
}

int socket_block_send(qm_socket_handle* handle, const char* buf, int len) {
    if (!valid_io_args(handle, buf, len)) return -1;
    // The retry on a full send buffer is bounded by the socket's send timeout, so a peer
    // that stops reading cannot hold the caller forever; the rest of a partial send follows.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(kSendTimeoutSeconds);
    int sent = 0;
    while (sent < len) {
        int fd = handle->socket_id;
        if (fd < 0) return -2;
        ssize_t n = ::send(fd, buf + sent, static_cast<size_t>(len - sent), MSG_DONTWAIT | MSG_NOSIGNAL);
        if (n >= 0) {
            sent += static_cast<int>(n);
            continue;
        }
        if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) return -2;
        if (std::chrono::steady_clock::now() >= deadline) return -2;
        if (errno != EINTR) {
            std::printf("Send would block, retrying later...\n");
            sleep_cp(1);
        }
    }
    return 0;
}

int socket_receive(qm_socket_handle* handle, char* buf, int len) {
    if (!valid_io_args(handle, buf, len)) return -1;
    int fd = handle->socket_id;
    if (fd < 0) return -2;
    ssize_t n = ::recv(fd, buf, static_cast<size_t>(len), MSG_DONTWAIT);
    if (n < 0) return -2;
    if (n > 0 && qm_log_enabled(LOG_LEVEL_DEBUG)) {
        const std::string text(buf, static_cast<size_t>(n));  // the bytes are not terminated
        qm_log_debug("buf:is %s\n", text.c_str());
    }
    return static_cast<int>(n);
}

int socket_blocking_recive(qm_socket_handle* handle, char* buf, int len) {
    if (!valid_io_args(handle, buf, len)) return -1;
    int fd = handle->socket_id;
    if (fd < 0) return -2;
    ssize_t n = ::recv(fd, buf, static_cast<size_t>(len), MSG_DONTWAIT);
    if (n > 0) return static_cast<int>(n);
    if (n == 0) return -1;
    return (errno == EAGAIN || errno == EWOULDBLOCK) ? -1 : -2;
}

int socket_close(qm_socket_handle* handle) {
    if (!handle) return 0;
    // Shut down now (the peer sees the close at once); the descriptor itself is released
    // with the record, when no receive thread can still be using it.
    int fd = handle->socket_id.exchange(-1);
    if (fd >= 0) ::shutdown(fd, SHUT_RDWR);
    return 0;
}
