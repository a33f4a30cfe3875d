// Stored programs: projects uploaded to the controller, listed, edited, and run by id with a
// "program_run_finish" event at their end. A project is text, one JSON object per line; the
// lines that are planned moves (movej, movej_p, movel, movec) run in order at the program's
// speed, the others (headers, settings) are kept but do nothing here.
#include <algorithm>
#include <cstring>
#include <sstream>

#include "command.h"

namespace sim {

namespace {

constexpr std::size_t kMaxProjectBytes = 1 << 20;
constexpr std::size_t kMaxProgramName = 31;
constexpr int kMaxPrograms = 100;
constexpr const char* kRunnable[] = {"movej", "movej_p", "movel", "movec"};

// The lines of an uploaded text, without their line ends; the number of the first line that
// is no JSON object, or 0.
int split_lines(std::string_view content, std::vector<std::string>& lines) {
    std::istringstream in{std::string(content)};
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.find_first_not_of(" \t") == std::string::npos) continue;
        JsonPtr parsed(cJSON_Parse(line.c_str()));
        if (!cJSON_IsObject(parsed.get())) return number;
        lines.push_back(std::move(line));
    }
    return 0;
}

ProgramState& programs(Arm& arm) {
    return arm.state.programs;
}

int free_id(Arm& arm) {
    int id = 1;
    while (programs(arm).programs.count(id)) ++id;
    return id;
}

// Queues the program's moves at `speed` percent of their own, then its end, which announces
// that program `id` finished. Empty when it runs, else why not (nothing is left queued).
std::string start(Arm& arm, const Program& program, int speed) {
    if (!arm.trajectory().idle()) return "the arm is moving";
    if (std::string why = arm.motion_blocked(); !why.empty()) return why;
    int number = 0;
    for (const std::string& line : program.lines) {
        ++number;
        JsonPtr request(cJSON_Parse(line.c_str()));
        const char* name = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(request.get(), "command"));
        if (!name || std::none_of(std::begin(kRunnable), std::end(kRunnable),
                                  [&](const char* runnable) { return std::strcmp(name, runnable) == 0; }))
            continue;
        if (cJSON* v = cJSON_GetObjectItemCaseSensitive(request.get(), "v"); cJSON_IsNumber(v))
            cJSON_SetNumberValue(v, std::clamp(v->valueint * speed / 100, 1, 100));
        const Command* command = find_command(name);
        Call step(arm, request.get(), name);
        step.program = program.id;
        try {
            command->run(step);
        } catch (const BadRequest& bad) {
            step.refuse(bad.what());
        }
        if (!step.accepted) {
            arm.stop();
            return "line " + std::to_string(number) + ": " + step.refusal;
        }
    }
    const Joints end = arm.trajectory().planned_end();
    const int id = program.id;
    Segment finish{.kind = MoveKind::joint, .path = Path({end, end}), .profile = Profile()};
    finish.reports = false;
    finish.program = id;
    finish.on_end = [&arm, id](bool arrived) {
        if (!arrived) return;  // a stopped program does not finish
        JsonPtr event(cJSON_CreateObject());
        cJSON_AddStringToObject(event.get(), "state", "program_run_finish");
        cJSON_AddNumberToObject(event.get(), "finish_id", id);
        JsonText text(cJSON_PrintUnformatted(event.get()));
        arm.host().broadcast(arm.index(), text.get());
    };
    return arm.run(std::move(finish));
}

// ---- upload ----

struct Announced {
    std::string name;
    int speed, only_save, save_id;
};

std::string download_answer(Arm& arm, const Announced& project, std::string_view content) {
    Reply answer("download_project");
    Program program;
    if (int bad = split_lines(content, program.lines)) {
        arm.host().note("project \"" + project.name + "\": line " + std::to_string(bad) + " is no JSON object");
        return answer.set("project_state", false).set("err_line", bad).text();
    }
    program.id = project.save_id > 0 ? project.save_id : free_id(arm);
    program.name = project.name;
    program.size = static_cast<int>(content.size());
    program.speed = project.speed;
    const Program& stored = programs(arm).programs[program.id] = std::move(program);
    if (project.only_save == 0) {
        if (std::string why = start(arm, stored, stored.speed); !why.empty())
            arm.host().note("project \"" + stored.name + "\" does not run: " + why);
    }
    return answer.set("project_state", true).text();
}

// Announces a project; its bytes follow outside the line protocol.
void run_project(Call& call) {
    Announced project{call.args.text("project_name", kMaxProgramName), call.args.integer("plan_speed"),
                      call.args.integer("only_save"), call.args.integer("save_id")};
    const int size = call.args.integer("file_size");
    if (project.name.empty()) throw BadRequest("empty project name");
    if (call.args.integer("step_flag") < 0) throw BadRequest("negative step flag");
    if (size < 0 || static_cast<std::size_t>(size) > kMaxProjectBytes) return call.refuse("a project of 0 to 1 MiB");
    if (project.speed < 1 || project.speed > 100) return call.refuse("plan speed outside 1..100");
    if (project.save_id < 0 || project.save_id > kMaxPrograms) return call.refuse("save id outside 0..100");
    if (project.save_id == 0 && programs(call.arm).programs.size() >= kMaxPrograms)
        return call.refuse("no room for more programs");
    Arm& arm = call.arm;
    call.upload = Upload{static_cast<std::size_t>(size),
                         [&arm, project](std::string_view content) { return download_answer(arm, project, content); },
                         Reply("download_project").set("project_state", false).set("err_line", 0).text()};
}

// ---- stored programs ----

Program* find(Call& call, int id) {
    auto it = programs(call.arm).programs.find(id);
    return it == programs(call.arm).programs.end() ? nullptr : &it->second;
}

Program* given(Call& call) {
    const int id = call.args.integer("id");
    Program* program = find(call, id);
    if (!program) call.refuse("no program " + std::to_string(id));
    return program;
}

void set_program_id_start(Call& call) {
    const int speed = call.args.integer("speed");
    const Program* program = given(call);
    if (!program) return;
    if (speed < 1 || speed > 100) return call.refuse("speed outside 1..100");
    if (std::string why = start(call.arm, *program, speed); !why.empty()) return call.refuse(why);
    programs(call.arm).plan_speed = speed;
}

void delete_program_trajectory(Call& call) {
    const Program* program = given(call);
    if (!program) return;
    if (call.arm.trajectory().program() == program->id) return call.refuse("the program runs");
    if (programs(call.arm).default_id == program->id) programs(call.arm).default_id = 0;
    programs(call.arm).programs.erase(program->id);
}

void update_program_trajectory(Call& call) {
    const int speed = call.args.integer("plan_speed");
    const std::string name = call.args.text("project_name", kMaxProgramName);
    Program* program = given(call);
    if (!program) return;
    if (speed < 1 || speed > 100 || name.empty()) return call.refuse("a speed of 1..100 and a name");
    program->speed = speed;
    program->name = name;
}

void set_default_run_program(Call& call) {
    if (const Program* program = given(call)) programs(call.arm).default_id = program->id;
}

void get_default_run_program(Call& call) {
    call.reply.set("id", programs(call.arm).default_id);
}

void plan_speed(Call& call) {
    const int speed = call.args.integer("speed");
    if (speed < 1 || speed > 100) return call.refuse("speed outside 1..100");
    programs(call.arm).plan_speed = speed;
}

void get_program_trajectory_list(Call& call) {
    std::vector<const Program*> all;
    for (const auto& [id, program] : programs(call.arm).programs) all.push_back(&program);
    reply_page(
        call, all.size(), [&](std::size_t i) { return all[i]->name; },
        [&](std::size_t i) {
            JsonPtr entry = object_of({{"id", all[i]->id}, {"size", all[i]->size}, {"speed", all[i]->speed}});
            cJSON_AddStringToObject(entry.get(), "trajectory_name", all[i]->name.c_str());
            return entry;
        });
}

// 0 idle, 1 running, 2 paused.
int run_state(const Arm& arm) {
    if (arm.trajectory().program() == 0) return 0;
    return arm.trajectory().paused() ? 2 : 1;
}

void get_program_run_state(Call& call) {
    const int id = call.arm.trajectory().program();
    call.reply.set("run_state", run_state(call.arm))
        .set("id", id)
        .set("edit_id", 0)
        .set("plan_num", 0)
        .set("step_mode", 0)
        .set("plan_speed", programs(call.arm).plan_speed)
        .ints("loop_num", std::vector<int>())
        .ints("loop_cont", std::vector<int>());
}

void get_flowchart_program_run_state(Call& call) {
    const int id = call.arm.trajectory().program();
    const Program* program = find(call, id);
    call.reply.set("run_state", run_state(call.arm))
        .set("id", id)
        .set("name", program ? program->name : "")
        .set("plan_speed", programs(call.arm).plan_speed)
        .set("step_mode", 0)
        .set("modal_id", "");
}

const Command kCommands[] = {
    {"run_project", "run_project", "project_state", run_project},
    {"plan_speed", "plan_speed", "plan_state", plan_speed},
    {"get_program_trajectory_list", "get_program_trajectory_list", nullptr, get_program_trajectory_list},
    {"get_program_run_state", "get_program_run_state", nullptr, get_program_run_state},
    {"get_flowchart_program_run_state", "get_flowchart_program_run_state", nullptr, get_flowchart_program_run_state},
    {"delete_program_trajectory", "delete_program_trajectory", "delete_state", delete_program_trajectory},
    {"update_program_trajectory", "update_program_trajectory", "update_state", update_program_trajectory},
    {"set_default_run_program", "set_default_run_program", "set_state", set_default_run_program},
    {"get_default_run_program", "get_default_run_program", nullptr, get_default_run_program},
    {"set_program_id_start", "set_program_id_start", "start_state", set_program_id_start},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
