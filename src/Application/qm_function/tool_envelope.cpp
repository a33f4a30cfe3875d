// The tool envelope: the spheres that enclose a tool, written to and read from the controller.
#include <algorithm>

#include "log.h"
#include "qm_command.h"
#include "qm_interface.h"

namespace {

JsonPtr envelope_list(const qm_envelope_balls_list_t& envelope) {
    JsonPtr list(cJSON_CreateArray());
    const int size = envelope.size < 0 ? 0 : std::min(envelope.size, 5);
    for (int i = 0; i < size; ++i) {
        const qm_envelopes_ball_t& ball = envelope.balls[i];
        cJSON* item = cJSON_CreateObject();
        cJSON_AddStringToObject(item, "name", field_text(ball.name).c_str());
        cJSON_AddNumberToObject(item, "radius", wire::thousandths(ball.radius));
        cJSON_AddNumberToObject(item, "x", wire::thousandths(ball.x));
        cJSON_AddNumberToObject(item, "y", wire::thousandths(ball.y));
        cJSON_AddNumberToObject(item, "z", wire::thousandths(ball.z));
        cJSON_AddItemToArray(list.get(), item);
    }
    return list;
}

float number_of(const cJSON* object, const char* key) {
    const cJSON* item = MIO_JSON_GetObjectItem(object, key);
    return cJSON_IsNumber(item) ? wire::from_thousandths(item->valueint) : 0.0f;
}

int Parser_Get_Tool_Envelope(const char* caller, const char* text, qm_envelope_balls_list_t& envelope) {
    JsonPtr root = json_parse(text);
    if (!root) {
        qm_log_error("[%s] parser error!", caller);
        return -3;
    }
    if (MIO_JSON_GetObjectItemBool(root.get(), "get_state") == 0) {
        qm_log_error("[%s] Get tool envelope return false! You can check if the tool frame exists.\n", caller);
        return 1;
    }
    const cJSON* list = MIO_JSON_GetObjectItem(root.get(), "list");
    if (!cJSON_IsArray(list)) {
        qm_log_error("[%s] parser error!", caller);
        return -3;
    }
    copy_text(envelope.tool_name, MIO_JSON_GetObjectItemStr(root.get(), "tool_name"));
    int size = 0;
    for (const cJSON* item = list->child; item && size < 5; item = item->next, ++size) {
        qm_envelopes_ball_t& ball = envelope.balls[size];
        copy_text(ball.name, MIO_JSON_GetObjectItemStr(item, "name"));
        ball.radius = number_of(item, "radius");
        ball.x = number_of(item, "x");
        ball.y = number_of(item, "y");
        ball.z = number_of(item, "z");
    }
    envelope.size = size;
    return 0;
}

}  // namespace

extern "C" {

int qm_set_tool_envelope(qm_robot_handle* handle, qm_envelope_balls_list_t envelope) {
    Request req("set_tool_envelope");
    req.str("tool_name", field_text(envelope.tool_name).c_str()).object("list", envelope_list(envelope));
    const int rc = send_set(__func__, handle, req, Reply("set_tool_envelope", "set_state"));
    if (rc == 1)
        qm_log_error("[%s] Set tool envelope return false! You can check if the tool frame exists.\n", __func__);
    return rc;
}

int qm_get_tool_envelope(qm_robot_handle* handle, const char* tool_name, qm_envelope_balls_list_t* envelope) {
    Request req("get_tool_envelope");
    req.str("tool_name", tool_name);
    std::string text;
    if (int rc = exchange(__func__, handle, req, Reply::query("get_tool_envelope"), text); rc < 1) return rc;
    return Parser_Get_Tool_Envelope(__func__, text.c_str(), *envelope);
}

}  // extern "C"
