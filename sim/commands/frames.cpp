// Tool and work frames: created by hand or by taught points, selected, updated, deleted,
// listed and read; and the envelope spheres of each tool. The first frame of each kind (the
// flange "Arm_Tip", the base "World") always exists.
#include <algorithm>
#include <cmath>

#include "command.h"
#include "qman_mathfuncs.h"

namespace sim {

namespace {

using FrameList = std::vector<Frame> ArmState::*;
using Current = std::string ArmState::*;

// How the two kinds of frame travel.
struct FrameKind {
    const char* name_key;  // "tool_name" or "frame_name"
    const char* pose_key;  // in create and update requests
    const char* list_key;  // of the name list
    FrameList frames;
    Current current;
    bool with_payload;
};

constexpr FrameKind kTool{"tool_name", "tool_pose", "tool_names", &ArmState::tools, &ArmState::tool, true};
constexpr FrameKind kWork{"frame_name",     "frame_pose",    "frame_names",
                          &ArmState::works, &ArmState::work, false};

Frame* find(Arm& arm, const FrameKind& kind, const std::string& name) {
    std::vector<Frame>& frames = arm.state.*kind.frames;
    auto it = std::find_if(frames.begin(), frames.end(), [&](const Frame& f) { return f.name == name; });
    return it == frames.end() ? nullptr : &*it;
}

std::string frame_name(const Call& call, const FrameKind& kind) {
    std::string name = call.args.text(kind.name_key, kMaxFrameName);
    if (name.empty()) throw BadRequest("empty frame name");
    return name;
}

// Pose, and for a tool payload and centre of mass, as a request carries them.
Frame frame_from(const Call& call, const FrameKind& kind, std::string name) {
    Frame frame;
    frame.name = std::move(name);
    const std::vector<int> pose = call.args.ints(kind.pose_key, 6);
    std::copy(pose.begin(), pose.end(), frame.pose.begin());
    if (kind.with_payload) {
        frame.payload = call.args.integer("payload");
        if (frame.payload < 0) throw BadRequest("negative payload");
        const std::vector<int> centre = call.args.ints("position", 3);
        std::copy(centre.begin(), centre.end(), frame.centre.begin());
    }
    return frame;
}

void put(Reply& reply, const FrameKind& kind, const Frame& frame) {
    reply.set(kind.name_key, frame.name).ints("pose", frame.pose);
    if (kind.with_payload) reply.set("payload", frame.payload).ints("position", frame.centre);
}

std::string add_frame(Arm& arm, const FrameKind& kind, Frame frame) {
    std::vector<Frame>& frames = arm.state.*kind.frames;
    if (find(arm, kind, frame.name)) return "a frame \"" + frame.name + "\" exists already";
    if (frames.size() >= kMaxFrames) return "no room for more frames";
    frames.push_back(std::move(frame));
    return {};
}

template <const FrameKind* Kind>
void create(Call& call) {
    if (std::string why = add_frame(call.arm, *Kind, frame_from(call, *Kind, frame_name(call, *Kind)));
        !why.empty())
        call.refuse(why);
}

template <const FrameKind* Kind>
void update(Call& call) {
    const std::string name = frame_name(call, *Kind);
    Frame* frame = find(call.arm, *Kind, name);
    if (!frame) return call.refuse("no frame \"" + name + "\"");
    if (frame == &(call.arm.state.*Kind->frames).front())
        return call.refuse("\"" + name + "\" cannot change");
    *frame = frame_from(call, *Kind, name);
    call.arm.reconfigure();
}

template <const FrameKind* Kind>
void select(Call& call) {
    const std::string name = frame_name(call, *Kind);
    if (!find(call.arm, *Kind, name)) return call.refuse("no frame \"" + name + "\"");
    call.arm.state.*Kind->current = name;
    call.arm.reconfigure();
}

template <const FrameKind* Kind>
void remove(Call& call) {
    const std::string name = frame_name(call, *Kind);
    std::vector<Frame>& frames = call.arm.state.*Kind->frames;
    Frame* frame = find(call.arm, *Kind, name);
    if (!frame) return call.refuse("no frame \"" + name + "\"");
    if (frame == &frames.front()) return call.refuse("\"" + name + "\" cannot go");
    if (call.arm.state.*Kind->current == name) return call.refuse("\"" + name + "\" is in use");
    frames.erase(frames.begin() + (frame - frames.data()));
    call.arm.state.envelopes.erase(name);
}

template <const FrameKind* Kind>
void current(Call& call) {
    put(call.reply, *Kind, *find(call.arm, *Kind, call.arm.state.*Kind->current));
}

template <const FrameKind* Kind>
void list(Call& call) {
    JsonPtr names(cJSON_CreateArray());
    for (const Frame& frame : call.arm.state.*Kind->frames)
        cJSON_AddItemToArray(names.get(), cJSON_CreateString(frame.name.c_str()));
    call.reply.add(Kind->list_key, std::move(names));
}

// A name the controller does not know is answered under the request's own key.
template <const FrameKind* Kind>
void given(Call& call) {
    const std::string name = call.args.text(Kind->name_key);
    if (const Frame* frame = find(call.arm, *Kind, name)) return put(call.reply, *Kind, *frame);
    call.reply.rename(call.args.text("command").c_str()).set("get_state", false);
    call.refusal = "no frame \"" + name + "\"";
}

// ---- frames from taught points ----

// The arm's pose with the given tool and no work frame: in the base frame.
Pose pose_in_base(const Arm& arm, const Coord& tool) {
    Kinematics bare = arm.kinematics();
    KinematicsSetup setup = bare.setup();
    setup.tool = tool;
    setup.work = Coord{};
    bare.configure(setup);
    return bare.forward(arm.joints());
}

void set_auto_tool_frame(Call& call) {
    const int point = call.args.integer("point_num");
    if (point < 1 || point > 6) return call.refuse("point number outside 1..6");
    if (!call.arm.trajectory().idle()) return call.refuse("the arm is moving");
    call.arm.state.tool_points[point] = pose_in_base(call.arm, Coord{});
}

// Solves m x = b for 6 unknowns by elimination with partial pivoting; false when singular.
bool solve6(std::array<std::array<double, 7>, 6>& m, std::array<double, 6>& x) {
    for (int col = 0; col < 6; ++col) {
        int pivot = col;
        for (int row = col + 1; row < 6; ++row)
            if (std::fabs(m[row][col]) > std::fabs(m[pivot][col])) pivot = row;
        if (std::fabs(m[pivot][col]) < 1e-9) return false;
        std::swap(m[col], m[pivot]);
        for (int row = 0; row < 6; ++row) {
            if (row == col) continue;
            const double f = m[row][col] / m[col][col];
            for (int k = col; k < 7; ++k) m[row][k] -= f * m[col][k];
        }
    }
    for (int i = 0; i < 6; ++i) x[i] = m[i][6] / m[i][i];
    return true;
}

// The tool point p (flange frame) that all taught flange poses (R, t) put on one spot c:
// R p - c = -t, solved in the least-squares sense.
std::optional<std::array<double, 3>> tool_point(const std::map<int, Pose>& poses) {
    std::array<std::array<double, 7>, 6> normal{};
    for (const auto& [number, pose] : poses) {
        const Matrix t = matrix_of(pose);
        for (int r = 0; r < 3; ++r) {
            double row[7] = {};
            for (int c = 0; c < 3; ++c) row[c] = t.data[r][c];
            row[3 + r] = -1.0;
            row[6] = -t.data[r][3];
            for (int i = 0; i < 6; ++i)
                for (int k = 0; k < 7; ++k) normal[i][k] += row[i] * row[k];
        }
    }
    std::array<double, 6> x{};
    if (poses.size() < 3 || !solve6(normal, x)) return std::nullopt;
    return std::array<double, 3>{x[0], x[1], x[2]};
}

void generate_auto_tool_frame(Call& call) {
    Frame frame;
    frame.name = frame_name(call, kTool);
    frame.payload = call.args.integer("payload");
    const std::vector<int> centre = call.args.ints("position", 3);
    std::copy(centre.begin(), centre.end(), frame.centre.begin());
    const std::optional<std::array<double, 3>> tip = tool_point(call.arm.state.tool_points);
    if (!tip) return call.refuse("the taught points do not fix a tool point");
    frame.pose = {
        wire::round((*tip)[0] * 1e6), wire::round((*tip)[1] * 1e6), wire::round((*tip)[2] * 1e6), 0, 0, 0};
    if (std::string why = add_frame(call.arm, kTool, std::move(frame)); !why.empty()) return call.refuse(why);
    call.arm.state.tool_points.clear();
}

// Point 1 is the origin, point 2 lies on the X axis, point 3 on the Y side of the XY plane;
// the third point completes the frame.
void set_auto_work_frame(Call& call) {
    const std::string name = frame_name(call, kWork);
    const int point = call.args.integer("point_num");
    if (point < 1 || point > 3) return call.refuse("point number outside 1..3");
    if (!call.arm.trajectory().idle()) return call.refuse("the arm is moving");
    const Frame* tool = call.arm.find_tool(call.arm.state.tool);
    std::map<int, Pose>& points = call.arm.state.work_points[name];
    points[point] = pose_in_base(call.arm, wire::coord(tool->pose));
    if (point != 3) return;
    if (points.size() < 3) return call.refuse("points 1 and 2 are not taught yet");
    const Pos& o = points[1].position;
    const Pos& a = points[2].position;
    const Pos& b = points[3].position;
    double x[3] = {a.x - o.x, a.y - o.y, a.z - o.z}, y[3] = {b.x - o.x, b.y - o.y, b.z - o.z};
    const double xn = std::sqrt(x[0] * x[0] + x[1] * x[1] + x[2] * x[2]);
    for (double& c : x) c /= xn;
    const double along = y[0] * x[0] + y[1] * x[1] + y[2] * x[2];
    for (int i = 0; i < 3; ++i) y[i] -= along * x[i];
    const double yn = std::sqrt(y[0] * y[0] + y[1] * y[1] + y[2] * y[2]);
    if (!(xn > 1e-4 && yn > 1e-4)) return call.refuse("the taught points lie on one line");
    for (double& c : y) c /= yn;
    const double z[3] = {x[1] * y[2] - x[2] * y[1], x[2] * y[0] - x[0] * y[2], x[0] * y[1] - x[1] * y[0]};
    Matrix r = unit_matrix(4);
    for (int i = 0; i < 3; ++i) {
        r.data[i][0] = static_cast<float>(x[i]);
        r.data[i][1] = static_cast<float>(y[i]);
        r.data[i][2] = static_cast<float>(z[i]);
    }
    r.data[0][3] = o.x;
    r.data[1][3] = o.y;
    r.data[2][3] = o.z;
    Frame frame{name, wire::pose(pose_of(r)), 0, {}};
    if (Frame* existing = find(call.arm, kWork, name)) {
        *existing = frame;
        call.arm.reconfigure();
    } else if (std::string why = add_frame(call.arm, kWork, frame); !why.empty()) {
        return call.refuse(why);
    }
    call.arm.state.work_points.erase(name);
}

// ---- tool envelope ----

void set_tool_envelope(Call& call) {
    const std::string tool = call.args.text("tool_name");
    const cJSON* list = call.args.array("list");
    if (!find(call.arm, kTool, tool)) return call.refuse("no tool \"" + tool + "\"");
    std::vector<EnvelopeBall> balls;
    for (const cJSON* item = list->child; item; item = item->next) {
        const Args ball(item);
        balls.push_back({ball.text("name", kMaxFrameName), ball.integer("radius"), ball.integer("x"),
                         ball.integer("y"), ball.integer("z")});
    }
    if (balls.size() > 5) return call.refuse("more than 5 spheres");
    call.arm.state.envelopes[tool] = std::move(balls);
}

void get_tool_envelope(Call& call) {
    const std::string tool = call.args.text("tool_name");
    if (!find(call.arm, kTool, tool)) {
        call.reply.set("get_state", false);
        call.refusal = "no tool \"" + tool + "\"";
        return;
    }
    JsonPtr list(cJSON_CreateArray());
    for (const EnvelopeBall& ball : call.arm.state.envelopes[tool]) {
        cJSON* item = cJSON_CreateObject();
        cJSON_AddStringToObject(item, "name", ball.name.c_str());
        cJSON_AddNumberToObject(item, "radius", ball.radius);
        cJSON_AddNumberToObject(item, "x", ball.x);
        cJSON_AddNumberToObject(item, "y", ball.y);
        cJSON_AddNumberToObject(item, "z", ball.z);
        cJSON_AddItemToArray(list.get(), item);
    }
    call.reply.set("tool_name", tool).add("list", std::move(list)).set("get_state", true);
}

const Command kCommands[] = {
    {"set_manual_tool_frame", "set_manual_tool_frame", "manual_tool_frame", create<&kTool>},
    {"update_tool_frame", "update_tool_frame", "update_state", update<&kTool>},
    {"set_change_tool_frame", "set_change_tool_frame", "change_tool_frame", select<&kTool>},
    {"set_delete_tool_frame", "set_delete_tool_frame", "delete_tool_frame", remove<&kTool>},
    {"get_current_tool_frame", "current_tool_frame", nullptr, current<&kTool>},
    {"get_total_tool_frame", "total_tool_frame", nullptr, list<&kTool>},
    {"get_tool_frame", "given_tool_frame", nullptr, given<&kTool>},
    {"set_auto_tool_frame", "set_auto_tool_frame", "auto_tool_frame", set_auto_tool_frame},
    {"generate_auto_tool_frame", "set_auto_tool_frame", "auto_tool_frame", generate_auto_tool_frame},
    {"set_manual_work_frame", "set_manual_work_frame", "manual_work_frame", create<&kWork>},
    {"update_work_frame", "update_work_frame", "update_state", update<&kWork>},
    {"set_change_work_frame", "set_change_work_frame", "change_work_frame", select<&kWork>},
    {"set_delete_work_frame", "set_delete_work_frame", "delete_work_frame", remove<&kWork>},
    {"get_current_work_frame", "current_work_frame", nullptr, current<&kWork>},
    {"get_total_work_frame", "total_work_frame", nullptr, list<&kWork>},
    {"get_work_frame", "given_work_frame", nullptr, given<&kWork>},
    {"set_auto_work_frame", "set_auto_work_frame", "auto_work_frame", set_auto_work_frame},
    {"set_tool_envelope", "set_tool_envelope", "set_state", set_tool_envelope},
    {"get_tool_envelope", "get_tool_envelope", nullptr, get_tool_envelope},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
