// Fuzzes the receive path without sockets: arbitrary reads go through the line splitter,
// every line is filed in a mailbox, and waiting commands take lines back out.
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>

#include "log.h"
#include "qm_fifo.h"
#include "qm_handle.h"
#include "qm_interface.h"
#include "qm_line_splitter.h"
#include "qm_mailbox.h"

namespace {

// Formats every message, so that a bad argument is caught, and drops it.
void format_and_drop(const char* format, va_list args) {
    char text[1024];
    std::vsnprintf(text, sizeof text, format, args);
}

void ignore_event(qm_event_push_data_t) {}

const char* const kKeys[] = {"current_trajectory_state", "program_run_finish", "a", "get_x",
                             "conduct_project"};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qm_set_log_callback(format_and_drop, LOG_LEVEL_DEBUG);
    qm_get_arm_event_call_back(ignore_event);
    return 0;
}

// Input: a sequence of reads, each a 2-byte header (length, then what follows the read)
// and that many bytes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // One mailbox for all inputs (it is large); each input starts from an empty one.
    static const std::shared_ptr<qm_handle_t> record = [] {
        auto made = std::make_shared<qm_handle_t>();
        made->fifo_handle = std::make_unique<qm_socket_fifo_handle>();
        made->robot_handle.id = 1;
        return made;
    }();
    for (qm_socket_fifo& entry : record->fifo_handle->fifo) {
        entry.is_used = 0;
        entry.time = 0;
        entry.command[0] = '\0';
    }
    record->fifo_handle->current_time = 0;
    LineSplitter splitter;
    char reply[256];

    size_t at = 0;
    while (at + 2 <= size) {
        const size_t length = data[at];
        const uint8_t action = data[at + 1];
        at += 2;
        const size_t take = length < size - at ? length : size - at;
        // Long reads come from repeating the chunk, to reach the line limits quickly.
        const int repeat = action & 0x80 ? 64 : 1;
        for (int r = 0; r < repeat; ++r) {
            splitter.append(std::string_view(reinterpret_cast<const char*>(data + at), take));
            std::string_view line;
            while (splitter.next_line(line)) fifo_file_line(*record, line);
        }
        at += take;
        event_listener.flag = action & 0x3;
        const char* key = kKeys[(action >> 2) % (sizeof kKeys / sizeof kKeys[0])];
        fifo_take_line(*record->fifo_handle, key, reply, (action & 0x40) ? 8 : sizeof reply);
    }
    event_listener.flag = 0;
    return 0;
}
