// Trajectory files stored on the controller: listed, replayed, deleted and saved by name.
#include "qm_command.h"
#include "qm_interface.h"
#include "qm_reply_object.h"

namespace {

// The file commands send one name and judge one boolean.
int named_file_command(const char* caller, qm_robot_handle* handle, const char* command, const char* checked,
                       const char* name) {
    Request req(command);
    req.str("name", name);
    return send_set(caller, handle, req, Reply(command, checked));
}

}  // namespace

extern "C" {

int qm_get_trajectory_file_list(qm_robot_handle* handle, int page_num, int page_size,
                                const char* vague_search, qm_trajectory_list_t* trajectory_list) {
    const Request req = page_request("get_trajectory_file_list", page_num, page_size, vague_search);
    return query_record(__func__, handle, req, page_reply("get_trajectory_file_list"), trajectory_list,
                        [](ObjectReader& in, qm_trajectory_list_t& list) {
                            in.page(list.page_num, list.page_size, list.total_size, list.vague_search)
                                .list("list", list.tra_list, list.list_len,
                                      [](ObjectReader& item, qm_trajectory_info_t& file) {
                                          item.text("name", file.name)
                                              .text("create_time", file.create_time)
                                              .integer("point_num", file.point_num);
                                      });
                        });
}

int qm_set_run_trajectory(qm_robot_handle* handle, const char* trajectory_name) {
    return named_file_command(__func__, handle, "set_run_trajectory_file", "run_state", trajectory_name);
}

int qm_delete_trajectory_file(qm_robot_handle* handle, const char* trajectory_name) {
    return named_file_command(__func__, handle, "delete_trajectory_file", "delete_state", trajectory_name);
}

int qm_save_trajectory_file(qm_robot_handle* handle, const char* trajectory_name) {
    return named_file_command(__func__, handle, "save_trajectory_file", "save_state", trajectory_name);
}

}  // extern "C"
