// The dexterous hand: stored postures and sequences (reported as device 2 when the request
// blocks), finger targets, streamed follow targets, speed and force. Finger positions run
// 0 (open) to 1000 (closed); angles and positions are the same values here.
#include "command.h"
#include "peripherals.h"

namespace sim {

namespace {

constexpr int kHandDevice = 2;
constexpr int kStored = 40;  // postures and sequences 1..40

// Stored posture n: a fixed grip of its own.
std::vector<int> posture(int n) {
    std::vector<int> fingers(kFingers);
    for (int i = 0; i < kFingers; ++i) fingers[i] = (n * 97 + i * 151) % 1001;
    return fingers;
}

int stored_number(const Call& call, const char* member) {
    const int n = call.args.integer(member);
    if (n < 1 || n > kStored) throw BadRequest(std::string("\"") + member + "\" outside 1..40");
    return n;
}

double rate(const Call& call) {
    return call.arm.state.hand.speed * kFingerRate;
}

void set_hand_posture(Call& call) {
    const int n = stored_number(call, "posture_num");
    call.arm.drive(call.arm.state.hand.fingers, posture(n), rate(call), call.args.boolean("block") ? kHandDevice : 0);
}

// A sequence plays its postures at half the pace.
void set_hand_seq(Call& call) {
    const int n = stored_number(call, "seq_num");
    call.arm.drive(call.arm.state.hand.fingers, posture(kStored + n), rate(call) / 2,
                   call.args.boolean("block") ? kHandDevice : 0);
}

// -1 leaves a finger where it is.
std::vector<int> fingers(Call& call, const char* member) {
    std::vector<int> target = call.args.ints(member, kFingers);
    const std::vector<int> now = call.arm.state.hand.fingers.at(call.arm.now());
    for (int i = 0; i < kFingers; ++i) {
        if (target[i] == -1) target[i] = now[i];
        if (target[i] < 0 || target[i] > 1000) throw BadRequest("a finger outside 0..1000");
    }
    return target;
}

// Its "block" is always true and nothing waits for this arrival: none is announced.
void set_hand_angle(Call& call) {
    call.arm.drive(call.arm.state.hand.fingers, fingers(call, "hand_angle"), rate(call), 0);
}

// Streamed: the fingers are there at once.
void follow_angle(Call& call) {
    call.arm.drive(call.arm.state.hand.fingers, fingers(call, "hand_angle"), 0.0, 0);
}
void follow_pos(Call& call) {
    call.arm.drive(call.arm.state.hand.fingers, fingers(call, "hand_pos"), 0.0, 0);
}

constexpr IntSetting kSpeed{"hand_speed", 1, 1000, [](ArmState& s) -> int& { return s.hand.speed; }};
constexpr IntSetting kForce{"hand_force", 1, 1000, [](ArmState& s) -> int& { return s.hand.force; }};

const Command kCommands[] = {
    {"set_hand_posture", "set_hand_posture", "set_state", set_hand_posture},
    {"set_hand_seq", "set_hand_seq", "set_state", set_hand_seq},
    {"set_hand_angle", "set_hand_angle", "set_state", set_hand_angle},
    {"hand_follow_angle", nullptr, nullptr, follow_angle},
    {"hand_follow_pos", nullptr, nullptr, follow_pos},
    {"set_hand_speed", "set_hand_speed", "set_state", set_setting<&kSpeed>},
    {"set_hand_force", "set_hand_force", "set_state", set_setting<&kForce>},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
