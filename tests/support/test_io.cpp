#include "test_io.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <sstream>

namespace qm_test {
namespace {

sockaddr_in loopback(int port) {
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(static_cast<uint16_t>(port));
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return addr;
}

}  // namespace

int bound_socket(int type, int port) {
    const int fd = ::socket(AF_INET, type, 0);
    const sockaddr_in addr = loopback(port);
    if (fd >= 0 && ::bind(fd, reinterpret_cast<const sockaddr*>(&addr), sizeof addr) == 0) return fd;
    if (fd >= 0) ::close(fd);
    return -1;
}

int port_of(int fd) {
    sockaddr_in addr{};
    socklen_t len = sizeof addr;
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len);
    return ntohs(addr.sin_port);
}

int free_port(int type) {
    const int fd = bound_socket(type);
    const int port = port_of(fd);
    ::close(fd);
    return port;
}

void send_datagram(int port, const std::string& text) {
    const int fd = ::socket(AF_INET, SOCK_DGRAM, 0);
    const sockaddr_in to = loopback(port);
    ::sendto(fd, text.data(), text.size(), 0, reinterpret_cast<const sockaddr*>(&to), sizeof to);
    ::close(fd);
}

std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace qm_test
