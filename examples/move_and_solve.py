"""Connects to an arm, moves it, reads its state and solves the inverse kinematics of its pose
locally, while the realtime push reports the joints. Usage: move_and_solve.py [IP [PORT]]"""
import logging
import sys

import qm

logging.basicConfig(level=logging.WARNING, format="%(name)s %(levelname)s %(message)s")
ip = sys.argv[1] if len(sys.argv) > 1 else "127.0.0.1"
port = int(sys.argv[2]) if len(sys.argv) > 2 else 8080

with qm.Library(mode=qm.ThreadMode.TRIPLE) as lib, lib.connect(ip, port) as arm:
    print(f"library {lib.version}, arm {arm.info.model.name} with {arm.dof} joints")
    lib.on_event(lambda event: print(f"arrived: device {event.device}, success {event.trajectory_state}"))

    arm.movej([0, 20, 70, 0, 90, 0], v=20, block=True)
    state = arm.get_current_arm_state()
    print("joints", [round(j, 3) for j in state.joint])
    print("pose", state.pose.position, state.pose.euler)

    joints = lib.kinematics.inverse(state.pose, reference=state.joint)
    print("inverse kinematics", [round(j, 3) for j in joints])

    # A straight line 5 cm down, given as x, y, z (metres) and rx, ry, rz (radians).
    p, e = state.pose.position, state.pose.euler
    arm.movel([p.x, p.y, p.z - 0.05, e.rx, e.ry, e.rz], v=20)

    with lib.realtime_states(timeout=2.0) as states:
        pushed = next(states)
        print("realtime push", [round(j, 3) for j in pushed.joint_status.joint_position[:arm.dof]])

    try:
        arm.movej([0, 400, 70, 0, 90, 0], v=20)
    except qm.CommandRefused as refused:
        print(f"refused as expected: code {refused.code} ({refused.meaning})")
