#include <cjson/cJSON.h>

#include "log.h"
#include "qm_line_splitter.h"

namespace {

constexpr std::size_t kFirstLineEnd = 5;  // line ends before this offset are not recognised
constexpr std::string_view kLineEnd = "\r\n";

bool is_space(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

}  // namespace

void LineSplitter::skip_long_line(std::string_view& bytes) {
    if (skipped_cr_ && !bytes.empty() && bytes.front() == '\n') {
        bytes.remove_prefix(1);
        skipping_ = skipped_cr_ = false;
        return;
    }
    std::size_t end = bytes.find(kLineEnd);
    if (end == std::string_view::npos) {
        skipped_cr_ = !bytes.empty() && bytes.back() == '\r';
        bytes = {};
        return;
    }
    bytes.remove_prefix(end + kLineEnd.size());
    skipping_ = skipped_cr_ = false;
}

void LineSplitter::append(std::string_view bytes) {
    if (bytes.empty()) return;
    ended_in_newline_ = bytes.back() == '\n';
    if (skipping_) skip_long_line(bytes);
    // Blank text between lines carries nothing (a completed object's late line end, say).
    if (buffer_.empty())
        while (!bytes.empty() && is_space(bytes.front())) bytes.remove_prefix(1);
    buffer_.append(bytes);
}

bool LineSplitter::complete_object_remains() const {
    if (pending() == 0 || buffer_.back() != '}') return false;
    const char* text = buffer_.c_str() + line_start_;
    if (*text != '{') return false;
    cJSON* tree = cJSON_ParseWithOpts(text, nullptr, true);
    cJSON_Delete(tree);
    return tree != nullptr;
}

bool LineSplitter::next_line(std::string_view& line) {
    const std::size_t from = line_start_ == 0 ? kFirstLineEnd : line_start_;
    const std::size_t end = buffer_.size() > from ? buffer_.find(kLineEnd, from) : std::string::npos;
    if (end != std::string::npos) {
        line = std::string_view(buffer_).substr(line_start_, end - line_start_);
        line_start_ = end + kLineEnd.size();
        return true;
    }
    // A complete object without its line end counts as a line.
    if (!ended_in_newline_ && pending() < static_cast<std::size_t>(FIFO_LINE_MAX) &&
        complete_object_remains()) {
        line = std::string_view(buffer_).substr(line_start_);
        line_start_ = buffer_.size();
        return true;
    }
    finish_read();
    return false;
}

void LineSplitter::finish_read() {
    buffer_.erase(0, line_start_);
    line_start_ = 0;
    if (buffer_.empty()) return;
    if (buffer_.size() >= static_cast<std::size_t>(FIFO_LINE_MAX)) {
        qm_log_error("[thread_socket_receive] line longer than %d bytes refused\n", FIFO_LINE_MAX - 1);
        skipping_ = true;
        skipped_cr_ = buffer_.back() == '\r';
        buffer_.clear();
    } else if (ended_in_newline_ || buffer_.front() != '{') {
        buffer_.clear();
    }
}

void LineSplitter::reset() {
    buffer_.clear();
    line_start_ = 0;
    ended_in_newline_ = skipping_ = skipped_cr_ = false;
}
