// Captures the library's log messages for a test: installs a sink at the given level and puts
// the tests' noting sink back at scope end.
#ifndef QM_TEST_LOG_CAPTURE_H
#define QM_TEST_LOG_CAPTURE_H

#include <string>
#include <vector>

#include "qm_define.h"

namespace qm_test {

class LogCapture {
public:
    explicit LogCapture(LogLevel level = LOG_LEVEL_DEBUG);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // Every formatted message so far, in order.
    std::vector<std::string> messages() const;
    // Whether some message equals `text` exactly.
    bool contains(const std::string& text) const;
    // Whether some message contains `part`.
    bool mentions(const std::string& part) const;
    void clear();
};

}  // namespace qm_test

#endif
