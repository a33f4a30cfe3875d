// Shared by the catalogue fixtures: the call a table row makes, the command of a request line
// and the restoring of the process-wide reply timeouts a test shortens.
#ifndef QM_TEST_CATALOGUE_SUPPORT_H
#define QM_TEST_CATALOGUE_SUPPORT_H

#include <cstdint>
#include <functional>
#include <string>

#include "mio_json.h"
#include "qm_handle.h"

namespace catalogue_test {

using Call = std::function<int(qm_robot_handle*)>;

// The "command" of a request line.
inline std::string command_of(const std::string& line) {
    JsonPtr tree = json_parse(line.c_str());
    const char* command = MIO_JSON_GetObjectItemStr(tree.get(), "command");
    return command ? command : "";
}

// Puts back the reply timeouts in force when it was made.
class SavedTimeouts {
public:
    void restore() const {
        m_nOutTime = query_;
        m_nOutTime_max = set_;
    }

private:
    uint32_t query_ = m_nOutTime;
    uint32_t set_ = m_nOutTime_max;
};

}  // namespace catalogue_test

#endif
