// Stored programs: listing, editing, run states, the default program and running one by id
// with a wait for its end.
#include <algorithm>
#include <chrono>
#include <climits>

#include "log.h"
#include "qm_command.h"
#include "qm_handle.h"
#include "qm_interface.h"
#include "qm_reply_object.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

// ---- replies ----

void read_program_list(ObjectReader& in, qm_program_trajectorys_t& list) {
    int listed = 0;
    in.page(list.page_num, list.page_size, list.list_size, list.vague_search)
        .list("list", list.trajectory_list, listed, [](ObjectReader& item, qm_trajectory_data_t& program) {
            item.integer("id", program.id)
                .text("trajectory_name", program.trajectory_name)
                .integer("size", program.size)
                .integer("speed", program.speed);
        });
}

// The number of loops is the length of "loop_num".
void read_run_state(ObjectReader& in, qm_program_run_state_t& state) {
    in.integer("run_state", state.run_state)
        .integer("id", state.id)
        .integer("edit_id", state.edit_id)
        .integer("plan_num", state.plan_num)
        .integer("step_mode", state.step_mode)
        .integer("plan_speed", state.plan_speed)
        .ints("loop_num", state.loop_num, &state.total_loop)
        .ints("loop_cont", state.loop_cont);
}

void read_flowchart_state(ObjectReader& in, qm_flowchart_run_state_t& state) {
    in.integer("run_state", state.run_state)
        .integer("id", state.id)
        .text("name", state.name)
        .integer("plan_speed", state.plan_speed)
        .integer("step_mode", state.step_mode)
        .text("modal_id", state.modal_id);
}

// ---- the wait for a program's end ----

constexpr const char* kFinishKey = "program_run_finish";
constexpr milliseconds kRunningPause = 1000ms;
constexpr milliseconds kIdlePause = 100ms;
constexpr int kIdlePolls = 9;     // "not running" answers before the end report is awaited
constexpr int kPollFailures = 5;  // failed run-state polls tolerated

enum class Finish { none, other, this_one };

// One end report: whether it came within `wait` and named program `id`.
Finish await_finish(const char* caller, qm_robot_handle* handle, int id, milliseconds wait) {
    std::string text;
    if (exchange(caller, handle, Request::nothing(), Reply::query(kFinishKey).within(wait), text) < 1)
        return Finish::none;
    JsonPtr root = json_parse(text.c_str());
    int finished = 0;
    const bool named = ObjectReader(root.get()).integer("finish_id", finished).ok();
    return named && finished == id ? Finish::this_one : Finish::other;
}

// The run state, from the flowchart query first; a failed poll turns to the other query.
int poll_run_state(qm_robot_handle* handle, bool flowchart, int& run_state) {
    if (flowchart) {
        qm_flowchart_run_state_t state{};
        const int rc = qm_get_flowchart_program_run_state(handle, &state);
        run_state = state.run_state;
        return rc;
    }
    qm_program_run_state_t state{};
    const int rc = qm_get_program_run_state(handle, &state);
    run_state = state.run_state;
    return rc;
}

// Threaded modes: watch the run state until the program has run and stopped (or never showed
// as running), then collect its end report, passing over reports of other programs.
int wait_program_end(const char* caller, qm_robot_handle* handle, int id) {
    bool flowchart = true;
    bool seen_running = false;
    int idle = 0;
    int failures = 0;
    for (;;) {
        int run_state = 0;
        if (int rc = poll_run_state(handle, flowchart, run_state)) {
            if (++failures > kPollFailures) return rc;
            flowchart = !flowchart;
            continue;
        }
        if (run_state != 0) {
            seen_running = true;
            sleep_cp(static_cast<int>(kRunningPause.count()));
            continue;
        }
        if (!seen_running && ++idle < kIdlePolls) {
            sleep_cp(static_cast<int>(kIdlePause.count()));
            continue;
        }
        break;
    }
    for (;;) {
        switch (await_finish(caller, handle, id, milliseconds(m_nOutTime.load()))) {
            case Finish::none:
                return -4;
            case Finish::this_one:
                return 0;
            case Finish::other:
                break;
        }
    }
}

// Single-thread mode: `block` seconds for the end report, which must name this program.
int wait_program_end_single(const char* caller, qm_robot_handle* handle, int id, int block) {
    const milliseconds wait(std::clamp<long long>(block * 1000LL, 0, INT_MAX));
    return await_finish(caller, handle, id, wait) == Finish::this_one ? 0 : -4;
}

}  // namespace

extern "C" {

int qm_set_plan_speed(qm_robot_handle* handle, int speed) {
    Request req("plan_speed");
    req.integer("speed", speed);
    return send_set(__func__, handle, req, Reply("plan_speed", "plan_state"));
}

int qm_get_program_trajectory_list(qm_robot_handle* handle, int page_num, int page_size,
                                   const char* vague_search, qm_program_trajectorys_t* trajectorys) {
    const Request req = page_request("get_program_trajectory_list", page_num, page_size, vague_search);
    return query_record(__func__, handle, req, page_reply("get_program_trajectory_list"), trajectorys,
                        read_program_list, "[%s] get program trajectory list parser error!\n");
}

int qm_get_program_run_state(qm_robot_handle* handle, qm_program_run_state_t* run_state) {
    return query_record(__func__, handle, Request("get_program_run_state"),
                        page_reply("get_program_run_state"), run_state, read_run_state,
                        "[%s] get program run state parser error!\n");
}

int qm_get_flowchart_program_run_state(qm_robot_handle* handle, qm_flowchart_run_state_t* run_state) {
    return query_record(__func__, handle, Request("get_flowchart_program_run_state"),
                        Reply::query("get_flowchart_program_run_state"), run_state, read_flowchart_state,
                        "[%s] get flowchart run state parser error!\n");
}

int qm_delete_program_trajectory(qm_robot_handle* handle, int id) {
    Request req("delete_program_trajectory");
    req.integer("id", id);
    return send_set(__func__, handle, req, Reply("delete_program_trajectory", "delete_state"));
}

int qm_update_program_trajectory(qm_robot_handle* handle, int id, int speed, const char* name) {
    Request req("update_program_trajectory");
    req.integer("id", id).integer("plan_speed", speed).str("project_name", name);
    return send_set(__func__, handle, req, Reply("update_program_trajectory", "update_state"));
}

int qm_set_default_run_program(qm_robot_handle* handle, int id) {
    Request req("set_default_run_program");
    req.integer("id", id);
    return send_set(__func__, handle, req, Reply("set_default_run_program", "set_state"));
}

int qm_get_default_run_program(qm_robot_handle* handle, int* id) {
    KeyValue table[] = {int_member("id")};
    const Request req("get_default_run_program");
    if (int rc = send_query(__func__, handle, req, Reply::query("get_default_run_program"), table)) return rc;
    if (id) *id = table[0].value.int_value;
    return 0;
}

int qm_set_program_id_run(qm_robot_handle* handle, int id, int speed, int block) {
    Request req("set_program_id_start");
    req.integer("id", id).integer("speed", speed);
    const int started = send_set(__func__, handle, req, Reply("set_program_id_start", "start_state"));
    if (started != 0 || block == 0) return started;
    if (g_mode == QM_SINGLE_MODE_E) return wait_program_end_single(__func__, handle, id, block);
    return wait_program_end(__func__, handle, id);
}

}  // extern "C"
