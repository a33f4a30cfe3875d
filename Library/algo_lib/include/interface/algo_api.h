#ifndef ALGO_API_H
#define ALGO_API_H

/* Everything an application of the kinematics library includes. */

#include "constant_define.h"
#include "lib_version.h"
#include "libalgo_interface.h"
#include "qman_inv_kinematics.h"
#include "qman_kinematics.h"
#include "qman_mathfuncs.h"
#include "qman_safety.h"
#include "qman_trajectory_planning.h"
#include "robot_define.h"

#endif
