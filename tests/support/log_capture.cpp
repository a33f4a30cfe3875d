#include "log_capture.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <mutex>

#include "log_texts.h"
#include "qm_interface.h"

namespace qm_test {

namespace {

std::mutex g_mutex;
std::vector<std::string> g_messages;

void capture_sink(const char* format, va_list args) {
    note_log_format(format);
    char text[16384];
    std::vsnprintf(text, sizeof text, format, args);
    std::lock_guard lock(g_mutex);
    g_messages.emplace_back(text);
}

}  // namespace

LogCapture::LogCapture(LogLevel level) {
    clear();
    qm_set_log_call_back(capture_sink, level);
}

LogCapture::~LogCapture() {
    qm_set_log_call_back(noting_sink, LOG_LEVEL_DEBUG);
}

std::vector<std::string> LogCapture::messages() const {
    std::lock_guard lock(g_mutex);
    return g_messages;
}

bool LogCapture::contains(const std::string& text) const {
    std::lock_guard lock(g_mutex);
    return std::find(g_messages.begin(), g_messages.end(), text) != g_messages.end();
}

bool LogCapture::mentions(const std::string& part) const {
    std::lock_guard lock(g_mutex);
    return std::any_of(g_messages.begin(), g_messages.end(),
                       [&](const std::string& m) { return m.find(part) != std::string::npos; });
}

void LogCapture::clear() {
    std::lock_guard lock(g_mutex);
    g_messages.clear();
}

}  // namespace qm_test
