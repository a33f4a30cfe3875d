// What a simulator is started with: the arms it plays, where it listens, its realtime push
// defaults, its speed and the faults it injects (all off by default).
#ifndef QM_SIM_OPTIONS_H
#define QM_SIM_OPTIONS_H

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim {

// Faults for tests of the client's error handling; each is off at its default.
struct Faults {
    std::chrono::milliseconds reply_delay{0};  // every reply goes out this much later
    double drop_replies = 0.0;                 // fraction of replies never sent (0..1)
    std::vector<int> split_at;                 // byte positions at which each line is cut into writes
    std::chrono::milliseconds split_gap{2};    // pause between the pieces of a cut line
    int close_after = 0;                       // the connection closes after this many commands
    int garbage_every = 0;                     // every n-th reply is preceded by a line that is not JSON
    int oversized_every = 0;                   // every n-th reply is preceded by an oversized line
    unsigned seed = 1;                         // of the drop decisions

    bool any() const {
        return reply_delay.count() > 0 || drop_replies > 0.0 || !split_at.empty() || close_after > 0 ||
               garbage_every > 0 || oversized_every > 0;
    }
};

// The realtime push every arm starts with; a client may reconfigure it.
struct PushDefaults {
    bool enable = true;
    std::string ip = "127.0.0.1";
    int port = 8089;  // arm i pushes to port + i; 0 picks a free port per arm
    int cycle_ms = 10;
};

struct Options {
    std::string bind = "127.0.0.1";
    int port = 8080;  // arm i listens on port + i; 0 picks free ports
    int arms = 1;
    std::string model = "QM65-B";  // product text: model and force-sensing suffix
    int generation = 3;            // controller generation, 3 or 4
    double speed_factor = 1.0;     // simulated seconds per wall-clock second
    PushDefaults push;
    Faults faults;
    std::string log_path;   // every line in and out; "-" for standard error, "" for none
    std::string port_file;  // written with the first arm's port once listening

    // Instead of simulating: proxy a real controller and record the session, or answer as a
    // recording says.
    std::string record_path;  // with upstream
    std::string upstream;     // "IP:PORT" of the controller to record
    std::string replay_path;
};

// A command line the simulator cannot run with; what() says why.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Options from a command line (argv[0] is the program). Throws UsageError; `help` is set
// when --help was given (the other options are then not checked).
Options parse_options(int argc, char** argv, bool& help);
std::string usage_text(const std::string& program);
// The arm models the simulator can play, as product texts without the force suffix.
std::vector<std::string> known_models();
// "IP:PORT" into its parts; throws UsageError naming `option` when it is no IPv4 endpoint.
void split_endpoint(const std::string& option, const std::string& text, std::string& ip, int& port);

}  // namespace sim

#endif
