#ifndef CONSTANT_DEFINE_H
#define CONSTANT_DEFINE_H

#define ROBOT_DOF 8 /* joint array capacity; a model uses 6 or 7 */
#define CYCLE_PERIOD 0.002f
#define FRIC_PARMS_NUM 5
#define TEMP_PARAMS_NUM 5
#define SAFETY_LEVEL_MAX 8

#define ALGO_PI 3.141592653589793238462
#define DEG2RAD 0.0174532925199433
#define RAD2DEG 57.2957795130823
#define PIX2 6.28318530717959
#define PI_2 1.5707963267949
#define GRAVITY_ACC_CONSTANT (-9.81f)

#define SUCCESS 0
#define UNKNOWN_TYPE (-2)

/* Inverse kinematics results */
#define IKINE_SUCCESSFUL 0
#define IKINE_FAILED (-1)
#define IKINE_LIMITED (-2)
#define IKINE_OVERSPEED (-3)
#define IKINE_UNKNOWN_TYPE (-4)

/* Target orientation form of an inverse kinematics request */
#define USE_EULER 1
#define USE_QUAT 2

/* Seven-joint arm-angle search step */
#define Q_STEP_MIN 0.013f
#define Q_STEP_MAX 3.14f

#define IS_MOVJ 0
#define IS_MOVL 1

#endif
