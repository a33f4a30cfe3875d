// The TCP receive thread: reads every connection and files its lines in the mailbox.
#include <poll.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "log.h"
#include "qm_handle.h"
#include "qm_line_splitter.h"
#include "qm_mailbox.h"
#include "qm_receive.h"

namespace {

constexpr int RECV_READ_MAX_LEN = 20480;
constexpr int kExitCheckMs = 1;

// What the thread keeps per slot: the unfinished line of the record it last served there.
struct Reader {
    std::weak_ptr<qm_handle_t> owner;
    LineSplitter lines;

    // Starts afresh when the slot now holds another record.
    void serve(const HandlePtr& record) {
        if (!owner.owner_before(record) && !record.owner_before(owner)) return;
        owner = record;
        lines.reset();
    }
};

void read_connection(qm_handle_t& record, Reader& reader, char* buf) {
    qm_socket_handle* socket = record.socket_handle.get();
    const int fd = socket->socket_id;
    if (fd < 1) return;
    int length = socket->receive(socket, buf, RECV_READ_MAX_LEN);
    if (length < 0) return;
    if (length == 0) {
        // Only a close by the peer is reported; a delete has already taken the id.
        int expected = fd;
        if (socket->socket_id.compare_exchange_strong(expected, -1)) qm_log_error("服务器已关闭!\n");
        return;
    }
    reader.lines.append(std::string_view(buf, static_cast<size_t>(length)));
    std::string_view line;
    while (reader.lines.next_line(line)) {
        if (qm_log_enabled(LOG_LEVEL_DEBUG)) {
            const std::string text(line);
            qm_log_debug("thread_socket_receive len %d robot_handle: %d message:%s\n", length,
                         record.robot_handle.id, text.c_str());
        }
        fifo_file_line(record, line);
    }
}

}  // namespace

void tcp_receive_thread_main() {
    std::vector<char> buf(RECV_READ_MAX_LEN);
    std::array<Reader, HANDLE_LIST_MAX> readers;
    while (!should_exit) {
        // The snapshot keeps every record alive while this pass uses it.
        const HandleTable table = qm_snapshot_handles();
        std::array<pollfd, HANDLE_LIST_MAX> fds{};
        std::array<int, HANDLE_LIST_MAX> slots{};
        nfds_t count = 0;
        for (int slot = 0; slot < HANDLE_LIST_MAX; ++slot) {
            const HandlePtr& record = table[slot];
            if (!record || !record->socket_handle || !record->fifo_handle) continue;
            const int fd = record->socket_handle->socket_id;
            if (fd < 1) continue;
            readers[slot].serve(record);
            fds[count] = {fd, POLLIN, 0};
            slots[count++] = slot;
        }
        if (count == 0) {
            sleep_cp(kExitCheckMs);
            continue;
        }
        // Wakes the moment a socket is readable; the timeout keeps the exit check and
        // picks up connections made meanwhile.
        if (::poll(fds.data(), count, kExitCheckMs) <= 0) continue;
        for (nfds_t i = 0; i < count; ++i)
            if (fds[i].revents) read_connection(*table[slots[i]], readers[slots[i]], buf.data());
    }
}
