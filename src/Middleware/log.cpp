#include "log.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <memory>
#include <mutex>
#include <thread>

Logger gLogger{default_log, LOG_LEVEL_ERROR};

namespace {

struct FileCloser {
    void operator()(std::FILE* f) const noexcept { std::fclose(f); }
};

std::mutex g_log_file_mutex;
std::unique_ptr<std::FILE, FileCloser> g_log_file;

void emit(int level, const char* format, va_list args) {
    if (gLogger.log_level.load(std::memory_order_relaxed) > level) return;
    LogCallback sink = gLogger.callback.load(std::memory_order_acquire);
    if (sink) sink(format, args);
}

}  // namespace

#define QM_LOG_AT(level)             \
    va_list args;                    \
    va_start(args, format);          \
    emit((level), format, args);     \
    va_end(args)

namespace {
void emit_at(int level, const char* format, ...) { QM_LOG_AT(level); }
}  // namespace

void qm_log_debug(const char* format, ...) { QM_LOG_AT(LOG_LEVEL_DEBUG); }
void qm_log_info(const char* format, ...) { QM_LOG_AT(LOG_LEVEL_INFO); }
void qm_log_warn(const char* format, ...) { QM_LOG_AT(LOG_LEVEL_WARN); }
void qm_log_error(const char* format, ...) { QM_LOG_AT(LOG_LEVEL_ERROR); }

void qm_log_text(LogLevel level, const char* text) { emit_at(level, text); }

bool qm_log_enabled(LogLevel level) { return gLogger.log_level.load(std::memory_order_relaxed) <= level; }

void qm_set_log_callback(LogCallback callback, LogLevel level) {
    gLogger.callback.store(callback ? callback : default_log, std::memory_order_release);
    gLogger.log_level.store(level, std::memory_order_relaxed);
}

void default_log(const char* format, va_list args) { std::vfprintf(stderr, format, args); }

bool qm_log_file_open(const char* path) {
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path, "a"));
    if (!file) return false;
    std::lock_guard lock(g_log_file_mutex);
    g_log_file = std::move(file);
    std::fprintf(g_log_file.get(), "[%s] Begin API Testing.\n", qm_get_cur_time());
    std::fflush(g_log_file.get());
    return true;
}

void qm_log_file_close() {
    std::lock_guard lock(g_log_file_mutex);
    g_log_file.reset();
}

void custom_api_log(const char* message, va_list args) {
    if (!message) {
        std::fputs("Error: message is a null pointer\n", stderr);
        return;
    }
    char text[1024];
    std::vsnprintf(text, sizeof text, message, args);  // longer output is cut
    std::lock_guard lock(g_log_file_mutex);
    if (!g_log_file) return;
    // Most messages end in a line end already, so the file holds an empty line after them.
    std::fprintf(g_log_file.get(), "[%s]: %s\n", qm_get_cur_time(), text);
    std::fflush(g_log_file.get());
}

const char* qm_get_cur_time() {
    thread_local char text[64];
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d_%02d_%02d", local.tm_year + 1900,
                  local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    return text;
}

void sleep_cp(int ms) {
    if (ms > 0) std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}
