// Fuzzes the decoding of one realtime state datagram.
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "log.h"
#include "qm_realtime.h"

namespace {

void format_and_drop(const char* format, va_list args) {
    char text[1024];
    std::vsnprintf(text, sizeof text, format, args);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qm_set_log_callback(format_and_drop, LOG_LEVEL_DEBUG);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The UDP thread hands over at most 2048 bytes, terminated.
    const std::string text(reinterpret_cast<const char*>(data), size < 2048 ? size : 2048);
    qm_realtime_arm_joint_state_t state;
    parse_qm_realtime_arm_joint_state(text.c_str(), &state);
    get_arm_status_from_string(text.c_str());
    return 0;
}
