// Logger levels, replaceable sink and the log file's line format.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "log.h"
#include "qm_interface.h"

namespace {

std::vector<std::string> g_received;

void capture_sink(const char* format, va_list args) {
    char text[256];
    std::vsnprintf(text, sizeof text, format, args);
    g_received.emplace_back(text);
}

class Logging : public ::testing::Test {
protected:
    void SetUp() override { g_received.clear(); }
    void TearDown() override { qm_set_log_call_back(nullptr, LOG_LEVEL_ERROR); }

    static std::string stderr_of(void (*emit)()) {
        ::testing::internal::CaptureStderr();
        emit();
        return ::testing::internal::GetCapturedStderr();
    }
};

void emit_all_levels() {
    qm_log_debug("debug %d\n", 0);
    qm_log_info("info %d\n", 1);
    qm_log_warn("warn %d\n", 2);
    qm_log_error("error %d\n", 3);
}

}  // namespace

TEST_F(Logging, DefaultSinkPrintsOnlyErrors) {
    EXPECT_EQ(stderr_of(emit_all_levels), "error 3\n");
}

TEST_F(Logging, NullSinkRestoresDefaultAtTheGivenLevel) {
    qm_set_log_call_back(capture_sink, LOG_LEVEL_DEBUG);
    qm_set_log_call_back(nullptr, LOG_LEVEL_INFO);
    EXPECT_EQ(stderr_of(emit_all_levels), "info 1\nwarn 2\nerror 3\n");
    EXPECT_TRUE(g_received.empty());
}

TEST_F(Logging, CustomSinkReceivesFormatAndArguments) {
    qm_set_log_call_back(capture_sink, LOG_LEVEL_WARN);
    EXPECT_EQ(stderr_of(emit_all_levels), "");
    ASSERT_EQ(g_received.size(), 2u);
    EXPECT_EQ(g_received[0], "warn 2\n");
    EXPECT_EQ(g_received[1], "error 3\n");
}

TEST_F(Logging, LogFileHoldsTimeStampedLines) {
    char path[] = "/tmp/qm_log_test_XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    qm_set_log_save(path);
    qm_log_debug("[%s] %s send error\n", "qm_movej", "movej");
    qm_log_error("no line end %d", 7);
    qm_log_file_close();

    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    std::remove(path);
    const std::string stamp = R"(\d{4}-\d{2}-\d{2} \d{2}_\d{2}_\d{2})";
    std::regex expected("\\[" + stamp + "\\] Begin API Testing\\.\n" +
                        "\\[" + stamp + "\\]: \\[qm_movej\\] movej send error\n\n" +
                        "\\[" + stamp + "\\]: no line end 7\n");
    EXPECT_TRUE(std::regex_match(text.str(), expected)) << text.str();
}

TEST(CurrentTime, UsesUnderscoresBetweenTimeParts) {
    EXPECT_TRUE(std::regex_match(qm_get_cur_time(),
                                 std::regex(R"(\d{4}-\d{2}-\d{2} \d{2}_\d{2}_\d{2})")));
}
