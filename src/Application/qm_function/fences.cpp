// Electronic fences and the virtual wall: zones stored on the controller, the active ones and
// their enable states. Geometry travels in thousandths of a metre.
#include <algorithm>
#include <string>
#include <vector>

#include "log.h"
#include "qm_command.h"
#include "qm_interface.h"
#include "qm_reply_object.h"

namespace {

constexpr int kCube = 1, kPlane = 2, kSphere = 3;
constexpr int kMaxFences = 10;

struct GeometryKey {
    const char* key;
    float* value;
};

// The members of a zone's form, in the order they go out, bound to the record's fields.
std::vector<GeometryKey> geometry(qm_fence_config_t& c) {
    switch (c.form) {
        case kCube:
            return {{"x_max_limit", &c.cube.x_max_limit}, {"x_min_limit", &c.cube.x_min_limit},
                    {"y_max_limit", &c.cube.y_max_limit}, {"y_min_limit", &c.cube.y_min_limit},
                    {"z_max_limit", &c.cube.z_max_limit}, {"z_min_limit", &c.cube.z_min_limit}};
        case kPlane:
            return {{"x1", &c.plan.x1}, {"y1", &c.plan.y1}, {"z1", &c.plan.z1},
                    {"x2", &c.plan.x2}, {"y2", &c.plan.y2}, {"z2", &c.plan.z2},
                    {"x3", &c.plan.x3}, {"y3", &c.plan.y3}, {"z3", &c.plan.z3}};
        case kSphere:
            return {{"radius", &c.sphere.radius}, {"x", &c.sphere.x}, {"y", &c.sphere.y}, {"z", &c.sphere.z}};
        default:
            return {};
    }
}

// "form" and the geometry of that form.
void read_zone(ObjectReader& in, qm_fence_config_t& zone) {
    in.integer("form", zone.form);
    for (const auto& [key, value] : geometry(zone)) in.scaled(key, *value, wire::from_thousandths);
}

void read_named_zone(ObjectReader& in, qm_fence_config_t& zone) {
    in.text("form_name", zone.name);
    read_zone(in, zone);
}

// ---- sending a zone ----

// A command that sends a zone: which forms it takes and how it refuses the others.
struct ZoneWrite {
    const char* command;
    const char* checked;
    bool named;      // sends "form_name"
    unsigned forms;  // one bit per accepted form
    void (*refuse)(int form);

    bool takes(int form) const { return form >= kCube && form <= kSphere && (forms >> form & 1u) != 0; }
};

constexpr unsigned form_bit(int form) {
    return 1u << form;
}

void refuse_stored(int form) {
    qm_log_error("Configuration error for the form of the newly added electronic fence! Wrong form: %d\n",
                 form);
}
void refuse_active_fence(int) {
    qm_log_error("electronic fence form check err!!");
}
void refuse_wall(int) {
    qm_log_error("virtual wall form check err!\n");
}

constexpr unsigned kEveryForm = form_bit(kCube) | form_bit(kPlane) | form_bit(kSphere);

constexpr ZoneWrite kAddFence{"add_electronic_fence_config", "add_config", true, kEveryForm, refuse_stored};
// Shares the refusal text of adding.
constexpr ZoneWrite kUpdateFence{"update_electronic_fence_config", "update_config", true, kEveryForm,
                                 refuse_stored};
constexpr ZoneWrite kActiveFence{"set_electronic_fence_config", "set_config", false,
                                 form_bit(kCube) | form_bit(kPlane), refuse_active_fence};
constexpr ZoneWrite kWall{"set_virtual_wall_config", "set_config", false, form_bit(kCube) | form_bit(kSphere),
                          refuse_wall};

// A refused form sends nothing.
int write_zone(const char* caller, qm_robot_handle* handle, const ZoneWrite& row, qm_fence_config_t zone) {
    if (!row.takes(zone.form)) {
        row.refuse(zone.form);
        return -4;
    }
    const std::string name = field_text(zone.name);
    Request req(row.command);
    req.integer("form", zone.form);
    if (row.named) req.str("form_name", name.c_str());
    for (const auto& [key, value] : geometry(zone)) req.integer(key, wire::thousandths(*value));
    return send_set(caller, handle, req, Reply(row.command, row.checked));
}

// ---- reading a zone ----

// One zone: 1 when the controller knows no such zone; the name is read when the reply has one.
int read_zone_query(const char* caller, qm_robot_handle* handle, const Request& req, const char* reply_key,
                    qm_fence_config_t* out) {
    return send_query_object(caller, handle, req, Reply::query(reply_key), [&](const cJSON& root) {
        if (MIO_JSON_GetObjectItemBool(&root, "given_state") == 0) {
            qm_log_error("The given electronic fence name does not exist!\n");
            return 1;
        }
        qm_fence_config_t read{};
        ObjectReader in(&root);
        if (in.has("form_name")) in.text("form_name", read.name);
        read_zone(in, read);
        if (int rc = in.result(caller)) return rc;
        if (out) *out = read;
        return 0;
    });
}

// ---- enable states ----

struct EnableCommands {
    const char* set;
    const char* get;
};

constexpr EnableCommands kFenceEnable{"set_electronic_fence_enable", "get_electronic_fence_enable"};
constexpr EnableCommands kWallEnable{"set_virtual_wall_enable", "get_virtual_wall_enable"};

int set_enable(const char* caller, qm_robot_handle* handle, const EnableCommands& row,
               const qm_electronic_fence_enable_t& state) {
    Request req(row.set);
    req.boolean("set_enable", state.enable_state)
        .integer("in_out_side", state.in_out_side)
        .integer("effective_region", state.effective_region);
    return send_set(caller, handle, req, Reply(row.set, "set_state"));
}

int get_enable(const char* caller, qm_robot_handle* handle, const EnableCommands& row,
               qm_electronic_fence_enable_t* state) {
    KeyValue table[] = {bool_member("enable_state"), int_member("in_out_side"),
                        int_member("effective_region")};
    if (int rc = send_query(caller, handle, Request(row.get), Reply::query(row.get), table)) return rc;
    if (state) *state = {table[0].value.bool_value, table[1].value.int_value, table[2].value.int_value};
    return 0;
}

}  // namespace

extern "C" {

int qm_add_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t config) {
    return write_zone(__func__, handle, kAddFence, config);
}

int qm_update_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t config) {
    return write_zone(__func__, handle, kUpdateFence, config);
}

int qm_delete_electronic_fence_config(qm_robot_handle* handle, const char* form_name) {
    Request req("delete_electronic_fence_config");
    req.str("form_name", form_name);
    return send_set(__func__, handle, req, Reply("delete_electronic_fence_config", "delete_config"));
}

int qm_get_electronic_fence_list_names(qm_robot_handle* handle, qm_fence_names_t* names, int* len) {
    const Request req("get_electronic_fence_list_names");
    const Reply reply = Reply::query("get_electronic_fence_list_names");
    return send_query_object(__func__, handle, req, reply, [&](const cJSON& root) {
        qm_fence_names_t read[kMaxFences] = {};
        int count = 0;
        if (!ObjectReader(&root).texts("name_list", read, kMaxFences, &qm_fence_names_t::name, count).ok()) {
            qm_log_error("Get fence list names parse err\n");
            return -3;
        }
        if (names) std::copy_n(read, count, names);
        if (len) *len = count;
        return 0;
    });
}

int qm_get_given_electronic_fence_config(qm_robot_handle* handle, const char* given_name,
                                         qm_fence_config_t* config) {
    Request req("given_electronic_fence_config");
    req.str("form_name", given_name);
    return read_zone_query(__func__, handle, req, "given_electronic_fence_config", config);
}

int qm_get_electronic_fence_list_infos(qm_robot_handle* handle, qm_fence_config_list_t* config_list,
                                       int* len) {
    const Reply reply = Reply::query("get_electronic_fence_list_infos").buffer(2048);
    int count = 0;
    const int rc = query_record(__func__, handle, Request("get_electronic_fence_list_infos"), reply,
                                config_list, [&](ObjectReader& in, qm_fence_config_list_t& list) {
                                    in.list("info_list", list.config, count, read_named_zone);
                                });
    if (rc == 0 && len) *len = count;
    return rc;
}

int qm_set_electronic_fence_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t state) {
    return set_enable(__func__, handle, kFenceEnable, state);
}

int qm_get_electronic_fence_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t* state) {
    return get_enable(__func__, handle, kFenceEnable, state);
}

int qm_set_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t config) {
    return write_zone(__func__, handle, kActiveFence, config);
}

int qm_get_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t* config) {
    return read_zone_query(__func__, handle, Request("get_electronic_fence_config"),
                           "get_electronic_fence_config", config);
}

int qm_set_virtual_wall_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t state) {
    return set_enable(__func__, handle, kWallEnable, state);
}

int qm_get_virtual_wall_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t* state) {
    return get_enable(__func__, handle, kWallEnable, state);
}

int qm_set_virtual_wall_config(qm_robot_handle* handle, qm_fence_config_t config) {
    return write_zone(__func__, handle, kWall, config);
}

int qm_get_virtual_wall_config(qm_robot_handle* handle, qm_fence_config_t* config) {
    return read_zone_query(__func__, handle, Request("get_virtual_wall_config"), "get_virtual_wall_config",
                           config);
}

}  // extern "C"
