// The replayer: answers clients as a recorded session (recording.h) says. The k-th client to
// connect plays the k-th recorded connection: each line it sends is matched to the next
// recorded request (the same text, or else the same "command"), and the controller's lines
// that followed that request go out after the pauses they followed it by, divided by the
// speed factor. Requests the recording skipped lose their answers; a request the recording
// does not hold gets an error reply and a note.
#ifndef QM_SIM_REPLAYER_H
#define QM_SIM_REPLAYER_H

#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "connection.h"
#include "event_loop.h"
#include "log.h"
#include "net.h"
#include "options.h"
#include "recording.h"

namespace sim {

class Replayer {
public:
    // Reads options.replay_path and listens on options.bind:options.port; throws
    // std::system_error or std::runtime_error when it cannot.
    explicit Replayer(const Options& options, NoteSink notes = {});
    ~Replayer();
    Replayer(const Replayer&) = delete;
    Replayer& operator=(const Replayer&) = delete;

    void run() { loop_.run(); }
    void stop() { loop_.stop(); }
    void stop_on_signals() { loop_.stop_on_signals(); }
    int port() const { return listener_->port(); }

private:
    struct Answer {
        double after_ms;
        std::string line;
    };
    // A request and what the controller sent until the next one; the first has no request.
    struct Exchange {
        std::string request;
        std::vector<Answer> answers;
    };
    struct Session {
        std::vector<Exchange> exchanges;
        std::size_t next = 1;  // the next exchange to match
    };

    void accept(Fd client, const sockaddr_in& peer);
    void serve(Connection& from, std::string_view line);
    void answer(Connection& to, const Exchange& exchange);

    Options options_;
    Log log_;
    EventLoop loop_;
    Faults no_faults_;
    std::vector<Session> sessions_;  // in the order they were recorded
    std::size_t next_session_ = 0;
    std::map<int, std::unique_ptr<Connection>> connections_;
    std::map<int, std::size_t> session_of_;
    int next_id_ = 1;
    std::unique_ptr<Listener> listener_;
};

}  // namespace sim

#endif
