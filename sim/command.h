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
    // Answers under another key than the table says.
    Reply& rename(const char* key);
    std::string text() const;

private:
    JsonPtr json_;
};

// One request being served.
struct Call {
    Call(Arm& arm, const cJSON* request, const char* reply_key) : arm(arm), args(request), reply(reply_key) {}

    Arm& arm;
    Args args;
    Reply reply;
    bool accepted = true;  // the verdict of a set command
    std::string refusal;   // why not, for the log

    // The verdict becomes false; the reason goes to the log.
    void refuse(std::string why) {
        accepted = false;
        refusal = std::move(why);
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

// Helpers shared by the families.
JsonPtr int_array(std::span<const int> values);
std::vector<int> dof_values(const WireJoints& values, int dof);

}  // namespace sim

#endif
