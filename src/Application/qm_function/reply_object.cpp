// Reading replies with structure, member by member.
#include <vector>

#include "log.h"
#include "qm_reply_object.h"

const cJSON* ObjectReader::member(const char* key, cJSON_bool (*is)(const cJSON*)) {
    if (failed_) return nullptr;
    const cJSON* item = MIO_JSON_GetObjectItem(object_, key);
    if (!item || !is(item)) {
        failed_ = key;
        return nullptr;
    }
    return item;
}

ObjectReader& ObjectReader::integer(const char* key, int& out) {
    if (const cJSON* item = member(key, cJSON_IsNumber)) out = item->valueint;
    return *this;
}

ObjectReader& ObjectReader::boolean(const char* key, bool& out) {
    if (const cJSON* item = member(key, cJSON_IsBool)) out = cJSON_IsTrue(item);
    return *this;
}

ObjectReader& ObjectReader::scaled(const char* key, float& out, float (*scale)(int)) {
    if (const cJSON* item = member(key, cJSON_IsNumber)) out = scale(item->valueint);
    return *this;
}

ObjectReader& ObjectReader::text(const char* key, char* out, std::size_t size) {
    if (const cJSON* item = member(key, cJSON_IsString)) copy_text(out, size, item->valuestring, size);
    return *this;
}

ObjectReader& ObjectReader::ints(const char* key, std::span<int> out, int* count) {
    int stored = 0;
    each(key, static_cast<int>(out.size()), stored, [&](const cJSON* item, int i) {
        if (!cJSON_IsNumber(item)) return false;
        out[static_cast<std::size_t>(i)] = item->valueint;
        return true;
    });
    if (count && ok()) *count = stored;
    return *this;
}

ObjectReader& ObjectReader::scaled_ints(const char* key, std::span<float> out, float (*scale)(int)) {
    std::vector<int> raw(out.size());
    int stored = 0;
    ints(key, raw, &stored);
    for (int i = 0; ok() && i < stored; ++i)
        out[static_cast<std::size_t>(i)] = scale(raw[static_cast<std::size_t>(i)]);
    return *this;
}

ObjectReader& ObjectReader::pose(const char* key, qm_pose_t& out) {
    int raw[6] = {};
    int stored = 0;
    ints(key, raw, &stored);
    if (ok() && stored < 6) failed_ = key;
    if (ok()) wire::pose_from6(raw, out);
    return *this;
}

ObjectReader& ObjectReader::each(const char* key, int max, int& count,
                                 const std::function<bool(const cJSON*, int)>& read, bool single_text) {
    const cJSON* item =
        member(key, [](const cJSON* j) -> cJSON_bool { return cJSON_IsArray(j) || cJSON_IsString(j); });
    if (!item) return *this;
    if (cJSON_IsString(item)) {
        // Only a list of texts may come as one text.
        if (!single_text || max < 1 || !read(item, 0))
            failed_ = key;
        else
            count = 1;
        return *this;
    }
    int n = 0;
    for (const cJSON* element = item->child; element && n < max; element = element->next, ++n) {
        if (!read(element, n)) {
            failed_ = key;
            return *this;
        }
    }
    count = n;
    return *this;
}

ObjectReader& ObjectReader::page(int& page_num, int& page_size, int& total_size, char (&vague_search)[32]) {
    return integer("page_num", page_num)
        .integer("page_size", page_size)
        .integer("total_size", total_size)
        .text("vague_search", vague_search);
}

int ObjectReader::result(const char* caller, const char* failure) const {
    if (ok()) return 0;
    qm_log_error(failure, caller);
    return -3;
}

int ObjectReader::result(const char* caller) const {
    if (ok()) return 0;
    qm_log_error("[%s] %s parsing error\n", caller, failed_);
    return -3;
}

Request page_request(const char* command, int page_num, int page_size, const char* vague_search) {
    Request req(command);
    req.integer("page_num", page_num).integer("page_size", page_size).str("vague_search", vague_search);
    return req;
}

int send_query_object(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
                      const std::function<int(const cJSON& root)>& decode) {
    std::string text;
    if (int rc = exchange(caller, handle, req, reply, text); rc < 1) return rc;
    JsonPtr root = parse_reply(text.c_str());
    return root ? decode(*root) : -3;
}
