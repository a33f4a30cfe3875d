// The tool envelope: up to five spheres fixed to the flange.
#include <array>
#include <cmath>

#include "qman_safety.h"

namespace {

constexpr float kUnusedRadius = 1e-6f;

std::array<ToolSpherePara, TOOL_SPHERE_NUM> toolModel{};
std::array<ToolSpherePara, TOOL_SPHERE_NUM> tool_spheres_para{};
int tool_spheres_num = 0;

bool valid_index(int index) { return index >= 0 && index < TOOL_SPHERE_NUM; }

}  // namespace

extern "C" {

void libalgo_set_tool_envelope(int index, const ToolSpherePara* sphere) {
    if (valid_index(index) && sphere != nullptr) toolModel[static_cast<std::size_t>(index)] = *sphere;
}

void libalgo_get_tool_envelope(int index, ToolSpherePara* sphere) {
    if (sphere == nullptr) return;
    *sphere = valid_index(index) ? toolModel[static_cast<std::size_t>(index)] : ToolSpherePara{};
}

int update_ToolSpheresModel(void) {
    tool_spheres_num = 0;
    for (const ToolSpherePara& s : toolModel) {
        if (std::fabs(s.radius) > kUnusedRadius) tool_spheres_para[static_cast<std::size_t>(tool_spheres_num++)] = s;
    }
    return tool_spheres_num;
}

int get_ToolSpheresModel(const ToolSpherePara** spheres) {
    if (spheres != nullptr) *spheres = tool_spheres_para.data();
    return tool_spheres_num;
}

}  // extern "C"
