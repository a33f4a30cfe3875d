// Capsule tables of every arm family and the capsules of one configuration.
#include <algorithm>
#include <cmath>

#include "libalgo_interface.h"
#include "safety_models.h"

namespace safety {
namespace {

// Links: 1 base column, 2 upper arm, 3 forearm (with the elbow offset), then the wrist.
// A six-joint arm with parallel shoulder, elbow and wrist-1 axes keeps one link per wrist
// joint, since its wrist links can swing against each other. Radii are the housings'; where
// two wrist links face each other across a joint's offset, their radii sum stays below it.
constexpr CapsuleModel kModels[] = {
    {QM65, 0, {1, 1, 2, 3, 3, 4, 4}, {0, 0.0405f, 0.034f, 0.03f, 0.03f}},
    {QM75, 1, {1, 1, 1, 2, 3, 3, 4, 4}, {0, 0.0405f, 0.034f, 0.03f, 0.03f}},
    {QML63II, 0, {1, 1, 2, 3, 3, 4, 4}, {0, 0.075f, 0.06f, 0.05f, 0.045f}},
    {QML63IV, 0, {1, 1, 2, 3, 3, 4, 4}, {0, 0.075f, 0.06f, 0.05f, 0.045f}},
    {LUX65, 0, {1, 1, 2, 3, 4, 5, 6}, {0, 0.075f, 0.06f, 0.05f, 0.045f, 0.045f, 0.045f}},
    {LUX62, 0, {1, 1, 2, 3, 4, 5, 6}, {0, 0.09f, 0.075f, 0.045f, 0.05f, 0.045f, 0.045f}},
    {LUX63, 0, {1, 1, 2, 3, 4, 5, 6}, {0, 0.06f, 0.05f, 0.04f, 0.038f, 0.038f, 0.038f}},
    {TAV72, 0, {1, 1, 2, 2, 3, 3, 4, 4}, {0, 0.065f, 0.055f, 0.05f, 0.04f}},
    {TAV72II, 0, {1, 1, 2, 2, 3, 3, 4, 4}, {0, 0.07f, 0.06f, 0.055f, 0.045f}},
};

constexpr float kMinStep = 1e-6f;  // a step shorter than this has no capsule

// Step s runs from point[s] to point[s + 1]; see JointPoints.
int body_of_step(int step, int standard) { return (standard || step % 2 == 1) ? step / 2 + 1 : step / 2; }

}  // namespace

const CapsuleModel* capsule_model(int robot_type) {
    for (const CapsuleModel& m : kModels) {
        if (m.robot_type == robot_type) return &m;
    }
    return nullptr;
}

int family_member(std::initializer_list<int> family) {
    const int loaded = libalgo_get_robot_type();
    return std::find(family.begin(), family.end(), loaded) != family.end() ? loaded : *family.begin();
}

void capsules_from_chain(const CapsuleModel& model, const JointPoints& chain, CapsuleSet* out) {
    out->num = 0;
    for (int s = 0; s < 2 * chain.num_joints; ++s) {
        const float* a = chain.point[s];
        const float* b = chain.point[s + 1];
        if (distance_p2p(a, b) < kMinStep) continue;
        const int link = model.link_of_body[static_cast<std::size_t>(body_of_step(s, chain.standard))];
        Capsule& c = out->capsule[out->num++];
        std::copy(a, a + 3, c.start);
        std::copy(b, b + 3, c.end);
        c.link = link;
        c.radius = model.link_radius[static_cast<std::size_t>(link)];
    }
}

}  // namespace safety

namespace {

void end_points_of(int robot_type, const float* q, CapsuleSet* out) {
    out->num = 0;
    const safety::CapsuleModel* model = safety::capsule_model(robot_type);
    if (model == nullptr) return;
    JointPoints chain;
    safety::loaded_chain(q, model->standard, &chain);
    safety::capsules_from_chain(*model, chain, out);
}

}  // namespace

extern "C" {

void calc_all_end_points_QM65(const float* q, CapsuleSet* out) { end_points_of(QM65, q, out); }
void calc_all_end_points_QM75(const float* q, CapsuleSet* out) { end_points_of(QM75, q, out); }
void calc_all_end_points_QML63II(const float* q, CapsuleSet* out) {
    end_points_of(safety::family_member({QML63II, QML63IV}), q, out);
}
void calc_all_end_points_LUX65(const float* q, CapsuleSet* out) {
    end_points_of(safety::family_member({LUX65, LUX62, LUX63}), q, out);
}
void calc_all_end_points_LUX62(const float* q, CapsuleSet* out) { end_points_of(LUX62, q, out); }
void calc_all_end_points_TAV72(const float* q, CapsuleSet* out) {
    end_points_of(safety::family_member({TAV72, TAV72II}), q, out);
}

}  // extern "C"
