#include "move_args.h"

#include "qman_mathfuncs.h"

namespace sim {

int percent(const Args& args) {
    const int v = args.integer("v");
    if (v < 1 || v > 100) throw BadRequest("\"v\" outside 1..100");
    return v;
}

int trajectory_connect(const Args& args) {
    const int connect = args.integer("trajectory_connect");
    if (connect != 0 && connect != 1) throw BadRequest("\"trajectory_connect\" is neither 0 nor 1");
    return connect;
}

Joints joint_target(const Args& args, const char* key, int dof) {
    const std::vector<int> values = args.ints(key, static_cast<std::size_t>(dof));
    Joints q{};
    for (int j = 0; j < dof; ++j) q[j] = values[static_cast<std::size_t>(j)] / 1000.0;
    return q;
}

Pose pose_target(const Args& args, const char* key) {
    const std::vector<int> v = args.ints(key, 6);
    return wire::pose(Wire6{v[0], v[1], v[2], v[3], v[4], v[5]});
}

Pose streamed_pose(const Args& args) {
    if (!args.has("pose_quat")) return pose_target(args, "pose");
    const std::vector<int> v = args.ints("pose_quat", 7);
    const Pos position{static_cast<float>(v[0] / 1e6), static_cast<float>(v[1] / 1e6),
                       static_cast<float>(v[2] / 1e6)};
    const Quat q{static_cast<float>(v[3] / 1e6), static_cast<float>(v[4] / 1e6),
                 static_cast<float>(v[5] / 1e6), static_cast<float>(v[6] / 1e6)};
    return pose_of(pose_quat_to_transformation_matrix(position, q));
}

std::optional<Joints> streamed_target(Call& call) {
    Joints target{};
    if (call.args.has("joint")) {
        target = joint_target(call.args, "joint", call.arm.dof());
        if (int joint = joint_outside(call.arm.motion_limits(), target)) {
            call.refuse("joint " + std::to_string(joint) + " target outside its limits");
            return std::nullopt;
        }
    } else if (call.arm.kinematics().inverse(streamed_pose(call.args), call.arm.joints(), target) != IKINE_SUCCESSFUL) {
        call.refuse("target out of reach");
        return std::nullopt;
    }
    if (std::string why = call.arm.held(); !why.empty()) {
        call.refuse(why);
        return std::nullopt;
    }
    return target;
}

Start planning_start(const Arm& arm) {
    const Joints q = arm.trajectory().planned_end();
    return {q, arm.kinematics().forward(q)};
}

std::vector<int> shown_joints(const Joints& target, int dof) {
    return dof_values(wire::joints(target, dof), dof);
}

std::vector<int> shown_pose(const Pose& target) {
    const Wire6 w = wire::pose(target);
    return {w.begin(), w.end()};
}

Segment replay_of(const std::vector<Joints>& points) {
    return Segment{.kind = MoveKind::replay,
                   .path = Path(points),
                   .profile = Profile::lasting(kSamplePeriod * static_cast<double>(points.size() - 1))};
}

void queue_move(Call& call, Plan plan, int connect, std::vector<int> shown) {
    if (std::string why = call.arm.move(std::move(plan), connect, std::move(shown), call.program); !why.empty())
        call.refuse(why);
}

void start_jog(Call& call, Plan plan) {
    if (std::string why = call.arm.jog(std::move(plan)); !why.empty()) call.refuse(why);
}

}  // namespace sim
