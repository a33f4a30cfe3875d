// The command tables. A family of commands is one file with a table of rows, each saying
// what a request is called, under which key it is answered, which boolean judges a set
// command and which function does the work:
//
//     void set_collision_stage(Call& call) {
//         const int stage = call.args.integer("collision_stage");
//         if (stage < 0 || stage > 8) return call.refuse("collision stage outside 0..8");
//         call.arm.state.collision_stage = stage;
//     }
//     const Command kCommands[] = {
//         {"set_collision_stage", "set_collision_stage", "collision_state", set_collision_stage},
//     };
//     const CommandFamily kFamily(kCommands);
#ifndef QM_SIM_COMMAND_H
#define QM_SIM_COMMAND_H

#include <algorithm>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "arm.h"
#include "mio_json.h"

namespace sim {

// A request whose members are missing or of the wrong kind.
struct BadRequest : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Typed access to the members of a request; a missing or mistyped member throws BadRequest.
class Args {
public:
    explicit Args(const cJSON* request) : request_(request) {}
    bool has(const char* key) const;
    int integer(const char* key) const;
    bool boolean(const char* key) const;
    // A text of at most max_length characters.
    std::string text(const char* key, std::size_t max_length = 64) const;
    // An integer array of exactly `count` elements.
    std::vector<int> ints(const char* key, std::size_t count) const;
    const cJSON* object(const char* key) const;
    const cJSON* array(const char* key) const;
    const cJSON* json() const { return request_; }

private:
    const cJSON* member(const char* key) const;
    const cJSON* request_;
};

// The reply under construction: a JSON object whose "command" is the reply key.
class Reply {
public:
    explicit Reply(const char* key);
    Reply& set(const char* key, int value);
    Reply& set(const char* key, bool value);
    Reply& set(const char* key, const char* text);
    Reply& set(const char* key, const std::string& text) { return set(key, text.c_str()); }
    Reply& ints(const char* key, std::span<const int> values);
    Reply& add(const char* key, JsonPtr item);
    // Adds every member of `object`.
    Reply& merge(JsonPtr object);
    // Answers under another key than the table says.
    Reply& rename(const char* key);
    std::string text() const;

private:
    JsonPtr json_;
};

// Bytes a client sends next outside the line protocol (a project upload), and the line that
// answers them once they are all there, or when they stop coming.
struct Upload {
    std::size_t bytes = 0;
    std::function<std::string(std::string_view content)> answer;
    std::string incomplete;
};

// One request being served.
struct Call {
    Call(Arm& arm, const cJSON* request, const char* reply_key, int connection = 0)
        : arm(arm), args(request), reply(reply_key), connection(connection) {}

    Arm& arm;
    Args args;
    Reply reply;
    int connection;        // who asked, for answers that come later (Arm::host().send_to)
    bool accepted = true;  // the verdict of a set command
    std::string refusal;   // why not, for the log
    bool deferred = false;                  // the reply goes out later, from elsewhere
    std::vector<std::string> then;          // lines that follow the reply (streamed data)
    std::optional<Upload> upload;           // raw bytes the client sends next
    int program = 0;                        // the stored program running this line, 0 for a client

    // The verdict becomes false; the reason goes to the log.
    void refuse(std::string why) {
        accepted = false;
        refusal = std::move(why);
    }
    // The reply is sent later by whoever took the request on.
    void defer() { deferred = true; }
    // Refuses for `why` unless it is empty.
    void judge(std::string why) {
        if (!why.empty()) refuse(std::move(why));
    }
};

struct Command {
    const char* name;       // the request's "command"
    const char* reply_key;  // the reply's "command"; null: streamed, never answered
    const char* verdict;    // the boolean that judges a set command; null for queries
    void (*run)(Call& call);
};

// Registers a family's table when the library loads.
class CommandFamily {
public:
    explicit CommandFamily(std::span<const Command> table);
};

// Every registered command.
const std::vector<std::span<const Command>>& command_families();
// The command named `name`, or null.
const Command* find_command(std::string_view name);

// Helpers shared by the families.
JsonPtr int_array(std::span<const int> values);
std::vector<int> dof_values(const WireJoints& values, int dof);
JsonPtr object_of(std::initializer_list<std::pair<const char*, int>> members);
bool is_ipv4(const std::string& text);

// One integer setting: the member that carries it, the values it takes, where it is kept.
struct IntSetting {
    const char* member;
    int low, high;
    int& (*field)(ArmState& state);
};

template <const IntSetting* Row>
void set_setting(Call& call) {
    const int value = call.args.integer(Row->member);
    if (value < Row->low || value > Row->high)
        return call.refuse(std::string(Row->member) + " outside " + std::to_string(Row->low) + ".." +
                           std::to_string(Row->high));
    Row->field(call.arm.state) = value;
}

template <const IntSetting* Row>
void get_setting(Call& call) {
    call.reply.set(Row->member, Row->field(call.arm.state));
}

// ---- lists of named entries kept by the controller (fences, waypoints, masters, files) ----

template <class Entry>
Entry* find_named(std::vector<Entry>& entries, const std::string& name) {
    auto it = std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return e.name == name; });
    return it == entries.end() ? nullptr : &*it;
}

// Each says why it refused, or nothing.
template <class Entry>
std::string add_named(std::vector<Entry>& entries, Entry entry, std::size_t most) {
    if (find_named(entries, entry.name)) return "\"" + entry.name + "\" exists already";
    if (entries.size() >= most) return "no room for more than " + std::to_string(most);
    entries.push_back(std::move(entry));
    return {};
}

// The entry named `name` becomes `entry`, which may carry a new name.
template <class Entry>
std::string replace_named(std::vector<Entry>& entries, const std::string& name, Entry entry) {
    Entry* stored = find_named(entries, name);
    if (!stored) return "nothing named \"" + name + "\"";
    if (entry.name != name && find_named(entries, entry.name)) return "\"" + entry.name + "\" exists already";
    *stored = std::move(entry);
    return {};
}

template <class Entry>
std::string erase_named(std::vector<Entry>& entries, const std::string& name) {
    Entry* stored = find_named(entries, name);
    if (!stored) return "nothing named \"" + name + "\"";
    entries.erase(entries.begin() + (stored - entries.data()));
    return {};
}

// The reply to a list query: the page the request asks for ("page_num" from 1, "page_size",
// 0 for everything) of the entries whose name holds "vague_search", as "list", and the page's
// members with the matching count as "total_size". `name(i)` and `entry(i)` describe entry i.
void reply_page(Call& call, std::size_t count, const std::function<std::string(std::size_t)>& name,
                const std::function<JsonPtr(std::size_t)>& entry);

// A page of named entries, each described by `to_json`.
template <class Entry, class ToJson>
void reply_page(Call& call, const std::vector<Entry>& entries, ToJson to_json) {
    reply_page(
        call, entries.size(), [&](std::size_t i) { return entries[i].name; },
        [&](std::size_t i) { return to_json(entries[i]); });
}

// The answer to a query for one named entry: "given_state" false when there is none.
template <class Entry, class ToJson>
void reply_given(Call& call, const Entry* entry, ToJson to_json) {
    call.reply.set("given_state", entry != nullptr);
    if (entry) call.reply.merge(to_json(*entry));
}

}  // namespace sim

#endif
