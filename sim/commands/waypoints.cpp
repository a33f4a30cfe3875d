// Global waypoints: named joint and pose targets stored on the controller.
#include "command.h"

namespace sim {

namespace {

constexpr std::size_t kMaxPointName = 19;
constexpr std::size_t kMaxFrameText = 11;
constexpr std::size_t kMaxWaypoints = 100;

std::vector<Waypoint>& waypoints(Call& call) {
    return call.arm.state.waypoints;
}

Waypoint waypoint_from(const Call& call) {
    Waypoint point;
    point.name = call.args.text("point_name", kMaxPointName);
    if (point.name.empty()) throw BadRequest("empty point name");
    point.joint = call.args.ints("joint", static_cast<std::size_t>(call.arm.dof()));
    const std::vector<int> pose = call.args.ints("pose", 6);
    std::copy(pose.begin(), pose.end(), point.pose.begin());
    point.work_frame = call.args.text("work_frame", kMaxFrameText);
    point.tool_frame = call.args.text("tool_frame", kMaxFrameText);
    point.time = call.args.text("time");
    return point;
}

void add(Call& call) {
    call.judge(add_named(waypoints(call), waypoint_from(call), kMaxWaypoints));
}

void update(Call& call) {
    Waypoint point = waypoint_from(call);
    const std::string name = point.name;
    call.judge(replace_named(waypoints(call), name, std::move(point)));
}

void remove(Call& call) {
    call.judge(erase_named(waypoints(call), call.args.text("point_name")));
}

JsonPtr waypoint_json(const Waypoint& point) {
    JsonPtr object(cJSON_CreateObject());
    cJSON_AddStringToObject(object.get(), "point_name", point.name.c_str());
    cJSON_AddItemToObject(object.get(), "joint", int_array(point.joint).release());
    cJSON_AddItemToObject(object.get(), "pose", int_array(point.pose).release());
    cJSON_AddStringToObject(object.get(), "work_frame", point.work_frame.c_str());
    cJSON_AddStringToObject(object.get(), "tool_frame", point.tool_frame.c_str());
    cJSON_AddStringToObject(object.get(), "time", point.time.c_str());
    return object;
}

void given(Call& call) {
    reply_given(call, find_named(waypoints(call), call.args.text("point_name")), waypoint_json);
}

void list(Call& call) {
    reply_page(call, waypoints(call), waypoint_json);
}

const Command kCommands[] = {
    {"add_global_waypoint", "add_global_waypoint", "add_state", add},
    {"update_global_waypoint", "update_global_waypoint", "update_state", update},
    {"delete_global_waypoint", "delete_global_waypoint", "delete_state", remove},
    {"given_global_waypoint", "given_global_waypoint", nullptr, given},
    {"get_global_waypoints_list", "get_global_waypoints_list", nullptr, list},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
