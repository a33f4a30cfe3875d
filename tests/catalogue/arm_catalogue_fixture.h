// Shared by the state, limit, frame and model-configuration tests: one synchronised QM65-B
// arm (six joints) on a fake controller, short reply timeouts, and white-box access to the
// connection record.
#ifndef QM_TEST_ARM_CATALOGUE_FIXTURE_H
#define QM_TEST_ARM_CATALOGUE_FIXTURE_H

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "catalogue_support.h"
#include "fake_controller.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace arm_catalogue_test {

using namespace std::chrono_literals;

using catalogue_test::Call;
using catalogue_test::command_of;

// {"command":"<key>","<member>":<true|false>}
inline std::string judged(const std::string& key, const std::string& member, bool ok = true) {
    return R"({"command":")" + key + R"(",")" + member + R"(":)" + (ok ? "true" : "false") + "}";
}

// A set command: the exact request, the key its reply is filed under and the member judged.
struct SetRow {
    const char* behaviour;
    Call call;
    std::string request;
    std::string reply_key;
    std::string checked;
};

class CatalogueArm : public ::testing::Test {
protected:
    static constexpr int kShortTimeoutMs = 60;

    void SetUp() override {
        session_.emplace(controller);
        ASSERT_NE(arm(), nullptr);
        ASSERT_EQ(arm()->id, 1);
        qm_set_timeout(kShortTimeoutMs);
    }
    void TearDown() override {
        session_.reset();
        saved_timeouts_.restore();
    }

    qm_robot_handle* arm() const { return session_->handle(); }

    // Reads the connection record under the table lock.
    template <class Read>
    auto record(Read read) const {
        TableReadLock lock;
        return read(*qm_get_qm_handle_by_robot_handle(arm()));
    }
    void set_record_dof(int dof) {
        TableReadLock lock;
        qm_get_qm_handle_by_robot_handle(arm())->arm_dof = dof;
    }

    // Runs the call with nothing received yet; returns its result and keeps the request lines.
    int fresh(const Call& call) {
        controller.clear_received();
        return call(arm());
    }
    // The first request line after fresh().
    std::string first_line() const {
        auto line = controller.wait_line(0, 100ms);
        return line.value_or("");
    }

    // Each row, answered with its member true, sends exactly its request and returns 0.
    void expect_each_accepted(const std::vector<SetRow>& rows) {
        for (const SetRow& row : rows) {
            SCOPED_TRACE(row.behaviour);
            controller.reply(command_of(row.request), judged(row.reply_key, row.checked, true));
            EXPECT_EQ(fresh(row.call), 0);
            EXPECT_EQ(first_line(), row.request);
        }
    }
    // Each row, answered with its member false, returns 1.
    void expect_each_refused(const std::vector<SetRow>& rows) {
        for (const SetRow& row : rows) {
            SCOPED_TRACE(row.behaviour);
            controller.reply(command_of(row.request), judged(row.reply_key, row.checked, false));
            EXPECT_EQ(fresh(row.call), 1);
        }
    }

    qm_test::FakeController controller;

private:
    std::optional<qm_test::ArmSession> session_;
    catalogue_test::SavedTimeouts saved_timeouts_;
};

}  // namespace arm_catalogue_test

#endif
