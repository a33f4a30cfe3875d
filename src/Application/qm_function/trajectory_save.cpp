// Saving a drag-taught trajectory into a local file: the controller streams one "point"
// message per point after its reply, and the receive side appends each as one line.
#include <chrono>
#include <mutex>
#include <string>

#include "log.h"
#include "mio_json.h"
#include "qm_command.h"
#include "qm_drag_teach.h"
#include "qm_handle.h"
#include "qm_interface.h"
#include "qm_local_files.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kFirstPointWait = 2000ms;
// No further point for this long: the rest is not coming. Keeps a save whose points stop
// short of the announced count from waiting forever.
constexpr milliseconds kStallWait = 2000ms;
constexpr milliseconds kSingleModeTurn = 1000ms;
constexpr int kNotAnnounced = -1;  // no count matches before the controller announced one

std::mutex g_one_save;  // one save at a time in the process

// The save file stays open for the receive side exactly as long as the save runs.
struct SaveFile {
    bool opened;
    explicit SaveFile(const char* path) : opened(drag_teach_file_open(path)) {}
    ~SaveFile() { drag_teach_file_close(); }
};

// The reply to "save_trajectory": 0 with the announced point count in `total`, or the result.
int announced_points(const char* caller, const std::string& text, int& total) {
    JsonPtr root = json_parse(text.c_str());
    if (!root) {
        qm_log_error("[%s] Save trajectory parse err\n", caller);
        return -3;
    }
    switch (MIO_JSON_GetObjectItemBool(root.get(), "save_state")) {
        case 1:
            break;
        case 0:
            qm_log_error("[%s] Save state: false\n", caller);
            return 1;
        default:
            qm_log_error("[%s] Save trajectory err\n", caller);
            return -3;
    }
    total = MIO_JSON_GetObjectItemInt(root.get(), "total_num");
    if (total < 0) {
        qm_log_error("[%s] Trajectory total num parse err\n", caller);
        return -3;
    }
    return 0;
}

// Only atomics here: the waits below run these under the save file's lock.
bool failed() {
    return drag_teach_save_state != 0;
}
// The count is compared too, in case points were counted before the announcement was read.
bool complete() {
    return drag_teach_save_complete != 0 || drag_teach_count >= drag_teach_total_num;
}

// Threaded modes: the receive thread records; this waits for the first point, then for the
// announced count.
int collect_threaded() {
    drag_teach_wait_until([] { return failed() || (drag_teach_save_start && complete()); },
                          Clock::now() + kFirstPointWait);
    if (!drag_teach_save_start) return -6;
    for (int seen = drag_teach_count;; seen = drag_teach_count) {
        if (failed()) return -6;
        if (complete()) return 0;
        if (!drag_teach_wait_until([seen] { return failed() || complete() || drag_teach_count != seen; },
                                   Clock::now() + kStallWait))
            return -6;
    }
}

// Single-thread mode: this command reads the points itself; the save is complete once the
// stream has been quiet for long enough after the first point.
int collect_single(const char* caller, qm_robot_handle* handle) {
    const Clock::time_point first_point_due = Clock::now() + kFirstPointWait;
    while (!drag_teach_save_complete) {
        if (!drag_teach_file_is_open()) {
            qm_log_error("The file is closed\n");
            return -6;
        }
        if (!drag_teach_save_start && Clock::now() >= first_point_due) return -6;
        std::string ignored;
        exchange(caller, handle, Request::nothing(), Reply::query("point").within(kSingleModeTurn), ignored);
    }
    return 0;
}

}  // namespace

extern "C" {

int qm_save_trajectory(qm_robot_handle* handle, const char* file_name, int* num) {
    std::lock_guard one_save(g_one_save);
    drag_teach_total_num = kNotAnnounced;
    SaveFile file(file_name);
    if (!file.opened) {
        qm_log_error("[%s] File open error!", __func__);
        return -4;
    }

    const std::string stem = file_stem(file_name);
    Request req("save_trajectory");
    req.str("trajectory_name", stem.c_str());
    std::string text;
    if (int rc = exchange(__func__, handle, req, Reply("save_trajectory", nullptr).buffer(2048), text);
        rc < 1)
        return rc;
    int total = 0;
    if (int rc = announced_points(__func__, text, total)) return rc;
    if (num) *num = total;
    drag_teach_total_num = total;

    if (g_mode == QM_SINGLE_MODE_E) return collect_single(__func__, handle);
    return collect_threaded();
}

}  // extern "C"
