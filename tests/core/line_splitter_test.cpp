// Cutting a connection's byte stream into lines, read by read.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "log_capture.h"
#include "qm_line_splitter.h"

namespace {

using Lines = std::vector<std::string>;

// Feeds the reads in order and collects every line they complete.
Lines split(LineSplitter& splitter, const Lines& reads) {
    Lines lines;
    for (const std::string& read : reads) {
        splitter.append(read);
        std::string_view line;
        while (splitter.next_line(line)) lines.emplace_back(line);
    }
    return lines;
}

const std::string kA = R"({"command":"a"})", kB = R"({"command":"b"})";

TEST(LineSplitter, YieldsTheLinesTheReadsComplete) {
    const std::pair<Lines, Lines> rows[] = {
        {{kA + "\r\n"}, {kA}},
        {{kA + "\r\n" + kB + "\r\n"}, {kA, kB}},                 // two replies in one read
        {{"{\"comm", "and\":\"a\"}\r", "\n"}, {kA}},             // a line over three reads
        {{kA, "\r\n" + kB + "\r\n"}, {kA, kB}},                  // an object without line end is a line
        {{"{\"a\":{\"b\":1}", "}\r\n"}, {"{\"a\":{\"b\":1}}"}},  // a nested object waits for the rest
        {{"{}\r\n" + kA + "\r\n"}, {"{}\r\n" + kA}},             // no line end in the first five bytes
        // A read ending in "\n" drops the text after its last line end.
        {{kA + "\r\n{\"x\":\n", kB + "\r\n"}, {kA, kB}},
        {{"garbage", kB + "\r\n"}, {kB}},  // text that cannot start an object
        {{""}, {}},
    };
    for (const auto& [reads, lines] : rows) {
        LineSplitter splitter;
        EXPECT_EQ(split(splitter, reads), lines) << ::testing::PrintToString(reads);
    }
}

TEST(LineSplitter, LineReachingTheMailboxSizeIsSkippedUpToItsEnd) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    LineSplitter splitter;
    const std::string huge = "{\"pad\":\"" + std::string(FIFO_LINE_MAX, 'x');
    EXPECT_EQ(split(splitter, {huge, "more\"}\r", "\n" + kA + "\r\n"}), Lines{kA});
    EXPECT_TRUE(log.mentions("refused"));
    EXPECT_EQ(splitter.pending(), 0u);
}

TEST(LineSplitter, UnfinishedTextStaysBelowTheLineLimit) {
    LineSplitter splitter;
    for (int i = 0; i < 100; ++i) split(splitter, {"{\"a\":\"" + std::string(500, 'y')});
    EXPECT_LT(splitter.pending(), static_cast<size_t>(FIFO_LINE_MAX));
}

}  // namespace
