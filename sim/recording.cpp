#include "recording.h"

#include <cerrno>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace sim {

namespace {

// A line may hold line breaks of its own (the arc move is sent formatted): escaped, each entry
// stays on one line of the file.
std::string escaped(std::string_view text) {
    std::string out;
    for (char c : text) {
        if (c == '\\' || c == '\n' || c == '\r') out += '\\';
        out += c == '\n' ? 'n' : c == '\r' ? 'r' : c;
    }
    return out;
}

std::string unescaped(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            out += text[i];
            continue;
        }
        const char next = text[++i];
        out += next == 'n' ? '\n' : next == 'r' ? '\r' : next;
    }
    return out;
}

}  // namespace

RecordingWriter::RecordingWriter(const std::string& path) : file_(std::fopen(path.c_str(), "w")) {
    if (!file_) throw std::system_error(errno, std::generic_category(), "cannot create " + path);
    std::fputs("# qm_sim recording: ms, connection, + opened / > to the controller / < from it / - closed\n",
               file_.get());
    std::fflush(file_.get());
}

void RecordingWriter::write(int connection, char mark, std::string_view text) {
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start_).count();
    const std::string line = escaped(text);
    std::fprintf(file_.get(), "%.3f #%d %c %s\n", ms, connection, mark, line.c_str());
    std::fflush(file_.get());
}

std::vector<RecordedLine> read_recording(const std::string& path) {
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot read " + path);
    std::vector<RecordedLine> lines;
    int number = 0;
    for (std::string text; std::getline(in, text);) {
        ++number;
        if (text.empty() || text[0] == '#') continue;
        std::istringstream fields(text);
        RecordedLine line;
        char hash = 0;
        fields >> line.ms >> hash >> line.connection >> line.mark;
        if (!fields || hash != '#' || std::string_view("+<>-").find(line.mark) == std::string_view::npos)
            throw std::runtime_error(path + ":" + std::to_string(number) + ": not a recorded line");
        if (fields.peek() == ' ') fields.get();
        std::string rest;
        std::getline(fields, rest);
        line.text = unescaped(rest);
        lines.push_back(std::move(line));
    }
    return lines;
}

}  // namespace sim
