#include "qm_sync.h"

#include <array>

#include "qm_interface.h"

namespace {

// The queries write into the connection record; their out-records are scratch here.
int sync_software_info(qm_robot_handle* handle) {
    qm_arm_software_version_t info;
    return qm_get_arm_software_info(handle, &info);
}
int sync_realtime_push(qm_robot_handle* handle) {
    qm_realtime_push_config_t config;
    return qm_get_realtime_push(handle, &config);
}
int sync_work_frame(qm_robot_handle* handle) {
    qm_frame_t frame;
    return qm_get_current_work_frame(handle, &frame);
}
int sync_tool_frame(qm_robot_handle* handle) {
    qm_frame_t frame;
    return qm_get_current_tool_frame(handle, &frame);
}
int sync_install_pose(qm_robot_handle* handle) {
    float x, y, z;
    return qm_get_install_pose(handle, &x, &y, &z);
}
template <int (*Query)(qm_robot_handle*, float*)>
int sync_joint_limit(qm_robot_handle* handle) {
    float limit[10];  // the dof may be set up to 10
    return Query(handle, limit);
}
int sync_dh(qm_robot_handle* handle) {
    qm_dh_t dh;
    return qm_get_DH_data(handle, &dh);
}

constexpr std::array kSyncQueries = {
    &sync_software_info,
    &sync_realtime_push,
    &sync_work_frame,
    &sync_tool_frame,
    &sync_install_pose,
    &sync_joint_limit<qm_get_joint_min_pos>,
    &sync_joint_limit<qm_get_joint_max_pos>,
    &sync_joint_limit<qm_get_joint_max_acc>,
    &sync_joint_limit<qm_get_joint_max_speed>,
    &sync_dh,
};

}  // namespace

std::span<const SyncQuery> qm_sync_queries() { return kSyncQueries; }
