// The software-information query: the record it fills, what it teaches the connection, and
// its deliberate quirks.
#include <gtest/gtest.h>

#include <string>

#include "arm_catalogue_fixture.h"
#include "log_capture.h"

namespace arm_catalogue_test {
namespace {

std::string info_reply(const std::string& members) {
    return R"({"command":"arm_software_info",)" + members + "}";
}

class SoftwareInfo : public CatalogueArm {
protected:
    int query(const std::string& members) {
        controller.reply("get_arm_software_info", info_reply(members));
        return qm_get_arm_software_info(arm(), &info);
    }
    qm_arm_software_version_t info{};
};

struct ProductRow {
    const char* product;
    qm_robot_arm_model_e model;
    int dof;
    qm_force_type_e force;
};

TEST_F(SoftwareInfo, TheProductTextSetsModelDofAndForceType) {
    const ProductRow rows[] = {
        {"QM65-B", QM_MODEL_QM_65_E, 6, QM_MODEL_QM_B_E},
        {"QM75-ZF", QM_MODEL_QM_75_E, 7, QM_MODEL_QM_ZF_E},
        {"QML63III-6FB", QM_MODEL_QM_63_III_E, 6, QM_MODEL_QM_ISF_E},
        {"QML63II-6F", QM_MODEL_QM_63_II_E, 6, QM_MODEL_QM_SF_E},
        {"LUX65-B", QM_MODEL_LUX_65_E, 6, QM_MODEL_QM_B_E},
        {"LUX62-B", QM_MODEL_LUX_62_E, 6, QM_MODEL_QM_B_E},
        {"TAV72-B", QM_MODEL_TAV_72_E, 7, QM_MODEL_QM_B_E},
        {"LUX63-6F", QM_MODEL_LUX_63_E, 6, QM_MODEL_QM_SF_E},
    };
    for (const ProductRow& row : rows) {
        SCOPED_TRACE(row.product);
        ASSERT_EQ(query(R"("Product_version":")" + std::string(row.product) + R"(")"), 0);
        EXPECT_STREQ(info.product_version, row.product);
        record([&](qm_handle_t& r) {
            EXPECT_EQ(r.arm_model, row.model);
            EXPECT_EQ(r.arm_dof, row.dof);
            EXPECT_EQ(r.force_type, row.force);
            EXPECT_EQ(r.robot_controller_version, 3);
            return 0;
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
        return 0;
    });
}

TEST_F(SoftwareInfo, ANonStandardArmLearnsItsDofFromThePresentJoints) {
    qm_test::LogCapture log(LOG_LEVEL_INFO);
    controller.reply("get_arm_current_trajectory",
                     R"({"command":"arm_current_trajectory","type":"none","data":[0,0,0,0,0,0,0,0]})");
    ASSERT_EQ(query(R"("Product_version":"ECO63-B")"), 0);
    EXPECT_TRUE(log.contains("Non-standard arm model: ECO63-B\n"));
    record([](qm_handle_t& r) {
        EXPECT_EQ(r.arm_model, QM_MODEL_UNIVERSAL_E);
        EXPECT_EQ(r.arm_dof, 8);
        EXPECT_EQ(r.force_type, QM_MODEL_QM_B_E);
        return 0;
    });
}

TEST_F(SoftwareInfo, ANonStandardArmKeepsSevenJointsWhileAMoveIsPlanned) {
    controller.reply("get_arm_current_trajectory",
                     R"({"command":"arm_current_trajectory","type":"movej","data":[0,0,0,0,0,0]})");
    ASSERT_EQ(query(R"("Product_version":"ECO63-B")"), 0);
    record([](qm_handle_t& r) {
        EXPECT_EQ(r.arm_dof, 7);
        return 0;
    });
}

TEST_F(SoftwareInfo, AFourthGenerationControllerReportsItsProgramAndCommunicationVersions) {
    ASSERT_EQ(query(R"("Product_version":"QM65-B","robot_controller_version":"4.0",)"
                    R"("program_info":{"version":"p1.0","build_time":"2024-01-01"},)"
                    R"("communication_info":{"version":"c2.0","build_time":"2024-02-02"})"),
              0);
    EXPECT_STREQ(info.robot_controller_version, "4.0");
    EXPECT_STREQ(info.program_info.version, "p1.0");
    EXPECT_STREQ(info.program_info.build_time, "2024-01-01");
    EXPECT_STREQ(info.com_info.version, "c2.0");
    EXPECT_STREQ(info.com_info.build_time, "2024-02-02");
    record([](qm_handle_t& r) {
        EXPECT_EQ(r.robot_controller_version, 4);
        return 0;
    });
}

TEST_F(SoftwareInfo, OtherGenerationsIgnoreTheProgramSection) {
    ASSERT_EQ(query(R"("Product_version":"QM65-B","robot_controller_version":"3.5","program_info":{})"), 0);
    EXPECT_STREQ(info.program_info.version, "");
    record([](qm_handle_t& r) {
        EXPECT_EQ(r.robot_controller_version, 3);
        return 0;
    });
}

struct FailureRow {
    const char* behaviour;
    std::string members;
    int result;
    std::string message;
};

TEST_F(SoftwareInfo, MissingRequiredMembersFailWithTheirOwnMessage) {
    const std::string v4 = R"("Product_version":"QM65-B","robot_controller_version":"4.0",)";
    const FailureRow rows[] = {
        {"no product text", R"("ctrl_info":{"version":"1","build_time":"2"})", -3, "Product version parse err"},
        {"generation 4 without program section", v4 + R"("x":0)", -3, "program info parse err"},
        {"a missing program version is -1, unlike its siblings", v4 + R"("program_info":{"build_time":"t"})", -1,
         "program version parse err"},
        {"program build time", v4 + R"("program_info":{"version":"v"})", -3, "program build time parse err"},
        {"communication version",
         v4 + R"("program_info":{"version":"v","build_time":"t"},"communication_info":{"build_time":"t"})", -3,
         "communication version parse err"},
        {"communication build time",
         v4 + R"("program_info":{"version":"v","build_time":"t"},"communication_info":{"version":"v"})", -3,
         "communication build time parse err"},
        {"algorithm version", R"("Product_version":"QM65-B","algorithm_info":{})", -3, "Algorithm version parse err"},
        {"ctrl version", R"("Product_version":"QM65-B","ctrl_info":{"build_time":"t"})", -3, "Ctrl version parse err"},
        {"ctrl build time", R"("Product_version":"QM65-B","ctrl_info":{"version":"v"})", -3,
         "Ctrl build Time parse err"},
        {"dynamic model version", R"("Product_version":"QM65-B","dynamic_info":{"version":"v"})", -3,
         "Dynamic model version parse err"},
        {"plan versions are looked up in ctrl_info, which is missing",
         R"("Product_version":"QM65-B","plan_info":{"version":"v","build_time":"t"})", -3, "Plan version parse err"},
    };
    for (const FailureRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        qm_test::LogCapture log(LOG_LEVEL_ERROR);
        EXPECT_EQ(query(row.members), row.result);
        EXPECT_TRUE(log.contains("[qm_get_arm_software_info] " + row.message + "\n"));
    }
}

TEST_F(SoftwareInfo, AReplyCutByTheReplyBufferIsMalformed) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    EXPECT_EQ(query(R"("Product_version":"QM65-B","padding":")" + std::string(1100, 'x') + R"(")"), -3);
    EXPECT_TRUE(log.contains("[qm_get_arm_software_info] Arm software info parse err\n"));
}

TEST_F(SoftwareInfo, PlanVersionsComeFromTheCtrlSectionShortened) {
    ASSERT_EQ(query(R"("Product_version":"QM65-B",)"
                    R"("ctrl_info":{"version":"1.4.2-beta.77","build_time":"2024-05-06 10:00:00.123"},)"
                    R"("plan_info":{"version":"ignored","build_time":"ignored"})"),
              0);
    EXPECT_STREQ(info.ctrl_info.version, "1.4.2-beta.77");
    EXPECT_STREQ(info.plan_info.version, "1.4.2-be");
    EXPECT_STREQ(info.plan_info.build_time, "2024-05-06 10:00:0");
}

TEST_F(SoftwareInfo, TextsAreCutToTheirFields) {
    ASSERT_EQ(query(R"("Product_version":"QM65-B-with-a-very-long-name","robot_controller_version":"3.123456789",)"
                    R"("dynamic_info":{"model_version":"12345"},"algorithm_info":{"version":"a.b.c"})"),
              0);
    EXPECT_STREQ(info.product_version, "QM65-B-with-a-very-");
    EXPECT_STREQ(info.robot_controller_version, "3.1234567");
    EXPECT_STREQ(info.dynamic_info.model_version, "1234");
    EXPECT_STREQ(info.algorithm_info.version, "a.b.c");
}

}  // namespace
}  // namespace arm_catalogue_test
