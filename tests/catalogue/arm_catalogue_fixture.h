// Shared by the state, limit, frame and model-configuration tests: one synchronised QM65-B
// arm (six joints) on a fake controller, short reply timeouts, and white-box access to the
// connection record.
#ifndef QM_TEST_ARM_CATALOGUE_FIXTURE_H
#define QM_TEST_ARM_CATALOGUE_FIXTURE_H

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "fake_controller.h"
#include "mio_json.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace arm_catalogue_test {

using namespace std::chrono_literals;

using Call = std::function<int(qm_robot_handle*)>;

// {"command":"<key>","<member>":<true|false>}
inline std::string judged(const std::string& key, const std::string& member, bool ok = true) {
    return R"({"command":")" + key + R"(",")" + member + R"(":)" + (ok ? "true" : "false") + "}";
}

// The "command" of a request line.
inline std::string command_of(const std::string& line) {
    JsonPtr tree = json_parse(line.c_str());
    const char* command = MIO_JSON_GetObjectItemStr(tree.get(), "command");
    return command ? command : "";
}

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
        m_nOutTime = saved_query_;
        m_nOutTime_max = saved_set_;
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

    qm_test::FakeController controller;

private:
    std::optional<qm_test::ArmSession> session_;
    uint32_t saved_query_ = m_nOutTime;
    uint32_t saved_set_ = m_nOutTime_max;
};

}  // namespace arm_catalogue_test

#endif
