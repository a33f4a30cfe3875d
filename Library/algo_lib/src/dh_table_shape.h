#ifndef DH_TABLE_SHAPE_H
#define DH_TABLE_SHAPE_H

// Which entries of a DH table the closed forms of a model family take as given: the twists
// they are expanded for and the lengths they leave out. A table with other values there (a
// calibrated one) needs the general link product. Not part of the library's interface.

#include <initializer_list>
#include <limits>

#include "dh_chain.h"
#include "robot_define.h"

namespace algo {

struct TableShape {
    int dof;
    bool standard;           // standard convention (QM75), else modified
    float twist[ROBOT_DOF];  // the twist of each of the model's links
    // The same as bounds over every slot, for a branch-free check: a twist within
    // [twist_low, twist_high] is the shape's; a length whose flag is 1 is taken as zero.
    float twist_low[ROBOT_DOF];
    float twist_high[ROBOT_DOF];
    float zero_a[ROBOT_DOF];
    float zero_d[ROBOT_DOF];
};

// The shape of robot_type's closed forms; QM65's for QML63I, UNIVERSAL and unknown types.
const TableShape& table_shape(int robot_type);

// True when dh has the shape: every twist within 0.99e-5 of the shape's right angle (a link
// transform takes it as exact within 1e-5, so the closed form and the link product agree up to
// there), every length the shape leaves out exactly zero.
inline bool nominal_structure(const TableShape& shape, const DH& dh) {
    int off = 0;
    for (int i = 0; i < ROBOT_DOF; ++i) {
        off |= !(dh.alpha[i] >= shape.twist_low[i]) | !(dh.alpha[i] <= shape.twist_high[i]);
        off |= (dh.a[i] * shape.zero_a[i] != 0.0f) | (dh.d[i] * shape.zero_d[i] != 0.0f);
    }
    return off == 0;
}

// dh with the shape's twists and zero lengths put in: the nearest table the closed forms serve.
DH nominal_table(const TableShape& shape, const DH& dh);

// Whether the table in use has the nominal structure of the loaded model, and its link product
// for when it has not. The setters that write the table or the model call table_in_use_changed,
// so forward kinematics on the system data reads a flag and a prepared chain instead of checking
// the table and working out its twists at every call.
extern bool g_table_in_use_nominal;
inline bool table_in_use_nominal() { return g_table_in_use_nominal; }
const DhChain& table_in_use_chain();
void table_in_use_changed();

}  // namespace algo

#endif
