#include "log.h"

#include <cerrno>
#include <system_error>

namespace sim {

Log::Log(NoteSink notes, const std::string& traffic_path) : notes_(std::move(notes)) {
    if (traffic_path == "-") {
        traffic_.reset(stderr);
    } else if (!traffic_path.empty()) {
        traffic_.reset(std::fopen(traffic_path.c_str(), "a"));
        if (!traffic_)
            throw std::system_error(errno, std::generic_category(), "cannot open log " + traffic_path);
    }
}

void Log::note(int connection, std::string_view text) const {
    std::string line = "#";
    line += std::to_string(connection);
    line += ": ";
    line += text;
    note(line);
}

void Log::note(const std::string& text) const {
    if (notes_) {
        notes_(text);
        return;
    }
    std::fprintf(stderr, "qm_sim: %s\n", text.c_str());
}

void Log::traffic(int arm, int connection, bool incoming, std::string_view line) const {
    if (!traffic_) return;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    std::fprintf(traffic_.get(), "%10.3f arm %d #%d %s %.*s\n", seconds, arm + 1, connection,
                 incoming ? "<-" : "->", static_cast<int>(line.size()), line.data());
    std::fflush(traffic_.get());
}

}  // namespace sim
