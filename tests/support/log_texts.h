// The library's log texts and the check that every test emits only those.
#ifndef QM_TEST_LOG_TEXTS_H
#define QM_TEST_LOG_TEXTS_H

#include <cstdarg>
#include <set>
#include <string>
#include <vector>

namespace qm_test {

// The format texts the library may pass to a log sink.
const std::set<std::string>& known_log_texts();

// Notes a format text that reached a sink during the tests; the check at the end of the test
// program (log_text_check.cpp) fails for any text not in known_log_texts().
void note_log_format(const char* format);
std::vector<std::string> noted_log_formats();

// A sink that only notes the format. Each test starts with it installed at the debug level,
// so that every message the library emits is checked.
void noting_sink(const char* format, va_list args);

}  // namespace qm_test

#endif
