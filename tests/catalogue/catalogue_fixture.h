// One synchronised QM65-B arm (six joints) on a fake controller for the catalogue tests:
// short reply timeouts, scripted replies, the request lines and the connection record.
#ifndef QM_TEST_CATALOGUE_FIXTURE_H
#define QM_TEST_CATALOGUE_FIXTURE_H

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "fake_controller.h"
#include "log_capture.h"
#include "mio_json.h"
#include "qm_exchange.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace catalogue_test {

using namespace std::chrono_literals;
using Call = std::function<int(qm_robot_handle*)>;
// A table row's call, made on the arm `h`.
#define ON_ARM(...) [&](qm_robot_handle* h) { return __VA_ARGS__; }

inline std::string command_of(const std::string& line) {
    JsonPtr tree = json_parse(line.c_str());
    const char* command = MIO_JSON_GetObjectItemStr(tree.get(), "command");
    return command ? command : "";
}

// {"command":"<key>","<member>":<true|false>}
inline std::string judged(const std::string& key, const std::string& member, bool ok = true) {
    return R"({"command":")" + key + R"(",")" + member + R"(":)" + (ok ? "true" : "false") + "}";
}
inline std::string accepted(const std::string& command, bool ok = true) {
    return judged(command, "receive_state", ok);
}

// The controller's arrival report of one trajectory.
inline std::string arrival(int device, bool reached = true, int trajectory_connect = 0) {
    return R"({"state":"current_trajectory_state","trajectory_state":)" +
           std::string(reached ? "true" : "false") + R"(,"device":)" + std::to_string(device) +
           R"(,"trajectory_connect":)" + std::to_string(trajectory_connect) + "}";
}

// The answer to a planned-trajectory poll: "none", "movej", "movel", ...
inline std::string planned(const std::string& type) {
    return R"({"command":"arm_current_trajectory","type":")" + type + R"(","data":[0,0,0,0,0,0]})";
}

// Pushes one line every 20 ms until destroyed. In single-thread mode the bytes that share a
// read with an awaited reply are dropped, so a single push could be lost.
class RepeatedPush {
public:
    RepeatedPush(qm_test::FakeController& controller, std::string line)
        : thread_([this, &controller, line = std::move(line)] {
              while (!stop_) {
                  controller.push_line(line);
                  std::this_thread::sleep_for(20ms);
              }
          }) {}
    ~RepeatedPush() {
        stop_ = true;
        thread_.join();
    }

private:
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

// A set command: the exact request, and the key and member of its reply (key "": the command).
struct SetRow {
    const char* behaviour;
    Call call;
    std::string request;
    std::string member;
    std::string reply_key = "";
};

// A scripted answer (none: the controller stays silent) and the result expected.
struct Failure {
    std::optional<std::string> reply;
    int expected;
};

// The listener flag and the reply timeouts are process-wide: each test starts from a clear
// flag and puts the timeouts back.
class CatalogueArm : public ::testing::Test {
protected:
    explicit CatalogueArm(qm_thread_mode_e mode = QM_DUAL_MODE_E) : mode_(mode) {}

    void SetUp() override {
        qm_event_listener_set_flag(0);
        session_.emplace(controller, mode_);
        ASSERT_NE(arm(), nullptr);
        ASSERT_EQ(arm()->id, 1);
        qm_set_timeout(150);
    }
    void TearDown() override {
        session_.reset();
        m_nOutTime = saved_query_timeout_;
        m_nOutTime_max = saved_set_timeout_;
        qm_event_listener_set_flag(0);
    }

    qm_robot_handle* arm() const { return session_->handle(); }

    // Reads (or writes) the connection record under the table lock.
    template <class Read>
    auto record(Read read) const {
        TableReadLock lock;
        return read(*qm_get_qm_handle_by_robot_handle(arm()));
    }

    // Runs the call with nothing received yet.
    int fresh(const Call& call) {
        controller.clear_received();
        return call(arm());
    }
    std::string first_line() const { return controller.wait_line(0, 100ms).value_or(""); }
    // The only request line the controller received.
    std::string only_line() const {
        const std::string line = first_line();
        EXPECT_EQ(controller.lines().size(), 1u);
        return line;
    }

    // Each row sends exactly its request, returns 0 when its member is true and 1 when false.
    void expect_each_judged(const std::vector<SetRow>& rows) {
        for (const SetRow& row : rows) {
            SCOPED_TRACE(row.behaviour);
            const std::string command = command_of(row.request);
            const std::string key = row.reply_key.empty() ? command : row.reply_key;
            controller.reply(command, judged(key, row.member, true));
            EXPECT_EQ(fresh(row.call), 0);
            EXPECT_EQ(first_line(), row.request);
            controller.reply(command, judged(key, row.member, false));
            EXPECT_EQ(row.call(arm()), 1);
        }
    }

    // Each scripted answer to `command` gives its result; an unknown arm gives -1.
    void expect_failures(const std::string& command, const Call& call, const std::vector<Failure>& failures) {
        for (const Failure& failure : failures) {
            SCOPED_TRACE(failure.reply.value_or("no reply"));
            if (failure.reply)
                controller.reply(command, *failure.reply);
            else
                controller.forget(command);
            EXPECT_EQ(call(arm()), failure.expected);
        }
        qm_robot_handle stranger{1};
        EXPECT_EQ(call(&stranger), -1);
    }
    // Refusal, silence and a reply without the judged member.
    static std::vector<Failure> set_failures(const std::string& command, const std::string& member) {
        return {{judged(command, member, false), 1},
                {std::nullopt, -2},
                {R"({"command":")" + command + R"("})", -3}};
    }

    qm_test::FakeController controller;

private:
    qm_thread_mode_e mode_;
    std::optional<qm_test::ArmSession> session_;
    uint32_t saved_query_timeout_ = m_nOutTime;
    uint32_t saved_set_timeout_ = m_nOutTime_max;
};

}  // namespace catalogue_test

#endif
