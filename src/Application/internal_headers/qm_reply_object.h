// Replies with structure: typed members of one object, lists of records, and the query that
// hands its parsed reply to a decoder. Flat replies use the key tables of qm_command.h.
//
//     return send_query_object(__func__, handle, Request("get_flowchart_program_run_state"), reply,
//                              [&](const cJSON& root) {
//         ObjectReader in(&root);
//         in.integer("run_state", state.run_state).text("name", state.name);
//         return in.result(__func__);
//     });
#ifndef QM_REPLY_OBJECT_H
#define QM_REPLY_OBJECT_H

#include <cstddef>
#include <functional>
#include <memory>
#include <span>

#include "mio_json.h"
#include "qm_command.h"
#include "qm_fifo.h"

// One page of a list stored on the controller: asked for by page and search text, answered
// under `command` in a reply that may fill a whole mailbox line.
Request page_request(const char* command, int page_num, int page_size, const char* vague_search);
inline Reply page_reply(const char* command) {
    return Reply::query(command).buffer(FIFO_LINE_MAX);
}

// Reads members of one reply object into a record. The first member that is missing or of
// another type stops the reading (later reads do nothing) and is remembered. Texts are cut to
// their field and terminated; lists are cut to their array.
class ObjectReader {
public:
    explicit ObjectReader(const cJSON* object) : object_(object) {}

    ObjectReader& integer(const char* key, int& out);
    ObjectReader& boolean(const char* key, bool& out);
    // An integer member scaled into a float.
    ObjectReader& scaled(const char* key, float& out, float (*scale)(int));
    template <std::size_t N>
    ObjectReader& text(const char* key, char (&out)[N]) {
        return text(key, out, N);
    }
    ObjectReader& text(const char* key, char* out, std::size_t size);
    // An integer array; at most out.size() elements are kept and their number goes to `count`.
    ObjectReader& ints(const char* key, std::span<int> out, int* count = nullptr);
    // At most out.size() elements of an integer array, each scaled.
    ObjectReader& scaled_ints(const char* key, std::span<float> out, float (*scale)(int));
    // [x, y, z, rx, ry, rz] in micrometres and milliradians; the quaternion is left alone.
    ObjectReader& pose(const char* key, qm_pose_t& out);
    // A list of objects, each read by `read` into the next element of `out`; their number to `count`.
    template <class T, std::size_t N, class Read>
    ObjectReader& list(const char* key, T (&out)[N], int& count, Read read) {
        return each(key, static_cast<int>(N), count, [&](const cJSON* item, int i) {
            ObjectReader element(item);
            read(element, out[i]);
            return element.ok();
        });
    }
    // A list of texts, each into the field of the next element of `out` (at most max); a single
    // text counts as a list of one.
    template <class T, std::size_t M>
    ObjectReader& texts(const char* key, T* out, int max, char (T::*field)[M], int& count) {
        return each(
            key, max, count,
            [&](const cJSON* item, int i) {
                if (!cJSON_IsString(item)) return false;
                copy_text(out[i].*field, item->valuestring);
                return true;
            },
            true);
    }

    // "page_num", "page_size", "total_size" and "vague_search" of one page of a stored list.
    ObjectReader& page(int& page_num, int& page_size, int& total_size, char (&vague_search)[32]);

    bool has(const char* key) const { return MIO_JSON_GetObjectItem(object_, key) != nullptr; }
    bool ok() const { return failed_ == nullptr; }
    // 0, or -3 after logging which member failed ("[caller] key parsing error").
    int result(const char* caller) const;
    // 0, or -3 after logging `failure`, a message whose one argument is the caller.
    int result(const char* caller, const char* failure) const;

private:
    const cJSON* member(const char* key, cJSON_bool (*is)(const cJSON*));
    ObjectReader& each(const char* key, int max, int& count,
                       const std::function<bool(const cJSON*, int)>& read, bool single_text = false);

    const cJSON* object_;
    const char* failed_ = nullptr;
};

// A query whose reply has structure. An exchange result below 1 is returned; a reply that
// does not parse gives -3 (parse_reply); otherwise the result of `decode`.
int send_query_object(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
                      const std::function<int(const cJSON& root)>& decode);

// A query read into one record: `read(ObjectReader&, Record&)` fills a fresh record, which reaches
// `out` (when given) only when every member was read. 0, the exchange's code, or -3 after
// logging `failure` (with the caller) or, without one, the member that failed.
template <class Record, class Read>
int query_record(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
                 Record* out, Read read, const char* failure = nullptr) {
    return send_query_object(caller, handle, req, reply, [&](const cJSON& root) {
        auto record = std::make_unique<Record>();  // the lists are large
        ObjectReader in(&root);
        read(in, *record);
        if (int rc = failure ? in.result(caller, failure) : in.result(caller)) return rc;
        if (out) *out = *record;
        return 0;
    });
}

#endif
