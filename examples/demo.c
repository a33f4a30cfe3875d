/* A tour of the library against one arm (the simulator: qm_sim): connect, read what the
 * controller is, watch the realtime push while the arm makes a joint, a linear and a circular
 * move, solve inverse kinematics locally, read the arm's state and disconnect.
 * Usage: demo [ip] [port]   (default 127.0.0.1 8080) */
#include <math.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "qm_interface.h"

static const char* const kModels[] = {"QM65",  "QM75",  "QML63I", "QML63II", "QML63III",
                                      "LUX65", "LUX62", "TAV72",  "LUX63",   "universal"};
static const char* const kForceSensing[] = {"none", "one-axis", "six-axis", "integrated six-axis"};

/* The latest realtime record and the latest event, written by the library's threads. */
static pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t g_event_came = PTHREAD_COND_INITIALIZER;
static qm_realtime_arm_joint_state_t g_latest;
static unsigned long g_datagrams;
static qm_event_push_data_t g_event;
static int g_events;

static void on_realtime(qm_realtime_arm_joint_state_t state) {
    pthread_mutex_lock(&g_lock);
    if (state.errCode == 0) g_latest = state;
    g_datagrams++;
    pthread_mutex_unlock(&g_lock);
}

static void on_event(qm_event_push_data_t event) {
    pthread_mutex_lock(&g_lock);
    g_event = event;
    g_events++;
    pthread_cond_broadcast(&g_event_came);
    pthread_mutex_unlock(&g_lock);
}

static int g_dof;

static void print_joints(const char* label, const float* joint) {
    printf("%s [", label);
    for (int i = 0; i < g_dof; ++i) printf("%7.1f", fabs(joint[i]) < 0.05f ? 0.0 : joint[i]); /* no "-0.0" */
    printf(" ]");
}

/* ---- a move with a live one-line display of the pushed joint angles ---- */

static int g_moving; /* guarded by g_lock */

static void* show_progress(void* unused) {
    (void)unused;
    const struct timespec tick = {0, 50 * 1000 * 1000};
    for (;;) {
        pthread_mutex_lock(&g_lock);
        const int moving = g_moving;
        qm_realtime_arm_joint_state_t now = g_latest;
        pthread_mutex_unlock(&g_lock);
        if (!moving) return NULL;
        printf("\r    ");
        print_joints("joints", now.joint_status.joint_position);
        printf("  %-8s", now.arm_current_status == QM_MOVE_J_E   ? "move_J"
                         : now.arm_current_status == QM_MOVE_L_E ? "move_L"
                         : now.arm_current_status == QM_MOVE_C_E ? "move_C"
                                                                 : "");
        fflush(stdout);
        nanosleep(&tick, NULL);
    }
}

typedef int (*move_fn)(qm_robot_handle* arm, const void* target);

static double seconds_now(void) {
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec + t.tv_nsec / 1e9;
}

static int run_move(const char* what, qm_robot_handle* arm, move_fn move, const void* target) {
    printf("%s\n", what);
    pthread_t display;
    const int live = isatty(STDOUT_FILENO);
    pthread_mutex_lock(&g_lock);
    g_moving = 1;
    const int events_before = g_events;
    pthread_mutex_unlock(&g_lock);
    if (live) pthread_create(&display, NULL, show_progress, NULL);
    const double start = seconds_now();
    const int rc = move(arm, target);
    pthread_mutex_lock(&g_lock);
    g_moving = 0;
    pthread_mutex_unlock(&g_lock);
    if (live) pthread_join(display, NULL);

    /* The event callback may run just after the move returned. */
    struct timespec deadline;
    clock_gettime(CLOCK_REALTIME, &deadline);
    deadline.tv_nsec += 200 * 1000 * 1000;
    if (deadline.tv_nsec >= 1000000000L) {
        deadline.tv_sec += 1;
        deadline.tv_nsec -= 1000000000L;
    }
    pthread_mutex_lock(&g_lock);
    while (rc == 0 && g_events == events_before)
        if (pthread_cond_timedwait(&g_event_came, &g_lock, &deadline) != 0) break;
    qm_event_push_data_t event = g_event;
    pthread_mutex_unlock(&g_lock);
    float joints[ARM_DOF] = {0};
    qm_get_joint_degree(arm, joints);
    printf("%s    ", live ? "\r" : "");
    print_joints("joints", joints);
    if (rc == 0)
        printf("  arrived in %.2f s (event: device %d, %s)\n", seconds_now() - start, event.device,
               event.trajectory_state ? "reached" : "not reached");
    else
        printf("  result %d%s\n", rc, rc == 1 ? ": refused or not reached" : "");
    return rc;
}

static int joint_move(qm_robot_handle* arm, const void* target) {
    return qm_movej(arm, (const float*)target, 50, 0, 0, QM_MOVE_MULTI_BLOCK);
}
static int linear_move(qm_robot_handle* arm, const void* target) {
    return qm_movel(arm, *(const qm_pose_t*)target, 30, 0, 0, QM_MOVE_MULTI_BLOCK);
}
static int arc_move(qm_robot_handle* arm, const void* target) {
    const qm_pose_t* via_to = (const qm_pose_t*)target;
    return qm_movec(arm, via_to[0], via_to[1], 30, 0, 0, 0, QM_MOVE_MULTI_BLOCK);
}

static qm_pose_t shifted(qm_pose_t pose, float dx, float dy, float dz) {
    pose.position.x += dx;
    pose.position.y += dy;
    pose.position.z += dz;
    return pose;
}

/* ---- the tour ---- */

static void show_controller(qm_robot_handle* arm) {
    qm_arm_software_version_t software;
    qm_robot_info_t info;
    qm_realtime_push_config_t push;
    if (qm_get_arm_software_info(arm, &software) == 0 && qm_get_robot_info(arm, &info) == 0) {
        g_dof = info.arm_dof;
        printf("controller: %s, generation %d, software %s (%s)\n", software.product_version,
               info.robot_controller_version, software.ctrl_info.version, software.ctrl_info.build_time);
        printf("arm:        %s with %d joints, force sensing: %s\n", kModels[info.arm_model], info.arm_dof,
               kForceSensing[info.force_type]);
    }
    if (qm_get_realtime_push(arm, &push) == 0)
        printf("push:       %s, every %d ms to %s:%d\n", push.enable ? "on" : "off", push.cycle, push.ip,
               push.port);
}

static void inverse_kinematics_round_trip(qm_robot_handle* arm, const float* joints) {
    qm_pose_t pose = qm_algo_forward_kinematics(arm, joints);
    qm_inverse_kinematics_params_t params;
    memset(&params, 0, sizeof params);
    memcpy(params.q_in, joints, sizeof params.q_in);
    params.q_in[0] += 5.0f; /* start the solver a little off */
    params.q_pose = pose;
    params.flag = 1; /* by Euler angles */
    float solved[ARM_DOF] = {0};
    const int rc = qm_algo_inverse_kinematics(arm, params, solved);
    qm_pose_t again = qm_algo_forward_kinematics(arm, solved);
    const double dx = again.position.x - pose.position.x, dy = again.position.y - pose.position.y,
                 dz = again.position.z - pose.position.z;
    printf("local IK:   pose (%.3f, %.3f, %.3f) m -> result %d,", pose.position.x, pose.position.y,
           pose.position.z, rc);
    print_joints(" joints", solved);
    printf(" -> back within %.3f mm\n", 1000.0 * sqrt(dx * dx + dy * dy + dz * dz));
}

static void show_state(qm_robot_handle* arm) {
    qm_current_arm_state_t state;
    float temperature[ARM_DOF];
    if (qm_get_current_arm_state(arm, &state) == 0) {
        print_joints("state:     ", state.joint);
        int errors = 0; /* the controller lists a 0 when there is none */
        for (int i = 0; i < state.err.err_len; ++i) errors += state.err.err[i] != 0;
        printf("\n            pose (%.3f, %.3f, %.3f) m, (%.3f, %.3f, %.3f) rad, %d error(s)\n",
               state.pose.position.x, state.pose.position.y, state.pose.position.z, state.pose.euler.rx,
               state.pose.euler.ry, state.pose.euler.rz, errors);
    }
    if (qm_get_current_joint_temperature(arm, temperature) == 0)
        print_joints("            temperatures", temperature);
    pthread_mutex_lock(&g_lock);
    printf("\n            %lu realtime datagrams and %d events received\n", g_datagrams, g_events);
    pthread_mutex_unlock(&g_lock);
}

int main(int argc, char** argv) {
    const char* ip = argc > 1 ? argv[1] : "127.0.0.1";
    const int port = argc > 2 ? atoi(argv[2]) : 8080;

    printf("qm %s, kinematics %s\n", qm_api_version(), qm_algo_version());
    if (qm_init(QM_TRIPLE_MODE_E) != 0) return 1;
    qm_get_arm_event_call_back(on_event);
    qm_realtime_arm_state_call_back(on_realtime);

    qm_robot_handle* arm = qm_create_robot_arm(ip, port);
    if (!arm || arm->id < 0) {
        fprintf(stderr, "could not connect to a controller at %s:%d (is qm_sim running?)\n", ip, port);
        if (arm) qm_delete_robot_arm(arm);
        qm_destory();
        return 1;
    }
    printf("connected:  %s:%d as arm %d\n", ip, port, arm->id);
    show_controller(arm);

    /* A ready pose with the tool pointing down in front of the arm. */
    float ready[ARM_DOF] = {0, -20, -70, 0, -90, 0, 0};
    if (g_dof == 7) {
        const float ready7[ARM_DOF] = {0, -20, 0, -70, 0, -90, 0};
        memcpy(ready, ready7, sizeof ready);
    }
    int failures = 0;
    failures += run_move("movej to the ready pose", arm, joint_move, ready) != 0;

    qm_current_arm_state_t state;
    if (qm_get_current_arm_state(arm, &state) == 0) {
        const qm_pose_t down = shifted(state.pose, 0, 0, -0.1f);
        failures += run_move("movel 10 cm down", arm, linear_move, &down) != 0;
        const qm_pose_t arc[2] = {shifted(down, 0.05f, 0.05f, 0), shifted(down, 0.1f, 0, 0)};
        failures += run_move("movec through a point 5 cm aside to 10 cm ahead", arm, arc_move, arc) != 0;
    }

    float joints[ARM_DOF] = {0};
    if (qm_get_joint_degree(arm, joints) == 0) inverse_kinematics_round_trip(arm, joints);
    show_state(arm);

    qm_delete_robot_arm(arm);
    qm_destory();
    printf("disconnected\n");
    return failures == 0 ? 0 : 1;
}
