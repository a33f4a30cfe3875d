// What the simulator tells its operator: notes (refused or malformed requests, connections)
// and, when asked, every line in and out with a timestamp.
#ifndef QM_SIM_LOG_H
#define QM_SIM_LOG_H

#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace sim {

using NoteSink = std::function<void(const std::string& text)>;

class Log {
public:
    // Notes go to `notes` (standard error when empty); traffic to `traffic_path` ("-" for
    // standard error, "" for nowhere). Throws std::system_error when the file cannot be opened.
    Log(NoteSink notes, const std::string& traffic_path);

    void note(const std::string& text) const;
    // A note about client connection `connection`: "#<connection>: <text>".
    void note(int connection, std::string_view text) const;
    // One line in (`incoming`) or out of a connection.
    void traffic(int arm, int connection, bool incoming, std::string_view line) const;
    bool traffic_on() const { return traffic_ != nullptr; }

private:
    struct FileCloser {
        void operator()(std::FILE* file) const {
            if (file && file != stderr) std::fclose(file);
        }
    };
    NoteSink notes_;
    std::unique_ptr<std::FILE, FileCloser> traffic_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace sim

#endif
