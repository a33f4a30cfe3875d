// qm_sim: the controller simulator as a program. Serves until SIGINT or SIGTERM.
#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

#include "simulator.h"

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
        sim::Simulator simulator(options);
        simulator.stop_on_signals();
        for (int i = 0; i < simulator.arms(); ++i) {
            std::printf(
                "qm_sim: arm %d, %s (generation %d), on %s:%d, realtime push %s to %s:%d every %d ms\n",
                i + 1, options.model.c_str(), options.generation, options.bind.c_str(), simulator.port(i),
                options.push.enable ? "on" : "off", options.push.ip.c_str(), simulator.push_port(i),
                options.push.cycle_ms);
        }
        std::fflush(stdout);
        if (!options.port_file.empty()) {
            // Renamed into place, so whoever waits for the file never reads half of it.
            const std::string partial = options.port_file + ".partial";
            std::ofstream(partial) << simulator.port(0) << '\n';
            std::rename(partial.c_str(), options.port_file.c_str());
        }
        simulator.run();
        std::printf("qm_sim: stopped after %llu realtime datagrams\n",
                    static_cast<unsigned long long>(simulator.datagrams_sent()));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qm_sim: %s\n", error.what());
        return 1;
    }
    return 0;
}
