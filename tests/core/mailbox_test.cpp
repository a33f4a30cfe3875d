// The reply mailbox: filing by key, taking by key, its overwrite rules, the listener flag,
// events and drag-teach points. White-box: lines are filed into a connection record directly.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "log_capture.h"
#include "qm_drag_teach.h"
#include "qm_handle.h"
#include "qm_interface.h"
#include "qm_mailbox.h"
#include "test_io.h"

namespace {

using namespace std::chrono_literals;

class Mailbox : public ::testing::Test {
protected:
    Mailbox() {
        record->fifo_handle = std::make_unique<qm_socket_fifo_handle>();
        record->robot_handle.id = 3;
        event_listener.flag = 0;
    }

    void file(const std::string& line) { fifo_file_line(*record, line); }
    // {"state":"<key>","n":<n>}
    void file_state(const std::string& key, int n = 0) {
        file(R"({"state":")" + key + R"(","n":)" + std::to_string(n) + "}");
    }
    // The line taken under `key`, or "" when none.
    std::string take(const std::string& key) {
        char buf[FIFO_LINE_MAX] = {};
        return fifo_take_line(*record->fifo_handle, key.c_str(), buf, sizeof buf) >= 0 ? buf : "";
    }
    int used_entries() const {
        int used = 0;
        for (const auto& entry : record->fifo_handle->fifo) used += entry.is_used;
        return used;
    }

    static constexpr const char* kArrival =
        R"({"state":"current_trajectory_state","trajectory_state":true,"device":0,"trajectory_connect":0})";
    std::shared_ptr<qm_handle_t> record = std::make_shared<qm_handle_t>();
};

TEST_F(Mailbox, ReplyIsFiledUnderItsStateElseItsCommand) {
    file(R"({"command":"get_x","state":"x_state"})");
    file(R"({"command":"get_y","v":[1,2]})");
    EXPECT_EQ(take("get_x"), "");
    EXPECT_EQ(take("x_state"), R"({"command":"get_x","state":"x_state"})");
    EXPECT_EQ(take("get_y"), R"({"command":"get_y","v":[1,2]})");
    EXPECT_EQ(take("get_y"), "") << "a taken line is gone";
}

TEST_F(Mailbox, TakingReturnsTheStoredLengthAndCutsToTheBuffer) {
    const std::string line = R"({"command":"abc","v":12345})";
    file(line);
    char small[8] = {};
    EXPECT_EQ(fifo_take_line(*record->fifo_handle, "abc", small, sizeof small),
              static_cast<int>(line.size()));
    EXPECT_EQ(std::string(small), line.substr(0, 7));
}

TEST_F(Mailbox, UnparsableAndConductProjectLinesAreCountedButNotStored) {
    file_state("a");
    file(R"({"command":"x",)");
    file(R"({"command":"conduct_project","state":true})");
    file(R"({"state":"conduct_project"})");
    EXPECT_EQ(used_entries(), 1);
    EXPECT_EQ(take("conduct_project"), "");
    EXPECT_EQ(record->fifo_handle->current_time, 4u);
    EXPECT_EQ(record->fifo_handle->fifo[0].time, 1u);
}

TEST_F(Mailbox, ConductProjectRenamesTheStaleEntryItChoseWithoutStoringItself) {
    file_state("old");
    for (int i = 0; i < 50; ++i) {
        file_state("filler", i);
        take("filler");
    }
    file(R"({"command":"conduct_project","state":true})");  // 51 arrivals later: chooses "old"'s entry
    EXPECT_EQ(take("old"), "");
}

TEST_F(Mailbox, FirstEntryByIndexWinsOverTheOldest) {
    file_state("other");      // entry 0
    file_state("wanted", 1);  // entry 1, older
    ASSERT_NE(take("other"), "");
    file_state("wanted", 2);  // entry 0 again, newer
    EXPECT_EQ(take("wanted"), R"({"state":"wanted","n":2})");
    EXPECT_EQ(take("wanted"), R"({"state":"wanted","n":1})");
}

TEST_F(Mailbox, UncollectedLineIsOverwrittenAfterFiftyLaterArrivals) {
    auto fifty_passing = [&] {
        for (int i = 0; i < 50; ++i) {
            file_state("passing", i);
            ASSERT_NE(take("passing"), "");
        }
    };
    file_state("old");  // arrival 1, entry 0
    fifty_passing();
    ASSERT_NE(take("old"), "") << "still there after 50 later arrivals";
    file_state("old");  // arrival 52 in entry 0 again
    fifty_passing();
    file_state("newcomer");  // arrival 103: entry 0 (arrival 52) is stale now
    EXPECT_EQ(take("old"), "");
    EXPECT_EQ(take("newcomer"), R"({"state":"newcomer","n":0})");
}

TEST_F(Mailbox, FullMailboxGivesUpItsOldestEntryAndThenDropsTheLine) {
    // The fortieth line reaches the last entry, which first clears the oldest one.
    for (int i = 0; i < SOCKET_FIFO_MAX; ++i) file_state(std::string("k").append(std::to_string(i)));
    EXPECT_EQ(used_entries(), SOCKET_FIFO_MAX - 1);
    EXPECT_EQ(take("k0"), "");
    EXPECT_EQ(min_index.load(), 0);
    EXPECT_EQ(min_time.load(), 0u);
    file_state("late");  // into the freed entry 0
    EXPECT_EQ(used_entries(), SOCKET_FIFO_MAX);
    // Now all 40 are in use and fresh: the oldest is cleared, the line has no room.
    file_state("dropped");
    EXPECT_EQ(take("dropped"), "");
    EXPECT_EQ(take("late"), "");
    EXPECT_EQ(take("k1"), R"({"state":"k1","n":0})");
    EXPECT_EQ(take("k39"), R"({"state":"k39","n":0})");
}

TEST_F(Mailbox, LinesOfTenThousandTwoHundredFortyBytesAndKeysOfFiftyAreRefused) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    const std::string head = R"({"command":"big","pad":")";
    for (int size : {FIFO_LINE_MAX - 1, FIFO_LINE_MAX}) {
        const std::string line = head + std::string(size - head.size() - 2, 'x') + "\"}";
        file(line);
        EXPECT_EQ(take("big"), size < FIFO_LINE_MAX ? line : "");
    }
    file_state(std::string(49, 'k'));
    file_state(std::string(50, 'k'));
    EXPECT_NE(take(std::string(49, 'k')), "");
    EXPECT_EQ(take(std::string(50, 'k')), "");
    EXPECT_EQ(used_entries(), 0);
    EXPECT_TRUE(log.mentions("refused"));
}

TEST_F(Mailbox, ListenerFlagDiscardsTheNextTrajectoryOrProgramEvent) {
    file(kArrival);
    file_state("reply");
    event_listener.flag = 1;
    EXPECT_EQ(take("reply"), "") << "the discard ends this take";
    EXPECT_EQ(event_listener.flag.load(), 0);
    EXPECT_EQ(take("reply"), R"({"state":"reply","n":0})");
    EXPECT_EQ(take("current_trajectory_state"), "");

    file(R"({"state":"program_run_finish","finish_id":4})");
    event_listener.flag = 2;
    EXPECT_EQ(take("program_run_finish"), "");
    EXPECT_EQ(event_listener.flag.load(), 0);
    EXPECT_EQ(used_entries(), 0);

    file(kArrival);
    file_state("reply");
    event_listener.flag = 1;
    char buf[256] = {};
    const auto now = std::chrono::steady_clock::now();
    EXPECT_GT(fifo_wait_line(*record->fifo_handle, "reply", buf, sizeof buf, now), 0)
        << "waiting looks past it";
}

TEST_F(Mailbox, WaitingTakeWakesWhenTheLineIsFiled) {
    std::thread filer([&] {
        std::this_thread::sleep_for(20ms);
        file_state("late");
    });
    char buf[256] = {};
    const auto deadline = std::chrono::steady_clock::now() + 5s;
    EXPECT_GT(fifo_wait_line(*record->fifo_handle, "late", buf, sizeof buf, deadline), 0);
    EXPECT_LT(std::chrono::steady_clock::now(), deadline - 4s) << "woken by the filing, not the deadline";
    filer.join();
}

// ---- events ----

std::vector<qm_event_push_data_t> g_events;

TEST_F(Mailbox, EventsReachTheCallbackWithTheirFieldsAndStayFiled) {
    g_events.clear();
    qm_get_arm_event_call_back([](qm_event_push_data_t event) { g_events.push_back(event); });
    file(R"({"state":"current_trajectory_state","trajectory_state":true,"device":2,"trajectory_connect":1})");
    file(R"({"state":"program_run_finish","finish_id":17})");
    qm_get_arm_event_call_back(nullptr);  // keeps the previous callback
    file(R"({"state":"program_run_finish","finish_id":1})");
    file(R"({"command":"movej","receive_state":true})");  // no event
    ASSERT_EQ(g_events.size(), 3u);
    const auto fields = [](const qm_event_push_data_t& e) {
        return std::vector{e.handle_id, static_cast<int>(e.event_type), static_cast<int>(e.trajectory_state),
                           e.device,    e.trajectory_connect,           e.program_id};
    };
    EXPECT_EQ(fields(g_events[0]),
              (std::vector{3, static_cast<int>(QM_CURRENT_TRAJECTORY_STATE_E), 1, 2, 1, 0}));
    EXPECT_EQ(fields(g_events[1]), (std::vector{3, static_cast<int>(QM_PROGRAM_RUN_FINISH_E), 0, 0, 0, 17}));
    EXPECT_NE(take("current_trajectory_state"), "");
}

qm_socket_fifo_handle* g_filing = nullptr;
int g_seen_by_callback = 0;

TEST_F(Mailbox, EventReachesTheCallbackBeforeItIsFiled) {
    g_filing = record->fifo_handle.get();
    g_seen_by_callback = 0;
    qm_get_arm_event_call_back([](qm_event_push_data_t) {
        char buf[FIFO_LINE_MAX];
        g_seen_by_callback = fifo_take_line(*g_filing, "current_trajectory_state", buf, sizeof buf);
    });
    file(kArrival);
    qm_get_arm_event_call_back([](qm_event_push_data_t) {});
    EXPECT_EQ(g_seen_by_callback, -1) << "a waiting move must not see the event while the callback runs";
    EXPECT_EQ(take("current_trajectory_state"), kArrival);
}

// ---- drag-teach points ----

class DragTeachPoints : public Mailbox {
protected:
    DragTeachPoints() { EXPECT_TRUE(drag_teach_file_open(path.c_str())); }
    ~DragTeachPoints() override {
        drag_teach_file_close();
        std::remove(path.c_str());
    }
    std::string saved() const { return qm_test::read_file(path); }
    std::string path = ::testing::TempDir() + "drag_points_" + std::to_string(::getpid()) + ".txt";
};

TEST_F(DragTeachPoints, PointLinesAreWrittenToTheSaveFileUntilTheTotal) {
    drag_teach_total_num = 2;
    file(R"({"point":[1,2,3]})");
    EXPECT_EQ(drag_teach_save_start.load(), 1);
    EXPECT_EQ(drag_teach_save_complete.load(), 0);
    file(R"({"point":[4,5,6]})");
    EXPECT_EQ(drag_teach_count.load(), 2);
    EXPECT_EQ(drag_teach_save_complete.load(), 1);
    EXPECT_EQ(saved(), "{\"point\":[1,2,3]}\r\n{\"point\":[4,5,6]}\r\n");
    EXPECT_EQ(used_entries(), 0) << "points are not stored in the mailbox";
}

TEST_F(DragTeachPoints, LineWithoutKeyOrPointArrayFailsTheSave) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    file(R"({"point":7})");
    EXPECT_EQ(drag_teach_save_state.load(), 1);
    EXPECT_TRUE(log.contains("Error: 'point' is not an array. {\"point\":7}\n"));
    EXPECT_EQ(saved(), "");
}

}  // namespace
