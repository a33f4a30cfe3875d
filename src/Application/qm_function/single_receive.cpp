// Single-thread mode: a waiting command reads its reply from the socket itself.
#include <poll.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <memory>
#include <string_view>

#include "log.h"
#include "mio_json.h"
#include "qm_drag_teach.h"
#include "qm_handle.h"
#include "qm_receive.h"

namespace {

constexpr int RECV_FRAME_MAX = 20480;
constexpr int kMinLine = 5;            // a line end is recognised only after this many bytes
constexpr int kDragIdlePasses = 1000;  // idle passes after the first point that end a save
constexpr std::chrono::milliseconds kPass{2};

// The line being assembled from the socket's bytes.
struct RECV_FRAME {
    int length = 0;
    char data[RECV_FRAME_MAX];
};

// Here the "command" text wins over "state" (intended: the reverse of the mailbox).
const char* key_of(const cJSON* tree) {
    const char* key = MIO_JSON_GetObjectItemStr(tree, "command");
    return key ? key : MIO_JSON_GetObjectItemStr(tree, "state");
}

void record_drag_point(const qm_handle_t& record, std::string_view line) {
    drag_teach_save_start = 1;
    if (!drag_teach_file_write(line, "\r\n")) {
        drag_teach_save_state = 1;
        return;
    }
    drag_teach_save_state = 0;
    if (qm_log_enabled(LOG_LEVEL_DEBUG)) {
        const std::string text(line);
        qm_log_debug("drag_save len %d robot_handle: %d drag_save:%s\n", static_cast<int>(line.size()),
                     record.robot_handle.id, text.c_str());
    }
}

// A complete line in `frame`: the reply's length when its key is `command`, else 0.
int take_line(const qm_handle_t& record, RECV_FRAME& frame, const char* command, char* buf, int buf_len) {
    frame.data[frame.length] = '\0';
    JsonPtr tree = json_parse(frame.data);
    if (!tree) return 0;
    const char* key = key_of(tree.get());
    if (!key) {
        if (MIO_JSON_GetObjectItem(tree.get(), "point"))
            record_drag_point(record, std::string_view(frame.data, static_cast<size_t>(frame.length - 2)));
        return 0;
    }
    if (std::strcmp(key, command) != 0) return 0;
    const int n = std::min(frame.length, buf_len - 1);
    std::memset(buf, 0, static_cast<size_t>(buf_len));
    std::memcpy(buf, frame.data, static_cast<size_t>(n));
    qm_log_debug("thread_socket_receive len %d robot_handle: %d message:%s\n", frame.length,
                 record.robot_handle.id, buf);
    return frame.length;
}

// Waits up to `limit` for bytes; true when the socket reported itself readable.
bool wait_readable(int fd, std::chrono::milliseconds limit) {
    pollfd pfd{fd, POLLIN, 0};
    int ready = fd < 1 ? -1 : ::poll(&pfd, 1, static_cast<int>(limit.count()));
    if (ready < 0) sleep_cp(static_cast<int>(limit.count()));
    return ready > 0;
}

}  // namespace

int single_mode_receive(qm_handle_t& record, const char* command, char* buf, int buf_len,
                        std::chrono::milliseconds wait) {
    if (!command || !buf || buf_len < 2) return -1;
    qm_socket_handle* socket = record.socket_handle.get();
    // Cleared at the start of every wait, so it is kept per wait.
    auto frame = std::make_unique<RECV_FRAME>();
    const auto deadline = std::chrono::steady_clock::now() + wait;
    bool was_ready = false;
    for (;;) {
        int received = socket->block_receive(socket, buf, buf_len - 1);
        if (received > 0) {
            for (int i = 0; i < received; ++i) {
                frame->data[frame->length++] = buf[i];
                if (frame->length > RECV_FRAME_MAX - 1) frame->length = 0;
                const int n = frame->length;
                if (n <= kMinLine || frame->data[n - 2] != '\r' || frame->data[n - 1] != '\n') continue;
                // Bytes after the wanted line in the same read are lost (intended).
                if (int length = take_line(record, *frame, command, buf, buf_len)) return length;
                frame->length = 0;
            }
        } else if (drag_teach_save_start && ++drag_teach_count > kDragIdlePasses) {
            drag_teach_save_complete = 1;
        }
        const auto now = std::chrono::steady_clock::now();
        if (now >= deadline) return -1;
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now);
        const auto pass = std::min(kPass, std::max(left, std::chrono::milliseconds(1)));
        // A socket that reports readable yet yields nothing has been closed by the peer:
        // pace by sleeping then, rather than spinning on it.
        if (was_ready && received <= 0) {
            sleep_cp(static_cast<int>(pass.count()));
            was_ready = false;
        } else {
            was_ready = wait_readable(socket->socket_id, pass);
        }
    }
}
