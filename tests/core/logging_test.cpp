// Logger levels, replaceable sink and the log file's line format.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <regex>
#include <string>
#include <vector>

#include "log.h"
#include "qm_interface.h"
#include "test_io.h"

namespace {

std::vector<std::string> g_received;

void capture_sink(const char* format, va_list args) {
    char text[256];
    std::vsnprintf(text, sizeof text, format, args);
    g_received.emplace_back(text);
}

// What stderr and `capture_sink` get from one message per level after `configure`.
void expect_output(void (*configure)(), const std::string& on_stderr, std::vector<std::string> received) {
    g_received.clear();
    configure();
    ::testing::internal::CaptureStderr();
    qm_log_debug("debug %d\n", 0);
    qm_log_info("info %d\n", 1);
    qm_log_warn("warn %d\n", 2);
    qm_log_error("error %d\n", 3);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), on_stderr);
    EXPECT_EQ(g_received, received);
    qm_set_log_call_back(nullptr, LOG_LEVEL_ERROR);
}

const char* const kStamp = R"(\d{4}-\d{2}-\d{2} \d{2}_\d{2}_\d{2})";

}  // namespace

TEST(Logging, SinkAndLevelDecideWhatIsPrinted) {
    // The default logger (the test programs start each test with a sink of their own).
    expect_output([] { qm_set_log_call_back(nullptr, LOG_LEVEL_ERROR); }, "error 3\n", {});
    expect_output([] { qm_set_log_call_back(capture_sink, LOG_LEVEL_WARN); }, "", {"warn 2\n", "error 3\n"});
    // A null sink restores the default one at the given level.
    expect_output(
        [] {
            qm_set_log_call_back(capture_sink, LOG_LEVEL_DEBUG);
            qm_set_log_call_back(nullptr, LOG_LEVEL_INFO);
        },
        "info 1\nwarn 2\nerror 3\n", {});
}

TEST(Logging, LogFileHoldsTimeStampedLines) {
    char path[] = "/tmp/qm_log_test_XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    qm_set_log_save(path);
    qm_log_debug("[%s] %s send error\n", "qm_movej", "movej");
    qm_log_error("no line end %d", 7);
    qm_log_file_close();

    const std::string text = qm_test::read_file(path);
    std::remove(path);
    const std::string stamp = std::string("\\[") + kStamp + "\\]";
    std::regex expected(stamp + " Begin API Testing\\.\n" + stamp + ": \\[qm_movej\\] movej send error\n\n" +
                        stamp + ": no line end 7\n");
    EXPECT_TRUE(std::regex_match(text, expected)) << text;
    EXPECT_TRUE(std::regex_match(qm_get_cur_time(), std::regex(kStamp)));
}
