// Fences, the virtual wall, self-collision, DH data, install pose, run mode, emergency stop and
// firmware versions against a fake controller.
#include "catalogue_fixture.h"

namespace catalogue_test {
namespace {

qm_fence_config_t cube(const char* name) {
    qm_fence_config_t zone{};
    zone.form = 1;
    std::snprintf(zone.name, sizeof zone.name, "%s", name);
    zone.cube = {-0.5f, 0.5f, -0.25f, 0.25f, 0.0f, 1.2345f};
    return zone;
}
qm_fence_config_t plane() {
    qm_fence_config_t zone{};
    zone.form = 2;
    std::snprintf(zone.name, sizeof zone.name, "wall");
    zone.plan = {0, 0, 0, 1, 0, 0, 0, 1, -0.001f};
    return zone;
}
qm_fence_config_t sphere() {
    qm_fence_config_t zone{};
    zone.form = 3;
    std::snprintf(zone.name, sizeof zone.name, "ball");
    zone.sphere = {0.1f, -0.2f, 0.3f, 0.05f};
    return zone;
}
qm_fence_config_t of_form(int form) {
    qm_fence_config_t zone = cube("odd");
    zone.form = form;
    return zone;
}

const std::string kCubeWire =
    R"("x_max_limit":500,"x_min_limit":-500,"y_max_limit":250,"y_min_limit":-250,"z_max_limit":1234,)"
    R"("z_min_limit":0)";
const std::string kPlaneWire = R"("x1":0,"y1":0,"z1":0,"x2":1000,"y2":0,"z2":0,"x3":0,"y3":1000,"z3":-1)";
const std::string kSphereWire = R"("radius":50,"x":100,"y":-200,"z":300)";

class Safety : public CatalogueArm {};

TEST_F(Safety, SetCommandsSendTheirMembersAndJudgeTheirBoolean) {
    qm_dh_t dh{};
    for (int i = 0; i < 8; ++i) dh.alpha[i] = dh.a[i] = dh.d[i] = 0.1f;
    dh.a[0] = 0.256f;
    dh.alpha[0] = 1.5708f;
    dh.offset[1] = -1.5708f;
    expect_each_judged({
        {"stored cube fence", ON_ARM(qm_add_electronic_fence_config(h, cube("box"))),
         R"({"command":"add_electronic_fence_config","form":1,"form_name":"box",)" + kCubeWire + "}",
         "add_config"},
        {"stored plane fence", ON_ARM(qm_add_electronic_fence_config(h, plane())),
         R"({"command":"add_electronic_fence_config","form":2,"form_name":"wall",)" + kPlaneWire + "}",
         "add_config"},
        {"stored sphere fence", ON_ARM(qm_update_electronic_fence_config(h, sphere())),
         R"({"command":"update_electronic_fence_config","form":3,"form_name":"ball",)" + kSphereWire + "}",
         "update_config"},
        {"fence deleted", ON_ARM(qm_delete_electronic_fence_config(h, "box")),
         R"({"command":"delete_electronic_fence_config","form_name":"box"})", "delete_config"},
        {"active fence without name", ON_ARM(qm_set_electronic_fence_config(h, plane())),
         R"({"command":"set_electronic_fence_config","form":2,)" + kPlaneWire + "}", "set_config"},
        {"virtual wall", ON_ARM(qm_set_virtual_wall_config(h, sphere())),
         R"({"command":"set_virtual_wall_config","form":3,)" + kSphereWire + "}", "set_config"},
        {"fence enable", ON_ARM(qm_set_electronic_fence_enable(h, {true, 1, 0})),
         R"({"command":"set_electronic_fence_enable","set_enable":true,"in_out_side":1,"effective_region":0})",
         "set_state"},
        {"wall enable", ON_ARM(qm_set_virtual_wall_enable(h, {false, 0, 2})),
         R"({"command":"set_virtual_wall_enable","set_enable":false,"in_out_side":0,"effective_region":2})",
         "set_state"},
        {"self-collision", ON_ARM(qm_set_self_collision_enable(h, true)),
         R"({"command":"set_self_collision_enable","set_enable":true})", "set_state"},
        {"DH rows alpha, a, d, offset; zeros beyond the six joints", ON_ARM(qm_set_DH_data(h, dh)),
         R"({"command":"set_DH_data","joint_1":[1570,256000,100000,0],"joint_2":[100,100000,100000,-1570],)"
         R"("joint_3":[100,100000,100000,0],"joint_4":[100,100000,100000,0],"joint_5":[100,100000,100000,0],)"
         R"("joint_6":[100,100000,100000,0],"joint_7":[0,0,0,0]})",
         "set_state"},
        {"DH defaults", qm_set_DH_data_default, R"({"command":"set_DH_data_default"})", "set_state"},
        {"install angles truncated to whole degrees", ON_ARM(qm_set_install_pose(h, 0.0f, 90.9f, -0.5f)),
         R"({"command":"set_install_pose","pose":[0,90,0]})", "set_state"},
        {"run mode judged by its own member", ON_ARM(qm_set_arm_run_mode(h, 2)),
         R"({"command":"set_arm_run_mode","mode":2})", "mode"},
        {"emergency stop as the generic integer set", ON_ARM(qm_set_arm_emergency_stop(h, true)),
         R"({"command":"set_arm_emergency_stop","emergency_stop":1})", "set_state"},
    });
}

TEST_F(Safety, FormsACommandDoesNotTakeAreRefusedWithoutTraffic) {
    const std::tuple<Call, std::string> rows[] = {
        {ON_ARM(qm_add_electronic_fence_config(h, of_form(4))),
         "Configuration error for the form of the newly added electronic fence! Wrong form: 4\n"},
        {ON_ARM(qm_update_electronic_fence_config(h, of_form(0))),
         "Configuration error for the form of the newly added electronic fence! Wrong form: 0\n"},
        {ON_ARM(qm_set_electronic_fence_config(h, sphere())), "electronic fence form check err!!"},
        {ON_ARM(qm_set_electronic_fence_config(h, of_form(-7))), "electronic fence form check err!!"},
        {ON_ARM(qm_set_virtual_wall_config(h, plane())), "virtual wall form check err!\n"},
    };
    for (const auto& [call, message] : rows) {
        qm_test::LogCapture log(LOG_LEVEL_ERROR);
        EXPECT_EQ(fresh(call), -4);
        EXPECT_TRUE(log.contains(message)) << message;
    }
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    record([](qm_handle_t& r) { r.arm_dof = 0; });
    EXPECT_EQ(qm_set_DH_data(arm(), qm_dh_t{}), -1);
    EXPECT_TRUE(log.contains("[qm_set_DH_data] The robotic arm has been disconnected\n"));
    std::this_thread::sleep_for(20ms);
    EXPECT_TRUE(controller.received().empty());
}

TEST_F(Safety, ZonesAreReadBackByTheirForm) {
    qm_fence_config_t zone{};
    const std::tuple<std::string, Call, std::string, qm_fence_config_t> rows[] = {
        {"given_electronic_fence_config", ON_ARM(qm_get_given_electronic_fence_config(h, "box", &zone)),
         R"({"command":"given_electronic_fence_config","form_name":"box","form":1,)" + kCubeWire + "}",
         cube("box")},
        {"get_electronic_fence_config", ON_ARM(qm_get_electronic_fence_config(h, &zone)),
         R"({"command":"get_electronic_fence_config","form_name":"wall","form":2,)" + kPlaneWire + "}",
         plane()},
        // The wall has no name.
        {"get_virtual_wall_config", ON_ARM(qm_get_virtual_wall_config(h, &zone)),
         R"({"command":"get_virtual_wall_config","form":3,"given_state":true,)" + kSphereWire + "}",
         sphere()},
    };
    for (const auto& [command, call, reply, expected] : rows) {
        SCOPED_TRACE(command);
        controller.reply(command, reply);
        zone = {};
        ASSERT_EQ(call(arm()), 0);
        EXPECT_EQ(zone.form, expected.form);
        EXPECT_STREQ(zone.name, zone.form == 3 ? "" : expected.name);
        const float* got = &zone.cube.x_min_limit;
        const float* want = &expected.cube.x_min_limit;
        for (int i = 0; i < 6 + 9 + 4; ++i) EXPECT_NEAR(got[i], want[i], 1e-3) << "geometry value " << i;
    }
    EXPECT_EQ(controller.wait_command("given_electronic_fence_config").value_or(""),
              R"({"command":"given_electronic_fence_config","form_name":"box"})");

    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    controller.reply("given_electronic_fence_config",
                     R"({"command":"given_electronic_fence_config","given_state":false})");
    EXPECT_EQ(qm_get_given_electronic_fence_config(arm(), "nope", &zone), 1);
    EXPECT_TRUE(log.contains("The given electronic fence name does not exist!\n"));
    controller.reply("get_virtual_wall_config",
                     R"({"command":"get_virtual_wall_config","form":3,"radius":50})");
    EXPECT_EQ(qm_get_virtual_wall_config(arm(), &zone), -3);
    EXPECT_TRUE(log.contains("[qm_get_virtual_wall_config] x parsing error\n"));
}

TEST_F(Safety, FenceListsAreCutToTenEntries) {
    std::string names, infos;
    for (int i = 0; i < 12; ++i) {
        names += std::string(i ? "," : "") + "\"fence_with_long_name_" + std::to_string(i) + "\"";
        infos += std::string(i ? "," : "") + R"({"form_name":"s)" + std::to_string(i) +
                 R"(","form":3,"radius":)" + std::to_string(i) + R"(,"x":0,"y":0,"z":0})";
    }
    controller.reply("get_electronic_fence_list_names",
                     R"({"command":"get_electronic_fence_list_names","name_list":[)" + names + "]}");
    qm_fence_names_t listed[10];
    int len = 0;
    ASSERT_EQ(qm_get_electronic_fence_list_names(arm(), listed, &len), 0);
    EXPECT_EQ(len, 10);
    EXPECT_STREQ(listed[9].name, "fence_with_");

    controller.reply("get_electronic_fence_list_infos",
                     R"({"command":"get_electronic_fence_list_infos","info_list":[)" + infos + "]}");
    qm_fence_config_list_t list{};
    ASSERT_EQ(qm_get_electronic_fence_list_infos(arm(), &list, &len), 0);
    EXPECT_EQ(len, 10);
    EXPECT_STREQ(list.config[9].name, "s9");
    EXPECT_FLOAT_EQ(list.config[9].sphere.radius, 0.009f);

    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    controller.reply("get_electronic_fence_list_names",
                     R"({"command":"get_electronic_fence_list_names","name_list":[1]})");
    EXPECT_EQ(qm_get_electronic_fence_list_names(arm(), listed, &len), -3);
    EXPECT_TRUE(log.contains("Get fence list names parse err\n"));
}

TEST_F(Safety, EnableStatesModesAndVersionsAreRead) {
    const std::pair<std::string, int (*)(qm_robot_handle*, qm_electronic_fence_enable_t*)> enables[] = {
        {"get_electronic_fence_enable", qm_get_electronic_fence_enable},
        {"get_virtual_wall_enable", qm_get_virtual_wall_enable}};
    for (const auto& [command, get] : enables) {
        controller.reply(command, R"({"command":")" + command +
                                      R"(","enable_state":true,"in_out_side":1,"effective_region":2})");
        qm_electronic_fence_enable_t state{};
        ASSERT_EQ(get(arm(), &state), 0) << command;
        EXPECT_TRUE(state.enable_state);
        EXPECT_EQ(state.in_out_side, 1);
        EXPECT_EQ(state.effective_region, 2);
    }
    controller.reply("get_self_collision_enable",
                     R"({"command":"get_self_collision_enable","enable_state":true})");
    bool enabled = false;
    ASSERT_EQ(qm_get_self_collision_enable(arm(), &enabled), 0);
    EXPECT_TRUE(enabled);
    controller.reply("get_arm_run_mode", R"({"command":"get_arm_run_mode","mode":2})");
    int mode = 0;
    ASSERT_EQ(qm_get_arm_run_mode(arm(), &mode), 0);
    EXPECT_EQ(mode, 2);

    controller.reply("get_joint_software_version",
                     R"({"command":"joint_software_version","version":["1.0","1.1","1.2","1.3","1.4",)"
                     R"("a-version-too-long-for-ten","x","y"]})");
    qm_version_t versions[ARM_DOF] = {};
    int count = 0;
    ASSERT_EQ(qm_get_joint_software_version(arm(), &count, versions), 0);
    EXPECT_EQ(count, ARM_DOF);
    EXPECT_STREQ(versions[1].version, "1.1");
    EXPECT_STREQ(versions[5].version, "a-version");
    controller.reply("get_tool_software_version", R"({"command":"tool_software_version","version":"2.0.1"})");
    qm_version_t tool{};
    ASSERT_EQ(qm_get_tool_software_version(arm(), &count, &tool), 0);
    EXPECT_EQ(count, 1);
    EXPECT_STREQ(tool.version, "2.0.1");
    expect_failures("get_tool_software_version", ON_ARM(qm_get_tool_software_version(h, &count, &tool)),
                    {{std::nullopt, -2}, {R"({"command":"tool_software_version","version":3})", -3}});
}

}  // namespace
}  // namespace catalogue_test
