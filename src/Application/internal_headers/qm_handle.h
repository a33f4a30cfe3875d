// The connection record, the table of five connections and the library's global state.
#ifndef QM_HANDLE_H
#define QM_HANDLE_H

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <shared_mutex>

#include "qm_define.h"
#include "qm_fifo.h"
#include "socket.h"
#include "udp.h"

constexpr int HANDLE_LIST_MAX = 5;

struct qm_handle_t {
    uint8_t id = 0;  // slot + 1 once connected
    SocketPtr socket_handle;
    std::unique_ptr<qm_socket_fifo_handle> fifo_handle;
    qm_robot_handle robot_handle{0};  // the caller holds this record's address
    int arm_dof = 0;
    qm_robot_arm_model_e arm_model = QM_MODEL_QM_65_E;
    qm_force_type_e force_type = QM_MODEL_QM_B_E;
    qm_frame_t tool_frame{};
    qm_frame_t work_frame{};
    float install_angle[3]{};  // degrees
    float joint_max_limit[ARM_DOF]{};
    float joint_min_limit[ARM_DOF]{};
    float joint_max_acc[ARM_DOF]{};
    float joint_max_speed[ARM_DOF]{};
    qm_dh_t dh{};
    int udp_port = 0;
    int robot_controller_version = 0;  // 3 or 4
};
using HandlePtr = std::shared_ptr<qm_handle_t>;
using HandleTable = std::array<HandlePtr, HANDLE_LIST_MAX>;

extern std::atomic<int> g_mode;  // a qm_thread_mode_e, or any value a C caller passed
extern std::atomic<int> should_exit;
extern std::atomic<uint32_t> m_nOutTime;         // query reply timeout, ms
extern std::atomic<uint32_t> m_nOutTime_max;     // set reply timeout, ms
extern std::atomic<uint32_t> m_nOutTime_modbus;  // Modbus reply timeout, ms
// Guarded by the table lock; the receive threads use qm_snapshot_handles() instead.
extern HandleTable gHandleList;
extern std::unique_ptr<qm_udp_handle> gUdpHandle;

// Slot lookups by address; callers hold the table lock.
qm_handle_t* qm_get_qm_handle_by_robot_handle(const qm_robot_handle* handle);
qm_handle_t* qm_get_qm_handle_by_fifo_handle(const qm_socket_fifo_handle* fifo_handle);
// Owning copies of the five slots, for the receive threads: a record they hold stays
// alive even if it is deleted meanwhile.
HandleTable qm_snapshot_handles();

// Every connection has a configuration generation, unique in the process, that changes with each
// write of its stored configuration (model, frames, limits, table): the kinematics bridge loads
// that configuration again only when it changed. Called after such a write, under the table lock.
void qm_config_changed(const qm_robot_handle* handle);
// The generation of the connection `handle` names, 0 when none; read without the table lock,
// so that a kinematics call that has nothing to load takes no lock either.
uint64_t qm_config_generation(const qm_robot_handle* handle);

// 0 and the joint count when it lies in 1..10, else -1.
int qm_get_arm_dof(qm_robot_handle* handle, int* dof);
int qm_sync_robot_info(qm_robot_handle* handle);
HandlePtr qm_handle_init(const char* ip, int port);

// The table lock: written by create, delete and destroy, read by every command.
void qm_rwlock_init();
void qm_rdlock_lock();
void qm_rdlock_unlock();
void qm_wrlock_lock();
void qm_wrlock_unlock();
void qm_mutex_lock();
void qm_mutex_unlock();

// Holds the table's read lock for one scope.
class TableReadLock {
public:
    TableReadLock() { qm_rdlock_lock(); }
    ~TableReadLock() { qm_rdlock_unlock(); }
    TableReadLock(const TableReadLock&) = delete;
    TableReadLock& operator=(const TableReadLock&) = delete;
};

#endif
