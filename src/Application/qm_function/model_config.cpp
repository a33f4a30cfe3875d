// Arm model configuration: installation angles and the DH table, read at connection time and set.
#include <algorithm>
#include <chrono>

#include "qm_command.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace {

using namespace std::chrono_literals;

constexpr const char* kDhJoints[] = {"joint_1", "joint_2", "joint_3", "joint_4",
                                     "joint_5", "joint_6", "joint_7"};
constexpr int kDhJointCount = 7;

}  // namespace

extern "C" {

int qm_get_install_pose(qm_robot_handle* handle, float* x, float* y, float* z) {
    KeyValue table[] = {array_member("pose", 3)};
    if (int rc =
            send_query(__func__, handle, Request("get_install_pose"), Reply::query("install_pose"), table))
        return rc;
    // The angles travel as whole degrees, unscaled.
    const int* angles = table[0].value.array_value;
    return with_record(handle, [&](qm_handle_t& record) {
        *x = record.install_angle[0] = wire::as_is(angles[0]);
        *y = record.install_angle[1] = wire::as_is(angles[1]);
        *z = record.install_angle[2] = wire::as_is(angles[2]);
    });
}

int qm_get_DH_data(qm_robot_handle* handle, qm_dh_t* dh) {
    std::string text;
    int dof = 0;
    if (int rc = exchange_with_dof(__func__, handle, Request("get_DH_data"),
                                   Reply::query("get_DH_data").within(1000ms), text, dof))
        return rc;

    // Joints beyond the arm's dof carry no defined values; only the arm's own rows are read.
    const int joints = std::min(dof, kDhJointCount);
    KeyValue table[kDhJointCount];
    for (int i = 0; i < joints; ++i) table[i] = array_member(kDhJoints[i], 4);
    if (int rc = common_json_parse(__func__, text.c_str(), table, joints)) return rc;

    qm_dh_t read{};
    for (int i = 0; i < joints; ++i) {
        const int* row = table[i].value.array_value;
        read.alpha[i] = wire::from_thousandths(row[0]);
        read.a[i] = wire::from_micrometres(row[1]);
        read.d[i] = wire::from_micrometres(row[2]);
        read.offset[i] = wire::from_thousandths(row[3]);
    }
    return with_record(handle, [&](qm_handle_t& record) { *dh = record.dh = read; });
}

int qm_set_install_pose(qm_robot_handle* handle, float x, float y, float z) {
    Request req("set_install_pose");
    req.ints("pose", {wire::whole(x), wire::whole(y), wire::whole(z)});
    return send_set(__func__, handle, req, Reply("set_install_pose", "set_state"));
}

// Rows are alpha, a, d, offset; the joints beyond the arm's dof go out as zeros.
int qm_set_DH_data(qm_robot_handle* handle, qm_dh_t dh) {
    const int dof = dof_or_disconnected(__func__, handle);
    if (dof < 0) return -1;
    Request req("set_DH_data");
    for (int i = 0; i < kDhJointCount; ++i) {
        if (i >= dof) {
            req.ints(kDhJoints[i], {0, 0, 0, 0});
            continue;
        }
        req.ints(kDhJoints[i], {wire::milliradians(dh.alpha[i]), wire::micrometres(dh.a[i]),
                                wire::micrometres(dh.d[i]), wire::milliradians(dh.offset[i])});
    }
    return send_set(__func__, handle, req, Reply("set_DH_data", "set_state"));
}

int qm_set_DH_data_default(qm_robot_handle* handle) {
    return send_set(__func__, handle, Request("set_DH_data_default"),
                    Reply("set_DH_data_default", "set_state"));
}

}  // extern "C"
