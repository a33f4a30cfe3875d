// One arm connected to a fake controller, with short reply timeouts.
#ifndef QM_TEST_CONNECTED_ARM_H
#define QM_TEST_CONNECTED_ARM_H

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "fake_controller.h"
#include "qm_exchange.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace core_test {

using namespace std::chrono_literals;

class ConnectedArm : public ::testing::Test {
protected:
    static constexpr int kShortTimeoutMs = 60;

    explicit ConnectedArm(qm_thread_mode_e mode = QM_DUAL_MODE_E) : mode_(mode) {}

    void SetUp() override {
        qm_set_timeout(kShortTimeoutMs);
        session_.emplace(controller, mode_);
        ASSERT_NE(arm(), nullptr);
    }
    void TearDown() override {
        session_.reset();
        m_nOutTime = 500;
        m_nOutTime_max = 1000;
    }

    qm_robot_handle* arm() const { return session_->handle(); }

    // Runs `write` on the connection record under the table lock.
    template <class Write>
    void with_record(Write write) {
        TableReadLock lock;
        write(*qm_get_qm_handle_by_robot_handle(arm()));
    }

    // Sends {"command": name} and waits for the reply filed under `key`; the exchange's result.
    int exchange(const char* name, const char* key, std::string* reply = nullptr,
                 int timeout = kShortTimeoutMs) {
        const JsonValue request[] = {{JSON_STRING, "command", 0, {.str_value = name}}};
        char buf[1024] = {};
        int result = qm_pack_lock_set("test_exchange", arm(), request, 1, key, buf, sizeof buf, timeout);
        if (reply) *reply = buf;
        return result;
    }
    // Waits for a line filed under `key` without sending anything.
    int await(const char* key, std::string* reply = nullptr, int timeout = kShortTimeoutMs) {
        char buf[1024] = {};
        int result = qm_pack_lock_set("test_await", arm(), nullptr, 0, key, buf, sizeof buf, timeout);
        if (reply) *reply = buf;
        return result;
    }

    qm_test::FakeController controller;

private:
    qm_thread_mode_e mode_;
    std::optional<qm_test::ArmSession> session_;
};

class SingleThreadArm : public ConnectedArm {
protected:
    SingleThreadArm() : ConnectedArm(QM_SINGLE_MODE_E) {}
};

}  // namespace core_test

#endif
