// Capsule tables of the self-collision model (shared by the safety sources only).
#ifndef SAFETY_MODELS_H
#define SAFETY_MODELS_H

#include <array>
#include <initializer_list>

#include "qman_safety.h"

namespace safety {

// Which link each body belongs to (body 0 is the base, body j moves with joint j; several
// bodies may form one physical link) and each link's capsule radius (index 0 unused).
struct CapsuleModel {
    int robot_type;
    int standard;  // 1 for standard links
    std::array<int, ROBOT_DOF + 1> link_of_body;
    std::array<float, ROBOT_DOF + 1> link_radius;
};

// Table of a robot type, or null for types without a model.
const CapsuleModel* capsule_model(int robot_type);
// The type whose table a family routine uses: the loaded type when it belongs to the
// family, else the family's first member.
int family_member(std::initializer_list<int> family);
// Chain of q with the DH table and joint count in use.
void loaded_chain(const float* q, int standard, JointPoints* out);
// Capsules of every step of non-zero length along the chain.
void capsules_from_chain(const CapsuleModel& model, const JointPoints& chain, CapsuleSet* out);

}  // namespace safety

#endif
