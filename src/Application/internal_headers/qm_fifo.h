// The reply mailbox of one connection: searched by key, never queued.
#ifndef QM_FIFO_H
#define QM_FIFO_H

#include <condition_variable>
#include <cstdint>
#include <mutex>

constexpr int SOCKET_FIFO_MAX = 40;
constexpr int FIFO_LINE_MAX = 10240;  // longest line a mailbox entry holds
constexpr int FIFO_KEY_MAX = 50;      // key text including its terminator

struct qm_socket_fifo {
    uint8_t is_used = 0;
    int recevie_len = 0;
    char command[FIFO_KEY_MAX]{};
    uint32_t id = 0;
    char str_json[FIFO_LINE_MAX]{};
    uint64_t time = 0;
};

struct qm_socket_fifo_handle {
    qm_socket_fifo fifo[SOCKET_FIFO_MAX];
    uint8_t head = 0;
    uint8_t tail = 0;
    uint64_t current_time = 0;

    // Filing and taking run on different threads; a waiting command sleeps on `filed`
    // and wakes the moment its line is stored.
    std::mutex mutex;
    std::condition_variable filed;
};

#endif
