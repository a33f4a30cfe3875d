// Self-collision: clearances between the link capsules and between the tool spheres and the links.
#include <algorithm>
#include <cstdlib>
#include <limits>

#include "libalgo_interface.h"
#include "safety_models.h"

namespace {

constexpr float kNoModelClearance = 1.0f;  // types without a model count as far from collision

// Parts of one link, or of links that meet at a joint, always touch and are never tested.
bool may_collide(int link_a, int link_b) { return std::abs(link_a - link_b) > 1; }

int carrying_link(const CapsuleSet& set) {
    int last = 0;
    for (int i = 0; i < set.num; ++i) last = std::max(last, set.capsule[i].link);
    return last;
}

// Sphere centre from the flange frame to the base frame.
void to_base(const Matrix& flange, const float* local, float* base) {
    for (int r = 0; r < 3; ++r) {
        base[r] = flange.data[r][3];
        for (int c = 0; c < 3; ++c) base[r] += flange.data[r][c] * local[c];
    }
}

float clearance_of(int robot_type, const float* q) {
    const safety::CapsuleModel* model = safety::capsule_model(robot_type);
    if (model == nullptr) return kNoModelClearance;
    JointPoints chain;
    safety::loaded_chain(q, model->standard, &chain);
    CapsuleSet set;
    safety::capsules_from_chain(*model, chain, &set);

    float smallest = std::numeric_limits<float>::max();
    const int tool_link = carrying_link(set);
    const ToolSpherePara* spheres = nullptr;
    const int num_spheres = update_ToolSpheresModel();
    get_ToolSpheresModel(&spheres);
    for (int k = 0; k < num_spheres; ++k) {
        float centre[3];
        to_base(chain.frame[chain.num_joints], spheres[k].centrePoint, centre);
        for (int i = 0; i < set.num; ++i) {
            const Capsule& c = set.capsule[i];
            if (c.link == tool_link) continue;
            const float clearance = distance_p2ls(centre, c.start, c.end) - spheres[k].radius - c.radius;
            if (clearance <= SAFETY_COLLISION_CLEARANCE) return clearance;
            smallest = std::min(smallest, clearance);
        }
    }
    for (int i = 0; i < set.num; ++i) {
        for (int j = i + 1; j < set.num; ++j) {
            const Capsule& a = set.capsule[i];
            const Capsule& b = set.capsule[j];
            if (!may_collide(a.link, b.link)) continue;
            const float clearance = distance_ls2ls(a.start, a.end, b.start, b.end) - a.radius - b.radius;
            if (clearance <= SAFETY_COLLISION_CLEARANCE) return clearance;
            smallest = std::min(smallest, clearance);
        }
    }
    return set.num > 0 ? smallest : kNoModelClearance;
}

bool within_limits(const float* q) {
    float max[ROBOT_DOF];
    float min[ROBOT_DOF];
    libalgo_get_jointlim_max(max);
    libalgo_get_jointlim_min(min);
    const int dof = std::clamp(libalgo_get_rbt_dof(), 0, ROBOT_DOF);
    for (int i = 0; i < dof; ++i) {
        if (q[i] < min[i] || q[i] > max[i]) return false;
    }
    return true;
}

}  // namespace

extern "C" {

float isCollision_self_tool_QM65(const float* q) { return clearance_of(QM65, q); }
float isCollision_self_tool_QM75(const float* q) { return clearance_of(QM75, q); }
float isCollision_self_tool_QML63II(const float* q) {
    return clearance_of(safety::family_member({QML63II, QML63IV}), q);
}
float isCollision_self_tool_LUX65(const float* q) {
    return clearance_of(safety::family_member({LUX65, LUX62, LUX63}), q);
}
float isCollision_self_tool_TAV72(const float* q) { return clearance_of(safety::family_member({TAV72, TAV72II}), q); }

float isCollision_self_tool(const float* q) {
    switch (libalgo_get_robot_type()) {
        case QM65: return isCollision_self_tool_QM65(q);
        case QM75: return isCollision_self_tool_QM75(q);
        case QML63II:
        case QML63IV: return isCollision_self_tool_QML63II(q);
        case LUX65:
        case LUX62:
        case LUX63: return isCollision_self_tool_LUX65(q);
        case TAV72:
        case TAV72II: return isCollision_self_tool_TAV72(q);
        default: return kNoModelClearance;
    }
}

int safety_robot_self_collision_detection(const float* q) {
    if (!within_limits(q)) return 1;
    return isCollision_self_tool(q) < SAFETY_COLLISION_CLEARANCE ? 1 : 0;
}

}  // extern "C"
