// The simulator's own pieces that the end-to-end suite cannot pin down: profiles keep their
// limits, arcs pass their points, the command line is read as documented.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "options.h"
#include "planner.h"

namespace {

TEST(Profile, ReachesTheEndWithinItsRateAndAcceleration) {
    const struct {
        double rate, accel, duration;
    } rows[] = {
        {0.5, 1.0, 2.5},  // trapezoid: ramps of 0.5 s, cruise of 1.5 s
        {4.0, 1.0, 2.0},  // triangle: the rate is never reached
        {1.0, 1.0, 2.0},  // exactly a triangle
        {0.0, 1.0, 0.0},  // nothing to move
    };
    for (const auto& row : rows) {
        const sim::Profile p(row.rate, row.accel);
        EXPECT_NEAR(p.duration().count(), row.duration, 1e-9) << row.rate << ", " << row.accel;
        if (row.duration == 0.0) continue;
        EXPECT_EQ(p.at(sim::Seconds(0)), 0.0);
        EXPECT_EQ(p.at(p.duration()), 1.0);
        const double dt = 1e-3;
        double previous_rate = 0.0;
        for (double t = dt; t < row.duration; t += dt) {
            const double rate = p.rate(sim::Seconds(t));
            EXPECT_LE(rate, row.rate + 1e-9);
            EXPECT_LE(std::fabs(rate - previous_rate), row.accel * dt + 1e-9);
            EXPECT_GE(p.at(sim::Seconds(t)), p.at(sim::Seconds(t - dt)));
            previous_rate = rate;
        }
    }
}

TEST(Planner, ArcPassesItsPointsAndLinesAreRefused) {
    const Pose from = sim::make_pose(0.3, 0, 0.2, 3.14159, 0, 0);
    const Pose via = sim::make_pose(0.35, 0.05, 0.2, 3.14159, 0, 0);
    const Pose to = sim::make_pose(0.4, 0, 0.2, 3.14159, 0, 0);
    const std::optional<sim::CartesianPath> arc = sim::arc_path(from, via, to, 0);
    ASSERT_TRUE(arc);
    EXPECT_NEAR(arc->length, 0.05 * M_PI, 1e-6);  // a half circle of radius 5 cm
    EXPECT_NEAR(arc->pose_at(0.5).position.y, 0.05, 1e-6);
    EXPECT_NEAR(arc->pose_at(1.0).position.x, 0.4, 1e-6);
    EXPECT_NEAR(sim::arc_path(from, via, to, 2)->length, 2 * 2 * 0.05 * M_PI, 1e-6);
    EXPECT_FALSE(sim::arc_path(from, sim::make_pose(0.35, 0, 0.2, 0, 0, 0), to, 0));

    sim::MotionLimits limits;
    limits.max_pos.fill(90.0);
    limits.min_pos.fill(-90.0);
    limits.speed.fill(40.0);
    limits.acc.fill(80.0);
    sim::Joints beyond{};
    beyond[3] = 95.0;
    EXPECT_EQ(sim::plan_joint_move(limits, {}, beyond, 50, sim::MoveKind::joint).refusal,
              "joint 4 target outside its limits");
    // The joint that moves furthest sets the pace: 0.5 s ramps over 10 degrees each, 60 degrees at 40/s.
    const sim::Plan ok =
        sim::plan_joint_move(limits, {}, sim::Joints{80.0, -20.0}, 100, sim::MoveKind::joint);
    ASSERT_TRUE(ok.segment);
    EXPECT_NEAR(ok.segment->profile.duration().count(), 2.5, 1e-9);
}

sim::Options parse(std::vector<std::string> words, bool& help) {
    words.insert(words.begin(), "qm_sim");
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    return sim::parse_options(static_cast<int>(argv.size()), argv.data(), help);
}

TEST(Options, CommandLineIsReadAsDocumented) {
    bool help = false;
    const sim::Options o =
        parse({"--model", "QM75-6F", "-g", "4", "--arms", "5", "-p", "9000", "--speed-factor", "2.5",
               "--no-push", "--push-cycle", "1", "--fault-split", "3,9", "--fault-drop", "0.25"},
              help);
    EXPECT_FALSE(help);
    EXPECT_EQ(o.model, "QM75-6F");
    EXPECT_EQ(o.generation, 4);
    EXPECT_EQ(o.arms, 5);
    EXPECT_EQ(o.port, 9000);
    EXPECT_EQ(o.speed_factor, 2.5);
    EXPECT_FALSE(o.push.enable);
    EXPECT_EQ(o.push.cycle_ms, 1);
    EXPECT_EQ(o.faults.split_at, (std::vector<int>{3, 9}));
    EXPECT_EQ(o.faults.drop_replies, 0.25);
    const sim::Options recording = parse({"--record", "/tmp/r.txt", "--upstream", "192.168.1.18:8080"}, help);
    EXPECT_EQ(recording.record_path, "/tmp/r.txt");
    EXPECT_EQ(recording.upstream, "192.168.1.18:8080");
    EXPECT_EQ(parse({"--replay", "/tmp/r.txt", "-p", "0"}, help).replay_path, "/tmp/r.txt");
    parse({"--help"}, help);
    EXPECT_TRUE(help);
    EXPECT_NE(sim::usage_text("qm_sim").find("--fault-close-after"), std::string::npos);

    for (std::vector<std::string> wrong :
         std::vector<std::vector<std::string>>{{"--model", "QM99-B"},
                                               {"--model", "TAV72-6F"},
                                               {"--arms", "6"},
                                               {"--generation", "5"},
                                               {"--port", "65535", "--arms", "2"},
                                               {"--fault-drop", "2"},
                                               {"--record", "r.txt"},
                                               {"--upstream", "192.168.1.18:8080"},
                                               {"--record", "r.txt", "--upstream", "192.168.1.18"},
                                               {"--record", "r.txt", "--upstream", "host:8080"},
                                               {"--record", "r", "--upstream", "1.2.3.4:1", "--replay", "r"},
                                               {"--bogus"},
                                               {"stray"},
                                               {"--port"}}) {
        EXPECT_THROW(parse(wrong, help), sim::UsageError) << wrong[0];
    }
}

}  // namespace
