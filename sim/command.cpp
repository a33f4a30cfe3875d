#include "command.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cmath>

namespace sim {

const cJSON* Args::member(const char* key) const {
    const cJSON* item = cJSON_GetObjectItemCaseSensitive(request_, key);
    if (!item) throw BadRequest(std::string("missing \"") + key + "\"");
    return item;
}

bool Args::has(const char* key) const {
    return cJSON_GetObjectItemCaseSensitive(request_, key) != nullptr;
}

int Args::integer(const char* key) const {
    const cJSON* item = member(key);
    if (!cJSON_IsNumber(item) || std::fabs(item->valuedouble) > 2.0e9)
        throw BadRequest(std::string("\"") + key + "\" is not an integer");
    return item->valueint;
}

bool Args::boolean(const char* key) const {
    const cJSON* item = member(key);
    if (!cJSON_IsBool(item)) throw BadRequest(std::string("\"") + key + "\" is not a boolean");
    return cJSON_IsTrue(item);
}

std::string Args::text(const char* key, std::size_t max_length) const {
    const cJSON* item = member(key);
    if (!cJSON_IsString(item)) throw BadRequest(std::string("\"") + key + "\" is not a text");
    std::string text = item->valuestring;
    if (text.size() > max_length)
        throw BadRequest(std::string("\"") + key + "\" is longer than " + std::to_string(max_length) +
                         " characters");
    return text;
}

std::vector<int> Args::ints(const char* key, std::size_t count) const {
    const cJSON* item = member(key);
    if (!cJSON_IsArray(item) || static_cast<std::size_t>(cJSON_GetArraySize(item)) != count)
        throw BadRequest(std::string("\"") + key + "\" is not an array of " + std::to_string(count) +
                         " integers");
    std::vector<int> values;
    for (const cJSON* element = item->child; element; element = element->next) {
        if (!cJSON_IsNumber(element) || std::fabs(element->valuedouble) > 2.0e9)
            throw BadRequest(std::string("\"") + key + "\" holds something else than integers");
        values.push_back(element->valueint);
    }
    return values;
}

const cJSON* Args::object(const char* key) const {
    const cJSON* item = member(key);
    if (!cJSON_IsObject(item)) throw BadRequest(std::string("\"") + key + "\" is not an object");
    return item;
}

const cJSON* Args::array(const char* key) const {
    const cJSON* item = member(key);
    if (!cJSON_IsArray(item)) throw BadRequest(std::string("\"") + key + "\" is not an array");
    return item;
}

Reply::Reply(const char* key) : json_(cJSON_CreateObject()) {
    cJSON_AddStringToObject(json_.get(), "command", key);
}

Reply& Reply::set(const char* key, int value) {
    return add(key, JsonPtr(cJSON_CreateNumber(value)));
}

Reply& Reply::set(const char* key, bool value) {
    return add(key, JsonPtr(cJSON_CreateBool(value)));
}

Reply& Reply::set(const char* key, const char* text) {
    return add(key, JsonPtr(cJSON_CreateString(text)));
}

Reply& Reply::ints(const char* key, std::span<const int> values) {
    return add(key, int_array(values));
}

// A member that is already there keeps its place.
Reply& Reply::add(const char* key, JsonPtr item) {
    if (cJSON_GetObjectItemCaseSensitive(json_.get(), key))
        cJSON_ReplaceItemInObjectCaseSensitive(json_.get(), key, item.release());
    else
        cJSON_AddItemToObject(json_.get(), key, item.release());
    return *this;
}

Reply& Reply::merge(JsonPtr object) {
    while (cJSON* item = object ? object->child : nullptr) {
        cJSON_DetachItemViaPointer(object.get(), item);
        const std::string key = item->string;
        add(key.c_str(), JsonPtr(item));
    }
    return *this;
}

Reply& Reply::rename(const char* key) {
    return set("command", key);
}

std::string Reply::text() const {
    JsonText text(cJSON_PrintUnformatted(json_.get()));
    return text ? text.get() : "{}";
}

namespace {

std::vector<std::span<const Command>>& registry() {
    static std::vector<std::span<const Command>> families;
    return families;
}

}  // namespace

CommandFamily::CommandFamily(std::span<const Command> table) {
    registry().push_back(table);
}

const std::vector<std::span<const Command>>& command_families() {
    return registry();
}

const Command* find_command(std::string_view name) {
    for (std::span<const Command> family : registry())
        for (const Command& command : family)
            if (name == command.name) return &command;
    return nullptr;
}

JsonPtr int_array(std::span<const int> values) {
    JsonPtr array(cJSON_CreateArray());
    for (int value : values) cJSON_AddItemToArray(array.get(), cJSON_CreateNumber(value));
    return array;
}

std::vector<int> dof_values(const WireJoints& values, int dof) {
    return {values.begin(), values.begin() + dof};
}

JsonPtr object_of(std::initializer_list<std::pair<const char*, int>> members) {
    JsonPtr object(cJSON_CreateObject());
    for (const auto& [key, value] : members) cJSON_AddNumberToObject(object.get(), key, value);
    return object;
}

bool is_ipv4(const std::string& text) {
    in_addr address{};
    return ::inet_pton(AF_INET, text.c_str(), &address) == 1;
}

void reply_page(Call& call, std::size_t count, const std::function<std::string(std::size_t)>& name,
                const std::function<JsonPtr(std::size_t)>& entry) {
    const int page = call.args.integer("page_num");
    const int size = call.args.integer("page_size");
    const std::string search = call.args.text("vague_search");
    if (page < 0 || size < 0) throw BadRequest("negative page");
    std::vector<std::size_t> matching;
    for (std::size_t i = 0; i < count; ++i)
        if (name(i).find(search) != std::string::npos) matching.push_back(i);
    const std::size_t first = size == 0 ? 0 : static_cast<std::size_t>(std::max(page, 1) - 1) * size;
    const std::size_t last = size == 0 ? matching.size() : std::min(matching.size(), first + size);
    JsonPtr list(cJSON_CreateArray());
    for (std::size_t i = first; i < last; ++i) cJSON_AddItemToArray(list.get(), entry(matching[i]).release());
    call.reply.set("page_num", page)
        .set("page_size", size)
        .set("total_size", static_cast<int>(matching.size()))
        .set("vague_search", search)
        .add("list", std::move(list));
}

}  // namespace sim
