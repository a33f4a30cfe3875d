// The library against a simulator that misbehaves on purpose: cut lines, garbage and
// oversized lines are survived; late, dropped and missing replies end in the timeout codes.
#include "sim_session.h"

namespace e2e {
namespace {

using std::chrono::milliseconds;

struct FaultRow {
    const char* behaviour;
    sim::Faults faults;
    bool synchronises;
    int query_result;  // of a joint query after the synchronisation
};
// A send on a connection the peer closed fails (-1) or, before the library notices the
// close, its reply never comes (-2).
constexpr int kFails = -100;

sim::Faults with(const std::function<void(sim::Faults&)>& set) {
    sim::Faults faults;
    set(faults);
    return faults;
}

TEST(Faults, TheLibrarySurvivesOrTimesOutAsDesigned) {
    const FaultRow rows[] = {
        {"lines cut into pieces", with([](sim::Faults& f) {
             f.split_at = {1, 4, 17, 60};
         }),
         true, 0},
        {"a garbage line before every other reply", with([](sim::Faults& f) { f.garbage_every = 2; }), true,
         0},
        {"an oversized line before every third reply", with([](sim::Faults& f) { f.oversized_every = 3; }),
         true, 0},
        {"replies a little late", with([](sim::Faults& f) { f.reply_delay = milliseconds(40); }), true, 0},
        {"replies later than the timeout", with([](sim::Faults& f) { f.reply_delay = milliseconds(700); }),
         false, -2},
        {"every reply dropped", with([](sim::Faults& f) { f.drop_replies = 1.0; }), false, -2},
        // The synchronisation takes ten commands; the eleventh is the last answered.
        {"closed after eleven commands", with([](sim::Faults& f) { f.close_after = 11; }), true, kFails},
    };
    for (const FaultRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        sim::Options options = fast_options();
        options.faults = row.faults;
        Session session(QM_DUAL_MODE_E, options);
        EXPECT_EQ(session.arm()->id > 0, row.synchronises);
        float joints[ARM_DOF];
        if (row.faults.close_after) {
            EXPECT_EQ(qm_get_joint_degree(session.arm(), joints), 0);
        }
        const int result = qm_get_joint_degree(session.arm(), joints);
        if (row.query_result == kFails) {
            EXPECT_LT(result, 0);
        } else {
            EXPECT_EQ(result, row.query_result);
        }
    }
}

}  // namespace
}  // namespace e2e
