// Shared by the motion and jog tests: one six-joint arm on a fake controller, short reply
// timeouts, and the controller's reply and event lines.
#ifndef QM_TEST_MOTION_FIXTURE_H
#define QM_TEST_MOTION_FIXTURE_H

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>

#include "catalogue_support.h"
#include "fake_controller.h"
#include "qm_exchange.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace motion_test {

using namespace std::chrono_literals;
using catalogue_test::Call;
using catalogue_test::command_of;

inline std::string accepted(const std::string& command, bool ok = true) {
    return R"({"command":")" + command + R"(","receive_state":)" + (ok ? "true" : "false") + "}";
}

// The controller's arrival report of one trajectory.
inline std::string arrival(int device, bool reached = true, int trajectory_connect = 0) {
    return R"({"state":"current_trajectory_state","trajectory_state":)" + std::string(reached ? "true" : "false") +
           R"(,"device":)" + std::to_string(device) + R"(,"trajectory_connect":)" +
           std::to_string(trajectory_connect) + "}";
}

// The answer to a planned-trajectory poll: "none", "movej", "movel", ...
inline std::string planned(const std::string& type) {
    return R"({"command":"arm_current_trajectory","type":")" + type + R"(","data":[0,0,0,0,0,0]})";
}

// A scripted answer to an acceptance (none: the controller stays silent) and the result expected.
struct FailureRow {
    const char* behaviour;
    std::optional<std::string> reply;
    int expected;
};

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
    RepeatedPush(const RepeatedPush&) = delete;
    RepeatedPush& operator=(const RepeatedPush&) = delete;

private:
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

// One connected six-joint arm. Timeouts are shortened where their length is not under test;
// the listener flag is process-wide, so every test starts with it clear.
class MotionArm : public ::testing::Test {
protected:
    static constexpr int kShortTimeoutMs = 60;

    void SetUp() override { qm_event_listener_set_flag(0); }
    void TearDown() override {
        session_.reset();
        saved_timeouts_.restore();
        qm_event_listener_set_flag(0);
    }

    void start(qm_thread_mode_e mode = QM_DUAL_MODE_E, int timeout_ms = kShortTimeoutMs) {
        session_.emplace(controller, mode);
        ASSERT_EQ(qm_set_robot_dof(arm(), 6), 0);
        qm_set_timeout(timeout_ms);
    }
    qm_robot_handle* arm() const { return session_->handle(); }

    // The only request line the controller received.
    std::string only_line() const {
        controller.wait_line(0);
        auto lines = controller.lines();
        EXPECT_EQ(lines.size(), 1u);
        return lines.empty() ? std::string() : lines.front();
    }

    // Scripts `reply` as the answer to `command`, or silence when there is none.
    void answer(const std::string& command, const std::optional<std::string>& reply) {
        if (reply)
            controller.reply(command, *reply);
        else
            controller.forget(command);
    }

    qm_test::FakeController controller;

private:
    std::optional<qm_test::ArmSession> session_;
    catalogue_test::SavedTimeouts saved_timeouts_;
};

}  // namespace motion_test

#endif
