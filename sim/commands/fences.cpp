// Electronic fences (named zones stored on the controller, and the active one), the virtual
// wall, and their enable states. Geometry travels in thousandths of a metre.
#include <algorithm>
#include <cmath>

#include "command.h"

namespace sim {

namespace {

constexpr int kCube = 1, kPlane = 2, kSphere = 3;
constexpr std::size_t kMaxFences = 10;
constexpr std::size_t kMaxZoneName = 11;

struct Form {
    int form;
    std::initializer_list<const char*> keys;
};
const Form kForms[] = {
    {kCube, {"x_min_limit", "x_max_limit", "y_min_limit", "y_max_limit", "z_min_limit", "z_max_limit"}},
    {kPlane, {"x1", "y1", "z1", "x2", "y2", "z2", "x3", "y3", "z3"}},
    {kSphere, {"x", "y", "z", "radius"}},
};

const Form* form_of(int form) {
    for (const Form& f : kForms)
        if (f.form == form) return &f;
    return nullptr;
}

// Why the geometry is no zone, or empty.
std::string flaw(const Zone& zone) {
    const auto& g = zone.geometry;
    switch (zone.form) {
        case kCube:
            for (const char* axis : {"x", "y", "z"})
                if (g.at(std::string(axis) + "_min_limit") >= g.at(std::string(axis) + "_max_limit"))
                    return std::string("the cube's ") + axis + " minimum is not below its maximum";
            return {};
        case kPlane: {
            const double u[3] = {1.0 * g.at("x2") - g.at("x1"), 1.0 * g.at("y2") - g.at("y1"), 1.0 * g.at("z2") - g.at("z1")};
            const double v[3] = {1.0 * g.at("x3") - g.at("x1"), 1.0 * g.at("y3") - g.at("y1"), 1.0 * g.at("z3") - g.at("z1")};
            const double n[3] = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
            if (std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]) < 1.0) return "the plane's points lie on one line";
            return {};
        }
        default:
            return g.at("radius") > 0 ? std::string() : "the sphere's radius is not positive";
    }
}

// "form" and its geometry from a request, for a command that takes `forms` (a bit per form).
Zone zone_from(const Call& call, unsigned forms) {
    Zone zone;
    zone.form = call.args.integer("form");
    const Form* form = form_of(zone.form);
    if (!form || !(forms >> zone.form & 1u)) throw BadRequest("form " + std::to_string(zone.form) + " is not taken here");
    for (const char* key : form->keys) zone.geometry[key] = call.args.integer(key);
    return zone;
}

// The zone's name (when it has one), form, and every geometry key of every form, those of
// the other forms as 0.
JsonPtr zone_json(const Zone& zone) {
    JsonPtr object(cJSON_CreateObject());
    if (!zone.name.empty()) cJSON_AddStringToObject(object.get(), "form_name", zone.name.c_str());
    cJSON_AddNumberToObject(object.get(), "form", zone.form);
    for (const Form& form : kForms)
        for (const char* key : form.keys) {
            auto it = zone.geometry.find(key);
            cJSON_AddNumberToObject(object.get(), key, it == zone.geometry.end() ? 0 : it->second);
        }
    return object;
}

std::vector<Zone>& fences(Call& call) {
    return call.arm.state.safety.fences;
}

constexpr unsigned kEveryForm = 1u << kCube | 1u << kPlane | 1u << kSphere;

// A named zone of a request, or the refusal.
std::optional<Zone> named_zone(Call& call) {
    Zone zone = zone_from(call, kEveryForm);
    zone.name = call.args.text("form_name", kMaxZoneName);
    if (zone.name.empty()) throw BadRequest("empty zone name");
    if (std::string why = flaw(zone); !why.empty()) {
        call.refuse(why);
        return std::nullopt;
    }
    return zone;
}

void add_fence(Call& call) {
    if (std::optional<Zone> zone = named_zone(call)) call.judge(add_named(fences(call), std::move(*zone), kMaxFences));
}

void update_fence(Call& call) {
    if (std::optional<Zone> zone = named_zone(call)) {
        const std::string name = zone->name;
        call.judge(replace_named(fences(call), name, std::move(*zone)));
    }
}

void delete_fence(Call& call) {
    call.judge(erase_named(fences(call), call.args.text("form_name")));
}

void list_names(Call& call) {
    JsonPtr names(cJSON_CreateArray());
    for (const Zone& zone : fences(call)) cJSON_AddItemToArray(names.get(), cJSON_CreateString(zone.name.c_str()));
    call.reply.add("name_list", std::move(names));
}

void list_infos(Call& call) {
    JsonPtr infos(cJSON_CreateArray());
    for (const Zone& zone : fences(call)) cJSON_AddItemToArray(infos.get(), zone_json(zone).release());
    call.reply.add("info_list", std::move(infos));
}

void given_fence(Call& call) {
    reply_given(call, find_named(fences(call), call.args.text("form_name")), zone_json);
}

// ---- the active fence and the virtual wall ----

struct ActiveZone {
    Zone SafetyState::*zone;
    ZoneEnable SafetyState::*enable;
    unsigned forms;
};
constexpr ActiveZone kFence{&SafetyState::active_fence, &SafetyState::fence_enable, 1u << kCube | 1u << kPlane};
constexpr ActiveZone kWall{&SafetyState::wall, &SafetyState::wall_enable, 1u << kCube | 1u << kSphere};

template <const ActiveZone* Row>
void set_zone(Call& call) {
    Zone zone = zone_from(call, Row->forms);
    if (std::string why = flaw(zone); !why.empty()) return call.refuse(why);
    call.arm.state.safety.*(Row->zone) = std::move(zone);
}

template <const ActiveZone* Row>
void get_zone(Call& call) {
    const Zone& zone = call.arm.state.safety.*(Row->zone);
    reply_given(call, zone.form ? &zone : nullptr, zone_json);
}

template <const ActiveZone* Row>
void set_enable(Call& call) {
    ZoneEnable enable{call.args.boolean("set_enable"), call.args.integer("in_out_side"),
                      call.args.integer("effective_region")};
    if (enable.in_out_side < 0 || enable.in_out_side > 1 || enable.effective_region < 0 ||
        enable.effective_region > 1)
        return call.refuse("in_out_side and effective_region are 0 or 1");
    if (enable.enable && (call.arm.state.safety.*(Row->zone)).form == 0) return call.refuse("no zone configured");
    call.arm.state.safety.*(Row->enable) = enable;
}

template <const ActiveZone* Row>
void get_enable(Call& call) {
    const ZoneEnable& enable = call.arm.state.safety.*(Row->enable);
    call.reply.set("enable_state", enable.enable)
        .set("in_out_side", enable.in_out_side)
        .set("effective_region", enable.effective_region);
}

const Command kCommands[] = {
    {"add_electronic_fence_config", "add_electronic_fence_config", "add_config", add_fence},
    {"update_electronic_fence_config", "update_electronic_fence_config", "update_config", update_fence},
    {"delete_electronic_fence_config", "delete_electronic_fence_config", "delete_config", delete_fence},
    {"get_electronic_fence_list_names", "get_electronic_fence_list_names", nullptr, list_names},
    {"given_electronic_fence_config", "given_electronic_fence_config", nullptr, given_fence},
    {"get_electronic_fence_list_infos", "get_electronic_fence_list_infos", nullptr, list_infos},
    {"set_electronic_fence_enable", "set_electronic_fence_enable", "set_state", set_enable<&kFence>},
    {"get_electronic_fence_enable", "get_electronic_fence_enable", nullptr, get_enable<&kFence>},
    {"set_electronic_fence_config", "set_electronic_fence_config", "set_config", set_zone<&kFence>},
    {"get_electronic_fence_config", "get_electronic_fence_config", nullptr, get_zone<&kFence>},
    {"set_virtual_wall_enable", "set_virtual_wall_enable", "set_state", set_enable<&kWall>},
    {"get_virtual_wall_enable", "get_virtual_wall_enable", nullptr, get_enable<&kWall>},
    {"set_virtual_wall_config", "set_virtual_wall_config", "set_config", set_zone<&kWall>},
    {"get_virtual_wall_config", "get_virtual_wall_config", nullptr, get_zone<&kWall>},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
