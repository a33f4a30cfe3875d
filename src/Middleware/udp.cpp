#include "udp.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <new>

qm_udp_handle::~qm_udp_handle() {
    for (auto& entry : udp_list)
        if (entry.user_num > 0 && entry.udp_id > 0) qm_udp_close(entry.udp_id);
}

qm_udp_handle* qm_udp_init() {
    auto* handle = new (std::nothrow) qm_udp_handle;
    if (!handle) return nullptr;
    handle->udp_add_port = qm_udp_add_port;
    handle->udp_delete_port = qm_udp_delete_port;
    return handle;
}

void qm_udp_destroy(qm_udp_handle* handle) { delete handle; }

int qm_udp_create_connect(int port) {
    int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        std::perror("socket creation failed");
        return -2;
    }
    timeval timeout{3, 0};
    if (setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout) != 0) {
        std::perror("setsockopt error");
        ::close(fd);
        return -2;
    }
    int reuse = 1;
    if (setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse) != 0) {
        std::perror("setsockopt fail");
        ::close(fd);
        return -2;
    }
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_ANY);
    addr.sin_port = htons(static_cast<uint16_t>(port));
    if (::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0) {
        std::perror("bind failed");
        ::close(fd);
        return -2;
    }
    return fd;
}

int qm_udp_add_port(qm_udp_handle* handle, int port) {
    if (!handle) return -1;
    std::lock_guard lock(handle->mutex);
    for (auto& entry : handle->udp_list) {
        if (entry.user_num > 0 && entry.port == port) {
            ++entry.user_num;
            return 1;
        }
    }
    for (auto& entry : handle->udp_list) {
        if (entry.user_num != 0) continue;
        int fd = qm_udp_create_connect(port);
        if (fd <= 0) {
            entry = {};
            return -1;
        }
        entry = {fd, port, 1};
        return 0;
    }
    return -2;
}

int qm_udp_delete_port(qm_udp_handle* handle, int port) {
    if (!handle) return 0;
    std::lock_guard lock(handle->mutex);
    for (auto& entry : handle->udp_list) {
        if (entry.port == port) --entry.user_num;
        if (entry.user_num < 1) {
            qm_udp_close(entry.udp_id);
            entry = {};
        }
    }
    return 0;
}

// A port without users is closed here, so its socket is not left open.
int qm_udp_close(int udp_id) {
    if (udp_id > 0) ::close(udp_id);
    return 0;
}
