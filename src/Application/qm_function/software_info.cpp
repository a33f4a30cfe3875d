// The controller's software information, and what it tells the connection about the arm:
// model, dof, force-sensing variant and controller generation.
#include <cstring>
#include <initializer_list>
#include <string_view>

#include "log.h"
#include "qm_command.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace {

#define SOFTWARE_INFO "[qm_get_arm_software_info] "

struct ArmModel {
    const char* text;
    qm_robot_arm_model_e model;
    int dof;
};
// First match wins: "QML63III" must come before "QML63".
constexpr ArmModel kArmModels[] = {
    {"QM65", QM_MODEL_QM_65_E, 6},         {"QM75", QM_MODEL_QM_75_E, 7},  {"QML63III", QM_MODEL_QM_63_III_E, 6},
    {"QML63", QM_MODEL_QM_63_II_E, 6},     {"LUX65", QM_MODEL_LUX_65_E, 6}, {"LUX62", QM_MODEL_LUX_62_E, 6},
    {"TAV72", QM_MODEL_TAV_72_E, 7},       {"LUX63", QM_MODEL_LUX_63_E, 6},
};

struct ForceSuffix {
    const char* text;
    qm_force_type_e type;
};
// First match wins: "-6FB" must come before "-6F".
constexpr ForceSuffix kForceSuffixes[] = {
    {"-B", QM_MODEL_QM_B_E}, {"-ZF", QM_MODEL_QM_ZF_E}, {"-6FB", QM_MODEL_QM_ISF_E}, {"-6F", QM_MODEL_QM_SF_E}};

// The two log texts of a member labelled `label`: its parse error and its debug line.
#define MEMBER_TEXTS(label) SOFTWARE_INFO label " parse err\n", SOFTWARE_INFO label ": %s\n"

// One text member of a section: its key, its log texts, where it is copied to and the code a
// missing member fails with.
struct TextMember {
    template <std::size_t N>
    TextMember(const char* key, const char* missing, const char* found, char (&field)[N], std::size_t max_chars = N)
        : key(key), missing(missing), found(found), field(field), field_size(N), max_chars(max_chars) {}

    TextMember failing_with(int code) const {
        TextMember member = *this;
        member.failure = code;
        return member;
    }

    const char* key;
    const char* missing;
    const char* found;
    char* field;
    std::size_t field_size;
    std::size_t max_chars;
    int failure = -3;
};

// The members in order; the first one missing is logged and ends the read.
int read_texts(const cJSON* section, std::initializer_list<TextMember> members) {
    for (const TextMember& member : members) {
        const char* text = MIO_JSON_GetObjectItemStr(section, member.key);
        if (!text) {
            qm_log_text(LOG_LEVEL_ERROR, member.missing);
            return member.failure;
        }
        copy_text(member.field, member.field_size, text, member.max_chars);
        qm_log_debug(member.found, member.field);
    }
    return 0;
}

// Versions of generation 4.0 controllers: the program section is required, the communication
// section optional.
int read_generation4(const cJSON* reply, qm_arm_software_version_t& info) {
    const cJSON* program = MIO_JSON_GetObjectItem(reply, "program_info");
    if (!program) {
        qm_log_error(SOFTWARE_INFO "program info parse err\n");
        return -3;
    }
    // -1 and not -3 for the program version is intended.
    const TextMember version = TextMember("version", MEMBER_TEXTS("program version"), info.program_info.version).failing_with(-1);
    if (int rc = read_texts(program, {version, {"build_time", MEMBER_TEXTS("program build time"), info.program_info.build_time}}))
        return rc;
    if (const cJSON* com = MIO_JSON_GetObjectItem(reply, "communication_info"))
        return read_texts(com, {{"version", MEMBER_TEXTS("communication version"), info.com_info.version},
                                {"build_time", MEMBER_TEXTS("communication build time"), info.com_info.build_time}});
    return 0;
}

int decode(const char* text, qm_arm_software_version_t& info) {
    JsonPtr root = json_parse(text);
    if (!cJSON_IsObject(root.get())) {
        qm_log_error(SOFTWARE_INFO "Arm software info parse err\n");
        return -3;
    }
    const cJSON* reply = root.get();
    info = {};

    if (int rc = read_texts(reply, {{"Product_version", MEMBER_TEXTS("Product version"), info.product_version}})) return rc;

    if (const char* generation = MIO_JSON_GetObjectItemStr(reply, "robot_controller_version")) {
        copy_text(info.robot_controller_version, generation);
        if (std::strcmp(info.robot_controller_version, "4.0") == 0) {
            if (int rc = read_generation4(reply, info)) return rc;
        }
    }

    if (const cJSON* algorithm = MIO_JSON_GetObjectItem(reply, "algorithm_info")) {
        if (int rc = read_texts(algorithm, {{"version", MEMBER_TEXTS("Algorithm version"), info.algorithm_info.version}})) return rc;
    }

    const cJSON* ctrl = MIO_JSON_GetObjectItem(reply, "ctrl_info");
    if (ctrl) {
        if (int rc = read_texts(ctrl, {{"version", MEMBER_TEXTS("Ctrl version"), info.ctrl_info.version},
                                       {"build_time", MEMBER_TEXTS("Ctrl build Time"), info.ctrl_info.build_time}}))
            return rc;
    }

    if (const cJSON* dynamic = MIO_JSON_GetObjectItem(reply, "dynamic_info")) {
        if (int rc = read_texts(dynamic, {{"model_version", MEMBER_TEXTS("Dynamic model version"), info.dynamic_info.model_version}}))
            return rc;
    }

    // The plan versions are read from "ctrl_info", not from "plan_info": intended.
    if (MIO_JSON_GetObjectItem(reply, "plan_info"))
        return read_texts(ctrl, {{"version", MEMBER_TEXTS("Plan version"), info.plan_info.version, 8},
                                 {"build_time", MEMBER_TEXTS("Plan build Time"), info.plan_info.build_time, 18}});
    return 0;
}

// Model, dof and controller generation; true for a model outside the table.
bool learn_model(qm_handle_t& record, const qm_arm_software_version_t& info) {
    record.robot_controller_version = std::strcmp(info.robot_controller_version, "4.0") == 0 ? 4 : 3;
    const std::string_view product = info.product_version;
    for (const ArmModel& known : kArmModels) {
        if (product.find(known.text) != std::string_view::npos) {
            record.arm_model = known.model;
            record.arm_dof = known.dof;
            return false;
        }
    }
    qm_log_info("Non-standard arm model: %s\n", info.product_version);
    record.arm_model = QM_MODEL_UNIVERSAL_E;
    record.arm_dof = 7;
    return true;
}

int learn_force_type(qm_handle_t& record, const qm_arm_software_version_t& info) {
    const std::string_view product = info.product_version;
    for (const ForceSuffix& suffix : kForceSuffixes) {
        if (product.find(suffix.text) != std::string_view::npos) {
            record.force_type = suffix.type;
            return 0;
        }
    }
    qm_log_error("Unknown force type: %s\n", info.product_version);
    return -1;
}

}  // namespace

extern "C" int qm_get_arm_software_info(qm_robot_handle* handle, qm_arm_software_version_t* software_info) {
    std::string text;
    if (int rc = exchange(__func__, handle, Request("get_arm_software_info"), Reply::query("arm_software_info"), text);
        rc < 1)
        return rc;
    qm_arm_software_version_t info;
    if (int rc = decode(text.c_str(), info)) return rc;
    *software_info = info;

    bool universal = false;
    if (with_record(handle, [&](qm_handle_t& record) { universal = learn_model(record, info); }) != 0) return -1;
    if (universal) {
        // Asked outside the table lock, which the exchange takes itself; the result is not needed.
        qm_arm_current_trajectory_e type;
        float data[ARM_DOF];
        qm_get_arm_current_trajectory(handle, &type, data);
    }
    int rc = 0;
    if (with_record(handle, [&](qm_handle_t& record) { rc = learn_force_type(record, info); }) != 0) return -1;
    return rc;
}
