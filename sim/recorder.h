// The recording proxy: clients connect to it as to the controller, it passes every byte on to
// the real controller at the upstream address and back, and writes every line both ways with
// its time to a recording (recording.h), which the replayer answers from later. One event loop
// serves every client; nothing blocks.
#ifndef QM_SIM_RECORDER_H
#define QM_SIM_RECORDER_H

#include <map>
#include <memory>

#include "event_loop.h"
#include "log.h"
#include "net.h"
#include "options.h"
#include "recording.h"

namespace sim {

class Recorder {
public:
    // Listens on options.bind:options.port, proxies to options.upstream, records to
    // options.record_path; throws std::system_error when it cannot.
    explicit Recorder(const Options& options, NoteSink notes = {});
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    void run() { loop_.run(); }
    void stop() { loop_.stop(); }
    void stop_on_signals() { loop_.stop_on_signals(); }
    int port() const { return listener_->port(); }

private:
    class Relay;
    void accept(Fd client, const sockaddr_in& peer);

    Options options_;
    Log log_;
    EventLoop loop_;
    sockaddr_in upstream_{};
    RecordingWriter recording_;
    std::map<int, std::unique_ptr<Relay>> relays_;
    int next_id_ = 1;
    std::unique_ptr<Listener> listener_;
};

}  // namespace sim

#endif
