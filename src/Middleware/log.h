// The process-wide logger: four levels and one replaceable sink.
#ifndef QM_LOG_H
#define QM_LOG_H

#include <atomic>
#include <cstdarg>

#include "qm_define.h"

struct Logger {
    std::atomic<LogCallback> callback;
    std::atomic<int> log_level;
};
extern Logger gLogger;

void qm_log_debug(const char* format, ...) __attribute__((format(printf, 1, 2)));
void qm_log_info(const char* format, ...) __attribute__((format(printf, 1, 2)));
void qm_log_warn(const char* format, ...) __attribute__((format(printf, 1, 2)));
void qm_log_error(const char* format, ...) __attribute__((format(printf, 1, 2)));

// A fixed message chosen from a table: `text` is the format the sink receives, with no
// arguments, so it must hold no conversion.
void qm_log_text(LogLevel level, const char* text);
// Whether a message of `level` would reach the sink; lets a caller skip building its arguments.
bool qm_log_enabled(LogLevel level);

// A null callback installs the default sink; level becomes the threshold.
void qm_set_log_callback(LogCallback callback, LogLevel level);

// The default sink: formats to standard error.
void default_log(const char* format, va_list args);

// The file sink installed by qm_set_log_save.
void custom_api_log(const char* message, va_list args);
// Opens the log file for appending; false when it cannot be opened.
bool qm_log_file_open(const char* path);
void qm_log_file_close();

// Local time as "YYYY-MM-DD hh_mm_ss" in one shared buffer (per thread here, so it cannot tear).
const char* qm_get_cur_time();

// Sleeps ms milliseconds; every wait of the library goes through it.
void sleep_cp(int ms);

#endif
