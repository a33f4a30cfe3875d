// Controller and tool IO against a fake controller.
#include "answered_rows.h"

namespace catalogue_test {
namespace {

class Io : public AnsweredArm {};

qm_io_config_t io_mode(int mode, int speed = 0, int realtime_mode = 0) {
    qm_io_config_t config{};
    config.io_mode = mode;
    config.io_real_time_config_t = {speed, realtime_mode};
    return config;
}

TEST_F(Io, SettersSendTheirMembersAndJudgeTheirOwnBoolean) {
    expect_each_judged({
        {"mode 13 carries no real-time member", ON_ARM(qm_set_IO_mode(h, 4, io_mode(13, 9, 9))),
         R"({"command":"set_IO_mode","IO_Num":4,"IO_mode":13})", "set_state"},
        {"real-time mode carries speed and mode", ON_ARM(qm_set_IO_mode(h, 0, io_mode(14, 100, 2))),
         R"({"command":"set_IO_mode","IO_Num":0,"IO_mode":14,"realtime_speed":{"speed":100,"mode":2}})",
         "set_state"},
        {"controller output", ON_ARM(qm_set_DO_state(h, 2, 1)),
         R"({"command":"set_DO_state","IO_Num":2,"state":1})", "set_state"},
        {"controller voltage is judged by state", ON_ARM(qm_set_voltage(h, 3)),
         R"({"command":"set_voltage","voltage_type":3})", "state"},
        {"tool output", ON_ARM(qm_set_tool_DO_state(h, 1, 0)),
         R"({"command":"set_tool_DO_state","IO_Num":1,"state":0})", "set_state"},
        {"the tool's mode travels under state", ON_ARM(qm_set_tool_IO_mode(h, 0, 1)),
         R"({"command":"set_tool_IO_mode","IO_Num":0,"state":1})", "set_state"},
    });
}

TEST_F(Io, ArgumentsOutOfRangeGiveOneAndSendNothing) {
    qm_io_get_t state{};
    const Call rows[] = {
        ON_ARM(qm_set_IO_mode(h, 5, io_mode(1))),  ON_ARM(qm_set_IO_mode(h, -1, io_mode(1))),
        ON_ARM(qm_set_IO_mode(h, 0, io_mode(15))), ON_ARM(qm_set_IO_mode(h, 0, io_mode(-1))),
        ON_ARM(qm_get_IO_state(h, 5, &state)),     ON_ARM(qm_get_IO_state(h, -1, &state)),
    };
    for (const Call& call : rows) {
        qm_test::LogCapture log(LOG_LEVEL_ERROR);
        EXPECT_EQ(fresh(call), 1);
        EXPECT_TRUE(log.contains("input param error..."));
    }
    EXPECT_FALSE(controller.wait_line(0, 50ms));
}

TEST_F(Io, PortStateIsDecodedByItsMode) {
    qm_io_get_t state{};
    const auto reset = [&] { state = {-7, {-7, {-7, -7}}}; };
    const auto expect_state = [&](int io_state, int mode, int speed, int realtime_mode) {
        EXPECT_EQ(std::vector<int>({state.io_state, state.io_config.io_mode,
                                    state.io_config.io_real_time_config_t.speed,
                                    state.io_config.io_real_time_config_t.mode}),
                  (std::vector<int>{io_state, mode, speed, realtime_mode}));
        reset();
    };
    reset();
    const Call get = ON_ARM(qm_get_IO_state(h, 3, &state));
    const std::string request = R"({"command":"get_IO_state","IO_Num":3})";
    const std::vector<std::pair<std::string, std::array<int, 5>>> rows = {
        // reply members -> result, io_state, io_mode, speed, real-time mode
        {R"("IO_state":1,"IO_Mode":2)", {0, 1, 2, -1, -1}},
        {R"("IO_state":0,"IO_Mode":14,"realtime_speed":{"speed":50,"mode":1})", {0, 0, 14, 50, 1}},
        {R"("IO_state":1,"IO_Mode":15,"realtime_speed":{"speed":50,"mode":1})", {0, 1, 15, -7, -7}},
        {R"("IO_state":0,"IO_Mode":14)", {-3, -7, -7, -7, -7}},
        {R"("IO_state":0,"IO_Mode":14,"realtime_speed":{"speed":-1,"mode":1})", {-3, -7, -7, -7, -7}},
        {R"("IO_state":-1,"IO_Mode":2)", {-3, -7, -7, -7, -7}},
        {R"("IO_state":1)", {-3, -7, -7, -7, -7}},
        {R"("IO_state":"on","IO_Mode":2)", {-3, -7, -7, -7, -7}},
    };
    for (const auto& [members, expected] : rows) {
        SCOPED_TRACE(members);
        controller.reply("get_IO_state", R"({"command":"IO_state",)" + members + "}");
        EXPECT_EQ(fresh(get), expected[0]);
        EXPECT_EQ(first_line(), request);
        expect_state(expected[1], expected[2], expected[3], expected[4]);
    }
}

TEST_F(Io, QueriesReadTheirArraysAndIntegers) {
    int di[5] = {-7, -7, -7, -7, -7}, dout[5] = {-7, -7, -7, -7, -7}, mode[3] = {-7, -7, -7},
        state[3] = {-7, -7, -7};
    int voltage = -7;
    expect_each_answered({
        {"four inputs", ON_ARM(qm_get_IO_input(h, di)), R"({"command":"get_IO_input"})",
         R"({"command":"IO_input_state","DI":[1,0,1,1]})", 0,
         [&] {
             EXPECT_EQ(std::vector<int>(di, di + 5), (std::vector<int>{1, 0, 1, 1, -7}));
         }},
        {"nine inputs are refused", ON_ARM(qm_get_IO_input(h, dout)), R"({"command":"get_IO_input"})",
         R"({"command":"IO_input_state","DI":[1,1,1,1,1,1,1,1,1]})", -3, [&] { EXPECT_EQ(dout[0], -7); }},
        {"tool ports: two modes and two states", ON_ARM(qm_get_tool_IO_state(h, mode, state)),
         R"({"command":"get_tool_IO_state"})",
         R"({"command":"tool_IO_state","IO_Mode":[1,0],"IO_state":[0,1]})", 0,
         [&] {
             EXPECT_EQ(std::vector<int>(mode, mode + 3), (std::vector<int>{1, 0, -7}));
             EXPECT_EQ(std::vector<int>(state, state + 3), (std::vector<int>{0, 1, -7}));
         }},
        {"controller voltage", ON_ARM(qm_get_voltage(h, &voltage)), R"({"command":"get_voltage"})",
         R"({"command":"voltage_state","voltage_type":2})", 0, [&] { EXPECT_EQ(voltage, 2); }},
    });
}

TEST_F(Io, ExchangeFailuresAreReturned) {
    int mode[2] = {-7, -7}, state[2] = {-7, -7};
    expect_failures("get_tool_IO_state", ON_ARM(qm_get_tool_IO_state(h, mode, state)),
                    {{std::nullopt, -2}, {R"({"command":"tool_IO_state","IO_Mode":[1,0]})", -3}});
    EXPECT_EQ(mode[0], -7);
    expect_failures("set_DO_state", ON_ARM(qm_set_DO_state(h, 1, 1)),
                    set_failures("set_DO_state", "set_state"));
}

}  // namespace
}  // namespace catalogue_test
