"""The Pythonic layer against the simulator: the example, errors by result code, connection
lifecycle, callbacks and the realtime queue, logging, frames and limits, kinematics."""
import logging
import subprocess
import sys

import pytest
from conftest import REPO, package_env, running_simulator

import qm


def test_example_moves_the_simulated_arm(simulator):
    run = subprocess.run([sys.executable, str(REPO / "examples/move_and_solve.py"), "127.0.0.1", str(simulator)],
                         capture_output=True, text=True, timeout=60, env=package_env())
    assert run.returncode == 0, run.stderr
    assert "arm QM_65 with 6 joints" in run.stdout
    assert "joints [0.0, 20.0, 70.0, 0.0, 90.0, 0.0]" in run.stdout
    assert "refused as expected: code 1" in run.stdout


def test_refused_move_raises_with_code_and_the_library_logs_it(arm, caplog):
    with pytest.raises(qm.CommandRefused) as refused:
        arm.movej([0, 400, 70, 0, 90, 0], v=20)
    assert (refused.value.code, refused.value.function) == (1, "qm_movej")
    assert "[qm_movej] receive_state: false" in [r.getMessage() for r in caplog.records if r.name == "qm"]


def test_late_reply_raises_timeout(lib, tmp_path):
    with running_simulator(tmp_path, "--fault-delay", "150") as port, lib.connect("127.0.0.1", port) as arm:
        lib.set_timeout(50)
        with pytest.raises(qm.Timeout) as late:
            arm.get_io_output()
    assert late.value.code == -2 and isinstance(late.value, TimeoutError)


def test_closed_arm_raises_disconnected(lib, simulator):
    arm = lib.connect("127.0.0.1", simulator)
    arm.close()
    with pytest.raises(qm.Disconnected):
        arm.get_joint_degree()
    arm.close()


def test_failed_connects_free_their_slots(lib, simulator):
    with lib.connect("127.0.0.1", simulator):
        for _ in range(5):
            with pytest.raises(qm.ConnectFailed):
                lib.connect("127.0.0.1", 1)


def test_reconnect_gives_a_working_connection(arm):
    arm.reconnect()
    assert len(arm.get_joint_degree()) == 6
    assert arm.info.model == qm.RobotArmModel.QM_65


def test_blocking_move_delivers_its_arrival_event(lib, arm):
    events = []
    lib.on_event(events.append)
    arm.movej([0, 10, 60, 0, 80, 0], v=50, block=True)
    assert arm.get_joint_degree() == pytest.approx([0, 10, 60, 0, 80, 0], abs=1e-3)
    assert any(e.event_type == qm.EventType.CURRENT_TRAJECTORY_STATE and e.device == 0 and e.trajectory_state
               for e in events)


def test_raising_callback_is_logged_and_delivery_goes_on(lib, arm, caplog):
    def broken(record):
        raise RuntimeError("broken callback")

    lib.on_realtime(broken)
    with lib.realtime_states(timeout=2) as states:
        records = [next(states) for _ in range(3)]
    assert all(r.errCode == 0 and r.arm_ip == "127.0.0.1" for r in records)
    assert any(r.exc_info and str(r.exc_info[1]) == "broken callback" for r in caplog.records)


def test_realtime_states_time_out_without_push():
    with qm.Library(qm.ThreadMode.DUAL) as lib, lib.realtime_states(timeout=0.1) as states:
        with pytest.raises(qm.Timeout):
            next(states)


def test_only_one_library_at_a_time(lib):
    with pytest.raises(qm.QmError):
        qm.Library()


def test_frames_and_limits_round_trip(arm):
    tool = qm.Frame("gripper", qm.pose(0, 0, 0.12, 0, 0, 0), payload=0.5, z=0.05)
    arm.set_manual_tool_frame(tool)
    assert "gripper" in arm.get_total_tool_frame()
    arm.change_tool_frame("gripper")
    current = arm.get_current_tool_frame()
    assert current.frame_name == "gripper" and current.pose.position.z == pytest.approx(0.12)
    arm.set_joint_max_speed(1, 100)
    assert arm.get_joint_max_speed()[0] == pytest.approx(100, abs=0.01)  # sent in sixths, truncated


def test_kinematics_round_trip_and_refusal(lib):
    k = lib.kinematics
    k.init_sys_data(qm.RobotArmModel.QM_65)
    joints = [10, -20, -70, 5, -80, 15]
    solved = k.inverse(k.forward(joints), reference=[j + 2 for j in joints])
    assert solved == pytest.approx(joints, abs=0.05)
    with pytest.raises(qm.KinematicsError) as bad:
        k.inverse(qm.Pose(), reference=joints)  # an all-zero quaternion
    assert bad.value.code == -2


def test_missing_library_error_names_the_place():
    run = subprocess.run([sys.executable, "-c", "import qm; qm.Library()"], capture_output=True, text=True,
                         env=package_env(QM_LIB="/nonexistent/libqm_api.so.1"))
    assert "LibraryNotFound" in run.stderr and "/nonexistent/libqm_api.so.1" in run.stderr


def test_log_goes_to_logging_at_the_threshold_level(caplog):
    with caplog.at_level(logging.INFO, logger="qm"), qm.Library(qm.ThreadMode.DUAL) as lib:
        with pytest.raises(qm.ConnectFailed):
            lib.connect("127.0.0.1", 1)
    assert ("qm", logging.INFO, "[qm_create_robot_arm] socket connect err!") in caplog.record_tuples
