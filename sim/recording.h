// A recorded session with a controller: a text file with one entry per line, the time in
// milliseconds since the recording started, the connection, the direction and the line
// (a backslash, CR or LF in it written as \\, \r, \n):
//
//     # qm_sim recording: ms, connection, + opened / > to the controller / < from it / - closed
//     0.000 #1 + 127.0.0.1:40312
//     0.210 #1 > {"command":"get_joint_degree"}
//     0.655 #1 < {"command":"joint_degree","joint":[0,0,0,0,0,0]}
#ifndef QM_SIM_RECORDING_H
#define QM_SIM_RECORDING_H

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

struct RecordedLine {
    double ms = 0.0;
    int connection = 0;
    char mark = '>';  // '+' opened, '>' to the controller, '<' from it, '-' closed
    std::string text;
};

class RecordingWriter {
public:
    // Throws std::system_error when the file cannot be created.
    explicit RecordingWriter(const std::string& path);
    void write(int connection, char mark, std::string_view text);

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Closer> file_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// Every entry of a recording; throws std::runtime_error naming the first malformed line.
std::vector<RecordedLine> read_recording(const std::string& path);

}  // namespace sim

#endif
