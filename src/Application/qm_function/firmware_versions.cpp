// Firmware versions of the joints and of the tool board.
#include <algorithm>

#include "qm_command.h"
#include "qm_interface.h"
#include "qm_reply_object.h"

namespace {

// The "version" texts (a list, or a single text) into at most `max` records; their number into `count`.
int read_versions(const char* caller, qm_robot_handle* handle, const char* command, const char* reply_key,
                  int max, int* count, qm_version_t* out) {
    return send_query_object(caller, handle, Request(command), Reply::query(reply_key),
                             [&](const cJSON& root) {
                                 qm_version_t read[ARM_DOF] = {};
                                 int n = 0;
                                 ObjectReader in(&root);
                                 in.texts("version", read, std::min(max, ARM_DOF), &qm_version_t::version, n);
                                 if (int rc = in.result(caller)) return rc;
                                 if (out) std::copy_n(read, n, out);
                                 if (count) *count = n;
                                 return 0;
                             });
}

}  // namespace

extern "C" {

int qm_get_joint_software_version(qm_robot_handle* handle, int* version, qm_version_t* joint_v) {
    return read_versions(__func__, handle, "get_joint_software_version", "joint_software_version", ARM_DOF,
                         version, joint_v);
}

int qm_get_tool_software_version(qm_robot_handle* handle, int* version, qm_version_t* tool_v) {
    return read_versions(__func__, handle, "get_tool_software_version", "tool_software_version", 1, version,
                         tool_v);
}

}  // extern "C"
