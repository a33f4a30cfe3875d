// The realtime push configuration: period, destination, and the optional sections.
#include "command.h"
#include "datagram.h"

namespace sim {

namespace {

constexpr int kMaxCycle = 10000;  // ms

void set_realtime_push(Call& call) {
    PushConfig config = call.arm.state.push;
    config.enable = call.args.boolean("enable");
    config.cycle_ms = call.args.integer("cycle");
    config.port = call.args.integer("port");
    config.ip = call.args.text("ip", 15);
    if (config.cycle_ms < 1 || config.cycle_ms > kMaxCycle) return call.refuse("cycle outside 1..10000 ms");
    if (config.port < 1 || config.port > 65535) return call.refuse("port outside 1..65535");
    if (!is_ipv4(config.ip))
        return call.refuse("not an IPv4 address: " + config.ip);
    // The request spells it "cordinate".
    if (call.args.has("force_cordinate")) {
        if (call.arm.model().sensor == ForceSensor::none) return call.refuse("the arm has no force sensor");
        config.force_coordinate = call.args.integer("force_cordinate");
    }
    if (call.args.has("custom")) {
        for (const cJSON* flag = call.args.object("custom")->child; flag; flag = flag->next) {
            if (!cJSON_IsBool(flag) || !is_push_section(flag->string))
                return call.refuse(std::string("no push section \"") + flag->string + "\"");
            config.custom[flag->string] = cJSON_IsTrue(flag);
        }
    }
    call.arm.state.push = config;
    call.arm.host().push_changed(call.arm.index());
}

void get_realtime_push(Call& call) {
    const PushConfig& config = call.arm.state.push;
    JsonPtr custom(cJSON_CreateObject());
    for (const auto& [key, on] : config.custom) cJSON_AddBoolToObject(custom.get(), key.c_str(), on);
    call.reply.set("cycle", config.cycle_ms)
        .set("port", config.port)
        .set("ip", config.ip)
        .set("enable", config.enable)
        .add("custom", std::move(custom));
    if (call.arm.model().sensor != ForceSensor::none)
        call.reply.set("force_coordinate", config.force_coordinate);
}

const Command kCommands[] = {
    {"set_realtime_push", "set_realtime_push", "state", set_realtime_push},
    {"get_realtime_push", "get_realtime_push", nullptr, get_realtime_push},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
