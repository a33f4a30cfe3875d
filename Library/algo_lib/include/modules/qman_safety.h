#ifndef QMAN_SAFETY_H
#define QMAN_SAFETY_H

/* Self-collision model, tool envelope and singularity analysis. Joint arrays hold
 * ROBOT_DOF floats in rad, of which the model's joints are read; lengths in m. Geometry
 * comes from the DH table in use (nominal values, as the forward kinematics). Like the
 * system data, the envelope and the thresholds are process-wide and unlocked. */

#include "robot_define.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Clearance below which two parts count as touching (m). */
#define SAFETY_COLLISION_CLEARANCE 1e-5f
/* Spheres of the tool envelope. */
#define TOOL_SPHERE_NUM 5

/* ---- Geometry primitives ---- */

/* Distance between points p and q. */
float distance_p2p(const VEC3 p, const VEC3 q);
/* 1 when p lies on the line through a and b (within 1e-6 m), else 0; a degenerate line is the point a. */
int isPinL(const VEC3 p, const VEC3 a, const VEC3 b);
/* Distance from p to the infinite line through a and b (to a itself when a == b). */
float distance_p2l(const VEC3 p, const VEC3 a, const VEC3 b);
/* Distance from p to the segment a-b. */
float distance_p2ls(const VEC3 p, const VEC3 a, const VEC3 b);
/* Smallest distance between the segments a0-a1 and b0-b1. */
float distance_ls2ls(const VEC3 a0, const VEC3 a1, const VEC3 b0, const VEC3 b1);

/* ---- Link transforms and joint points ---- */

/* 4x4 identity. */
Matrix T_eye(void);
/* Standard link: Rz(theta)*Tz(d)*Tx(a)*Rx(alpha). */
Matrix standard_dh(float theta, float d, float a, float alpha);
/* Modified link: Rx(alpha)*Tx(a)*Rz(theta)*Tz(d). */
Matrix modified_dh(float alpha, float a, float theta, float d);

#define JOINT_POINTS_MAX (2 * ROBOT_DOF + 1)

/* The chain of one configuration. point[0] is the base origin; joint j (1-based) adds
 * point[2j-1] after its link's first translation and point[2j] at its frame origin
 * (modified links: first a along the previous x, then d along the joint axis; standard
 * links: first d along the joint axis, then a). Step s runs from point[s] to point[s+1]
 * and moves with body s/2 + 1 (the link of joint s/2 + 1), except the a steps (even s) of
 * modified links, which move with body s/2; body 0 is the base. */
typedef struct {
    int num_joints;
    int standard;                  /* 1 for standard links, 0 for modified */
    VEC3 point[JOINT_POINTS_MAX];
    Matrix frame[ROBOT_DOF + 1];   /* base, then the frame of each link */
} JointPoints;

/* Chain of the first dof joints of dh in the given convention. */
void calc_joint_points(const DH* dh, const float* q, int dof, int standard, JointPoints* out);
/* Axis of joint j (1-based): a point on it and its unit direction. */
void joint_points_axis(const JointPoints* chain, int j, VEC3 origin, VEC3 direction);
/* The chain of each model family with the DH table in use. */
void calc_joint_points_QM65(const float* q, JointPoints* out);
void calc_joint_points_QM75(const float* q, JointPoints* out);
void calc_joint_points_QML63II(const float* q, JointPoints* out);
void calc_joint_points_LUX65(const float* q, JointPoints* out);
void calc_joint_points_LUX62(const float* q, JointPoints* out);
void calc_joint_points_TAV72(const float* q, JointPoints* out);

/* ---- Link capsules ---- */

#define CAPSULES_MAX (2 * ROBOT_DOF)

/* A link part: the segment start-end swollen by radius. Parts of one link share its number;
 * links numbered consecutively along the arm touch at their common joint. */
typedef struct {
    VEC3 start;
    VEC3 end;
    float radius;
    int link;
} Capsule;

typedef struct {
    int num;
    Capsule capsule[CAPSULES_MAX];
} CapsuleSet;

/* Capsules of each model family for q with the DH table in use (the LUX routines use the
 * radii of the loaded LUX model). Steps of zero length give no capsule. */
void calc_all_end_points_QM65(const float* q, CapsuleSet* out);
void calc_all_end_points_QM75(const float* q, CapsuleSet* out);
void calc_all_end_points_QML63II(const float* q, CapsuleSet* out);
void calc_all_end_points_LUX65(const float* q, CapsuleSet* out);
void calc_all_end_points_LUX62(const float* q, CapsuleSet* out);
void calc_all_end_points_TAV72(const float* q, CapsuleSet* out);

/* ---- Tool envelope ---- */

/* Stores sphere index (0..TOOL_SPHERE_NUM-1; other indices are ignored). */
void libalgo_set_tool_envelope(int index, const ToolSpherePara* sphere);
/* Reads sphere index; a zero sphere for other indices. */
void libalgo_get_tool_envelope(int index, ToolSpherePara* sphere);
/* Rebuilds the list of used spheres (|radius| > 1e-6, in index order); returns their count. */
int update_ToolSpheresModel(void);
/* The list rebuilt last and its count. */
int get_ToolSpheresModel(const ToolSpherePara** spheres);

/* ---- Self-collision ---- */

/* Smallest clearance (m) between non-adjacent link capsules and between the tool spheres and
 * the links not carrying the tool. Stops at the first clearance at or below
 * SAFETY_COLLISION_CLEARANCE and returns it, so a colliding result is not necessarily the
 * deepest. Robot types without a model (QML63I, QML63III, UNIVERSAL) give 1.0. */
float isCollision_self_tool(const float* q);
float isCollision_self_tool_QM65(const float* q);
float isCollision_self_tool_QM75(const float* q);
float isCollision_self_tool_QML63II(const float* q);
float isCollision_self_tool_LUX65(const float* q);
float isCollision_self_tool_TAV72(const float* q);
/* 1 when a joint is outside its limits or the clearance is below SAFETY_COLLISION_CLEARANCE, else 0. */
int safety_robot_self_collision_detection(const float* q);

/* ---- Singularity analysis ---- */

/* Default thresholds restored by kin_singularity_thresholds_init. */
#define SINGULARITY_LIMIT_QE 0.1f /* rad from the stretched elbow */
#define SINGULARITY_LIMIT_QW 0.1f /* rad between the wrist's outer axes */
#define SINGULARITY_LIMIT_D 0.05f /* m from the wrist centre to the first axis */

/* Smallest singular value of the 6 x dof geometric Jacobian at the flange (linear rows in m,
 * angular rows in rad) with the DH table in use. */
float universal_min_singular_value(const float* q);
/* -1 when universal_min_singular_value(q) is below limit, else 0. */
int universal_singularity_analyse(const float* q, float limit);
/* Checks in this order: -1 shoulder (wrist centre within limit_d of the first axis; for
 * six-joint arms measured in the arm's plane, so shoulder offsets count), -2 elbow (within
 * limit_qe of stretched), -3 wrist (the wrist's outer axes within limit_qw of parallel);
 * 0 when clear. distance (may be NULL) gets the measure of the reported singularity, or the
 * shoulder measure when clear. UNIVERSAL and unknown types report 0 with distance 0. */
int kin_robot_singularity_analyse(const float* q, float* distance);
void kin_set_singularity_thresholds(float limit_qe, float limit_qw, float limit_d);
void kin_get_singularity_thresholds(float* limit_qe, float* limit_qw, float* limit_d);
void kin_singularity_thresholds_init(void);

#ifdef __cplusplus
}
#endif

#endif
