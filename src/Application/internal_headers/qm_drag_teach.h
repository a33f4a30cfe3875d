// Recording of a drag-taught trajectory: the receive side appends each "point" message
// to the open save file while the saving command watches the counters.
#ifndef QM_DRAG_TEACH_H
#define QM_DRAG_TEACH_H

#include <cjson/cJSON.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string_view>

// The open save file, or null. Use the functions below: the receive thread writes it
// while the saving command opens and closes it.
extern std::FILE* F_SaveDragTeach;
extern std::atomic<int> drag_teach_save_start;     // 1 once the first point arrived
extern std::atomic<int> drag_teach_save_state;     // 1 when a point could not be recorded
extern std::atomic<int> drag_teach_save_complete;  // 1 when the save is complete
extern std::atomic<int> drag_teach_count;          // points written (single-thread mode: idle passes)
extern std::atomic<int> drag_teach_total_num;      // points the controller announced

// Resets the flags and counters and opens `path` for binary writing; false when it cannot be opened.
bool drag_teach_file_open(const char* path);
void drag_teach_file_close();
bool drag_teach_file_is_open();
// Appends `line` and `line_end` to the save file and flushes; false when no file is open.
bool drag_teach_file_write(std::string_view line, std::string_view line_end);

// The receive thread's share of a save: a keyless message `line` (parsed as `tree`) whose
// "point" is an array is appended with "\r\n" and counted; anything else marks the save
// failed. Wakes a command waiting in drag_teach_wait_until.
void drag_teach_record_point(const cJSON* tree, std::string_view line);
// Waits until `done` holds (checked after every recorded point) or `deadline` passes; true
// when it holds.
bool drag_teach_wait_until(const std::function<bool()>& done, std::chrono::steady_clock::time_point deadline);

#endif
