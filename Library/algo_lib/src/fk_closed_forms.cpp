// The per-model closed-form flange routines as the library's interface names them; the forms
// themselves are inline in their headers so that forward kinematics can take them in one piece.
#include "fk_lux6.h"
#include "fk_qm65_family.h"
#include "fk_seven_joint.h"
#include "qman_kinematics.h"

extern "C" {

Matrix forward_kinematics_qm65(const DH* dh, const float* q) { return fk::elbow_wrist_flange(dh, q, 0.0f); }

Matrix forward_kinematics_qml63_2(const DH* dh, const float* q) { return fk::elbow_wrist_flange(dh, q, dh->a[3]); }

Matrix forward_kinematics_qml63_3(const DH* dh, const float* q) { return fk::elbow_wrist_flange(dh, q, dh->a[3]); }

Matrix forward_kinematics_lux6(const DH* dh, const float* q) { return fk::lux_flange(dh, q); }

Matrix forward_kinematics_qm75(const DH* dh, const float* q) { return fk::shoulder_elbow_wrist_flange(dh, q); }

Matrix forward_kinematics_tav7(const DH* dh, const float* q) { return fk::shoulder_elbow_wrist_flange(dh, q); }

}  // extern "C"
