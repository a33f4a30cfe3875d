// A simulator in this process that can go away and come back on the same ports, as a
// controller does when it restarts.
#ifndef QM_TEST_RESTARTABLE_SIM_H
#define QM_TEST_RESTARTABLE_SIM_H

#include <optional>
#include <string>

#include "simulator.h"

namespace rel {

// Quiet options on free ports; moves run `speed_factor` times faster than real.
sim::Options quiet_options(const std::string& model = "QM65-B", int arms = 1, double speed_factor = 20.0);

class RestartableSim {
public:
    explicit RestartableSim(const sim::Options& options);

    // Every client connection closes; the ports stop listening.
    void stop();
    // Listens again on the ports and push destinations of the first start.
    void start();

    bool running() const { return thread_.has_value(); }
    sim::Simulator& operator*() { return **thread_; }
    sim::Simulator* operator->() { return &**thread_; }
    int port(int arm = 0) const;

private:
    sim::Options options_;
    std::optional<sim::SimulatorThread> thread_;
};

}  // namespace rel

#endif
