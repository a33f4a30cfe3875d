#include "net.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <cerrno>

namespace sim {

namespace {

constexpr int kBacklog = 16;
constexpr auto kAcceptRetry = std::chrono::seconds(1);

}  // namespace

std::system_error socket_error(const std::string& what) {
    return std::system_error(errno, std::generic_category(), what);
}

sockaddr_in ipv4_address(const std::string& ip, int port) {
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(static_cast<std::uint16_t>(port));
    if (::inet_pton(AF_INET, ip.c_str(), &addr.sin_addr) != 1)
        throw std::system_error(EINVAL, std::generic_category(), "not an IPv4 address: " + ip);
    return addr;
}

std::string address_text(const sockaddr_in& address) {
    char ip[INET_ADDRSTRLEN] = "?";
    ::inet_ntop(AF_INET, &address.sin_addr, ip, sizeof ip);
    return std::string(ip) + ":" + std::to_string(ntohs(address.sin_port));
}

int bound_port(int fd) {
    sockaddr_in addr{};
    socklen_t len = sizeof addr;
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len);
    return ntohs(addr.sin_port);
}

Fd listen_on(const std::string& ip, int port) {
    Fd fd(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!fd) return fd;
    const int one = 1;
    ::setsockopt(fd.get(), SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    const sockaddr_in addr = ipv4_address(ip, port);
    if (::bind(fd.get(), reinterpret_cast<const sockaddr*>(&addr), sizeof addr) != 0 ||
        ::listen(fd.get(), kBacklog) != 0)
        return Fd();
    return fd;
}

Fd connect_to(const sockaddr_in& to) {
    Fd fd(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!fd) return fd;
    const int one = 1;
    ::setsockopt(fd.get(), IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    if (::connect(fd.get(), reinterpret_cast<const sockaddr*>(&to), sizeof to) != 0 && errno != EINPROGRESS)
        return Fd();
    return fd;
}

int connect_error(int fd) {
    int error = 0;
    socklen_t len = sizeof error;
    if (::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &len) != 0) return errno;
    return error;
}

Listener::Listener(EventLoop& loop, Fd listening, std::string name, const Log& log, ClientFn on_client)
    : loop_(loop),
      fd_(std::move(listening)),
      name_(std::move(name)),
      log_(log),
      on_client_(std::move(on_client)),
      port_(bound_port(fd_.get())) {
    watch();
}

void warn_unless_loopback(const Log& log, const std::string& bind) {
    if (bind != "127.0.0.1")
        log.note("warning: listening on " + bind +
                 ": the protocol has no authentication, anyone who reaches this address can move the arm");
}

namespace {

Fd listening_or_throw(const std::string& ip, int port) {
    Fd fd = listen_on(ip, port);
    if (!fd) throw socket_error("cannot listen on " + ip + ":" + std::to_string(port));
    return fd;
}

}  // namespace

Listener::Listener(EventLoop& loop, const std::string& ip, int port, std::string name, const Log& log,
                   ClientFn on_client)
    : Listener(loop, listening_or_throw(ip, port), std::move(name), log, std::move(on_client)) {}

Listener::~Listener() {
    loop_.cancel(retry_);
    loop_.unwatch(fd_.get());
}

void Listener::watch() {
    loop_.watch(fd_.get(), EPOLLIN, [this](std::uint32_t) { accept(); });
}

void Listener::accept() {
    for (;;) {
        sockaddr_in peer{};
        socklen_t len = sizeof peer;
        Fd fd(::accept4(fd_.get(), reinterpret_cast<sockaddr*>(&peer), &len, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (!fd && (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM)) {
            // The waiting client stays readable: listen again a little later instead of spinning.
            log_.note(name_ + ": cannot accept a client now (out of descriptors)");
            loop_.unwatch(fd_.get());
            retry_ = loop_.at(EventLoop::Clock::now() + kAcceptRetry, [this] {
                retry_ = 0;
                watch();
            });
            return;
        }
        if (!fd) return;
        const int one = 1;
        ::setsockopt(fd.get(), IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
        on_client_(std::move(fd), peer);
    }
}

}  // namespace sim
