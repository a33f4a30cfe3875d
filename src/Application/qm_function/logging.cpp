// The public logging setters.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "log.h"
#include "qm_interface.h"

extern "C" {

void qm_set_log_call_back(LogCallback callback, int level) {
    qm_set_log_callback(callback, static_cast<LogLevel>(level));
}

void qm_set_log_save(const char* path) {
    if (!path || !qm_log_file_open(path)) {
        std::fprintf(stderr, "Failed to open log file: %s\n", std::strerror(errno));
        std::exit(1);  // intended: the caller asked for a log it cannot have
    }
    qm_set_log_callback(custom_api_log, LOG_LEVEL_DEBUG);
}

}  // extern "C"
