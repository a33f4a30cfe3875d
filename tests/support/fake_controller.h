// A loopback arm controller for tests and benchmarks: a real TCP server on an ephemeral
// port of 127.0.0.1, driven by the test. It records every byte the library sends, answers
// requests by their "command" (a scripted line or a callback), pushes arbitrary bytes and
// closes when told. One client connection at a time; a new client replaces the old one.
#ifndef QM_TEST_FAKE_CONTROLLER_H
#define QM_TEST_FAKE_CONTROLLER_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "qm_define.h"

namespace qm_test {

using namespace std::chrono_literals;

class FakeController {
public:
    // Gets one request line (without its "\r\n"); returns the exact bytes to send back
    // (no line end is added) or nullopt to stay silent.
    using Responder = std::function<std::optional<std::string>(const std::string& request)>;

    FakeController();   // listening once constructed
    ~FakeController();  // closes the client and the listener
    FakeController(const FakeController&) = delete;
    FakeController& operator=(const FakeController&) = delete;

    int port() const { return port_; }

    // A request whose "command" is `command` is answered with `reply_line` + "\r\n".
    // Replaces an earlier script for the same command.
    void reply(const std::string& command, const std::string& reply_line);
    // A request whose "command" is `command` is answered by `responder`.
    void on(const std::string& command, Responder responder);
    // The command is no longer answered.
    void forget(const std::string& command);
    // Scripts the answers to the synchronisation queries a new connection issues
    // (see standard_sync_replies()).
    void answer_sync_queries();

    // Every byte received on the current and earlier connections, exactly as sent.
    std::string received() const;
    // Received request lines, without their "\r\n".
    std::vector<std::string> lines() const;
    // Waits for the n-th (0-based) received line; nullopt on timeout.
    std::optional<std::string> wait_line(std::size_t n, std::chrono::milliseconds timeout = 2s) const;
    // Waits for the first line (from index `from` on) whose "command" is `command`.
    std::optional<std::string> wait_command(const std::string& command,
                                            std::chrono::milliseconds timeout = 2s,
                                            std::size_t from = 0) const;
    // Forgets what was received so far (line indexes start again at 0).
    void clear_received();

    // Waits until a client is connected.
    bool wait_connected(std::chrono::milliseconds timeout = 2s) const;
    // Sends exact bytes to the client; false when none is connected or the send failed.
    bool push(std::string_view bytes);
    // Sends `json` + "\r\n".
    bool push_line(std::string_view json) { return push(std::string(json) + "\r\n"); }
    // Sends the bytes in pieces of `piece` bytes with `gap` between them.
    bool push_split(std::string_view bytes, std::size_t piece, std::chrono::milliseconds gap = 5ms);
    // Closes the client connection (the library sees the peer close); keeps listening.
    void close_client();

private:
    void serve();
    void handle_bytes(const char* data, std::size_t len);
    bool send_all(int fd, std::string_view bytes);

    int listen_fd_ = -1;
    int wake_fd_ = -1;  // eventfd that ends serve()
    int port_ = 0;

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    int client_fd_ = -1;
    std::string received_;
    std::string pending_;  // bytes of an unfinished line
    std::vector<std::string> lines_;
    std::map<std::string, Responder> script_;
    std::mutex send_mutex_;
    std::thread thread_;
};

// Answers to the queries of a new connection's synchronisation, by request "command";
// add a row here when a query joins the synchronisation list.
const std::map<std::string, std::string>& standard_sync_replies();

// Starts the library in `mode` and creates one arm against `controller`, which is
// scripted with answer_sync_queries() first; what the synchronisation sent is cleared
// from the controller's record. At scope end the arm is deleted and the library destroyed.
class ArmSession {
public:
    explicit ArmSession(FakeController& controller, qm_thread_mode_e mode = QM_DUAL_MODE_E);
    ~ArmSession();
    ArmSession(const ArmSession&) = delete;
    ArmSession& operator=(const ArmSession&) = delete;

    qm_robot_handle* handle() const { return handle_; }

private:
    qm_robot_handle* handle_ = nullptr;
};

}  // namespace qm_test

#endif
