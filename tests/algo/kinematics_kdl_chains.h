#ifndef KINEMATICS_KDL_CHAINS_H
#define KINEMATICS_KDL_CHAINS_H

// KDL chains built from a DH table. KDL turns a segment's joint at the segment's start, so a
// modified-convention table is regrouped: a fixed root Rx(alpha0)*Tx(a0), then per joint
// Rz(theta_i) followed by Tz(d_i)*Rx(alpha_i+1)*Tx(a_i+1). KDL also takes a segment's tip as
// seen at joint position zero, offset included, so the tip is given after the offset turn.

#include <kdl/chain.hpp>
#include <kdl/frames.hpp>
#include <kdl/jntarray.hpp>

#include "robot_define.h"

namespace kdl_chains {

inline KDL::Frame twist_then_length(float alpha, float a) {
    return KDL::Frame(KDL::Rotation::RotX(alpha)) * KDL::Frame(KDL::Vector(a, 0, 0));
}

inline KDL::Segment turning_segment(float offset, const KDL::Frame& tip) {
    const KDL::Joint joint(KDL::Joint::RotZ, 1.0, offset);
    return KDL::Segment(joint, joint.pose(0.0) * tip);
}

inline KDL::Chain modified_dh(const DH& dh, int dof) {
    KDL::Chain chain;
    chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::Fixed), twist_then_length(dh.alpha[0], dh.a[0])));
    for (int i = 0; i < dof; ++i) {
        KDL::Frame tip(KDL::Vector(0, 0, dh.d[i]));
        if (i + 1 < dof) tip = tip * twist_then_length(dh.alpha[i + 1], dh.a[i + 1]);
        chain.addSegment(turning_segment(dh.offset[i], tip));
    }
    return chain;
}

inline KDL::Chain standard_dh(const DH& dh, int dof) {
    KDL::Chain chain;
    for (int i = 0; i < dof; ++i)
        chain.addSegment(turning_segment(dh.offset[i], KDL::Frame::DH(dh.a[i], dh.alpha[i], dh.d[i], 0.0)));
    return chain;
}

inline KDL::JntArray joint_array(const float* q, int dof) {
    KDL::JntArray out(static_cast<unsigned>(dof));
    for (int i = 0; i < dof; ++i) out(static_cast<unsigned>(i)) = q[i];
    return out;
}

}  // namespace kdl_chains

#endif
