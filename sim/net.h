// Sockets shared by the simulator, the recording proxy and the replayer: addresses, listening
// sockets that accept on the event loop, and outgoing connections.
#ifndef QM_SIM_NET_H
#define QM_SIM_NET_H

#include <netinet/in.h>

#include <functional>
#include <string>
#include <system_error>

#include "event_loop.h"
#include "fd.h"
#include "log.h"

namespace sim {

// errno as a system_error saying `what` failed.
std::system_error socket_error(const std::string& what);
// An IPv4 address and port; throws std::system_error for a text that is no IPv4 address.
sockaddr_in ipv4_address(const std::string& ip, int port);
std::string address_text(const sockaddr_in& address);
// The local port a socket is bound to.
int bound_port(int fd);
// A listening TCP socket on ip:port (0: a free port), or an empty Fd with errno set.
Fd listen_on(const std::string& ip, int port);
// A non-blocking TCP connection under way to `to`; writable once it is made or has failed
// (connect_error says which). An empty Fd with errno set when it cannot even start.
Fd connect_to(const sockaddr_in& to);
// The error of a finished non-blocking connect, 0 when it succeeded.
int connect_error(int fd);

// Warns that whoever reaches `bind` can move the arm, unless it is the loopback address.
void warn_unless_loopback(const Log& log, const std::string& bind);

// A listening socket served by the loop: each client goes to on_client. When the process is
// out of descriptors it waits a second before accepting again instead of spinning.
class Listener {
public:
    using ClientFn = std::function<void(Fd client, const sockaddr_in& peer)>;
    // `name` says whose socket it is in notes ("arm 2").
    Listener(EventLoop& loop, Fd listening, std::string name, const Log& log, ClientFn on_client);
    // Listens on ip:port itself; throws std::system_error when it cannot.
    Listener(EventLoop& loop, const std::string& ip, int port, std::string name, const Log& log, ClientFn on_client);
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    int port() const { return port_; }

private:
    void accept();
    void watch();

    EventLoop& loop_;
    Fd fd_;
    std::string name_;
    const Log& log_;
    ClientFn on_client_;
    int port_;
    EventLoop::TimerId retry_ = 0;
};

}  // namespace sim

#endif
