// The controller's network: the wired address, the wireless access point or station, and
// the defaults. The wireless commands are sent without awaiting an answer, so none comes.
#include "command.h"

namespace sim {

namespace {

constexpr std::size_t kMaxWifiName = 31;
constexpr std::size_t kMaxPassword = 15;

void set_NetIP(Call& call) {
    const std::string ip = call.args.text("ip", 15);
    if (!is_ipv4(ip)) return call.refuse("not an IPv4 address: " + ip);
    call.arm.state.network.ip = ip;
}

void get_wired_net(Call& call) {
    const NetworkState& net = call.arm.state.network;
    call.reply.set("ip", net.ip).set("mask", net.mask).set("mac", net.mac);
}

// A password of fewer than 8 characters is refused, as the access point would.
void join(Call& call, const char* name_key, const char* mode, const char* address) {
    const std::string name = call.args.text(name_key, kMaxWifiName);
    const std::string password = call.args.text("password", kMaxPassword);
    if (name.empty() || password.size() < 8) return call.refuse("a wireless name and a password of 8 characters");
    NetworkState& net = call.arm.state.network;
    net.wifi_mode = mode;
    net.ssid = name;
    net.password = password;
    net.wifi_ip = address;
}

void set_wifi_ap(Call& call) {
    join(call, "wifi_name", "ap", "192.168.33.80");
}

void set_wifi_sta(Call& call) {
    join(call, "router_name", "sta", "192.168.10.50");
}

// The channel belongs to access-point mode; the name and password to every mode but "off".
void get_wifi_net(Call& call) {
    const NetworkState& net = call.arm.state.network;
    call.reply.set("mode", net.wifi_mode)
        .set("ip", net.wifi_mode == "off" ? "" : net.wifi_ip)
        .set("mask", net.wifi_mask)
        .set("mac", net.mac);
    if (net.wifi_mode == "ap") call.reply.set("channel", net.channel);
    if (net.wifi_mode != "off") call.reply.set("ssid", net.ssid).set("password", net.password);
}

void set_net_default(Call& call) {
    NetworkState defaults;
    defaults.mac = call.arm.state.network.mac;
    call.arm.state.network = defaults;
}

void set_wifi_close(Call& call) {
    call.arm.state.network.wifi_mode = "off";
}

const Command kCommands[] = {
    {"set_NetIP", "set_NetIP", "status", set_NetIP},
    {"get_wired_net", "get_wired_net", nullptr, get_wired_net},
    {"set_wifi_ap", nullptr, nullptr, set_wifi_ap},
    {"set_wifi_sta", nullptr, nullptr, set_wifi_sta},
    {"get_wifi_net", "get_wifi_net", nullptr, get_wifi_net},
    {"set_net_default", "set_net_default", "net_default_state", set_net_default},
    {"set_wifi_close", "set_wifi_close", "wifi_close_state", set_wifi_close},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
