// Trajectory files stored on the controller: the last drag-teach recording saved under a
// name, listed, replayed and deleted.
#include <ctime>

#include "command.h"
#include "move_args.h"

namespace sim {

namespace {

constexpr std::size_t kMaxFileName = 19;
constexpr std::size_t kMaxFiles = 100;

std::vector<TrajectoryFile>& files(Call& call) {
    return call.arm.state.trajectory_files;
}

TrajectoryFile* named(Call& call) {
    const std::string name = call.args.text("name");
    TrajectoryFile* file = find_named(files(call), name);
    if (!file) call.refuse("no trajectory file \"" + name + "\"");
    return file;
}

std::string local_time() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    char text[20];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
    return text;
}

// A name saved again replaces the file.
void save_trajectory_file(Call& call) {
    const std::string name = call.args.text("name", kMaxFileName);
    if (name.empty()) throw BadRequest("empty file name");
    const std::vector<Joints>& recorded = call.arm.state.drag.recorded;
    if (recorded.empty()) return call.refuse("nothing recorded");
    TrajectoryFile file{name, local_time(), recorded};
    if (find_named(files(call), name))
        call.judge(replace_named(files(call), name, std::move(file)));
    else
        call.judge(add_named(files(call), std::move(file), kMaxFiles));
}

// The arm goes to the file's first point, then replays it; nothing waits for either's end, so
// neither reports it. The file is also what the drag-teach replay plays from now on.
void set_run_trajectory_file(Call& call) {
    const TrajectoryFile* file = named(call);
    if (!file) return;
    if (!call.arm.trajectory().idle()) return call.refuse("the arm is moving");
    Plan there = plan_joint_move(call.arm.motion_limits(), call.arm.joints(), file->points.front(), kOriginSpeed,
                                 MoveKind::joint);
    if (!there.segment) return call.refuse(there.refusal);
    there.segment->reports = false;
    if (std::string why = call.arm.run(std::move(*there.segment)); !why.empty()) return call.refuse(why);
    call.arm.run(replay_of(file->points));
    call.arm.state.drag.replay = file->points;
}

void delete_trajectory_file(Call& call) {
    call.judge(erase_named(files(call), call.args.text("name")));
}

void get_trajectory_file_list(Call& call) {
    reply_page(call, files(call), [](const TrajectoryFile& file) {
        JsonPtr entry = object_of({{"point_num", static_cast<int>(file.points.size())}});
        cJSON_AddStringToObject(entry.get(), "name", file.name.c_str());
        cJSON_AddStringToObject(entry.get(), "create_time", file.created.c_str());
        return entry;
    });
}

const Command kCommands[] = {
    {"save_trajectory_file", "save_trajectory_file", "save_state", save_trajectory_file},
    {"set_run_trajectory_file", "set_run_trajectory_file", "run_state", set_run_trajectory_file},
    {"delete_trajectory_file", "delete_trajectory_file", "delete_state", delete_trajectory_file},
    {"get_trajectory_file_list", "get_trajectory_file_list", nullptr, get_trajectory_file_list},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
