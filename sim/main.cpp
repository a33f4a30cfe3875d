// qm_sim: the controller simulator as a program, or its recording proxy or replayer. Serves
// until SIGINT or SIGTERM.
#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

#include "recorder.h"
#include "replayer.h"
#include "simulator.h"

namespace {

// Renamed into place, so whoever waits for the file never reads half of it.
void write_port_file(const std::string& path, int port) {
    if (path.empty()) return;
    const std::string partial = path + ".partial";
    std::ofstream(partial) << port << '\n';
    std::rename(partial.c_str(), path.c_str());
}

template <class Server>
void serve(Server& server, const sim::Options& options) {
    server.stop_on_signals();
    std::fflush(stdout);
    write_port_file(options.port_file, server.port());
    server.run();
}

int run(const sim::Options& options) {
    if (!options.replay_path.empty()) {
        sim::Replayer replayer(options);
        std::printf("qm_sim: replaying %s on %s:%d\n", options.replay_path.c_str(), options.bind.c_str(),
                    replayer.port());
        serve(replayer, options);
        return 0;
    }
    if (!options.record_path.empty()) {
        sim::Recorder recorder(options);
        std::printf("qm_sim: recording the controller %s to %s, clients on %s:%d\n", options.upstream.c_str(),
                    options.record_path.c_str(), options.bind.c_str(), recorder.port());
        serve(recorder, options);
        return 0;
    }
    sim::Simulator simulator(options);
    for (int i = 0; i < simulator.arms(); ++i) {
        std::printf("qm_sim: arm %d, %s (generation %d), on %s:%d, realtime push %s to %s:%d every %d ms\n", i + 1,
                    options.model.c_str(), options.generation, options.bind.c_str(), simulator.port(i),
                    options.push.enable ? "on" : "off", options.push.ip.c_str(), simulator.push_port(i),
                    options.push.cycle_ms);
    }
    serve(simulator, options);
    std::printf("qm_sim: stopped after %llu realtime datagrams\n",
                static_cast<unsigned long long>(simulator.datagrams_sent()));
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    bool help = false;
    sim::Options options;
    try {
        options = sim::parse_options(argc, argv, help);
    } catch (const sim::UsageError& error) {
        std::fprintf(stderr, "qm_sim: %s (see --help)\n", error.what());
        return 2;
    }
    if (help) {
        std::fputs(sim::usage_text(argv[0]).c_str(), stdout);
        return 0;
    }
    try {
        return run(options);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qm_sim: %s\n", error.what());
        return 1;
    }
}
