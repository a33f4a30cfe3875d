// The controller's network: wired address, wireless access point or station, defaults.
#include <cstring>

#include "log.h"
#include "qm_command.h"
#include "qm_interface.h"

namespace {

// Sizes of the caller's text buffers, as in qm_wifi_net_t.
constexpr std::size_t kIpText = sizeof(qm_wifi_net_t::ip);
constexpr std::size_t kMaskText = sizeof(qm_wifi_net_t::mask);
constexpr std::size_t kMacText = sizeof(qm_wifi_net_t::mac);

// Fills the record member by member, so a malformed reply leaves it partly filled (intended).
// The channel exists in access-point mode only, ssid and password in every mode but "off".
int decode_wifi(const char* caller, const char* text, qm_wifi_net_t& net) {
    JsonPtr root = parse_reply(text);
    if (!root) return -3;
    using M = MemberCopy;
    if (int rc = copy_members(caller, root.get(),
                              {M::text("ip", net.ip), M::text("mask", net.mask), M::text("mac", net.mac),
                               M::text("mode", net.mode)}))
        return rc;
    if (std::strcmp(net.mode, "ap") == 0) {
        if (int rc = copy_members(caller, root.get(), {M::integer("channel", net.channel)})) return rc;
    }
    if (std::strcmp(net.mode, "off") == 0) return 0;
    return copy_members(caller, root.get(), {M::text("ssid", net.ssid), M::text("password", net.password)});
}

}  // namespace

extern "C" {

int qm_set_NetIP(qm_robot_handle* handle, const char* ip) {
    Request req("set_NetIP");
    req.str("ip", ip);
    return send_set(__func__, handle, req, Reply("set_NetIP", "status"));
}

int qm_set_wifi_ap(qm_robot_handle* handle, const char* wifi_name, const char* password) {
    Request req("set_wifi_ap");
    req.str("wifi_name", wifi_name).str("password", password);
    return send_only(__func__, handle, req, kUnansweredHold);
}

int qm_set_wifi_sta(qm_robot_handle* handle, const char* router_name, const char* password) {
    Request req("set_wifi_sta");
    req.str("router_name", router_name).str("password", password);
    return send_only(__func__, handle, req, kUnansweredHold);
}

int qm_get_wired_net(qm_robot_handle* handle, char* ip, char* mask, char* mac) {
    KeyValue table[] = {str_member("ip"), str_member("mask"), str_member("mac")};
    if (int rc = send_query(__func__, handle, Request("get_wired_net"), Reply::query("get_wired_net"), table))
        return rc;
    copy_text(ip, kIpText, table[0].value.str_value, kIpText);
    copy_text(mask, kMaskText, table[1].value.str_value, kMaskText);
    copy_text(mac, kMacText, table[2].value.str_value, kMacText);
    return 0;
}

int qm_get_wifi_net(qm_robot_handle* handle, qm_wifi_net_t* wifi_net) {
    std::string text;
    if (int rc = exchange(__func__, handle, Request("get_wifi_net"), Reply::query("get_wifi_net"), text);
        rc < 1)
        return rc;
    return decode_wifi(__func__, text.c_str(), *wifi_net);
}

int qm_set_net_default(qm_robot_handle* handle) {
    return send_set(__func__, handle, Request("set_net_default"),
                    Reply("set_net_default", "net_default_state"));
}

int qm_set_wifi_close(qm_robot_handle* handle) {
    return send_set(__func__, handle, Request("set_wifi_close"), Reply("set_wifi_close", "wifi_close_state"));
}

}  // extern "C"
