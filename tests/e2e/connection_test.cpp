// Connecting to the simulator: what synchronisation learns for each model, the state
// queries, several arms at once, and requests the simulator does not understand.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cmath>
#include <thread>

#include "sim_session.h"

namespace e2e {
namespace {

TEST(Connection, SynchronisationLearnsTheArmAndItsKinematicsAgree) {
    const struct {
        const char* product;
        int generation;
        qm_robot_arm_model_e model;
        int dof;
        qm_force_type_e force;
    } rows[] = {
        {"QM65-B", 3, QM_MODEL_QM_65_E, 6, QM_MODEL_QM_B_E},
        {"QM75-6F", 4, QM_MODEL_QM_75_E, 7, QM_MODEL_QM_SF_E},
        {"QML63II-ZF", 3, QM_MODEL_QM_63_II_E, 6, QM_MODEL_QM_ZF_E},
        {"LUX63-6FB", 4, QM_MODEL_LUX_63_E, 6, QM_MODEL_QM_ISF_E},
        {"TAV72-B", 3, QM_MODEL_TAV_72_E, 7, QM_MODEL_QM_B_E},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.product);
        sim::Options options = fast_options(row.product);
        options.generation = row.generation;
        Session session(QM_DUAL_MODE_E, options);
        ASSERT_GT(session.arm()->id, 0);
        qm_robot_info_t info{};
        ASSERT_EQ(qm_get_robot_info(session.arm(), &info), 0);
        EXPECT_EQ(info.arm_model, row.model);
        EXPECT_EQ(info.arm_dof, row.dof);
        EXPECT_EQ(info.force_type, row.force);
        EXPECT_EQ(info.robot_controller_version, row.generation);
        qm_arm_software_version_t software{};
        ASSERT_EQ(qm_get_arm_software_info(session.arm(), &software), 0);
        EXPECT_STREQ(software.product_version, row.product);

        // The library computes locally with the DH table it was sent; the simulator with the
        // model's own. They agree within the wire's rounding.
        const float joints[ARM_DOF] = {10, 20, 30, 40, 50, 60, 10};
        qm_movej_canfd_mode_t config{const_cast<float*>(joints), 0.0f, false, 0, 0};
        ASSERT_EQ(qm_movej_canfd(session.arm(), config), 0);
        expect_pose_near(qm_algo_forward_kinematics(session.arm(), joints), pose_now(session.arm()), 1e-3f,
                         2e-3f);
    }
}

TEST(Connection, StateQueriesAnswerForEveryJoint) {
    Session session(QM_DUAL_MODE_E, fast_options("QM75-B"));
    qm_robot_handle* arm = session.arm();
    float temperature[ARM_DOF] = {}, current[ARM_DOF] = {}, voltage[ARM_DOF] = {};
    ASSERT_EQ(qm_get_current_joint_temperature(arm, temperature), 0);
    ASSERT_EQ(qm_get_current_joint_current(arm, current), 0);
    ASSERT_EQ(qm_get_current_joint_voltage(arm, voltage), 0);
    qm_arm_all_state_t all{};
    ASSERT_EQ(qm_get_arm_all_state(arm, &all), 0);
    for (int j = 0; j < 7; ++j) {
        EXPECT_GT(temperature[j], 20.0f);
        EXPECT_GT(current[j], 0.0f);
        EXPECT_FLOAT_EQ(voltage[j], 48.0f);
        EXPECT_FLOAT_EQ(all.joint_voltage[j], 48.0f);
        EXPECT_EQ(all.joint_en_flag[j], 1);
    }
    const float init[ARM_DOF] = {1, 2, 3, 4, 5, 6, 7};
    ASSERT_EQ(qm_set_init_pose(arm, init), 0);
    float read[ARM_DOF] = {};
    ASSERT_EQ(qm_get_init_pose(arm, read), 0);
    expect_joints_near(read, {init, init + 7}, 0.0f);
    float x = -1, y = -1, z = -1;
    ASSERT_EQ(qm_get_install_pose(arm, &x, &y, &z), 0);
    EXPECT_EQ(x + y + z, 0.0f);
}

TEST(Connection, ArmsOnConsecutivePortsMoveIndependently) {
    Session session(QM_DUAL_MODE_E, fast_options("QM65-B", 2));
    EXPECT_EQ(session.sim().port(1), session.sim().port(0) + 1);
    ASSERT_EQ(session.arm(1)->id, 2);
    ASSERT_EQ(qm_movej(session.arm(1), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
    expect_joints_near(joints_of(session.arm(1)).data(), {kReady, kReady + 6});
    expect_joints_near(joints_of(session.arm(0)).data(), std::vector<float>(6, 0.0f));
    ASSERT_TRUE(wait_for([](const Deliveries& d) { return !d.events.empty(); }));
    EXPECT_EQ(deliveries().events.back().handle_id, 2);
    EXPECT_EQ(session.sim().view(1).clients, 1);
}

// A raw client: sends lines, reads the answer lines.
class RawClient {
public:
    explicit RawClient(int port) : fd_(::socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in addr{};
        addr.sin_family = AF_INET;
        addr.sin_port = htons(static_cast<uint16_t>(port));
        addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(::connect(fd_, reinterpret_cast<sockaddr*>(&addr), sizeof addr), 0);
        timeval timeout{2, 0};
        ::setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    }
    ~RawClient() { ::close(fd_); }
    void send(const std::string& bytes) {
        EXPECT_EQ(::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    }
    std::string line() {
        for (;;) {
            if (std::size_t end = pending_.find("\r\n"); end != std::string::npos) {
                std::string line = pending_.substr(0, end);
                pending_.erase(0, end + 2);
                return line;
            }
            char buf[4096];
            const ssize_t n = ::recv(fd_, buf, sizeof buf, 0);
            if (n <= 0) return "<nothing>";
            pending_.append(buf, static_cast<std::size_t>(n));
        }
    }

private:
    int fd_;
    std::string pending_;
};

TEST(Connection, RequestsItDoesNotUnderstandGetAnErrorAndStallNobody) {
    Session session(QM_DUAL_MODE_E, fast_options());
    RawClient raw(session.sim().port(0));
    const struct {
        std::string request;
        std::string answer;
    } rows[] = {
        {"{\"command\":\"fly\"}\r\n", R"({"command":"fly","error":"unknown command"})"},
        {"not json\r\n", R"({"command":"error","error":"request is not JSON"})"},
        {"{\"no\":1}\r\n", R"({"command":"error","error":"request has no \"command\" text"})"},
        {"{\"command\":\"movej\",\"v\":50,\"trajectory_connect\":0,\"r\":0}\r\n",
         R"({"command":"movej","error":"missing \"joint\"","receive_state":false})"},
        {"{\"command\":\"get_joint_degree\"}\r\n{\"command\":\"get_teach_frame\"}\r\n",
         R"({"command":"joint_degree","joint":[0,0,0,0,0,0]})"},
        {"", R"({"command":"get_teach_frame","frame_type":0})"},
        {std::string(300 * 1024, 'x'), R"({"command":"error","error":"line too long"})"},
        {"still the long line\r\n{\"command\":\"get_teach_frame\"}\r\n",
         R"({"command":"get_teach_frame","frame_type":0})"},
    };
    for (const auto& row : rows) {
        if (!row.request.empty()) raw.send(row.request);
        EXPECT_EQ(raw.line(), row.answer) << row.request.substr(0, 60);
        float joints[ARM_DOF];
        EXPECT_EQ(qm_get_joint_degree(session.arm(), joints), 0) << "the library's connection still served";
    }
    EXPECT_TRUE(session.noted("unknown command \"fly\""));
    EXPECT_TRUE(session.noted("malformed request not json"));
}

}  // namespace
}  // namespace e2e
