#include "restartable_sim.h"

namespace rel {

sim::Options quiet_options(const std::string& model, int arms, double speed_factor) {
    sim::Options options;
    options.model = model;
    options.port = 0;
    options.push.port = 0;
    options.arms = arms;
    options.speed_factor = speed_factor;
    return options;
}

RestartableSim::RestartableSim(const sim::Options& options) : options_(options) {
    start();
    // Later starts reuse what the first one picked.
    options_.port = (*thread_)->port(0);
    if (options_.arms == 1) options_.push.port = (*thread_)->push_port(0);
}

void RestartableSim::stop() {
    thread_.reset();
}

void RestartableSim::start() {
    if (!thread_) thread_.emplace(options_, [](const std::string&) {});
}

int RestartableSim::port(int arm) const {
    return options_.port + arm;
}

}  // namespace rel
