// Global waypoints: named joint and pose targets stored on the controller.
#include <algorithm>

#include "command.h"

namespace sim {

namespace {

constexpr std::size_t kMaxPointName = 19;
constexpr std::size_t kMaxFrameText = 11;
constexpr std::size_t kMaxWaypoints = 100;

std::vector<Waypoint>& waypoints(Call& call) {
    return call.arm.state.waypoints;
}

Waypoint* find(Call& call, const std::string& name) {
    auto it = std::find_if(waypoints(call).begin(), waypoints(call).end(), [&](const Waypoint& w) { return w.name == name; });
    return it == waypoints(call).end() ? nullptr : &*it;
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
    Waypoint point = waypoint_from(call);
    if (find(call, point.name)) return call.refuse("a waypoint \"" + point.name + "\" exists already");
    if (waypoints(call).size() >= kMaxWaypoints) return call.refuse("no room for more waypoints");
    waypoints(call).push_back(std::move(point));
}

void update(Call& call) {
    Waypoint point = waypoint_from(call);
    Waypoint* stored = find(call, point.name);
    if (!stored) return call.refuse("no waypoint \"" + point.name + "\"");
    *stored = std::move(point);
}

void remove(Call& call) {
    const std::string name = call.args.text("point_name");
    Waypoint* stored = find(call, name);
    if (!stored) return call.refuse("no waypoint \"" + name + "\"");
    waypoints(call).erase(waypoints(call).begin() + (stored - waypoints(call).data()));
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

// A name the controller does not know is answered with "given_state" false.
void given(Call& call) {
    const std::string name = call.args.text("point_name");
    const Waypoint* point = find(call, name);
    call.reply.set("given_state", point != nullptr);
    if (point) call.reply.merge(waypoint_json(*point));
}

void list(Call& call) {
    const std::vector<Waypoint>& all = waypoints(call);
    reply_page(
        call, all.size(), [&](std::size_t i) { return all[i].name; }, [&](std::size_t i) { return waypoint_json(all[i]); });
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
