// The reply mailbox: lines are filed by their key and taken by the command waiting for it.
#include <algorithm>
#include <cstring>
#include <mutex>
#include <thread>

#include "log.h"
#include "mio_json.h"
#include "qm_drag_teach.h"
#include "qm_exchange.h"
#include "qm_mailbox.h"

std::atomic<uint64_t> min_time{100000};
std::atomic<int> min_index{0};
qm_event_listener_t event_listener;
qm_event_push_data_t event_data{};

namespace {

constexpr const char* kTrajectoryEvent = "current_trajectory_state";
constexpr const char* kProgramEvent = "program_run_finish";
constexpr const char* kNeverStored = "conduct_project";  // its replies are not wanted by anyone
constexpr uint64_t kStaleAfter = 50;                     // later arrivals before an entry may be overwritten
constexpr std::chrono::microseconds kLookBeforeSleeping{50};

enum class Take { kNone, kTaken, kDiscarded };

void clear_entry(qm_socket_fifo& entry) {
    entry.is_used = 0;
    entry.recevie_len = 0;
    entry.command[0] = '\0';
    entry.str_json[0] = '\0';
    entry.time = 0;
}

// Steps 1 to 3 of filing: count the arrival, track the oldest entry, choose a slot.
// Returns the chosen index or -1 when every entry is in use and fresh.
int choose_entry(qm_socket_fifo_handle& fifo) {
    const uint64_t now = ++fifo.current_time;
    for (int i = 0; i < SOCKET_FIFO_MAX; ++i) {
        if (fifo.fifo[i].time < min_time.load(std::memory_order_relaxed)) {
            min_time.store(fifo.fifo[i].time, std::memory_order_relaxed);
            min_index.store(i, std::memory_order_relaxed);
        }
    }
    for (int i = 0; i < SOCKET_FIFO_MAX; ++i) {
        // The oldest entry gives way when the scan gets this far (intended: it is cleared
        // even if the last entry then takes the line).
        if (i == SOCKET_FIFO_MAX - 1) clear_entry(fifo.fifo[min_index.load(std::memory_order_relaxed)]);
        const qm_socket_fifo& entry = fifo.fifo[i];
        if (!entry.is_used || entry.time + kStaleAfter < now) return i;
    }
    return -1;
}

// Fills event_data for a trajectory or program event; false for any other key.
bool fill_event(const qm_handle_t& record, const cJSON* tree, const char* key) {
    if (std::strcmp(key, kTrajectoryEvent) == 0) {
        event_data.handle_id = record.robot_handle.id;
        event_data.event_type = QM_CURRENT_TRAJECTORY_STATE_E;
        event_data.device = MIO_JSON_GetObjectItemInt(tree, "device");
        event_data.trajectory_state = MIO_JSON_GetObjectItemBool(tree, "trajectory_state") == 1;
        event_data.trajectory_connect = MIO_JSON_GetObjectItemInt(tree, "trajectory_connect");
        event_data.program_id = 0;
        return true;
    }
    if (std::strcmp(key, kProgramEvent) == 0) {
        event_data.handle_id = record.robot_handle.id;
        event_data.event_type = QM_PROGRAM_RUN_FINISH_E;
        event_data.device = 0;
        event_data.trajectory_state = false;
        event_data.trajectory_connect = 0;
        event_data.program_id = MIO_JSON_GetObjectItemInt(tree, "finish_id");
        return true;
    }
    return false;
}

Take take_locked(qm_socket_fifo_handle& fifo, const char* command, char* str, int str_len, int& length) {
    for (auto& entry : fifo.fifo) {
        if (!entry.is_used) continue;
        int flag = event_listener.flag.load();
        if ((flag == 1 && std::strcmp(entry.command, kTrajectoryEvent) == 0) ||
            (flag == 2 && std::strcmp(entry.command, kProgramEvent) == 0)) {
            event_listener.flag.compare_exchange_strong(flag, 0);
            clear_entry(entry);
            return Take::kDiscarded;
        }
        if (command && std::strcmp(entry.command, command) == 0) {
            if (str && str_len > 0) {
                int n = entry.recevie_len < str_len ? entry.recevie_len : str_len - 1;
                std::memcpy(str, entry.str_json, static_cast<size_t>(n));
                str[n] = '\0';
            }
            length = entry.recevie_len;
            clear_entry(entry);
            return Take::kTaken;
        }
    }
    return Take::kNone;
}

}  // namespace

void fifo_file_line(qm_handle_t& record, std::string_view line) {
    qm_socket_fifo_handle& fifo = *record.fifo_handle;
    if (line.size() >= static_cast<size_t>(FIFO_LINE_MAX)) {
        qm_log_error("[add_str_to_fifo] line of %zu bytes refused\n", line.size());
        return;
    }
    // A line never holds a zero byte of its own; one inside would end the text early.
    const std::string text(line);
    JsonPtr tree = json_parse(text.c_str());

    std::unique_lock lock(fifo.mutex);
    int index = choose_entry(fifo);
    if (index < 0 || !tree) return;  // no free entry, or not JSON: dropped

    const char* key = MIO_JSON_GetObjectItemStr(tree.get(), "state");
    if (!key) key = MIO_JSON_GetObjectItemStr(tree.get(), "command");
    if (!key) {
        lock.unlock();
        drag_teach_record_point(tree.get(), text);
        return;
    }
    const size_t key_len = std::strlen(key);
    if (key_len >= static_cast<size_t>(FIFO_KEY_MAX)) {
        qm_log_error("[add_str_to_fifo] key of %zu characters refused\n", key_len);
        return;
    }
    // Every keyed line renames the chosen entry, even one that is then not stored.
    qm_socket_fifo& entry = fifo.fifo[index];
    std::memcpy(entry.command, key, key_len + 1);

    // The application sees an event before the line is filed, so a blocking move never
    // returns while the event callback still runs. The mailbox is open meanwhile: the
    // callback may issue commands itself.
    if (fill_event(record, tree.get(), key)) {
        const qm_event_push_data_t event = event_data;
        if (qm_event_callback_ptr callback = event_listener.event_callback.load()) {
            lock.unlock();
            callback(event);
            lock.lock();
        }
    }
    if (std::strcmp(key, kNeverStored) == 0) return;
    // Again: a command may have taken and cleared the renamed entry while the callback ran.
    std::memcpy(entry.command, key, key_len + 1);
    std::memcpy(entry.str_json, line.data(), line.size());
    entry.str_json[line.size()] = '\0';
    qm_log_debug("fifo str_json %s----handle->fifo_handle->fifo->id %d\n", entry.str_json,
                 static_cast<int>(entry.id));
    entry.time = fifo.current_time;
    entry.recevie_len = static_cast<int>(line.size());
    entry.is_used = 1;
    fifo.filed.notify_all();
}

int fifo_take_line(qm_socket_fifo_handle& fifo, const char* command, char* str, int str_len) {
    std::lock_guard lock(fifo.mutex);
    int length = -1;
    take_locked(fifo, command, str, str_len, length);
    return length;
}

int fifo_wait_line(qm_socket_fifo_handle& fifo, const char* command, char* str, int str_len,
                   std::chrono::steady_clock::time_point deadline) {
    // A controller that answers at once has its reply filed within tens of microseconds: for that
    // long the command keeps looking, giving the processor up between looks, rather than paying
    // for a wake-up from sleep after the receive thread's own. Then it sleeps until the line is
    // filed.
    const auto looking_until = std::min(deadline, std::chrono::steady_clock::now() + kLookBeforeSleeping);
    std::unique_lock lock(fifo.mutex);
    for (;;) {
        int length = -1;
        Take result = take_locked(fifo, command, str, str_len, length);
        if (result == Take::kTaken) return length;
        if (result == Take::kDiscarded) continue;  // the wanted line may stand further on
        if (std::chrono::steady_clock::now() < looking_until) {
            lock.unlock();
            std::this_thread::yield();
            lock.lock();
            continue;
        }
        if (fifo.filed.wait_until(lock, deadline) == std::cv_status::timeout) {
            result = take_locked(fifo, command, str, str_len, length);
            if (result == Take::kTaken) return length;
            if (result == Take::kDiscarded) continue;
            return -1;
        }
    }
}

void add_str_to_fifo(qm_robot_handle* handle, char* str, int str_len) {
    if (!str || str_len < 0) return;
    for (const HandlePtr& record : qm_snapshot_handles()) {
        if (record && &record->robot_handle == handle) {
            fifo_file_line(*record, std::string_view(str, static_cast<size_t>(str_len)));
            return;
        }
    }
}

int get_str_from_fifo(qm_robot_handle* handle, const char* command, char* str, int str_len) {
    qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle);
    if (!record || !record->fifo_handle) return -1;
    return fifo_take_line(*record->fifo_handle, command, str, str_len);
}

void qm_event_listener_set_flag(int flag) {
    event_listener.flag = flag;
}

extern "C" void qm_get_arm_event_call_back(qm_event_callback_ptr event_callback) {
    if (event_callback) event_listener.event_callback = event_callback;
}
