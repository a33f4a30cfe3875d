// Cutting a connection's byte stream into lines, read by read.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "log_capture.h"
#include "qm_line_splitter.h"

namespace {

// Feeds the reads in order and collects every line they complete.
std::vector<std::string> split(LineSplitter& splitter, const std::vector<std::string>& reads) {
    std::vector<std::string> lines;
    for (const std::string& read : reads) {
        splitter.append(read);
        std::string_view line;
        while (splitter.next_line(line)) lines.emplace_back(line);
    }
    return lines;
}

struct SplitCase {
    const char* name;
    std::vector<std::string> reads;
    std::vector<std::string> lines;
};
// Names the case in test listings.
void PrintTo(const SplitCase& c, std::ostream* os) {
    *os << c.name;
}

class LineSplitting : public ::testing::TestWithParam<SplitCase> {};

TEST_P(LineSplitting, YieldsTheExpectedLines) {
    LineSplitter splitter;
    EXPECT_EQ(split(splitter, GetParam().reads), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(
    Reads, LineSplitting,
    ::testing::Values(SplitCase{"one_line", {"{\"command\":\"a\"}\r\n"}, {"{\"command\":\"a\"}"}},
                      SplitCase{"two_replies_in_one_read",
                                {"{\"command\":\"a\"}\r\n{\"command\":\"b\"}\r\n"},
                                {"{\"command\":\"a\"}", "{\"command\":\"b\"}"}},
                      SplitCase{"line_split_over_three_reads",
                                {"{\"comm", "and\":\"a\"}\r", "\n"},
                                {"{\"command\":\"a\"}"}},
                      SplitCase{"object_without_line_end_is_a_line",
                                {"{\"command\":\"a\"}", "\r\n{\"command\":\"b\"}\r\n"},
                                {"{\"command\":\"a\"}", "{\"command\":\"b\"}"}},
                      SplitCase{"nested_object_cut_after_a_brace_waits_for_the_rest",
                                {"{\"a\":{\"b\":1}", "}\r\n"},
                                {"{\"a\":{\"b\":1}}"}},
                      SplitCase{"line_end_in_the_first_five_bytes_is_not_recognised",
                                {"{}\r\n{\"command\":\"a\"}\r\n"},
                                {"{}\r\n{\"command\":\"a\"}"}},
                      SplitCase{"text_after_the_last_line_end_of_a_read_ending_in_newline_is_dropped",
                                {"{\"command\":\"a\"}\r\n{\"x\":\n", "{\"command\":\"b\"}\r\n"},
                                {"{\"command\":\"a\"}", "{\"command\":\"b\"}"}},
                      SplitCase{"garbage_that_cannot_start_an_object_is_dropped",
                                {"garbage", "{\"command\":\"b\"}\r\n"},
                                {"{\"command\":\"b\"}"}},
                      SplitCase{"empty_read", {""}, {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(LineSplitterLimits, LineReachingTheMailboxSizeIsSkippedUpToItsEnd) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    LineSplitter splitter;
    const std::string huge = "{\"pad\":\"" + std::string(FIFO_LINE_MAX, 'x');
    auto lines = split(splitter, {huge, "more\"}\r", "\n{\"command\":\"after\"}\r\n"});
    EXPECT_EQ(lines, std::vector<std::string>{"{\"command\":\"after\"}"});
    EXPECT_TRUE(log.mentions("refused"));
    EXPECT_EQ(splitter.pending(), 0u);
}

TEST(LineSplitterLimits, UnfinishedTextStaysBelowTheLineLimit) {
    LineSplitter splitter;
    for (int i = 0; i < 100; ++i) split(splitter, {"{\"a\":\"" + std::string(500, 'y')});
    EXPECT_LT(splitter.pending(), static_cast<size_t>(FIFO_LINE_MAX));
}

}  // namespace
