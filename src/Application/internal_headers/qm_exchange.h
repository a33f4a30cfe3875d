// Command exchange: request and reply tables, the one send-and-wait call, reply parsing,
// events and the shared blocking-move wait.
#ifndef QM_EXCHANGE_H
#define QM_EXCHANGE_H

#include <cjson/cJSON.h>

#include <optional>

#include "qm_define.h"
#include "qm_fifo.h"

enum JsonValueType {
    JSON_STRING = 0,
    JSON_INT = 1,
    JSON_ARRAY = 2,
    JSON_BOOL = 3,
    JSON_OBJECT = 4,
};

// One member of a request. Texts and arrays are borrowed; a sub_json object passes to the request.
struct JsonValue {
    JsonValueType type;
    const char* key;  // null: entry skipped
    int array_size;
    union {
        const char* str_value;  // null: entry skipped
        int int_value;
        const int* array_value;
        bool bool_value;
        cJSON* sub_json;
    } value;
};

constexpr int KEYVALUE_STR_MAX = 28;
constexpr int KEYVALUE_ARRAY_MAX = 24;

// One expected member of a reply; the parser fills `value` (a 96-byte area).
struct KeyValue {
    JsonValueType type;
    const char* key;
    int array_size;  // expected element count for JSON_ARRAY
    union {
        char str_value[KEYVALUE_STR_MAX];
        int int_value;
        int array_value[KEYVALUE_ARRAY_MAX];
        bool bool_value;
        cJSON* sub_json;  // a copy, owned by the caller afterwards
    } value;
};

// Sends json_values (null: nothing) and waits up to timeout ms for the reply filed under
// `command` (null: no reply; the call then just sleeps timeout ms). Returns the reply's
// length (>= 1) copied into buf, 0 when no reply was asked for, -1 unknown handle or send
// failure, -2 no reply in time.
int qm_pack_lock_set(const char* caller_function_name, qm_robot_handle* handle,
                     const JsonValue* json_values, int num_values, const char* command, char* buf,
                     int buf_len, int timeout);
int common_json_pack_set(const char* caller_function_name, qm_robot_handle* handle,
                         const JsonValue* json_values, int num_values);
int handle_revice_data(const char* caller_function_name, qm_robot_handle* handle,
                       const char* command, char* buf, int buf_len, int timeout);

// Mailbox filing (receive thread) and taking (waiting command).
void add_str_to_fifo(qm_robot_handle* handle, char* str, int str_len);
int get_str_from_fifo(qm_robot_handle* handle, const char* command, char* str, int str_len);

// 0, or -3 for a reply that does not parse or lacks a member of the table.
int common_json_parse(const char* caller_function_name, const char* json_str, KeyValue* key_values,
                      int num_keys);
// 0 the boolean `key` is true, 1 false, -3 missing or unparsable.
int parse_qm_set_command(const char* caller_function_name, const char* json_str, const char* key);
// The "trajectory_state" boolean (1, 0, -1), or -3; device and trajectory_connect are filled.
int parse_qm_move_command(const char* json_str, int* device, int* trajectory_connect);

int qm_get_data_common(qm_robot_handle* handle, int* data, const char* cmd_str, const char* valua_str);
int qm_set_data_common(qm_robot_handle* handle, int data, const char* cmd_str, const char* valua_str);

// How one family waits for the end of a blocking move: which device's arrival ends it,
// what shows that the move still runs, and the pacing of the fallback polls. Each family
// supplies its constants; the loop exists once.
struct MoveWait {
    const char* caller;          // name in log messages
    int device = 0;              // device whose arrival event ends the wait (0: the arm)
    int trajectory_type = 0;     // qm_arm_current_trajectory_e shown while the move runs
    int event_timeout_ms = 0;    // one wait for the arrival event; 0 takes the query timeout
    bool poll_first = false;     // watch the move first; await the event only once nothing runs
    int seen_pause_ms = 50;      // pause while the move is seen running
    int other_pause_ms = 100;    // pause while another trajectory runs
    int idle_pause_ms = 100;     // pause while nothing runs yet
    int idle_polls = 5;          // "nothing runs" answers tolerated before the last wait
    int poll_failures = 5;       // failed polls tolerated
    // A device that reports its own state (the lift and expansion axes): a non-zero mode
    // shows the move running, in place of the arm's planned trajectory.
    int (*device_state)(qm_robot_handle*, qm_expand_state_t*) = nullptr;
    // The last wait for the event came back empty: below 0 the wait gives -6, else it pauses
    // this long and watches the move again.
    int missed_event_pause_ms = -1;
    // The result in a thread mode other than the three; none waits as in the threaded modes.
    std::optional<int> other_mode_result{};
    // The one-event wait of the gripper and the hand: its results for no event in time and
    // for another device's event.
    int missed_result = -5;
    int foreign_result = -4;
};
// Waits for the arrival event after a blocking move was accepted; `block` is the number
// of one-second turns in single-thread mode. 0 arrived, 1 the trajectory ended without
// success, -4 another device arrived, -5/-6 timeouts, or a poll's error.
int qm_wait_move_arrival(qm_robot_handle* handle, const MoveWait& wait, int block);
// Waits up to timeout_ms for one arrival event, in every thread mode: 0 the device arrived,
// 1 its motion failed, wait.missed_result none came, wait.foreign_result another device's came.
int qm_wait_device_arrival(qm_robot_handle* handle, const MoveWait& wait, int timeout_ms);

// Listener state shared by the non-blocking moves and the mailbox.
void qm_event_listener_set_flag(int flag);

#endif
