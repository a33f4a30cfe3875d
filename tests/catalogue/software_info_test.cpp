// The software-information query: the record it fills, what it teaches the connection, and
// its deliberate quirks.
#include "catalogue_fixture.h"

namespace catalogue_test {
namespace {

class SoftwareInfo : public CatalogueArm {
protected:
    int query(const std::string& members) {
        controller.reply("get_arm_software_info", R"({"command":"arm_software_info",)" + members + "}");
        return qm_get_arm_software_info(arm(), &info);
    }
    qm_arm_software_version_t info{};
};

TEST_F(SoftwareInfo, TheProductTextSetsModelDofAndForceType) {
    const std::tuple<const char*, qm_robot_arm_model_e, int, qm_force_type_e> rows[] = {
        {"QM65-B", QM_MODEL_QM_65_E, 6, QM_MODEL_QM_B_E},
        {"QM75-ZF", QM_MODEL_QM_75_E, 7, QM_MODEL_QM_ZF_E},
        {"QML63III-6FB", QM_MODEL_QM_63_III_E, 6, QM_MODEL_QM_ISF_E},
        {"QML63II-6F", QM_MODEL_QM_63_II_E, 6, QM_MODEL_QM_SF_E},
        {"LUX65-B", QM_MODEL_LUX_65_E, 6, QM_MODEL_QM_B_E},
        {"LUX62-B", QM_MODEL_LUX_62_E, 6, QM_MODEL_QM_B_E},
        {"TAV72-B", QM_MODEL_TAV_72_E, 7, QM_MODEL_QM_B_E},
        {"LUX63-6F", QM_MODEL_LUX_63_E, 6, QM_MODEL_QM_SF_E},
    };
    for (const auto& [product, model, dof, force] : rows) {
        SCOPED_TRACE(product);
        ASSERT_EQ(query(R"("Product_version":")" + std::string(product) + R"(")"), 0);
        EXPECT_STREQ(info.product_version, product);
        record([model = model, dof = dof, force = force](qm_handle_t& r) {
            EXPECT_EQ(r.arm_model, model);
            EXPECT_EQ(r.arm_dof, dof);
            EXPECT_EQ(r.force_type, force);
            EXPECT_EQ(r.robot_controller_version, 3);
        });
    }
    EXPECT_EQ(controller.lines().back(), R"({"command":"get_arm_software_info"})");
}

TEST_F(SoftwareInfo, AnUnknownForceSuffixFailsAfterFillingTheRecord) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    EXPECT_EQ(query(R"("Product_version":"QM75-XX")"), -1);
    EXPECT_STREQ(info.product_version, "QM75-XX");
    EXPECT_TRUE(log.contains("Unknown force type: QM75-XX\n"));
    record([](qm_handle_t& r) {
        EXPECT_EQ(r.arm_model, QM_MODEL_QM_75_E) << "model and dof stay set";
        EXPECT_EQ(r.arm_dof, 7);
    });
}

// An arm outside the table learns its dof from the joints of the planned trajectory, but keeps
// seven while a move is planned.
TEST_F(SoftwareInfo, ANonStandardArmLearnsItsDofFromThePresentJoints) {
    qm_test::LogCapture log(LOG_LEVEL_INFO);
    for (const auto& [trajectory, dof] : {std::pair{R"("type":"none","data":[0,0,0,0,0,0,0,0])", 8},
                                          std::pair{R"("type":"movej","data":[0,0,0,0,0,0])", 7}}) {
        controller.reply("get_arm_current_trajectory",
                         std::string(R"({"command":"arm_current_trajectory",)") + trajectory + "}");
        ASSERT_EQ(query(R"("Product_version":"ECO63-B")"), 0);
        record([dof = dof](qm_handle_t& r) {
            EXPECT_EQ(r.arm_model, QM_MODEL_UNIVERSAL_E);
            EXPECT_EQ(r.arm_dof, dof);
            EXPECT_EQ(r.force_type, QM_MODEL_QM_B_E);
        });
    }
    EXPECT_TRUE(log.contains("Non-standard arm model: ECO63-B\n"));
}

TEST_F(SoftwareInfo, OnlyAFourthGenerationControllerReportsProgramAndCommunicationVersions) {
    ASSERT_EQ(query(R"("Product_version":"QM65-B","robot_controller_version":"3.5","program_info":{})"), 0);
    EXPECT_STREQ(info.program_info.version, "");
    record([](qm_handle_t& r) { EXPECT_EQ(r.robot_controller_version, 3); });
    ASSERT_EQ(query(R"("Product_version":"QM65-B","robot_controller_version":"4.0",)"
                    R"("program_info":{"version":"p1.0","build_time":"2024-01-01"},)"
                    R"("communication_info":{"version":"c2.0","build_time":"2024-02-02"})"),
              0);
    EXPECT_STREQ(info.robot_controller_version, "4.0");
    EXPECT_STREQ(info.program_info.version, "p1.0");
    EXPECT_STREQ(info.program_info.build_time, "2024-01-01");
    EXPECT_STREQ(info.com_info.version, "c2.0");
    EXPECT_STREQ(info.com_info.build_time, "2024-02-02");
    record([](qm_handle_t& r) { EXPECT_EQ(r.robot_controller_version, 4); });
}

TEST_F(SoftwareInfo, MissingRequiredMembersFailWithTheirOwnMessage) {
    const std::string qm65 = R"("Product_version":"QM65-B",)";
    const std::string v4 = qm65 + R"("robot_controller_version":"4.0",)";
    const std::string program = R"("program_info":{"version":"v","build_time":"t"},)";
    const std::tuple<std::string, int, std::string> rows[] = {
        {R"("ctrl_info":{"version":"1","build_time":"2"})", -3, "Product version parse err"},
        {v4 + R"("x":0)", -3, "program info parse err"},
        {v4 + R"("program_info":{"build_time":"t"})", -1, "program version parse err"},  // -1: intended
        {v4 + R"("program_info":{"version":"v"})", -3, "program build time parse err"},
        {v4 + program + R"("communication_info":{"build_time":"t"})", -3, "communication version parse err"},
        {v4 + program + R"("communication_info":{"version":"v"})", -3, "communication build time parse err"},
        {qm65 + R"("algorithm_info":{})", -3, "Algorithm version parse err"},
        {qm65 + R"("ctrl_info":{"build_time":"t"})", -3, "Ctrl version parse err"},
        {qm65 + R"("ctrl_info":{"version":"v"})", -3, "Ctrl build Time parse err"},
        {qm65 + R"("dynamic_info":{"version":"v"})", -3, "Dynamic model version parse err"},
        // Plan versions are looked up in ctrl_info, which is missing.
        {qm65 + R"("plan_info":{"version":"v","build_time":"t"})", -3, "Plan version parse err"},
        // Cut by the reply buffer.
        {qm65 + R"("padding":")" + std::string(1100, 'x') + R"(")", -3, "Arm software info parse err"},
    };
    for (const auto& [members, result, message] : rows) {
        SCOPED_TRACE(message);
        qm_test::LogCapture log(LOG_LEVEL_ERROR);
        EXPECT_EQ(query(members), result);
        EXPECT_TRUE(log.contains("[qm_get_arm_software_info] " + message + "\n"));
    }
}

// Plan versions are copied from the ctrl section, shortened: intended.
TEST_F(SoftwareInfo, TextsAreCutToTheirFieldsAndPlanVersionsComeFromTheCtrlSection) {
    ASSERT_EQ(
        query(R"("Product_version":"QM65-B-with-a-very-long-name","robot_controller_version":"3.123456789",)"
              R"("dynamic_info":{"model_version":"12345"},"algorithm_info":{"version":"a.b.c"},)"
              R"("ctrl_info":{"version":"1.4.2-beta.77","build_time":"2024-05-06 10:00:00.123"},)"
              R"("plan_info":{"version":"ignored","build_time":"ignored"})"),
        0);
    EXPECT_STREQ(info.product_version, "QM65-B-with-a-very-");
    EXPECT_STREQ(info.robot_controller_version, "3.1234567");
    EXPECT_STREQ(info.dynamic_info.model_version, "1234");
    EXPECT_STREQ(info.algorithm_info.version, "a.b.c");
    EXPECT_STREQ(info.ctrl_info.version, "1.4.2-beta.77");
    EXPECT_STREQ(info.plan_info.version, "1.4.2-be");
    EXPECT_STREQ(info.plan_info.build_time, "2024-05-06 10:00:0");
}

}  // namespace
}  // namespace catalogue_test
