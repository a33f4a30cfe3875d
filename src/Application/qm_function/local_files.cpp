// File stems and local time stamps.
#include <algorithm>
#include <ctime>

#include "qm_local_files.h"

std::string file_stem(std::string_view path) {
    path = path.substr(0, std::min(path.size(), kFileNameMax));
    path = path.substr(0, path.find('\0'));
    std::size_t separator = path.rfind('/');
    if (separator == std::string_view::npos) separator = path.rfind('\\');
    std::string_view name = separator == std::string_view::npos ? path : path.substr(separator + 1);
    if (std::size_t dot = name.rfind('.'); dot != std::string_view::npos) name = name.substr(0, dot);
    return std::string(name);
}

std::string local_time_text(const char* format) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[64] = {};
    std::strftime(text, sizeof text, format, &local);
    return text;
}
