// Global waypoints: named joint and pose targets stored on the controller.
#include <algorithm>
#include <string>

#include "qm_command.h"
#include "qm_interface.h"
#include "qm_local_files.h"
#include "qm_reply_object.h"

namespace {

// Adding and updating differ only in their names.
struct WaypointWrite {
    const char* command;
    const char* checked;
};

constexpr WaypointWrite kAdd{"add_global_waypoint", "add_state"};
constexpr WaypointWrite kUpdate{"update_global_waypoint", "update_state"};

// The caller's time is replaced by the local time of sending.
int write_waypoint(const char* caller, qm_robot_handle* handle, const WaypointWrite& row,
                   const qm_waypoint_t& point) {
    const int dof = dof_or_disconnected(caller, handle);
    if (dof < 0) return -1;
    int joints[ARM_DOF] = {};
    const int sent = std::min(dof, ARM_DOF);
    for (int i = 0; i < sent; ++i) joints[i] = wire::millidegrees(point.joint[i]);
    const std::string name = field_text(point.point_name);
    const std::string work = field_text(point.work_frame);
    const std::string tool = field_text(point.tool_frame);
    const std::string stamp = local_time_text("%Y-%m-%d %H:%M:%S");

    Request req(row.command);
    req.str("point_name", name.c_str())
        .ints("joint", std::span<const int>(joints, static_cast<std::size_t>(sent)))
        .ints("pose", wire::pose6(point.pose))
        .str("work_frame", work.c_str())
        .str("tool_frame", tool.c_str())
        .str("time", stamp.c_str());
    return send_set(caller, handle, req, Reply(row.command, row.checked));
}

void read_waypoint(ObjectReader& in, qm_waypoint_t& point) {
    in.text("point_name", point.point_name)
        .text("work_frame", point.work_frame)
        .text("tool_frame", point.tool_frame)
        .text("time", point.time)
        .scaled_ints("joint", point.joint, wire::from_thousandths)
        .pose("pose", point.pose);
}

}  // namespace

extern "C" {

int qm_add_global_waypoint(qm_robot_handle* handle, qm_waypoint_t waypoint) {
    return write_waypoint(__func__, handle, kAdd, waypoint);
}

int qm_update_global_waypoint(qm_robot_handle* handle, qm_waypoint_t waypoint) {
    return write_waypoint(__func__, handle, kUpdate, waypoint);
}

int qm_delete_global_waypoint(qm_robot_handle* handle, const char* point_name) {
    Request req("delete_global_waypoint");
    req.str("point_name", point_name);
    return send_set(__func__, handle, req, Reply("delete_global_waypoint", "delete_state"));
}

int qm_get_given_global_waypoint(qm_robot_handle* handle, const char* name, qm_waypoint_t* point) {
    Request req("given_global_waypoint");
    req.str("point_name", name);
    return query_record(__func__, handle, req, Reply::query("given_global_waypoint"), point, read_waypoint);
}

// The page is the one asked for unless the reply says otherwise.
int qm_get_global_waypoints_list(qm_robot_handle* handle, int page_num, int page_size,
                                 const char* vague_search, qm_waypoint_list_t* point_list) {
    const Request req = page_request("get_global_waypoints_list", page_num, page_size, vague_search);
    return query_record(__func__, handle, req, page_reply("get_global_waypoints_list"), point_list,
                        [&](ObjectReader& in, qm_waypoint_list_t& list) {
                            list.page_num = page_num;
                            list.page_size = page_size;
                            copy_text(list.vague_search, vague_search);
                            if (in.has("page_num")) in.integer("page_num", list.page_num);
                            if (in.has("page_size")) in.integer("page_size", list.page_size);
                            if (in.has("vague_search")) in.text("vague_search", list.vague_search);
                            in.integer("total_size", list.total_size)
                                .list("list", list.points_list, list.list_len, read_waypoint);
                        });
}

}  // extern "C"
