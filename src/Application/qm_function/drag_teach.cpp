// The drag-teach save file shared by the receive side and the saving command.
#include <condition_variable>
#include <mutex>
#include <string>

#include "log.h"
#include "mio_json.h"
#include "qm_drag_teach.h"

std::FILE* F_SaveDragTeach = nullptr;
std::atomic<int> drag_teach_save_start{0};
std::atomic<int> drag_teach_save_state{0};
std::atomic<int> drag_teach_save_complete{0};
std::atomic<int> drag_teach_count{0};
std::atomic<int> drag_teach_total_num{0};

namespace {
std::mutex g_file_mutex;  // guards F_SaveDragTeach
std::condition_variable g_recorded;

// Wakes a waiting save; the counters changed before, so taking the lock here means no
// waiter can miss them.
void signal_recorded() {
    { std::lock_guard lock(g_file_mutex); }
    g_recorded.notify_all();
}
}  // namespace

bool drag_teach_file_open(const char* path) {
    std::lock_guard lock(g_file_mutex);
    drag_teach_save_start = 0;
    drag_teach_save_state = 0;
    drag_teach_save_complete = 0;
    drag_teach_count = 0;
    if (F_SaveDragTeach) std::fclose(F_SaveDragTeach);
    F_SaveDragTeach = path ? std::fopen(path, "wb") : nullptr;
    return F_SaveDragTeach != nullptr;
}

void drag_teach_file_close() {
    std::lock_guard lock(g_file_mutex);
    if (F_SaveDragTeach) std::fclose(F_SaveDragTeach);
    F_SaveDragTeach = nullptr;
}

bool drag_teach_file_is_open() {
    std::lock_guard lock(g_file_mutex);
    return F_SaveDragTeach != nullptr;
}

bool drag_teach_file_write(std::string_view line, std::string_view line_end) {
    std::lock_guard lock(g_file_mutex);
    if (!F_SaveDragTeach) return false;
    std::fwrite(line.data(), 1, line.size(), F_SaveDragTeach);
    std::fwrite(line_end.data(), 1, line_end.size(), F_SaveDragTeach);
    std::fflush(F_SaveDragTeach);
    return true;
}

void drag_teach_record_point(const cJSON* tree, std::string_view line) {
    if (!cJSON_IsArray(MIO_JSON_GetObjectItem(tree, "point"))) {
        // Logged before the state is set: a save that sees the failure returns at once.
        const std::string text(line);
        qm_log_error("Error: 'point' is not an array. %s\n", text.c_str());
        drag_teach_save_state = 1;
        signal_recorded();
        return;
    }
    drag_teach_save_start = 1;
    drag_teach_file_write(line, "\r\n");
    const int count = ++drag_teach_count;
    qm_log_debug("drag_teach_count:  %d  drag_teach_total_num: %d\n", count, drag_teach_total_num.load());
    if (count == drag_teach_total_num) drag_teach_save_complete = 1;
    signal_recorded();
}

bool drag_teach_wait_until(const std::function<bool()>& done,
                           std::chrono::steady_clock::time_point deadline) {
    std::unique_lock lock(g_file_mutex);
    return g_recorded.wait_until(lock, deadline, done);
}
