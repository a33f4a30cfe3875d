// Filing and taking mailbox lines, the event listener and the oldest-entry tracking.
#ifndef QM_MAILBOX_H
#define QM_MAILBOX_H

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string_view>

#include "qm_define.h"
#include "qm_fifo.h"
#include "qm_handle.h"

// Oldest entry seen by any mailbox: library-wide and only ever lowered.
extern std::atomic<uint64_t> min_time;
extern std::atomic<int> min_index;

struct qm_event_listener_t {
    std::atomic<qm_event_callback_ptr> event_callback{nullptr};
    // 1: the next stored trajectory event is discarded (set after a non-blocking move);
    // 2: the same for the next program-finished event.
    std::atomic<int> flag{0};
};
extern qm_event_listener_t event_listener;
// The record handed (as a copy) to the event callback; written by the receive thread only.
extern qm_event_push_data_t event_data;

// Files one received line (without its "\r\n") in `record`'s mailbox and passes events
// to the callback. Lines of FIFO_LINE_MAX bytes or more and over-long keys are refused.
void fifo_file_line(qm_handle_t& record, std::string_view line);

// Takes the first entry (by index) filed under `command` into `str`; the stored length,
// or -1. A trajectory or program event that the listener flag discards also gives -1.
int fifo_take_line(qm_socket_fifo_handle& fifo, const char* command, char* str, int str_len);

// Waits until a line filed under `command` can be taken or `deadline` passes; the
// stored length, or -1. Wakes as soon as the line is filed.
int fifo_wait_line(qm_socket_fifo_handle& fifo, const char* command, char* str, int str_len,
                   std::chrono::steady_clock::time_point deadline);

#endif
