// Fuzzes the decoders of query replies through the public functions: each input is one reply
// line, filed in the arm's mailbox as the receive thread files it, then collected and decoded
// by the query that waits for its key. The arm talks to a loopback peer that only reads, so
// every request is really sent. Checks what ASan cannot: counts within the record, texts
// terminated inside their fields.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cjson/cJSON.h>

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "log.h"
#include "qm_exchange.h"
#include "qm_interface.h"

namespace {

void format_and_drop(const char* format, va_list args) {
    char text[1024];
    std::vsnprintf(text, sizeof text, format, args);
}

template <std::size_t N>
void require_terminated(const char (&field)[N]) {
    if (!std::memchr(field, '\0', N)) std::abort();
}

void require(bool holds) {
    if (!holds) std::abort();
}

// A listener whose one client's bytes are read and dropped, for the life of the process.
int start_sink() {
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(listener, reinterpret_cast<sockaddr*>(&address), length) != 0 || ::listen(listener, 1) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        std::abort();
    std::thread([listener] {
        const int client = ::accept(listener, nullptr, nullptr);
        char drop[4096];
        while (::read(client, drop, sizeof drop) > 0) {
        }
    }).detach();
    return ntohs(address.sin_port);
}

struct Query {
    const char* key;  // the reply key the query waits for
    std::function<void(qm_robot_handle*)> run;
};

// Texts are big enough for any reply that fits a reply buffer; the checks look at records.
const Query kQueries[] = {
    {"joint_degree", [](qm_robot_handle* h) { float j[ARM_DOF]; qm_get_joint_degree(h, j); }},
    {"current_arm_state", [](qm_robot_handle* h) { qm_current_arm_state_t s{}; qm_get_current_arm_state(h, &s); }},
    {"arm_all_state", [](qm_robot_handle* h) { qm_arm_all_state_t s{}; qm_get_arm_all_state(h, &s); }},
    {"arm_software_info",
     [](qm_robot_handle* h) {
         qm_arm_software_version_t info{};
         qm_get_arm_software_info(h, &info);
         require_terminated(info.product_version);
         require_terminated(info.robot_controller_version);
     }},
    {"get_realtime_push",
     [](qm_robot_handle* h) {
         qm_realtime_push_config_t config{};
         qm_get_realtime_push(h, &config);
         require_terminated(config.ip);
     }},
    {"arm_current_trajectory",
     [](qm_robot_handle* h) {
         qm_arm_current_trajectory_e type{};
         float data[12] = {};
         qm_get_arm_current_trajectory(h, &type, data);
     }},
    {"IO_state", [](qm_robot_handle* h) { qm_io_get_t io{}; qm_get_IO_state(h, 1, &io); }},
    {"controller_RS485_mode",
     [](qm_robot_handle* h) {
         int mode = 0, baudrate = 0, timeout = 0;
         qm_get_controller_RS485_mode(h, &mode, &baudrate, &timeout);
     }},
    {"given_tool_frame",
     [](qm_robot_handle* h) {
         qm_frame_t frame{};
         qm_get_given_tool_frame(h, "tip", &frame);
         require_terminated(frame.frame_name);
     }},
    {"total_tool_frame",
     [](qm_robot_handle* h) {
         static qm_frame_name_t names[1024];
         int len = 0;
         std::memset(names, 0, sizeof names);
         qm_get_total_tool_frame(h, names, &len);
         require(len >= 0 && len <= 1024);
         for (int i = 0; i < len; ++i) require_terminated(names[i].name);
     }},
    {"joint_software_version",
     [](qm_robot_handle* h) {
         int count = 0;
         qm_version_t versions[ARM_DOF] = {};
         qm_get_joint_software_version(h, &count, versions);
         for (const qm_version_t& v : versions) require_terminated(v.version);
     }},
    {"get_program_trajectory_list",
     [](qm_robot_handle* h) {
         auto list = std::make_unique<qm_program_trajectorys_t>();
         qm_get_program_trajectory_list(h, 1, 10, "", list.get());
         require_terminated(list->vague_search);
         for (const qm_trajectory_data_t& t : list->trajectory_list) require_terminated(t.trajectory_name);
     }},
    {"get_global_waypoints_list",
     [](qm_robot_handle* h) {
         auto list = std::make_unique<qm_waypoint_list_t>();
         qm_get_global_waypoints_list(h, 1, 10, "", list.get());
         require(list->list_len >= 0 && list->list_len <= 100);
         for (const qm_waypoint_t& p : list->points_list) {
             require_terminated(p.point_name);
             require_terminated(p.work_frame);
             require_terminated(p.tool_frame);
         }
     }},
    {"get_trajectory_file_list",
     [](qm_robot_handle* h) {
         auto list = std::make_unique<qm_trajectory_list_t>();
         qm_get_trajectory_file_list(h, 1, 10, "", list.get());
         require(list->list_len >= 0 && list->list_len <= 100);
         for (const qm_trajectory_info_t& t : list->tra_list) {
             require_terminated(t.name);
             require_terminated(t.create_time);
         }
     }},
    {"get_modbus_tcp_master_list",
     [](qm_robot_handle* h) {
         auto list = std::make_unique<qm_modbus_tcp_master_list_t>();
         qm_get_modbus_tcp_master_list(h, 1, 10, "", list.get());
         require(list->list_len >= 0 && list->list_len <= 100);
         for (const qm_modbus_tcp_master_info_t& m : list->master_list) {
             require_terminated(m.master_name);
             require_terminated(m.ip);
         }
     }},
    {"get_electronic_fence_list_infos",
     [](qm_robot_handle* h) {
         qm_fence_config_list_t list{};
         int len = 0;
         qm_get_electronic_fence_list_infos(h, &list, &len);
         require(len >= 0 && len <= 10);
         for (const qm_fence_config_t& f : list.config) require_terminated(f.name);
     }},
    {"get_qm_plus_base_info",
     [](qm_robot_handle* h) {
         qm_plus_base_info_t info{};
         qm_get_qm_plus_base_info(h, &info);
         require_terminated(info.manu);
         require_terminated(info.hv);
     }},
    {"get_qm_plus_state_info", [](qm_robot_handle* h) { qm_plus_state_info_t s{}; qm_get_qm_plus_state_info(h, &s); }},
};

qm_robot_handle* g_arm = nullptr;

// The key the mailbox files a line under: "state", else "command".
std::string key_of(const char* line) {
    std::unique_ptr<cJSON, decltype(&cJSON_Delete)> root(cJSON_Parse(line), cJSON_Delete);
    for (const char* member : {"state", "command"}) {
        const cJSON* value = cJSON_GetObjectItem(root.get(), member);
        if (cJSON_IsString(value)) return value->valuestring;
    }
    return {};
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qm_set_log_callback(format_and_drop, LOG_LEVEL_DEBUG);
    const int port = start_sink();
    qm_init(QM_DUAL_MODE_E);
    // Nothing answers the synchronisation; the arm keeps talking with id -1.
    qm_set_timeout(5);
    g_arm = qm_create_robot_arm("127.0.0.1", port);
    if (!g_arm || qm_set_robot_dof(g_arm, 7) != 0) std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The receive thread files terminated lines without their "\r\n", at most a read long.
    std::string line(reinterpret_cast<const char*>(data), size < 4096 ? size : 4096);
    line = line.substr(0, std::min(line.find('\0'), line.find("\r\n")));
    const std::string key = key_of(line.c_str());
    for (const Query& query : kQueries) {
        if (key != query.key) continue;
        add_str_to_fifo(g_arm, line.data(), static_cast<int>(line.size()));
        query.run(g_arm);
    }
    return 0;
}
