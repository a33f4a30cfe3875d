// Library start and stop, the table of five connections and its lock.
#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <thread>

#include "log.h"
#include "qm_handle.h"
#include "qm_interface.h"
#include "qm_receive.h"
#include "qm_sync.h"

std::atomic<int> g_mode{QM_SINGLE_MODE_E};
std::atomic<int> should_exit{0};
std::atomic<uint32_t> m_nOutTime{500};
std::atomic<uint32_t> m_nOutTime_max{1000};
std::atomic<uint32_t> m_nOutTime_modbus{1000};
HandleTable gHandleList;
std::unique_ptr<qm_udp_handle> gUdpHandle;

namespace {

// Readers and writers of the table. A waiting writer holds new readers back: with readers
// first, threads that keep issuing commands would keep delete and destroy waiting forever.
class WriterFirstLock {
public:
    WriterFirstLock() = default;
    WriterFirstLock(const WriterFirstLock&) = delete;
    WriterFirstLock& operator=(const WriterFirstLock&) = delete;

    void lock_shared() { pthread_rwlock_rdlock(&lock_); }
    void unlock_shared() { pthread_rwlock_unlock(&lock_); }
    void lock() { pthread_rwlock_wrlock(&lock_); }
    void unlock() { pthread_rwlock_unlock(&lock_); }

private:
    pthread_rwlock_t lock_ = PTHREAD_RWLOCK_WRITER_NONRECURSIVE_INITIALIZER_NP;
};

WriterFirstLock rwlock;
std::mutex m_hMutex;       // kept for the wrappers; nothing takes it
std::mutex g_table_mutex;  // guards gHandleList against the receive threads' snapshots
std::thread thread_id;
std::thread thread_udp_id;

// Per slot, the handle it holds and its configuration generation, readable without a lock.
std::array<std::atomic<const qm_robot_handle*>, HANDLE_LIST_MAX> slot_handles{};
std::array<std::atomic<uint64_t>, HANDLE_LIST_MAX> slot_generations{};
std::atomic<uint64_t> last_generation{0};

// Replaces one slot; the caller holds the write lock.
void set_slot(int slot, HandlePtr record) {
    // The generation first: a lock-free reader that finds the handle then reads its generation.
    slot_generations[slot] = record ? ++last_generation : 0;
    slot_handles[slot] = record ? &record->robot_handle : nullptr;
    std::lock_guard lock(g_table_mutex);
    gHandleList[slot] = std::move(record);
}

int find_slot(const qm_robot_handle* handle) {
    for (int i = 0; i < HANDLE_LIST_MAX; ++i)
        if (gHandleList[i] && &gHandleList[i]->robot_handle == handle) return i;
    return -1;
}

// The error number of a failed start, or 0.
int start_thread(std::thread& thread, void (*body)()) {
    try {
        thread = std::thread(body);
        return 0;
    } catch (const std::system_error& e) {
        return e.code().value();
    }
}

void join_threads() {
    for (std::thread* thread : {&thread_id, &thread_udp_id}) {
        if (!thread->joinable()) continue;
        // exit() called from a callback runs on the receive thread itself.
        if (thread->get_id() == std::this_thread::get_id())
            thread->detach();
        else
            thread->join();
    }
}

// An application may return from main without qm_destory: the receive threads must end
// before the library's globals are destroyed, or the process aborts on its way out.
void stop_threads_at_exit() {
    should_exit = 1;
    join_threads();
}

}  // namespace

void qm_rwlock_init() {}
void qm_rdlock_lock() { rwlock.lock_shared(); }
void qm_rdlock_unlock() { rwlock.unlock_shared(); }
void qm_wrlock_lock() { rwlock.lock(); }
void qm_wrlock_unlock() { rwlock.unlock(); }
void qm_mutex_lock() { m_hMutex.lock(); }
void qm_mutex_unlock() { m_hMutex.unlock(); }

qm_handle_t* qm_get_qm_handle_by_robot_handle(const qm_robot_handle* handle) {
    int slot = find_slot(handle);
    return slot < 0 ? nullptr : gHandleList[slot].get();
}

qm_handle_t* qm_get_qm_handle_by_fifo_handle(const qm_socket_fifo_handle* fifo_handle) {
    for (auto& record : gHandleList)
        if (record && record->fifo_handle.get() == fifo_handle) return record.get();
    return nullptr;
}

void qm_config_changed(const qm_robot_handle* handle) {
    if (int slot = find_slot(handle); slot >= 0) slot_generations[slot] = ++last_generation;
}

uint64_t qm_config_generation(const qm_robot_handle* handle) {
    for (int i = 0; i < HANDLE_LIST_MAX; ++i) {
        if (slot_handles[i] != handle) continue;
        const uint64_t generation = slot_generations[i];
        // A slot replaced meanwhile no longer names the handle.
        return slot_handles[i] == handle ? generation : 0;
    }
    return 0;
}

HandleTable qm_snapshot_handles() {
    std::lock_guard lock(g_table_mutex);
    return gHandleList;
}

extern "C" {

int qm_init(qm_thread_mode_e mode) {
    // A second init without destroy first stops the running threads.
    should_exit = 1;
    join_threads();

    qm_rwlock_init();
    g_mode = static_cast<int>(mode);
    should_exit = 0;
    {
        std::unique_lock lock(rwlock);
        std::lock_guard table(g_table_mutex);
        gHandleList = {};
    }
    static std::once_flag at_exit;
    std::call_once(at_exit, [] { std::atexit(stop_threads_at_exit); });
    if (mode == QM_TRIPLE_MODE_E) gUdpHandle.reset(qm_udp_init());
    if (mode == QM_DUAL_MODE_E || mode == QM_TRIPLE_MODE_E) {
        if (int error = start_thread(thread_id, tcp_receive_thread_main)) {
            qm_log_error("Error creating thread thread_id: %d\n", error);
            return -1;
        }
    }
    if (mode == QM_TRIPLE_MODE_E) {
        if (int error = start_thread(thread_udp_id, udp_receive_thread_main)) {
            qm_log_error("Error creating thread thread_udp_id: %d\n", error);
            return -1;
        }
    }
    return 0;
}

const char* qm_api_version(void) { return SDK_VERSION; }

qm_robot_handle* qm_create_robot_arm(const char* ip, int port) {
    qm_wrlock_lock();
    int slot = 0;
    while (slot < HANDLE_LIST_MAX && gHandleList[slot]) ++slot;
    if (slot == HANDLE_LIST_MAX) {
        qm_wrlock_unlock();
        qm_log_error("[qm_create_robot_arm] robot num is max");
        return nullptr;
    }
    HandlePtr record = qm_handle_init(ip, port);
    if (!record) {
        qm_wrlock_unlock();
        return nullptr;
    }
    set_slot(slot, record);
    qm_robot_handle* handle = &record->robot_handle;
    if (record->socket_handle->socket_id > 0) {
        record->id = static_cast<uint8_t>(slot + 1);
        record->robot_handle.id = slot + 1;
        std::snprintf(record->socket_handle->ip, 17, "%.16s", ip);
        qm_wrlock_unlock();
        int synced = qm_sync_robot_info(handle);
        qm_algo_arm_state_set(handle);
        qm_wrlock_lock();
        if (synced != 0) {
            qm_log_error("[qm_create_robot_arm] get robot info err!\n");
            record->robot_handle.id = -1;
        }
    } else {
        qm_log_error("[qm_create_robot_arm] socket connect err!\n");
        record->robot_handle.id = -1;
    }
    qm_wrlock_unlock();
    return handle;
}

int qm_delete_robot_arm(qm_robot_handle* handle) {
    qm_wrlock_lock();
    int slot = find_slot(handle);
    if (slot < 0) {
        qm_wrlock_unlock();
        qm_log_error("not find handle\n");
        return -1;
    }
    HandlePtr record = gHandleList[slot];
    record->socket_handle->close(record->socket_handle.get());
    set_slot(slot, nullptr);
    qm_wrlock_unlock();
    // The socket and mailbox go with the record, once no receive thread holds it.
    return 0;
}

int qm_destory(void) {
    should_exit = 1;
    join_threads();
    qm_wrlock_lock();
    for (int slot = 0; slot < HANDLE_LIST_MAX; ++slot) {
        if (!gHandleList[slot]) continue;
        auto& socket = gHandleList[slot]->socket_handle;
        socket->close(socket.get());
        set_slot(slot, nullptr);
    }
    gUdpHandle.reset();
    qm_wrlock_unlock();
    return 0;
}

void qm_set_timeout(int timeout) {
    m_nOutTime = static_cast<uint32_t>(timeout);
    m_nOutTime_max = static_cast<uint32_t>(timeout);
}

int qm_get_robot_info(qm_robot_handle* handle, qm_robot_info_t* robot_info) {
    TableReadLock lock;
    qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle);
    if (!record) {
        qm_log_error("[%s] handle is NULL!\n", "qm_get_robot_info");
        return -1;
    }
    if (robot_info) {
        robot_info->arm_dof = static_cast<uint8_t>(record->arm_dof);
        robot_info->arm_model = record->arm_model;
        robot_info->force_type = record->force_type;
        robot_info->robot_controller_version = static_cast<uint8_t>(record->robot_controller_version);
    }
    return record->arm_dof != 0 ? 0 : -2;
}

int qm_set_robot_dof(qm_robot_handle* handle, int dof) {
    TableReadLock lock;
    qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle);
    if (!record) return -1;
    if (dof < 1 || dof > 10) return -2;
    record->arm_dof = dof;
    return 0;
}

}  // extern "C"

int qm_get_arm_dof(qm_robot_handle* handle, int* dof) {
    TableReadLock lock;
    qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle);
    if (!record) return -1;
    if (record->arm_dof < 1 || record->arm_dof > 10) return -1;
    if (dof) *dof = record->arm_dof;
    return 0;
}

HandlePtr qm_handle_init(const char* ip, int port) {
    auto record = std::make_shared<qm_handle_t>();
    record->fifo_handle = std::make_unique<qm_socket_fifo_handle>();
    record->socket_handle.reset(qm_socket_handle_init(ip, port));
    if (!record->socket_handle) return nullptr;
    // A failed connect leaves the record usable with socket id -1.
    record->socket_handle->init(record->socket_handle.get());
    return record;
}

int qm_sync_robot_info(qm_robot_handle* handle) {
    for (SyncQuery query : qm_sync_queries()) {
        if (int rc = query(handle); rc != 0) return rc;
    }
    return 0;
}
