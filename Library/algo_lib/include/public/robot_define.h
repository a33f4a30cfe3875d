#ifndef ROBOT_DEFINE_H
#define ROBOT_DEFINE_H

#include <stdbool.h>
#include <stdint.h>

#include "constant_define.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef float VEC3[3];

/* Homogeneous transform indexed [row][column], translation in column 3. */
typedef struct {
    int16_t irow;
    int16_t iline;
    float data[4][4];
} Matrix;

typedef struct { float w, x, y, z; } Quat; /* scalar first */
typedef struct { float x, y, z; } Pos;
typedef struct { float rx, ry, rz; } Euler; /* fixed X-Y-Z: R = Rz*Ry*Rx */

typedef struct {
    Pos position;
    Quat quaternion;
    Euler euler;
} Pose;

typedef struct {
    float d[ROBOT_DOF];
    float a[ROBOT_DOF];
    float alpha[ROBOT_DOF];
    float offset[ROBOT_DOF];
    float err_d[ROBOT_DOF];
    float err_a[ROBOT_DOF];
    float err_alpha[ROBOT_DOF];
    float err_theta[ROBOT_DOF];
} DH;

typedef struct { float x, y, z, rx, ry, rz; } Coord;

typedef struct {
    float mass;
    float com[3];
    float inertia[6];
    float radius;
} PayloadCfg;

typedef struct {
    float radius;
    VEC3 centrePoint;
} ToolSpherePara;

typedef struct {
    bool result;
    int num;
    float q_ref[ROBOT_DOF];
    float q_solve[8][ROBOT_DOF];
} IkSolve;

typedef enum {
    QM65 = 0,
    QM75 = 1,
    QML63I = 2,
    QML63II = 3,
    QML63III = 4,
    LUX65 = 5,
    LUX62 = 6,
    TAV72 = 7,
    LUX63 = 8,
    UNIVERSAL = 9,
    QML63IV = 10,
    TAV72II = 11,
} RobotType;

typedef enum {
    _B = 0,  /* no sensor */
    _ZF = 1, /* one-axis force sensor */
    _SF = 2, /* six-axis force sensor */
    ISF = 3, /* integrated six-axis sensor */
} SensorType;

#ifdef __cplusplus
}
#endif

#endif
