// The drag-teach save file shared by the receive side and the saving command.
#include <mutex>

#include "qm_drag_teach.h"

std::FILE* F_SaveDragTeach = nullptr;
std::atomic<int> drag_teach_save_start{0};
std::atomic<int> drag_teach_save_state{0};
std::atomic<int> drag_teach_save_complete{0};
std::atomic<int> drag_teach_count{0};
std::atomic<int> drag_teach_total_num{0};

namespace {
std::mutex g_file_mutex;  // guards F_SaveDragTeach
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
